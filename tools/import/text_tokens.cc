// SPDX-License-Identifier: MIT
#include "tools/import/text_tokens.h"

#include <unicode/locid.h>
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

}  // namespace

std::string LowerCase(std::string_view text) {
  std::string lower;
  return LowerCased(text).toUTF8String(lower);
}

TextTokens::TextTokens(const std::string& pattern) : matcher_(Matcher(pattern)) {
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
}

bool TextTokens::Next(std::string& token) {
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
  const std::int32_t begin = matcher_->start(status);
  token.clear();
  text_.tempSubStringBetween(begin, matcher_->end(status)).toUTF8String(token);
  return true;
}

}  // namespace mardle::tools
