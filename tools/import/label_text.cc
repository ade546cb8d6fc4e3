// SPDX-License-Identifier: MIT
#include "tools/import/label_text.h"

#include <algorithm>

#include "tools/text/utf8.h"

namespace mardle::tools {
namespace {

bool EndsText(char c) { return c == '\n' || c == '\r' || c == '\0'; }

}  // namespace

std::string LabelText(std::string_view text) {
  std::string label(CutToBytes(text, kLongestLine));
  std::replace_if(label.begin(), label.end(), EndsText, ' ');
  label.erase(label.find_last_not_of(" \t") + 1);
  return label;
}

}  // namespace mardle::tools
