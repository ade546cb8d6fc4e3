// SPDX-License-Identifier: MIT
#include "tools/text/terminal_text.h"

#include <unistd.h>

#include "tools/text/utf8.h"

namespace mardle::tools {
namespace {

// U+0080 to U+009F are controls of two bytes, the first of which is this.
constexpr char kLeadOfControls = '\xc2';
constexpr unsigned char kLastControl = 0x9f;

bool IsControl(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  if (character.size() == 1)
    return (first < 0x20 && first != '\n' && first != '\t') || first == 0x7f;
  return character[0] == kLeadOfControls &&
         static_cast<unsigned char>(character[1]) <= kLastControl;
}

std::string Hexadecimal(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += {'\\', 'x', kDigits[byte / 16], kDigits[byte % 16]};
  }
  return text;
}

}  // namespace

std::string WithoutControls(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    const std::string_view character = text.substr(0, length == 0 ? 1 : length);
    const bool stays = length > 0 && !IsControl(character);
    shown += stays ? std::string(character) : Hexadecimal(character);
    text.remove_prefix(character.size());
  }
  return shown;
}

std::string ShownOn(int descriptor, std::string_view text) {
  return isatty(descriptor) == 1 ? WithoutControls(text) : std::string(text);
}

}  // namespace mardle::tools
