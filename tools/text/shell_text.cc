// SPDX-License-Identifier: MIT
#include "tools/text/shell_text.h"

#include <algorithm>

namespace mardle::tools {
namespace {

// Letters beyond ASCII are plain to every shell.
bool IsPlain(char c) {
  constexpr std::string_view kPlainMarks = "_@%+=:,./-";
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         static_cast<unsigned char>(c) >= 0x80 || kPlainMarks.find(c) != std::string_view::npos;
}

}  // namespace

std::string ShellText(std::string_view argument) {
  if (!argument.empty() && std::all_of(argument.begin(), argument.end(), IsPlain)) {
    return std::string(argument);
  }
  std::string text = "'";
  for (const char c : argument) {
    if (c == '\'') {
      text += "'\\''";
    } else {
      text += c;
    }
  }
  return text + "'";
}

}  // namespace mardle::tools
