// SPDX-License-Identifier: MIT
//
// Numbers as text, both ways. The reader of matrices takes the number that a field begins with;
// here a field that is not a number as a whole is none.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mardle::tools {

// The number that the whole text is; a sign may lead. Nothing when it is none.
std::optional<double> ParseNumber(std::string_view text);
std::optional<long long> ParseInteger(std::string_view text);

// Appends the shortest text that reads back as the same number.
void AppendNumber(std::string& line, double value);
void AppendNumber(std::string& line, long long value);

}  // namespace mardle::tools
