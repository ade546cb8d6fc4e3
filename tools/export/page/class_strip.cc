// SPDX-License-Identifier: MIT
#include "tools/export/page/class_strip.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

// The rows of one colour in a strip.
struct Piece {
  int colour;
  int rows;
  std::string name;
};

// The classes of a cluster by colour, so that the order is the same in every strip.
std::vector<Piece> Pieces(const PageRun& run, const PageNumbers& numbers,
                          const std::vector<int>& colours, int cluster) {
  std::vector<Piece> pieces(kOtherClasses + 1, Piece{0, 0, "other classes"});
  const std::span<const int> counts = numbers.classdist[cluster];
  for (std::size_t c = 0; c < counts.size(); ++c) {
    Piece& piece = pieces[static_cast<std::size_t>(colours[c])];
    piece.colour = colours[c];
    piece.rows += counts[c];
    if (colours[c] != kOtherClasses) piece.name = run.mat.classnames[c];
  }
  std::erase_if(pieces, [](const Piece& piece) { return piece.rows == 0; });
  return pieces;
}

}  // namespace

std::vector<int> ClassColours(const PageNumbers& numbers) {
  if (!numbers.has_classes) return {};
  std::vector<int> order(numbers.ocldist.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return numbers.ocldist[a] > numbers.ocldist[b]; });
  std::vector<int> colours(order.size());
  for (std::size_t place = 0; place < order.size(); ++place) {
    colours[static_cast<std::size_t>(order[place])] =
        std::min(static_cast<int>(place), kOtherClasses);
  }
  return colours;
}

void WriteLegend(const PageRun& run, const PageNumbers& numbers, const std::vector<int>& colours,
                 std::ostream& out) {
  std::vector<std::size_t> classes(colours.size());
  std::iota(classes.begin(), classes.end(), 0);
  std::stable_sort(classes.begin(), classes.end(),
                   [&](std::size_t a, std::size_t b) { return colours[a] < colours[b]; });
  int others = 0;
  out << "<ul class=\"legend\" aria-label=\"Classes\">";
  for (const std::size_t c : classes) {
    if (colours[c] == kOtherClasses) {
      ++others;
      continue;
    }
    out << "<li><span class=\"key k" << colours[c] << "\"></span>" << Html(run.mat.classnames[c])
        << " <span class=\"dim\">" << Grouped(numbers.ocldist[c]) << "</span></li>";
  }
  if (others > 0) {
    out << "<li><span class=\"key k8\"></span>" << others << " other classes</li>";
  }
  out << "</ul>\n";
}

void WriteClassStrip(const PageRun& run, const PageNumbers& numbers,
                     const std::vector<int>& colours, int cluster, double share,
                     std::ostream& out) {
  const std::vector<Piece> pieces = Pieces(run, numbers, colours, cluster);
  const double per_row = share / std::max(numbers.pwgts[cluster], 1);
  std::string parts;
  for (const Piece& piece : pieces) {
    parts += (parts.empty() ? "" : ", ") + std::to_string(piece.rows) + " " + piece.name;
  }
  out << "<svg class=\"strip\" width=\"100%\" height=\"12\" role=\"img\" aria-label=\"Cluster "
      << cluster << ": " << Html(parts) << "\">";
  double begin = 0;
  for (const Piece& piece : pieces) {
    const double width = piece.rows * per_row;
    out << "<rect class=\"c" << piece.colour << "\" x=\"" << Percent(begin) << "\" width=\""
        << Percent(width) << "\" height=\"12\"><title>" << Html(piece.name) << ": "
        << Grouped(piece.rows) << "</title></rect>";
    begin += width;
  }
  out << "</svg>";
}

}  // namespace mardle::exporting
