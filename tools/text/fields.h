// SPDX-License-Identifier: MIT
//
// A line as fields.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mardle::tools {

// What parts the fields of a line. Files written elsewhere may end their lines with a carriage
// return, which readers that leave it in place count as a blank.
inline constexpr std::string_view kBlanks = " \t";
inline constexpr std::string_view kBlanksAndReturns = " \t\r";

// Without the blanks and tabs at both ends.
std::string_view Trimmed(std::string_view text);

// What stands between blanks; blanks at the ends and several in a row part nothing more.
std::vector<std::string_view> FieldsOf(std::string_view line, std::string_view blanks = kBlanks);

// What stands between delimiters, each of which ends a field: one more than there are delimiters.
std::vector<std::string_view> FieldsBetween(std::string_view line, char delimiter);

// The text in single quotes for a message, cut when it is long.
std::string Quoted(std::string_view text);

}  // namespace mardle::tools
