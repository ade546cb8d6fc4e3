// SPDX-License-Identifier: MIT
#include "tools/export/escape.h"

#include "tools/text/utf8.h"

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

}  // namespace

std::string ValidUtf8(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t length = tools::CharacterLength(text);
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

}  // namespace mardle::exporting
