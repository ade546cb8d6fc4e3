// SPDX-License-Identifier: MIT
//
// Characters that pages of the web write as "&eacute;", "&#233;" or "&#xe9;".
#pragma once

#include <string>
#include <string_view>

namespace mardle::tools {

// The text in UTF-8 with these as characters: the names of HTML 4 and "apos", and numbers. What is
// none of them stays as it is.
std::string WithoutEntities(std::string_view text);

}  // namespace mardle::tools
