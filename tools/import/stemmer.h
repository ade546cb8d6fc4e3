// SPDX-License-Identifier: MIT
//
// Words without their endings, through the Snowball stemmers.
#pragma once

#include <memory>
#include <string>
#include <vector>

struct sb_stemmer;

namespace mardle::tools {

// The languages that there are stemmers for.
std::vector<std::string> StemmedLanguages();

class Stemmer {
 public:
  // The language by its name or its code, "german" or "de". Throws std::invalid_argument when there
  // is no stemmer for it.
  explicit Stemmer(const std::string& language);

  // Takes the ending off the word, which is in UTF-8 and in lower case.
  void Stem(std::string& word);

 private:
  std::unique_ptr<sb_stemmer, void (*)(sb_stemmer*)> stemmer_;
};

}  // namespace mardle::tools
