// SPDX-License-Identifier: MIT
//
// Options of mardle, checked before a run: their names, their values and the files that they name.
#pragma once

#include <string>
#include <vector>

namespace mardle::tools {

// Puts the words with one dash, but for numbers below 0, among the options; the rest of the command
// line is returned.
std::vector<const char*> TakeMardleOptions(int argc, const char* const* argv,
                                           std::vector<std::string>& options);

// Each has one dash, and a value stands behind "=". Names of label files are made absolute. Throws
// std::invalid_argument when one is none of mardle's, has a value that is out of range, or means
// nothing where all files are named and the page shows everything; FileError when a file that it
// names cannot be read.
void CheckMardleOptions(std::vector<std::string>& options);

}  // namespace mardle::tools
