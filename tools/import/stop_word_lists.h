// SPDX-License-Identifier: MIT
//
// Common function words of some languages, gathered for this program.
#pragma once

#include <span>
#include <string_view>

namespace mardle::tools {

struct StopWordList {
  std::string_view language;  // "german"
  std::string_view code;      // "de"
  std::string_view words;     // between blanks, in lower case
};

std::span<const StopWordList> StopWordLists();

}  // namespace mardle::tools
