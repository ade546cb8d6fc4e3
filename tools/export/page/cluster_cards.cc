// SPDX-License-Identifier: MIT
//
// One card per cluster: its words, each with its level here and elsewhere, the rows that are most
// like it, its classes, and the clusters nearest to it.
#include <algorithm>
#include <numeric>

#include "tools/export/escape.h"
#include "tools/export/measures/typical_rows.h"
#include "tools/export/page/class_strip.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

constexpr std::size_t kTypicalRows = 3;
constexpr std::size_t kClassesTold = 3;
// Labels may be whole texts; the list of rows has them in full.
constexpr std::size_t kLabelBytes = 240;

std::string ShareOrDash(const std::optional<double>& share) {
  return share ? PercentText(*share) : "–";
}

// Why a word that is weaker in the cluster tells it apart, and whether an average is lower; nothing
// for the others.
std::string Mark(const PageNumbers& numbers, int k, const ClusterWord& word) {
  const double inside = numbers.levels.Inside(k, word.column);
  const char* mark = nullptr;
  if (word.weaker) {
    mark = inside < numbers.levels.Elsewhere(k, word.column) ? "rarer" : "weaker";
  }
  if (IsLower(numbers, k, word.column)) mark = "lower";
  return mark == nullptr ? "" : std::string(" <small>") + mark + " here</small>";
}

void WriteWord(const PageRun& run, const PageNumbers& numbers, int k, const ClusterWord& word,
               std::ostream& out) {
  const double inside = numbers.levels.Inside(k, word.column);
  const double elsewhere = numbers.levels.Elsewhere(k, word.column);
  const std::string mark = Mark(numbers, k, word);
  out << "<tr" << (mark.empty() ? "" : " class=\"weaker\"") << "><th scope=\"row\">"
      << Html(run.mat.clabels[word.column]) << mark << "</th><td";
  if (numbers.levels.are_shares()) out << " style=\"--v:" << Percent(inside) << "\"";
  out << ">" << LevelText(numbers, inside) << "</td><td>" << LevelText(numbers, elsewhere)
      << "</td><td>" << ShareOrDash(word.describes) << "</td><td>" << ShareOrDash(word.tells_apart)
      << "</td></tr>\n";
}

void WriteWords(const PageRun& run, const PageNumbers& numbers, int k, std::ostream& out) {
  const ClusterWords& words = numbers.words[static_cast<std::size_t>(k)];
  if (words.empty()) {
    out << "<p class=\"dim\">No " << run.wording.columns << " describe it.</p>\n";
    return;
  }
  const char* level =
      numbers.levels.are_shares() ? "<th scope=\"col\" data-unit=\" %\">" : "<th scope=\"col\">";
  out << "<table class=\"words\"><thead><tr><th scope=\"col\">" << Capital(run.wording.column)
      << "</th>" << level << "here</th>" << level
      << "elsewhere</th><th scope=\"col\" data-unit=\" %\">describes</th><th scope=\"col\" "
         "data-unit=\" %\">tells apart</th></tr></thead>\n<tbody>\n";
  for (const ClusterWord& word : words) WriteWord(run, numbers, k, word, out);
  out << "</tbody></table>\n";
}

void WriteTypicalRows(const PageRun& run, const PageNumbers& numbers, int k, std::ostream& out) {
  const std::vector<int> typical =
      TypicalRows(numbers.rows, {numbers.izscores.get(), numbers.izscores.size()}, k, kTypicalRows);
  if (typical.empty()) return;
  out << "<h4>Typical " << run.wording.rows << "</h4>\n<ul class=\"typical\">\n";
  for (const int i : typical)
    out << "<li>" << Beginning(run.mat.rlabels[i], kLabelBytes) << "</li>\n";
  out << "</ul>\n";
}

