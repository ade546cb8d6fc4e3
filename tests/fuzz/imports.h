// SPDX-License-Identifier: MIT
//
// What the targets share that import something.
#pragma once

#include <string>

#include "tests/fuzz/harness.h"
#include "tools/import/import.h"

namespace fuzzing {

// Imports the file to a folder of this process, which is empty again afterwards. What is made must
// be a matrix that the program reads, with the numbers of the summary; what is refused must be
// named in the message and leave no file behind.
void RequireImportOrRefusal(const MemoryFile& file, mardle::tools::ImportOptions options);

}  // namespace fuzzing
