// SPDX-License-Identifier: MIT
//
// Labels come from files that anyone may have written; here is how they become part of each format.
#pragma once

#include <string>
#include <string_view>

namespace mardle::exporting {

// The text with every byte that is not part of well-formed UTF-8, and every control character, as
// U+FFFD. The tab stays.
std::string ValidUtf8(std::string_view text);

// One field of a tab-separated line: backslash, tab and carriage return as \\, \t and \r.
std::string TsvField(std::string_view text);

// A Newick label: between single quotes, doubled inside, unless it is made of letters, digits, dots
// and dashes only. An underscore needs quotes, since unquoted it means a blank. Control characters
// become blanks.
std::string NewickLabel(std::string_view text);

// A quoted Graphviz string that is shown as it stands: no escapes, no entities.
std::string DotString(std::string_view text);

// Text and attribute values of HTML and of SVG in it.
std::string Html(std::string_view text);

}  // namespace mardle::exporting
