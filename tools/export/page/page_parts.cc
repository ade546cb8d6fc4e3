// SPDX-License-Identifier: MIT
#include "tools/export/page/page_parts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "tools/export/escape.h"

namespace mardle::exporting {
namespace {

// What printf makes of a number, and of the numbers before it.
template <typename... Numbers>
std::string Printed(const char* format, Numbers... values) {
  std::array<char, 400> text;
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

}  // namespace

std::string Decimals(double value, int decimals) {
  return std::isfinite(value) ? Printed("%.*f", decimals, value) : "n/a";
}

std::string FourDigits(double value) {
  if (!std::isfinite(value)) return "n/a";
  const bool is_whole = std::fabs(value) >= 999.5 && std::fabs(value) < 1e15;
  return is_whole ? Grouped(std::llround(value)) : Printed("%.4g", value);
}

std::string Shortest(double value) { return Printed("%g", value); }

std::string Grouped(std::int64_t count) {
  const std::string digits = std::to_string(count);
  const std::size_t sign = count < 0 ? 1 : 0;
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > sign && (digits.size() - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

std::string Percent(double share) {
  const double shown = std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0;
  return Decimals(100 * shown, 2) + "%";
}

std::string PercentText(double share) {
  return std::isfinite(share) ? Decimals(100 * share, 1) + "\u00a0%" : "n/a";
}

std::string Counted(std::int64_t count, const std::string& one, const std::string& many) {
  return Grouped(count) + " " + (count == 1 ? one : many);
}

std::string CountedRows(const PageRun& run, std::int64_t count) {
  return Counted(count, run.wording.row, run.wording.rows);
}

std::string Capital(std::string word) {
  if (!word.empty() && word[0] >= 'a' && word[0] <= 'z') word[0] = static_cast<char>(word[0] - 32);
  return word;
}

std::string LevelText(const PageNumbers& numbers, double level) {
  return numbers.levels.are_shares() ? PercentText(level) : Printed("%.3g", level);
}

std::string NameText(const PageRun& run, const PageNumbers& numbers, int k) {
  std::string name;
  for (const int column : NameOf(numbers.words[static_cast<std::size_t>(k)], kNameWords)) {
    name += (name.empty() ? "" : ", ") + Html(run.mat.clabels[column]);
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
