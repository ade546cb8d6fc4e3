// SPDX-License-Identifier: MIT
//
// The clusters as marks on an axis: how far the similarity inside each stands from that to the
// rest, beside its size and its classes.
#include <algorithm>
#include <cmath>

#include "tools/export/page/class_strip.h"
#include "tools/export/page/page_parts.h"
#include "tools/export/page/similarity_axis.h"

namespace mardle::exporting {
namespace {

constexpr double kClosestTicks = 0.09;

double OrZero(float value) { return std::isfinite(value) ? static_cast<double>(value) : 0; }

// Whiskers may be longer than the axis, which the similarities alone make.
SimilarityAxis AxisOf(const PageNumbers& numbers) {
  SimilarityAxis axis;
  for (int k = 0; k < numbers.nclusters; ++k) {
    axis.Include(OrZero(numbers.cintsim[k]));
    axis.Include(OrZero(numbers.cextsim[k]));
  }
  return axis;
}

void WriteAxis(const SimilarityAxis& axis, std::ostream& out) {
  out << "<li class=\"axis\"><svg class=\"range\" aria-hidden=\"true\" width=\"100%\" "
         "height=\"20\">";
  for (const double tick : axis.Ticks(kClosestTicks)) {
    out << "<text x=\"" << Percent(axis.At(tick)) << "\" y=\"14\">" << Shortest(tick) << "</text>";
  }
  out << "</svg></li>\n";
}

// Lines at the ticks as a background, told once for all lines of the picture.
std::string TickLines(const SimilarityAxis& axis) {
  std::string lines;
  for (const double tick : axis.Ticks(kClosestTicks)) {
    lines += (lines.empty() ? "" : ",") + std::string("linear-gradient(var(--line),var(--line)) ") +
             Percent(axis.At(tick)) + " 0/1px 100% no-repeat";
  }
  return lines;
}

// A mark at a similarity, with a whisker of one deviation to both sides.
void WriteMark(const SimilarityAxis& axis, float similarity, float deviation, const char* kind,
               std::ostream& out) {
  if (!std::isfinite(similarity)) return;
  const double at = static_cast<double>(similarity);
  const double reach = OrZero(deviation);
  out << "<line class=\"" << kind << "\" x1=\"" << Percent(axis.At(at - reach)) << "\" x2=\""
      << Percent(axis.At(at + reach)) << "\" y1=\"8\" y2=\"8\"/><circle class=\"" << kind
      << "\" cx=\"" << Percent(axis.At(at)) << "\" cy=\"8\" r=\"5\"/>";
}

void WriteSimilarities(const PageNumbers& numbers, const SimilarityAxis& axis, int k,
                       std::ostream& out) {
  const std::string inside = Decimals(static_cast<double>(numbers.cintsim[k]), 3);
  const std::string outside = Decimals(static_cast<double>(numbers.cextsim[k]), 3);
  out << "<svg class=\"range\" width=\"100%\" height=\"16\" role=\"img\" aria-label=\"Cluster " << k
      << ": inside " << inside << ", to the rest " << outside << "\"><title>inside " << inside
      << ", to the rest " << outside
      << "</title><line class=\"axis\" x1=\"0\" x2=\"100%\" y1=\"8\" y2=\"8\"/>";
  WriteMark(axis, numbers.cextsim[k], numbers.cextsdev[k], "outside", out);
  WriteMark(axis, numbers.cintsim[k], numbers.cintsdev[k], "inside", out);
  out << "</svg>";
}

void WriteKeys(const PageRun& run, std::ostream& out) {
  out << "<ul class=\"legend\" aria-label=\"Similarities\"><li><span class=\"key dot inside\"></span>"
         "average similarity inside the cluster</li><li><span class=\"key dot outside\"></span>"
         "to the other "
      << run.wording.rows
      << "</li><li class=\"dim\">whiskers: one deviation; the axis goes with the square root</li>"
         "</ul>\n";
}

}  // namespace

void WriteSimilarityPicture(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const std::vector<int> colours = ClassColours(numbers);
  const SimilarityAxis axis = AxisOf(numbers);
  const int largest = *std::max_element(numbers.pwgts.begin(), numbers.pwgts.end());
  if (numbers.has_classes) WriteLegend(run, numbers, colours, out);
  WriteKeys(run, out);
  out << "<ol class=\"glance" << (numbers.has_classes ? " classed" : "")
      << "\" style=\"--ticks:" << TickLines(axis) << "\" start=\"0\">\n";
  WriteAxis(axis, out);
  for (int k = 0; k < numbers.nclusters; ++k) {
    out << "<li><a href=\"#cluster-" << k << "\">" << TitleText(run, numbers, k)
        << "</a><span class=\"count\">" << Grouped(numbers.pwgts[k]) << "</span>";
    if (numbers.has_classes) {
      const double share = double{1} * numbers.pwgts[k] / std::max(largest, 1);
      WriteClassStrip(run, numbers, colours, k, share, out);
    }
    WriteSimilarities(numbers, axis, k, out);
    out << "</li>\n";
  }
  out << "</ol>\n";
}

}  // namespace mardle::exporting
