// SPDX-License-Identifier: MIT
//
// One card per cluster: the columns that describe it and those that tell it from the rest, each
// with a bar. All bars of the page have one scale, so a cluster of faint columns looks faint.
#include <algorithm>

#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

double LargestShare(const PageRun& run, const PageNumbers& numbers) {
  double largest = 0;
  for (const FeatureLists* lists : {&numbers.descriptive, &numbers.discriminating}) {
    for (int k = 0; k < numbers.nclusters; ++k) {
      for (const Feature& feature : FeaturesOf(run, *lists, k)) {
        largest = std::max(largest, feature.share);
      }
    }
  }
  return largest > 0 ? largest : 1;
}

void WriteFeature(const Feature& feature, double largest, std::ostream& out) {
  out << "<li><span class=\"name\">" << Html(feature.name) << "</span> <span class=\"share\">"
      << Decimals(100 * feature.share, 1)
      << "%</span><svg width=\"100%\" height=\"5\" aria-hidden=\"true\"><rect width=\""
      << Percent(feature.share / largest) << "\" height=\"5\"/></svg></li>\n";
}

void WriteList(const std::vector<Feature>& features, const char* title, double largest,
               std::ostream& out) {
  out << "<div><h4>" << title << "</h4>";
  if (features.empty()) out << "<p class=\"dim\">none</p>";
  out << "<ol class=\"features\">\n";
  for (const Feature& feature : features) WriteFeature(feature, largest, out);
  out << "</ol></div>\n";
}

void WriteCard(const PageRun& run, const PageNumbers& numbers, const std::vector<int>& colours,
               int k, double largest, std::ostream& out) {
  out << "<article class=\"card\" id=\"cluster-" << k << "\"><h3>Cluster " << k << "</h3>\n<p>"
      << Grouped(numbers.pwgts[k]) << (numbers.pwgts[k] == 1 ? " row" : " rows") << " · ISim "
      << Decimals(static_cast<double>(numbers.cintsim[k]), 3) << " · ESim "
      << Decimals(static_cast<double>(numbers.cextsim[k]), 3)
      << " <button type=\"button\" class=\"show-rows\" data-cluster=\"" << k
      << "\" hidden>Show rows</button></p>\n";
  if (numbers.has_classes) WriteClassStrip(run, numbers, colours, k, 1, out);
  out << "<div class=\"lists\">\n";
  WriteList(FeaturesOf(run, numbers.descriptive, k), "Descriptive", largest, out);
  WriteList(FeaturesOf(run, numbers.discriminating, k), "Discriminating", largest, out);
  out << "</div></article>\n";
}

}  // namespace

void WriteFeatureCards(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const std::vector<int> colours = ClassColours(numbers);
  const double largest = LargestShare(run, numbers);
  out << "<section id=\"features\" aria-labelledby=\"features-heading\">\n"
         "<h2 id=\"features-heading\">What the clusters are about</h2>\n"
         "<p class=\"dim\">Descriptive columns by their share of the cluster’s internal similarity, "
         "discriminating ones by their share of its distance to all other rows.</p>\n"
         "<div class=\"cards\">\n";
  for (int k = 0; k < numbers.nclusters; ++k) WriteCard(run, numbers, colours, k, largest, out);
  out << "</div>\n</section>\n";
}

}  // namespace mardle::exporting
