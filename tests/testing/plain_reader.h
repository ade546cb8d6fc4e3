// SPDX-License-Identifier: MIT
//
// The matrix reader as the C library alone would have it: fgets, strtok, strtol, strtod. Slow and
// obvious.
#pragma once

#include <cstdio>

#include "programs/io/matrix.h"

namespace testing_support {

// Reads header and rows, dense or sparse, into a fresh record; fails as the program's reader does.
void PlainReadMatrix(std::FILE* stream, bool dense, mardle::Matrix& mat);

}  // namespace testing_support
