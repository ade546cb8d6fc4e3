// SPDX-License-Identifier: MIT
//
// Labels as mardle can read them back: one line each.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "programs/io/line_reader.h"

namespace mardle::tools {

// The longest line that the reader of matrices and labels does not split: its buffer also holds the
// newline and an end mark.
inline constexpr std::size_t kLongestLine = LineReader::kLineBuffer - 2;

// Line ends and NUL bytes become blanks, blanks at the end go, and what is longer than a line is
// cut in front of a character.
std::string LabelText(std::string_view text);

}  // namespace mardle::tools
