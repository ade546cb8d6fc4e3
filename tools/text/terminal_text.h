// SPDX-License-Identifier: MIT
//
// Text from files on its way to a terminal, which would obey the control characters in it.
#pragma once

#include <string>
#include <string_view>

namespace mardle::tools {

// The text with \xNN for each byte of a control character, other than line ends and tabs, and for
// each byte that is no UTF-8.
std::string WithoutControls(std::string_view text);

// The same for a descriptor that is a terminal; for files and pipes the text as it is.
std::string ShownOn(int descriptor, std::string_view text);

}  // namespace mardle::tools
