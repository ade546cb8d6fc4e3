// SPDX-License-Identifier: MIT
//
// Fields of a line, and the numbers in them, both ways.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/text/input_error.h"

namespace mardle::tools {

// Without the blanks and tabs at both ends.
std::string_view Trimmed(std::string_view text);

// What stands between blanks and tabs.
std::vector<std::string_view> FieldsOf(std::string_view line);

// The number that the whole text is; a sign may lead. Nothing when it is none.
std::optional<double> ParseNumber(std::string_view text);
std::optional<long long> ParseInteger(std::string_view text);

// A value for the matrix. Throws InputError when the text is no number, not finite, or too large
// for the single precision in which mardle keeps it; `what` names the field in the message.
double MatrixValue(std::string_view text, const Place& place, const std::string& what);

// Appends the shortest text that reads back as the same number.
void AppendNumber(std::string& line, double value);
void AppendNumber(std::string& line, long long value);

// The text in single quotes for a message, cut when it is long.
std::string Quoted(std::string_view text);

}  // namespace mardle::tools
