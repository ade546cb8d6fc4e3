// SPDX-License-Identifier: MIT
//
// One card per cluster: the columns that describe it and those that tell it from the rest, each
// with a bar. All bars of the page have one scale, so a cluster of faint columns looks faint.
#include <algorithm>
#include <cmath>

#include "tools/export_escape.h"
#include "tools/html_page_parts.h"

namespace mardle::exporting {
namespace {

void AddLargest(const FeatureLists& lists, double& largest) {
  for (std::size_t slot = 0; slot < lists.ids.size(); ++slot) {
    const auto weight = static_cast<double>(lists.weights[slot]);
    if (lists.ids[slot] >= 0 && std::isfinite(weight)) largest = std::max(largest, weight);
  }
}

double LargestShare(const PageNumbers& numbers) {
  double largest = 0;
  AddLargest(numbers.descriptive, largest);
  AddLargest(numbers.discriminating, largest);
  return largest > 0 ? largest : 1;
}

void WriteList(const PageRun& run, const FeatureLists& lists, int k, const char* title,
               double largest, std::ostream& out) {
  out << "<div><h4>" << title << "</h4><ol class=\"features\">\n";
  const std::int64_t begin = std::int64_t{k} * run.params.nfeatures;
  for (std::int64_t slot = begin; slot < begin + run.params.nfeatures; ++slot) {
    if (lists.ids[slot] < 0) continue;
    const auto share = static_cast<double>(lists.weights[slot]);
    out << "<li><span class=\"name\">" << Html(run.mat.clabels[lists.ids[slot]])
        << "</span> <span class=\"share\">" << Decimals(100 * share, 1)
        << "%</span><svg width=\"100%\" height=\"5\" aria-hidden=\"true\"><rect width=\""
        << Percent(share / largest) << "\" height=\"5\"/></svg></li>\n";
  }
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
  WriteList(run, numbers.descriptive, k, "Descriptive", largest, out);
  WriteList(run, numbers.discriminating, k, "Discriminating", largest, out);
  out << "</div></article>\n";
}

}  // namespace

void WriteFeatureCards(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const std::vector<int> colours = ClassColours(numbers);
  const double largest = LargestShare(numbers);
  out << "<section id=\"features\" aria-labelledby=\"features-heading\">\n"
         "<h2 id=\"features-heading\">What the clusters are about</h2>\n"
         "<p class=\"dim\">Descriptive columns by their share of the cluster’s internal similarity, "
         "discriminating ones by their share of its distance to all other rows.</p>\n"
         "<div class=\"cards\">\n";
  for (int k = 0; k < numbers.nclusters; ++k) WriteCard(run, numbers, colours, k, largest, out);
  out << "</div>\n</section>\n";
}

}  // namespace mardle::exporting
