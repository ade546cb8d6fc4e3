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
#include <vector>

#include "tools/import/word_cuts.h"
#include "tools/text/file_error.h"

namespace mardle::tools {

// Two letters or more of any script, with the marks that belong to them, or a single ideograph; the
// other one takes digits for letters.
inline constexpr char kDefaultTokenPattern[] = R"(\p{L}[\p{L}\p{M}]+|\p{Han})";
inline constexpr char kDigitsTokenPattern[] = R"([\p{L}\p{N}][\p{L}\p{M}\p{N}]+|\p{Han})";

// What a word is.
struct WordRules {
  // Empty: one of the two above; words of unspaced scripts are cut out then.
  std::string pattern = {};
  bool digits = false;

  bool operator==(const WordRules&) const = default;
};

std::string LowerCase(std::string_view text);

class TextTokens {
 public:
  // Throws std::invalid_argument when the pattern is no regular expression.
  explicit TextTokens(const WordRules& rules);

  // Starts on a text in UTF-8; bytes that are none count as an unknown character, which is no
  // letter. `place` is what messages name.
  void Start(std::string_view text, const Place& place);

  // Takes the next word, in UTF-8. False behind the last. Throws FileError when the pattern has
  // taken far more steps than the texts so far have characters.
  bool Next(std::string& token);

  // Whether the word last taken follows the one before it with nothing but blanks between them, and
  // a line end at most.
  bool follows() const { return follows_; }

 private:
  bool Find();
  void TakePiece(std::int32_t begin, std::int32_t end, std::string& token);
  bool OnlyBlanksBefore(std::int32_t begin) const;
  static UBool GoesOn(const void* self, std::int32_t steps_of_this_word);

  icu::UnicodeString text_;  // that the matcher works on
  std::unique_ptr<icu::RegexMatcher> matcher_;
  std::unique_ptr<WordCuts> cuts_;       // null: what the pattern finds is a word
  std::vector<WordCuts::Piece> pieces_;  // of what was found last
  std::size_t next_piece_ = 0;
  std::int32_t found_ = 0;      // where that begins
  std::int32_t last_end_ = -1;  // of the word last taken; -1: there is none
  bool follows_ = false;
  Place place_;
  std::int64_t characters_ = 0;     // of all texts
  mutable std::int64_t steps_ = 0;  // in units of ICU's, of ten thousand; of all words
};

}  // namespace mardle::tools