// The largest classes of a cluster with their shares, in words under the strip.
void WriteClasses(const PageRun& run, const PageNumbers& numbers, const std::vector<int>& colours,
                  int k, std::ostream& out) {
  if (!numbers.has_classes || numbers.pwgts[k] == 0) return;
  const std::span<const int> counts = numbers.classdist[k];
  std::vector<std::size_t> order(counts.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [counts](std::size_t a, std::size_t b) { return counts[a] > counts[b]; });
  const auto held = static_cast<std::size_t>(
      std::count_if(counts.begin(), counts.end(), [](int count) { return count > 0; }));
  WriteClassStrip(run, numbers, colours, k, 1, out);
  out << "<p class=\"classes\">";
  for (std::size_t place = 0; place < std::min(held, kClassesTold); ++place) {
    const std::size_t c = order[place];
    out << (place == 0 ? "" : ", ") << Html(run.mat.classnames[c]) << " "
        << PercentText(double{1} * counts[c] / numbers.rows.Size(k));
  }
  if (held > kClassesTold) out << ", " << held - kClassesTold << " more";
  out << "</p>\n";
}

void WriteNearest(const PageRun& run, const PageNumbers& numbers, int k, std::ostream& out) {
  const std::vector<Neighbour>& nearest = numbers.nearest[static_cast<std::size_t>(k)];
  if (nearest.empty()) return;
  out << "<h4>Nearest clusters</h4>\n<ul class=\"nearest\">\n";
  for (const Neighbour& other : nearest) {
    out << "<li><a href=\"#cluster-" << other.cluster << "\">"
        << TitleText(run, numbers, other.cluster) << "</a> <span class=\"dim\">"
        << Decimals(other.similarity, 2) << "</span></li>\n";
  }
  out << "</ul>\n";
}

void WriteCard(const PageRun& run, const PageNumbers& numbers, const std::vector<int>& colours,
               int k, std::ostream& out) {
  out << "<article class=\"card\" id=\"cluster-" << k << "\" aria-labelledby=\"name-" << k
      << "\">\n<h3 id=\"name-" << k << "\"><span class=\"no\">" << k << "</span> "
      << NameText(run, numbers, k) << "</h3>\n<p class=\"size\">"
      << CountedRows(run, numbers.pwgts[k]) << ", "
      << PercentText(double{1} * numbers.pwgts[k] / numbers.rows.Total())
      << " <button type=\"button\" class=\"show-rows\" data-cluster=\"" << k
      << "\" hidden>List them</button></p>\n";
  WriteClasses(run, numbers, colours, k, out);
  WriteWords(run, numbers, k, out);
  WriteTypicalRows(run, numbers, k, out);
  WriteNearest(run, numbers, k, out);
  out << "</article>\n";
}

void WriteNote(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const auto& [row, rows, column, columns] = run.wording;
  const bool are_shares = numbers.levels.are_shares();
  out << "<details class=\"note\"><summary>How to read the cards</summary>\n<dl>\n<dt>here, "
         "elsewhere</dt><dd>"
      << (are_shares ? "The share of " + rows + " that contain the " + column
                     : "The average value of the " + column)
      << ", in this cluster and in all others together.</dd>\n<dt>describes</dt><dd>The " << column
      << "’s share of the similarity of the cluster’s " << rows
      << " to each other.</dd>\n<dt>tells apart</dt><dd>Its share of the distance between the "
         "cluster and the other "
      << rows << ".</dd>\n<dt>" << (are_shares ? "rarer here" : "lower here") << "</dt><dd>"
      << (are_shares ? "Tells the cluster apart because fewer of its " + rows + " contain it"
                     : "Its average is lower")
      << " than elsewhere.</dd>\n<dt>weaker here</dt><dd>Tells it apart because the other "
      << columns << " of the cluster weigh more.</dd>\n<dt>Typical " << rows
      << "</dt><dd>Those most similar to the others of the cluster.</dd>\n<dt>Nearest "
         "clusters</dt><dd>Those whose sums point the same way: the cosine between the sums of their "
      << rows << ", 1 for the same direction.</dd>\n</dl>\n</details>\n";
}

}  // namespace

void WriteClusterCards(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const std::vector<int> colours = ClassColours(numbers);
  out << "<section id=\"clusters\" aria-labelledby=\"clusters-heading\">\n"
         "<h2 id=\"clusters-heading\">The clusters</h2>\n";
  WriteNote(run, numbers, out);
  WriteCsvButton("words", "All " + run.wording.columns + " as CSV", out);
  if (numbers.has_classes) WriteLegend(run, numbers, colours, out);
  out << "<div class=\"cards\">\n";
  for (int k = 0; k < numbers.nclusters; ++k) WriteCard(run, numbers, colours, k, out);
  out << "</div>\n</section>\n";
}

}  // namespace mardle::exporting
