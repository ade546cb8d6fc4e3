// SPDX-License-Identifier: MIT
#include "tools/import/word_cuts.h"

#include <unicode/locid.h>
#include <unicode/uscript.h>

#include <stdexcept>
#include <string>

namespace mardle::tools {
namespace {

void Require(UErrorCode status) {
  if (U_FAILURE(status)) {
    throw std::runtime_error(std::string("ICU has no word boundaries: ") + u_errorName(status));
  }
}

bool IsIdeograph(UChar32 character) {
  UErrorCode status = U_ZERO_ERROR;
  return uscript_getScript(character, &status) == USCRIPT_HAN;
}

}  // namespace

WordCuts::WordCuts() {
  UErrorCode status = U_ZERO_ERROR;
  scripts_.applyPattern(
      icu::UnicodeString(u"[[:Han:][:Hiragana:][:Katakana:][:Line_Break=Complex_Context:]]"),
      status);
  Require(status);
  scripts_.freeze();
  breaks_.reset(icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status));
  Require(status);
}

bool WordCuts::AreNeededIn(const icu::UnicodeString& letters) const {
  return scripts_.span(letters, 0, USET_SPAN_NOT_CONTAINED) < letters.length();
}

void WordCuts::Cut(const icu::UnicodeString& letters, std::vector<Piece>& words) {
  words.clear();
  breaks_->setText(letters);
  std::int32_t begin = breaks_->first();
  for (std::int32_t end = breaks_->next(); end != icu::BreakIterator::DONE; end = breaks_->next()) {
    const bool is_word =
        letters.countChar32(begin, end - begin) > 1 || IsIdeograph(letters.char32At(begin));
    if (is_word) words.push_back({begin, end});
    begin = end;
  }
}

}  // namespace mardle::tools
