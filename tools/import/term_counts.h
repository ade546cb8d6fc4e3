// SPDX-License-Identifier: MIT
//
// How often each word occurs in each document. All documents are held until it is known which words
// occur in enough of them, a few bytes for each word of a document.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/import/documents.h"
#include "tools/import/stemmer.h"
#include "tools/import/stop_words.h"
#include "tools/import/text_tokens.h"

namespace mardle::tools {

// Words that occur in fewer or in more documents are no columns.
struct TermLimits {
  int min_count = 2;        // documents
  double max_fraction = 1;  // of all documents
};

// What becomes of the words of a text.
struct WordOptions {
  WordRules rules;
  std::vector<std::string> stop_words = {"english"};
  std::vector<std::string> more_stop_words;
  std::string stem_language;  // empty: words stay whole
  bool pairs = false;         // two neighbouring words are a column, too
  bool operator==(const WordOptions&) const = default;
};

class TermCounts {
 public:
  // Throws std::invalid_argument or FileError when the options are wrong.
  explicit TermCounts(const WordOptions& options);

  void Add(const Document& document);

  // Writes a row for each document. The columns are the words in the order of their bytes; one that
  // stands for all words with a stem has the place of the stem, and is called by the commonest
  // word.
  MatrixSummary Write(const MatrixOutput& output, const TermLimits& limits) const;

 private:
  struct Row {
    std::string label, class_name;
    Place place;
    std::uint64_t counts;  // where the document's counts begin
  };

  // A word and what it is counted as.
  struct Word {
    std::string form, term;
  };

  void CountWords(const Document& document);
  void Count(const Word& word);
  std::uint32_t NumberOf(const std::string& term);
  std::vector<const std::string*> Terms() const;
  const std::string& NameOf(std::uint32_t number, const std::string& term) const;

  TextTokens tokens_;
  StopWords stop_words_;
  std::optional<Stemmer> stemmer_;
  bool pairs_;
  std::map<std::string, std::uint32_t> numbers_;            // no text can make its words collide
  std::vector<std::int32_t> document_counts_;               // of each term
  std::vector<std::map<std::string, std::int64_t>> forms_;  // of each stem, with their counts
  std::vector<Row> rows_;
  std::vector<unsigned char> counts_;  // pairs of term and count, as numbers of 7-bit pieces
  bool has_labels_ = false;
  bool has_classes_ = false;
  std::vector<std::uint32_t> occurrences_;  // the terms of the document that is being added
  Word word_;
};

}  // namespace mardle::tools
