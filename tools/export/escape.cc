// SPDX-License-Identifier: MIT
#include "tools/export/escape.h"

#include <cstdint>

namespace mardle::exporting {
namespace {

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }

bool IsPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
         c == '-';
}

// The text with a replacement for every character that has one; null stands for none.
template <typename Replacement>
std::string Replace(std::string_view text, Replacement replacement) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    const char* other = replacement(c);
    if (other == nullptr) {
      out += c;
    } else {
      out += other;
    }
  }
  return out;
}

std::string Between(char quote, const std::string& text) {
  std::string out(1, quote);
  out += text;
  out += quote;
  return out;
}

// How many bytes the character at the front takes, from its first byte; 0 when that begins none.
std::size_t LengthFromFirstByte(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xc2 && first < 0xe0) return 2;
  if (first >= 0xe0 && first < 0xf0) return 3;
  if (first >= 0xf0 && first < 0xf5) return 4;
  return 0;
}

// The length of the well-formed character at the front of the text; 0 when there is none. Overlong
// forms, surrogates and what lies above U+10FFFF are not well formed.
std::size_t CharacterLength(std::string_view text) {
  const std::size_t length = LengthFromFirstByte(static_cast<unsigned char>(text[0]));
  if (length == 0 || length > text.size()) return 0;
  constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  std::uint32_t code =
      static_cast<unsigned char>(text[0]) & (length == 1 ? 0x7fU : 0xffU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xc0U) != 0x80) return 0;
    code = code << 6U | (byte & 0x3fU);
  }
  const bool surrogate = code >= 0xd800 && code < 0xe000;
  return code < kSmallest[length] || surrogate || code > 0x10ffff ? 0 : length;
}

}  // namespace

std::string ValidUtf8(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    const bool stays = length > 1 || (length == 1 && (!IsControl(text[0]) || text[0] == '\t'));
    out += stays ? text.substr(0, length) : "\xef\xbf\xbd";
    text.remove_prefix(stays ? length : 1);
  }
  return out;
}

std::string TsvField(std::string_view text) {
  return Replace(text, [](char c) {
    return c == '\\' ? "\\\\" : c == '\t' ? "\\t" : c == '\r' ? "\\r" : nullptr;
  });
}

std::string NewickLabel(std::string_view text) {
  bool plain = !text.empty();
  for (const char c : text) plain = plain && IsPlain(c);
  if (plain) return std::string(text);
  return Between('\'', Replace(text, [](char c) {
                   return c == '\'' ? "''" : IsControl(c) ? " " : nullptr;
                 }));
}

std::string DotString(std::string_view text) {
  return Between('"', Replace(ValidUtf8(text), [](char c) {
                   return c == '"' ? "\\\"" : c == '\\' ? "\\\\" : c == '&' ? "&amp;" : nullptr;
                 }));
}

std::string Html(std::string_view text) {
  return Replace(ValidUtf8(text), [](char c) -> const char* {
    switch (c) {
      case '&':
        return "&amp;";
      case '<':
        return "&lt;";
      case '>':
        return "&gt;";
      case '"':
        return "&quot;";
      case '\'':
        return "&#39;";
      default:
        return nullptr;
    }
  });
}

std::string ScriptJson(std::string_view json) {
  return Replace(json, [](char c) { return c == '<' ? "\\u003c" : nullptr; });
}

}  // namespace mardle::exporting
