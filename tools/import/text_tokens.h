// SPDX-License-Identifier: MIT
//
// The words of a text: lower-cased by the rules of Unicode, whatever the locale, then cut out by a
// regular expression.
#pragma once

#include <unicode/regex.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tools/text/file_error.h"

namespace mardle::tools {

// Two letters or more of any script, with the marks that belong to them.
inline constexpr char kDefaultTokenPattern[] = R"(\p{L}[\p{L}\p{M}]+)";

std::string LowerCase(std::string_view text);

class TextTokens {
 public:
  // Throws std::invalid_argument when the pattern is no regular expression.
  explicit TextTokens(const std::string& pattern);

  // Starts on a text in UTF-8; bytes that are none count as an unknown character, which is no
  // letter. `place` is what messages name.
  void Start(std::string_view text, const Place& place);

  // Takes the next word, in UTF-8. False behind the last. Throws FileError when the pattern has
  // taken far more steps than the texts so far have characters.
  bool Next(std::string& token);

 private:
  static UBool GoesOn(const void* self, std::int32_t steps_of_this_word);

  icu::UnicodeString text_;  // that the matcher works on
  std::unique_ptr<icu::RegexMatcher> matcher_;
  Place place_;
  std::int64_t characters_ = 0;     // of all texts
  mutable std::int64_t steps_ = 0;  // in units of ICU's, of ten thousand; of all words
};

}  // namespace mardle::tools
