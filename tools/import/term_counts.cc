// SPDX-License-Identifier: MIT
#include "tools/import/term_counts.h"

#include <algorithm>

#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

constexpr int kNoColumn = -1;

// Seven bits a byte, the lowest first; all but the last byte have the eighth bit set.
void AppendPieces(std::vector<unsigned char>& bytes, std::uint32_t number) {
  for (; number >= 0x80; number >>= 7) {
    bytes.push_back(static_cast<unsigned char>(number | 0x80U));
  }
  bytes.push_back(static_cast<unsigned char>(number));
}

std::uint32_t TakePieces(const unsigned char*& bytes) {
  std::uint32_t number = 0;
  for (int shift = 0;; shift += 7) {
    const unsigned char byte = *bytes++;
    number |= (byte & 0x7fU) << shift;
    if (byte < 0x80) return number;
  }
}

// The terms that are within the limits, in the order of their bytes, and the column of each term.
struct Columns {
  std::vector<std::uint32_t> terms;
  std::vector<int> column_of;
};

Columns ChooseColumns(const std::vector<const std::string*>& terms,
                      const std::vector<std::int32_t>& document_counts, const TermLimits& limits,
                      std::size_t documents) {
  const double most = limits.max_fraction * static_cast<double>(documents);
  Columns columns;
  std::vector<std::uint32_t>& chosen = columns.terms;
  for (std::uint32_t term = 0; term < terms.size(); ++term) {
    const std::int32_t count = document_counts[term];
    if (count >= limits.min_count && count <= most) chosen.push_back(term);
  }
  std::sort(chosen.begin(), chosen.end(),
            [&terms](std::uint32_t a, std::uint32_t b) { return *terms[a] < *terms[b]; });
  columns.column_of.assign(terms.size(), kNoColumn);
  for (std::size_t column = 0; column < chosen.size(); ++column) {
    columns.column_of[chosen[column]] = static_cast<int>(column);
  }
  return columns;
}

void RefuseNoColumns(const std::string& output, std::size_t terms, const TermLimits& limits) {
  if (terms == 0) {
    throw FileError({output, 0},
                    "the texts have no words, or stop words alone, so there are no columns");
  }
  std::string limit = "at least " + std::to_string(limits.min_count);
  if (limits.max_fraction < 1) {
    limit += " and at most ";
    AppendNumber(limit, limits.max_fraction);
    limit += " of all";
  }
  throw FileError({output, 0}, "of " + std::to_string(terms) + " words none occurs in " + limit +
                                   " documents, so there are no columns: --min-count and "
                                   "--max-fraction set these limits");
}

}  // namespace

TermCounts::TermCounts(const WordOptions& options)
    : tokens_(options.rules), stop_words_(StopWordsOf(options.stop_words)), pairs_(options.pairs) {
  stop_words_.merge(StopWordsOf(options.more_stop_words));
  if (!options.stem_language.empty()) stemmer_.emplace(options.stem_language);
}

// A pair is of two words next to each other; over a stop word, a mark or a gap there is none.
void TermCounts::CountWords(const Document& document) {
  occurrences_.clear();
  tokens_.Start(document.text, document.place);
  Word before;
  while (tokens_.Next(word_.form)) {
    if (stop_words_.contains(word_.form)) {
      before = {};
      continue;
    }
    word_.term = word_.form;
    if (stemmer_) stemmer_->Stem(word_.term);
    Count(word_);
    if (!pairs_) continue;
    if (tokens_.follows() && !before.term.empty()) {
      Count({before.form + ' ' + word_.form, before.term + ' ' + word_.term});
    }
    before = word_;
  }
}

void TermCounts::Count(const Word& word) {
  const std::uint32_t number = NumberOf(word.term);
  occurrences_.push_back(number);
  if (!stemmer_) return;
  if (number >= forms_.size()) forms_.resize(std::size_t{number} + 1);
  ++forms_[number][word.form];
}

void TermCounts::Add(const Document& document) {
  CountWords(document);
  std::sort(occurrences_.begin(), occurrences_.end());
  has_labels_ = document.names.label.has_value();
  has_classes_ = document.names.class_name.has_value();
  rows_.push_back({std::string(document.names.label.value_or("")),
                   std::string(document.names.class_name.value_or("")), document.place,
                   counts_.size()});
  for (auto first = occurrences_.begin(); first != occurrences_.end();) {
    const auto next = std::upper_bound(first, occurrences_.end(), *first);
    AppendPieces(counts_, *first);
    AppendPieces(counts_, static_cast<std::uint32_t>(next - first));
    ++document_counts_[*first];
    first = next;
  }
}

MatrixSummary TermCounts::Write(const MatrixOutput& output, const TermLimits& limits) const {
  const std::vector<const std::string*> terms = Terms();
  const Columns columns = ChooseColumns(terms, document_counts_, limits, rows_.size());
  if (columns.terms.empty() && !rows_.empty()) {
    RefuseNoColumns(output.path, numbers_.size(), limits);
  }
  MatrixWriter writer(output);
  std::vector<Entry> entries;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const Row& row = rows_[i];
    const std::size_t end = i + 1 < rows_.size() ? rows_[i + 1].counts : counts_.size();
    entries.clear();
    for (const unsigned char* bytes = counts_.data() + row.counts; bytes < counts_.data() + end;) {
      const int column = columns.column_of[TakePieces(bytes)];
      const double count = TakePieces(bytes);
      if (column != kNoColumn) entries.push_back({column, count});
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.column < b.column; });
    RowNames names;
    if (has_labels_) names.label = row.label;
    if (has_classes_) names.class_name = row.class_name;
    writer.AddRow(entries, names, row.place);
  }
  std::vector<std::string> labels;
  for (const std::uint32_t term : columns.terms) labels.push_back(NameOf(term, *terms[term]));
  return writer.Finish(static_cast<std::int64_t>(labels.size()), labels);
}

// The commonest form, the first among equals.
const std::string& TermCounts::NameOf(std::uint32_t number, const std::string& term) const {
  if (!stemmer_) return term;
  const auto& forms = forms_[number];
  return std::max_element(forms.begin(), forms.end(),
                          [](const auto& a, const auto& b) { return a.second < b.second; })
      ->first;
}

// Numbers new terms in the order of their first appearance.
std::uint32_t TermCounts::NumberOf(const std::string& term) {
  const auto next = static_cast<std::uint32_t>(numbers_.size());
  const auto [position, is_new] = numbers_.try_emplace(term, next);
  if (is_new) document_counts_.push_back(0);
  return position->second;
}

std::vector<const std::string*> TermCounts::Terms() const {
  std::vector<const std::string*> terms(numbers_.size());
  for (const auto& [text, number] : numbers_) terms[number] = &text;
  return terms;
}

}  // namespace mardle::tools
