// SPDX-License-Identifier: MIT
//
// What tells whether a file is the one that it was.
#pragma once

#include <string>

namespace mardle::exporting {

// The SHA-256 of the contents, 64 lower-case hexadecimal digits. Fails when the file cannot be
// read.
std::string Sha256OfFile(const std::string& path);

}  // namespace mardle::exporting
