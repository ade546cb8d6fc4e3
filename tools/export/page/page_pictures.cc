// SPDX-License-Identifier: MIT
//
// The clusters at a glance: how many rows of which classes, and how far the similarity inside each
// stands from that to the rest.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

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

// The scale on which similarities are drawn.
struct Scale {
  double low = 0;
  double high = 0;
  double At(double value) const { return high > low ? (value - low) / (high - low) : 0; }
};

double OrZero(float value) { return std::isfinite(value) ? static_cast<double>(value) : 0; }

Scale SimilarityScale(const PageNumbers& numbers) {
  Scale scale;
  for (int k = 0; k < numbers.nclusters; ++k) {
    const double inside = OrZero(numbers.cintsim[k]);
    const double inside_deviation = OrZero(numbers.cintsdev[k]);
    const double outside = OrZero(numbers.cextsim[k]);
    const double outside_deviation = OrZero(numbers.cextsdev[k]);
    scale.low = std::min({scale.low, inside - inside_deviation, outside - outside_deviation});
    scale.high = std::max({scale.high, inside + inside_deviation, outside + outside_deviation});
  }
  scale.high *= 1.04;  // so that the mark at the end is whole
  return scale;
}

// A mark at a similarity, with a whisker of one deviation to both sides.
void WriteMark(const Scale& scale, float similarity, float deviation, const char* kind,
               std::ostream& out) {
  if (!std::isfinite(similarity)) return;
  const double at = static_cast<double>(similarity);
  const double reach = OrZero(deviation);
  out << "<line class=\"" << kind << "\" x1=\"" << Percent(scale.At(at - reach)) << "\" x2=\""
      << Percent(scale.At(at + reach)) << "\" y1=\"8\" y2=\"8\"/><circle class=\"" << kind
      << "\" cx=\"" << Percent(scale.At(at)) << "\" cy=\"8\" r=\"5\"/>";
}

void WriteSimilarities(const PageNumbers& numbers, const Scale& scale, int k, std::ostream& out) {
  const std::string inside = Decimals(static_cast<double>(numbers.cintsim[k]), 3);
  const std::string outside = Decimals(static_cast<double>(numbers.cextsim[k]), 3);
  out << "<svg class=\"range\" width=\"100%\" height=\"16\" role=\"img\" aria-label=\"Cluster " << k
      << ": inside " << inside << ", outside " << outside << "\"><title>inside " << inside
      << ", outside " << outside
      << "</title><line class=\"axis\" x1=\"0\" x2=\"100%\" y1=\"8\" y2=\"8\"/>";
  WriteMark(scale, numbers.cextsim[k], numbers.cextsdev[k], "outside", out);
  WriteMark(scale, numbers.cintsim[k], numbers.cintsdev[k], "inside", out);
  out << "</svg>";
}

}  // namespace

void WritePictures(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const std::vector<int> colours = ClassColours(numbers);
  const Scale scale = SimilarityScale(numbers);
  const int largest = *std::max_element(numbers.pwgts.begin(), numbers.pwgts.end());
  out << "<section id=\"glance\" aria-labelledby=\"glance-heading\">\n"
         "<h2 id=\"glance-heading\">Clusters at a glance</h2>\n";
  if (numbers.has_classes) WriteLegend(run, numbers, colours, out);
  out << "<ul class=\"legend\" aria-label=\"Similarities\"><li><span class=\"key dot inside\"></span>"
         "inside the cluster</li><li><span class=\"key dot outside\"></span>to the other rows"
         "</li><li class=\"dim\">whiskers: one deviation; scale "
      << Decimals(scale.low, 2) << " to " << Decimals(scale.high, 2) << "</li></ul>\n"
      << "<ol class=\"glance\" start=\"0\">\n";
  for (int k = 0; k < numbers.nclusters; ++k) {
    out << "<li><a href=\"#cluster-" << k << "\">" << k << "</a><span class=\"count\">"
        << Grouped(numbers.pwgts[k]) << "<span class=\"unit\"> rows</span></span>";
    WriteClassStrip(run, numbers, colours, k,
                    static_cast<double>(numbers.pwgts[k]) / std::max(largest, 1), out);
    WriteSimilarities(numbers, scale, k, out);
    out << "</li>\n";
  }
  out << "</ol>\n</section>\n";
}

}  // namespace mardle::exporting
