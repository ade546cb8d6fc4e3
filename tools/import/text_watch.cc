// SPDX-License-Identifier: MIT
#include "tools/import/text_watch.h"

#include <cstddef>

#include "tools/text/utf8.h"

namespace mardle::tools {
namespace {

constexpr std::size_t kLongestCharacter = 4;
constexpr unsigned char kLastAscii = 0x7f;

}  // namespace

void TextWatch::Look(std::string_view bytes) {
  rest_ += bytes;
  LookAt(false);
}

void TextWatch::LookAt(bool at_end) {
  std::string_view text = rest_;
  while (!(text = BehindAscii(text)).empty()) {
    const std::size_t length = CharacterLength(text);
    if (length == 0 && text.size() < kLongestCharacter && !at_end) break;
    if (length == 0) MarkLine();
    text.remove_prefix(length == 0 ? 1 : length);
  }
  rest_.erase(0, rest_.size() - text.size());
}

std::string_view TextWatch::BehindAscii(std::string_view text) {
  std::size_t length = 0;
  for (; length < text.size() && static_cast<unsigned char>(text[length]) <= kLastAscii; ++length) {
    if (text[length] == '\n') ++line_;
    if (text[length] == '\0') {
      throw NoText({path_, line_},
                   "a NUL byte, which no text has (--encoding UTF-16LE reads Windows' wide texts)");
    }
  }
  return text.substr(length);
}

void TextWatch::MarkLine() {
  if (line_ == last_malformed_line_) return;
  last_malformed_line_ = line_;
  if (malformed_lines_++ == 0) first_malformed_line_ = line_;
}

}  // namespace mardle::tools
