// SPDX-License-Identifier: MIT
#include "tools/text/suggestion.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace mardle::tools {
namespace {

constexpr std::size_t kLongestName = 64;
constexpr std::size_t kLettersOfAChange = 3;

std::string SmallLetters(std::string_view text) {
  std::string small(text);
  for (char& c : small) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return small;
}

// The fewest changes that make one text of the other.
std::size_t Changes(const std::string& a, const std::string& b) {
  std::vector<std::size_t> before_last(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> next(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    next[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      next[j] = std::min({last[j] + 1, next[j - 1] + 1, changed});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) next[j] = std::min(next[j], before_last[j - 2] + 1);
    }
    before_last.swap(last);
    last.swap(next);
  }
  return last[b.size()];
}

}  // namespace

std::optional<std::string> Closest(std::string_view typed, std::span<const std::string> names) {
  if (typed.size() > kLongestName) return std::nullopt;
  const std::string small = SmallLetters(typed);
  std::size_t fewest = small.size() / kLettersOfAChange + 1;
  std::optional<std::string> closest;
  for (const std::string& name : names) {
    if (name.empty() || name.size() > kLongestName) continue;
    const std::size_t changes = Changes(small, SmallLetters(name));
    const bool is_like = changes < std::max(small.size(), name.size());
    if (is_like && (changes < fewest || (changes == fewest && !closest))) {
      fewest = changes;
      closest = name;
    }
  }
  return closest;
}

std::string DidYouMean(std::string_view typed, std::span<const std::string> names) {
  const std::optional<std::string> closest = Closest(typed, names);
  return closest ? "; did you mean '" + *closest + "'?" : "";
}

}  // namespace mardle::tools
