// SPDX-License-Identifier: MIT
#include "tools/text/utf8.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace mardle::tools {

// The macro narrows bytes without a cast.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
std::size_t CharacterLength(std::string_view text) {
  const char* const bytes = text.data();
  const auto size = static_cast<std::int32_t>(std::min<std::size_t>(text.size(), U8_MAX_LENGTH));
  std::int32_t length = 0;
  UChar32 character = 0;
  U8_NEXT(bytes, length, size, character);
  return character < 0 ? 0 : static_cast<std::size_t>(length);
}
#pragma GCC diagnostic pop

std::string_view CutToBytes(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  // No character reaches further back than this, so that indices stay small in a text of any size.
  const std::size_t first = most - std::min<std::size_t>(most, U8_MAX_LENGTH);
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data()) + first;
  auto cut = static_cast<std::int32_t>(most - first);
  U8_SET_CP_START(bytes, 0, cut);
  return text.substr(0, first + static_cast<std::size_t>(cut));
}

}  // namespace mardle::tools
