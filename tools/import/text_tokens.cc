// SPDX-License-Identifier: MIT
#include "tools/import/text_tokens.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <climits>
#include <stdexcept>

namespace mardle::tools {
namespace {

icu::UnicodeString LowerCased(std::string_view text) {
  const auto size = static_cast<std::int32_t>(text.size());
  icu::UnicodeString lower = icu::UnicodeString::fromUTF8({text.data(), size});
  return lower.toLower(icu::Locale::getRoot());
}

std::unique_ptr<icu::RegexMatcher> Matcher(const std::string& pattern) {
  UErrorCode status = U_ZERO_ERROR;
  auto matcher =
      std::make_unique<icu::RegexMatcher>(icu::UnicodeString::fromUTF8(pattern), 0, status);
  if (U_FAILURE(status)) {
    throw std::invalid_argument("the token pattern '" + pattern +
                                "' is no regular expression: " + u_errorName(status));
  }
  return matcher;
}

std::string PatternOf(const WordRules& rules) {
  if (!rules.pattern.empty()) return rules.pattern;
  return rules.digits ? kDigitsTokenPattern : kDefaultTokenPattern;
}

}  // namespace

std::string LowerCase(std::string_view text) {
  std::string lower;
  return LowerCased(text).toUTF8String(lower);
}

TextTokens::TextTokens(const WordRules& rules) : matcher_(Matcher(PatternOf(rules))) {
  if (rules.pattern.empty()) cuts_ = std::make_unique<WordCuts>();
  UErrorCode status = U_ZERO_ERROR;
  matcher_->setMatchCallback(&TextTokens::GoesOn, this, status);
}

// Some patterns try all ways to cut a text into repetitions, twice as many for each character.
// Others take a few steps a character; two hundred are allowed, and as many as take a second in any
// case.
UBool TextTokens::GoesOn(const void* self, std::int32_t /*steps_of_this_word*/) {
  constexpr std::int64_t kUnitsInAnyCase = 5000;
  constexpr std::int64_t kCharactersOfAUnit = 50;
  const auto* tokens = static_cast<const TextTokens*>(self);
  const std::int64_t most = kUnitsInAnyCase + tokens->characters_ / kCharactersOfAUnit;
  return ++tokens->steps_ <= most ? 1 : 0;
}

void TextTokens::Start(std::string_view text, const Place& place) {
  constexpr std::size_t kLongestText = INT_MAX / 4;
  if (text.size() > kLongestText) throw FileError(place, "the text is longer than 512 megabytes");
  place_ = place;
  text_ = LowerCased(text);
  characters_ += text_.length();
  matcher_->reset(text_);
  pieces_.clear();
  next_piece_ = 0;
  last_end_ = -1;
}

bool TextTokens::Next(std::string& token) {
  while (next_piece_ == pieces_.size()) {
    if (!Find()) return false;
  }
  const WordCuts::Piece piece = pieces_[next_piece_++];
  TakePiece(found_ + piece.begin, found_ + piece.end, token);
  return true;
}

// The next that the pattern finds, as pieces. False behind the last.
bool TextTokens::Find() {
  UErrorCode status = U_ZERO_ERROR;
  do {
    if (!matcher_->find(status)) {
      if (status == U_REGEX_STOPPED_BY_CALLER) {
        throw FileError(place_,
                        "the token pattern takes too long; nested repetitions such as (a+)+ do");
      }
      if (U_FAILURE(status)) {
        throw FileError(
            place_, std::string("the token pattern fails on this text: ") + u_errorName(status));
      }
      return false;
    }
  } while (matcher_->start(status) == matcher_->end(status));
  found_ = matcher_->start(status);
  next_piece_ = 0;
  const std::int32_t end = matcher_->end(status);
  const icu::UnicodeString letters = text_.tempSubStringBetween(found_, end);
  if (cuts_ && cuts_->AreNeededIn(letters)) {
    cuts_->Cut(letters, pieces_);
  } else {
    pieces_.assign(1, {0, end - found_});
  }
  return true;
}

void TextTokens::TakePiece(std::int32_t begin, std::int32_t end, std::string& token) {
  follows_ = OnlyBlanksBefore(begin);
  last_end_ = end;
  token.clear();
  text_.tempSubStringBetween(begin, end).toUTF8String(token);
}

bool TextTokens::OnlyBlanksBefore(std::int32_t begin) const {
  if (last_end_ < 0) return false;
  int line_ends = 0;
  for (std::int32_t i = last_end_; i < begin; ++i) {
    const char16_t unit = text_[i];
    if (u_isUWhiteSpace(unit) == 0) return false;
    if (unit == u'\n') ++line_ends;
  }
  return line_ends < 2;
}

}  // namespace mardle::tools
