// SPDX-License-Identifier: MIT
//
// Clusters by words in colours. Words stand along the left, so that all text is upright, and every
// cluster brings its first words, so that each has its own dark place near the diagonal.
#include <algorithm>
#include <string_view>

#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"
#include "tools/export/shades.h"

namespace mardle::exporting {
namespace {

constexpr std::size_t kMostClusters = 60;
constexpr std::size_t kMostWords = 72;
constexpr std::size_t kMostWordsOfACluster = 4;
constexpr std::size_t kLabelBytes = 30;  // longer labels are cut
constexpr double kCharacterWidth = 7.6;
constexpr int kHeadHeight = 22;
constexpr int kCellHeight = 17;

// What the map has room for: the largest clusters, and words of each.
struct Choice {
  std::vector<int> clusters;
  std::vector<int> columns;
  int label_width = 0;
};

int LabelWidth(const PageRun& run, const std::vector<int>& columns) {
  std::size_t longest = 4;
  for (const int column : columns) {
    longest = std::max(longest, std::string_view(run.mat.clabels[column]).size());
  }
  return static_cast<int>(kCharacterWidth * double(std::min(longest, kLabelBytes + 1))) + 12;
}

Choice Choose(const PageRun& run, const PageNumbers& numbers) {
  Choice choice;
  choice.clusters = LargestClusters(numbers, kMostClusters);
  const std::size_t each =
      std::clamp<std::size_t>(kMostWords / choice.clusters.size(), 1, kMostWordsOfACluster);
  for (const int k : choice.clusters) {
    for (const int column : NameOf(numbers.words[static_cast<std::size_t>(k)], each)) {
      const bool is_new =
          std::find(choice.columns.begin(), choice.columns.end(), column) == choice.columns.end();
      if (is_new) choice.columns.push_back(column);
    }
  }
  choice.label_width = LabelWidth(run, choice.columns);
  return choice;
}

int Shade(const PageNumbers& numbers, int k, int column) {
  return numbers.levels.are_shares() ? ShadeOfShare(numbers.levels.Inside(k, column))
                                     : ShadeOfStanding(numbers.levels.Standing(k, column));
}

void WriteCells(const PageRun& run, const PageNumbers& numbers, const Choice& choice,
                int cell_width, std::ostream& out) {
  for (std::size_t line = 0; line < choice.columns.size(); ++line) {
    const int column = choice.columns[line];
    const std::string name = Html(run.mat.clabels[column]);
    const int y = kHeadHeight + static_cast<int>(line) * kCellHeight;
    out << "<text class=\"end\" x=\"" << choice.label_width - 6 << "\" y=\"" << y + 13 << "\">"
        << Beginning(run.mat.clabels[column], kLabelBytes) << "</text>";
    for (std::size_t place = 0; place < choice.clusters.size(); ++place) {
      const int k = choice.clusters[place];
      const int shade = Shade(numbers, k, column);
      if (shade == 0) continue;
      out << "<rect class=\"" << ShadeName(shade) << "\" x=\""
          << choice.label_width + static_cast<int>(place) * cell_width << "\" y=\"" << y
          << "\" width=\"" << cell_width - 1 << "\" height=\"" << kCellHeight - 1 << "\"><title>"
          << name << " in " << k << ": " << LevelText(numbers, numbers.levels.Inside(k, column))
          << "</title></rect>";
    }
    out << "\n";
  }
}

void WriteKey(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const bool are_shares = numbers.levels.are_shares();
  out << "<ul class=\"legend\" aria-label=\"Colours\"><li>" << KeyTitle(are_shares, run.wording)
      << "</li>";
  for (const KeyEntry& entry : KeyOfShades(are_shares)) {
    out << "<li><span class=\"key " << ShadeName(entry.shade) << "\"></span>" << entry.text
        << "</li>";
  }
  out << "</ul>\n";
}

void WriteDescription(const PageRun& run, const PageNumbers& numbers, const Choice& choice,
                      std::ostream& out) {
  out << "<title id=\"heat-title\">The clusters by their " << run.wording.columns
      << "</title><desc id=\"heat-desc\">" << choice.columns.size() << " " << run.wording.columns
      << " from top to bottom, " << choice.clusters.size()
      << " clusters from left to right by their numbers. A cell is the darker the "
      << (numbers.levels.are_shares()
              ? "more " + run.wording.rows + " of the cluster contain the " + run.wording.column
              : "farther the cluster’s average lies from that of all " + run.wording.rows)
      << ". The cards of the clusters tell the numbers.</desc>";
}

}  // namespace

void WriteHeatMap(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const Choice choice = Choose(run, numbers);
  const int cell_width = choice.clusters.size() <= 12 ? 44 : choice.clusters.size() <= 32 ? 26 : 20;
  const auto width = choice.label_width + static_cast<int>(choice.clusters.size()) * cell_width;
  const auto height = kHeadHeight + static_cast<int>(choice.columns.size()) * kCellHeight;
  out << "<section id=\"heat\" aria-labelledby=\"heat-heading\">\n"
         "<h2 id=\"heat-heading\">Clusters by "
      << run.wording.columns << "</h2>\n";
  if (choice.clusters.size() < static_cast<std::size_t>(numbers.nclusters)) {
    out << "<p class=\"dim\">The " << choice.clusters.size() << " largest clusters.</p>\n";
  }
  WriteKey(run, numbers, out);
  out << "<div class=\"scroll picture\" tabindex=\"0\" role=\"region\" aria-label=\"Heat map\">"
         "<svg class=\"heat\" width=\""
      << width << "\" height=\"" << height
      << "\" role=\"img\" aria-labelledby=\"heat-title heat-desc\">";
  WriteDescription(run, numbers, choice, out);
  for (std::size_t place = 0; place < choice.clusters.size(); ++place) {
    out << "<text class=\"middle\" x=\""
        << choice.label_width + static_cast<int>(place) * cell_width + cell_width / 2
        << "\" y=\"15\">" << choice.clusters[place] << "</text>";
  }
  out << "\n";
  WriteCells(run, numbers, choice, cell_width, out);
  out << "</svg></div>\n</section>\n";
}

}  // namespace mardle::exporting
