// SPDX-License-Identifier: MIT
//
// A number that can stand in a matrix.
#pragma once

#include <string>
#include <string_view>

#include "tools/text/file_error.h"

namespace mardle::tools {

// A value for the matrix. Throws FileError when the text is no number, not finite, or too large
// for the single precision in which mardle keeps it; `what` names the field in the message.
double MatrixValue(std::string_view text, const Place& place, const std::string& what);

// The same check of a number that is there already.
double CheckedValue(double value, const Place& place, const std::string& what);

}  // namespace mardle::tools
