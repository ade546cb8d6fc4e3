// SPDX-License-Identifier: MIT
//
// Arguments as they can be typed.
#pragma once

#include <string>
#include <string_view>

namespace mardle::tools {

// The argument as a shell takes it: as it is when no character means anything to shells, in single
// quotes otherwise.
std::string ShellText(std::string_view argument);

}  // namespace mardle::tools
