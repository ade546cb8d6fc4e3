// SPDX-License-Identifier: MIT
#include "tools/import/stemmer.h"

#include <libstemmer.h>

#include <climits>
#include <stdexcept>

#include "tools/text/fields.h"
#include "tools/text/suggestion.h"

namespace mardle::tools {
namespace {

// Longer ones are no words of a language.
constexpr std::size_t kLongestWord = 1000;

std::string Refusal(const std::string& language) {
  const std::vector<std::string> languages = StemmedLanguages();
  std::string message = "there is no stemmer for " + Quoted(language);
  message += DidYouMean(language, languages);
  message += message.ends_with('?') ? " There are" : "; there are";
  for (const std::string& each : languages)
    message += (&each == languages.data() ? " " : ", ") + each;
  return message;
}

}  // namespace

std::vector<std::string> StemmedLanguages() {
  std::vector<std::string> languages;
  for (const char** name = sb_stemmer_list(); *name != nullptr; ++name) {
    languages.emplace_back(*name);
  }
  return languages;
}

Stemmer::Stemmer(const std::string& language)
    : stemmer_(sb_stemmer_new(language.c_str(), "UTF_8"), &sb_stemmer_delete) {
  if (!stemmer_) throw std::invalid_argument(Refusal(language));
}

void Stemmer::Stem(std::string& word) {
  if (word.size() > kLongestWord) return;
  const auto* letters = reinterpret_cast<const sb_symbol*>(word.data());
  const sb_symbol* stem = sb_stemmer_stem(stemmer_.get(), letters, static_cast<int>(word.size()));
  if (stem == nullptr) throw std::bad_alloc();
  word.assign(reinterpret_cast<const char*>(stem),
              static_cast<std::size_t>(sb_stemmer_length(stemmer_.get())));
}

}  // namespace mardle::tools
