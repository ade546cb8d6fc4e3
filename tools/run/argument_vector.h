// SPDX-License-Identifier: MIT
//
// Arguments as functions of the platform want them.
#pragma once

#include <string>
#include <vector>

namespace mardle::tools {

// The addresses of the texts, with a null behind the last; valid as long as the texts stay.
inline std::vector<char*> ArgumentVector(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace mardle::tools
