// SPDX-License-Identifier: MIT
//
// Words of scripts that put no blanks between them, such as Chinese, Japanese and Thai, found by
// the dictionaries of ICU.
#pragma once

#include <unicode/brkiter.h>
#include <unicode/uniset.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace mardle::tools {

class WordCuts {
 public:
  WordCuts();

  // Whether letters of such a script are among them.
  bool AreNeededIn(const icu::UnicodeString& letters) const;

  struct Piece {
    std::int32_t begin, end;
  };
  // The words among the letters: pieces of two letters or more, and single ideographs. A single
  // letter of the others, as the particles of Japanese are, is none.
  void Cut(const icu::UnicodeString& letters, std::vector<Piece>& words);

 private:
  icu::UnicodeSet scripts_;
  std::unique_ptr<icu::BreakIterator> breaks_;
};

}  // namespace mardle::tools
