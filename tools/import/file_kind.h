// SPDX-License-Identifier: MIT
//
// Files that are no texts, known by what they begin with.
#pragma once

#include <string_view>

namespace mardle::tools {

// What the file is, as "a PDF document; pdftotext makes a text of it"; empty when nothing speaks
// against a text. `decoded` tells that the encoding was named.
std::string_view KindOfNoText(std::string_view beginning, bool decoded);

}  // namespace mardle::tools
