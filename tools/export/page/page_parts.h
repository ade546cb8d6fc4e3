// SPDX-License-Identifier: MIT
//
// The sections of the page, in their order, and what they share.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tools/export/clustering.h"
#include "tools/export/page/page_numbers.h"

namespace mardle::exporting {

// A number with so many decimals; "n/a" when it is none.
std::string Decimals(double value, int decimals);
// A count with commas: 46,873.
std::string Grouped(std::int64_t count);
// A share of 1 as the percentage that SVG takes: "37.5%".
std::string Percent(double share);

// The colour of each class: 0 to 7 for the most frequent, 8 for all others.
std::vector<int> ClassColours(const PageNumbers& numbers);
constexpr int kOtherClasses = 8;

// A strip as wide as `share` of the place it has, cut by the classes of the rows in it. One colour
// without classes.
void WriteClassStrip(const PageRun& run, const PageNumbers& numbers,
                     const std::vector<int>& colours, int cluster, double share, std::ostream& out);

struct Feature {
  const char* name;
  double share;  // of 1
};
// The columns of a list, best first. Shares that are no numbers, as those of a cluster of all rows,
// rank nothing, and their columns are left out.
std::vector<Feature> FeaturesOf(const PageRun& run, const FeatureLists& lists, int list);

void WritePictures(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
void WriteQualityTable(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
void WriteFeatureCards(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
void WriteTreeSection(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
void WriteRowList(const PageRun& run, const PageNumbers& numbers, const Clustering& clustering,
                  std::ostream& out);

}  // namespace mardle::exporting
