// SPDX-License-Identifier: MIT
#include "tools/export/wording.h"

#include <algorithm>
#include <string_view>

namespace mardle::exporting {
namespace {

// What is not ASCII is a letter of some language; the others stand within words and between them.
bool StandsInWords(char c) {
  const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return is_letter || static_cast<unsigned char>(c) >= 0x80 || c == '\'' || c == '-' || c == '_' ||
         c == ' ';
}

bool IsWord(std::string_view label) {
  return !label.empty() && std::all_of(label.begin(), label.end(), StandsInWords);
}

bool AreCountsOrWeights(const molva::Array<float>& values) {
  return std::all_of(values.begin(), values.end(), [](float value) { return value >= 0; });
}

bool LooksLikeText(const Matrix& mat) {
  if (!mat.rowptr || !AreCountsOrWeights(mat.rowval)) return false;
  std::int64_t words = 0;
  for (int j = 0; j < mat.ncols; ++j) words += IsWord(mat.clabels[j]) ? 1 : 0;
  return mat.ncols > 0 && 10 * words >= 9 * std::int64_t{mat.ncols};
}

}  // namespace

Wording WordingOf(Contents contents, const Matrix& mat) {
  const bool is_text =
      contents == Contents::kText || (contents == Contents::kUnknown && LooksLikeText(mat));
  if (is_text) return {"document", "documents", "word", "words"};
  return {"row", "rows", "column", "columns"};
}

}  // namespace mardle::exporting
