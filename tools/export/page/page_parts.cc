// SPDX-License-Identifier: MIT
#include "tools/export/page/page_parts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numeric>

#include "tools/export/escape.h"

namespace mardle::exporting {

std::string Decimals(double value, int decimals) {
  if (!std::isfinite(value)) return "n/a";
  std::array<char, 400> text;
  std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
  return text.data();
}

std::string Grouped(std::int64_t count) {
  const std::string digits = std::to_string(count);
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

std::string Percent(double share) {
  const double shown = std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0;
  return Decimals(100 * shown, 2) + "%";
}

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
  if (!numbers.has_classes) return {{0, numbers.pwgts[cluster], "rows"}};
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

void WriteClassStrip(const PageRun& run, const PageNumbers& numbers,
                     const std::vector<int>& colours, int cluster, double share,
                     std::ostream& out) {
  const std::vector<Piece> pieces = Pieces(run, numbers, colours, cluster);
  const double per_row = share / std::max(numbers.pwgts[cluster], 1);
  std::string parts;
  for (const Piece& piece : pieces) {
    parts += (parts.empty() ? "" : ", ") + std::to_string(piece.rows) + " " + piece.name;
  }
  out << "<svg class=\"strip\" width=\"100%\" height=\"16\" role=\"img\" aria-label=\"Cluster "
      << cluster << ": " << Html(parts) << "\">";
  double begin = 0;
  for (const Piece& piece : pieces) {
    const double width = piece.rows * per_row;
    out << "<rect class=\"c" << piece.colour << "\" x=\"" << Percent(begin) << "\" width=\""
        << Percent(width) << "\" height=\"16\"><title>" << Html(piece.name) << ": " << piece.rows
        << "</title></rect>";
    begin += width;
  }
  out << "</svg>";
}

std::vector<Feature> FeaturesOf(const PageRun& run, const FeatureLists& lists, int list) {
  std::vector<Feature> features;
  const std::int64_t begin = std::int64_t{list} * run.params.nfeatures;
  for (std::int64_t slot = begin; slot < begin + run.params.nfeatures; ++slot) {
    if (lists.ids[slot] < 0 || !std::isfinite(lists.weights[slot])) continue;
    features.push_back(
        {run.mat.clabels[lists.ids[slot]], static_cast<double>(lists.weights[slot])});
  }
  return features;
}

}  // namespace mardle::exporting
