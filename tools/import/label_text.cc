// SPDX-License-Identifier: MIT
#include "tools/import/label_text.h"

#include <algorithm>

namespace mardle::tools {
namespace {

bool EndsText(char c) { return c == '\n' || c == '\r' || c == '\0'; }

// Bytes that go on with a character of UTF-8.
bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xc0U) == 0x80; }

std::size_t CutAt(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text.size();
  std::size_t cut = most;
  while (cut > 0 && most - cut < 4 && IsContinuation(text[cut])) --cut;
  return cut;
}

}  // namespace

std::string LabelText(std::string_view text) {
  std::string label(text.substr(0, CutAt(text, kLongestLine)));
  std::replace_if(label.begin(), label.end(), EndsText, ' ');
  label.erase(label.find_last_not_of(" \t") + 1);
  return label;
}

}  // namespace mardle::tools
