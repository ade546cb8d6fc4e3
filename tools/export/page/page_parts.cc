// SPDX-License-Identifier: MIT
#include "tools/export/page/page_parts.h"

#include "tools/export/escape.h"

namespace mardle::exporting {

std::string CountedRows(const PageRun& run, std::int64_t count) {
  return Counted(count, run.wording.row, run.wording.rows);
}

std::string SampleText(const PageRun& run, const RunRecord::Sample& sample) {
  return CountedRows(run, sample.rows) + " clustered directly, all placed in " +
         Counted(sample.passes, "pass", "passes");
}

std::string LevelText(const PageNumbers& numbers, double level) {
  return numbers.levels.are_shares() ? PercentText(level) : ThreeDigits(level);
}

bool IsLower(const PageNumbers& numbers, int k, int column) {
  return !numbers.levels.are_shares() &&
         numbers.levels.Inside(k, column) < numbers.levels.Elsewhere(k, column);
}

std::string WordText(const PageRun& run, const PageNumbers& numbers, int k, int column) {
  return std::string(IsLower(numbers, k, column) ? "low " : "") + run.mat.clabels[column];
}

std::string NameText(const PageRun& run, const PageNumbers& numbers, int k) {
  std::string name;
  for (const int column : NameOf(numbers.words[static_cast<std::size_t>(k)], kNameWords)) {
    name += (name.empty() ? "" : ", ") + Html(WordText(run, numbers, k, column));
  }
  return name;
}

std::string TitleText(const PageRun& run, const PageNumbers& numbers, int k) {
  return std::to_string(k) + ": " + NameText(run, numbers, k);
}

std::string NodeWords(const PageRun& run, const MeasuredTree& tree, int x) {
  std::string words;
  std::size_t count = 0;
  for (const Feature& feature : FeaturesOf(run, tree, x)) {
    if (feature.share <= 0 || count++ == kNameWords) break;
    words += (words.empty() ? "" : ", ") + Html(feature.name);
  }
  return words;
}

std::string Beginning(std::string_view text, std::size_t bytes) {
  if (text.size() <= bytes) return Html(text);
  std::size_t end = bytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) --end;
  return Html(text.substr(0, end)) + "…";
}

void WriteCsvButton(const char* table, const std::string& text, std::ostream& out) {
  out << "<p class=\"tools\" hidden><button type=\"button\" data-csv=\"" << table << "\">" << text
      << "</button></p>\n";
}

}  // namespace mardle::exporting
