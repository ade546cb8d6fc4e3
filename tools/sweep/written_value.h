// SPDX-License-Identifier: MIT
//
// A number as text, in the digits that a format of printf has for it.
#pragma once

#include <cstdio>
#include <string>

namespace mardle::tools {

// "%.3g" and the like; for one double.
inline std::string WrittenValue(const char* format, double value) {
  const int length = std::snprintf(nullptr, 0, format, value);
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  std::snprintf(text.data(), text.size(), format, value);
  text.pop_back();
  return text;
}

}  // namespace mardle::tools
