// SPDX-License-Identifier: MIT
//
// The classes as colours, the only ones on the page that stand for them.
#pragma once

#include <ostream>
#include <vector>

#include "tools/export/page/page_numbers.h"

namespace mardle::exporting {

// The colour of each class: 0 to 7 for the most frequent, 8 for all others.
std::vector<int> ClassColours(const PageNumbers& numbers);
constexpr int kOtherClasses = 8;

// The name of each colour.
void WriteLegend(const PageRun& run, const PageNumbers& numbers, const std::vector<int>& colours,
                 std::ostream& out);

// A strip as wide as `share` of the place it has, cut by the classes of the rows in it.
void WriteClassStrip(const PageRun& run, const PageNumbers& numbers,
                     const std::vector<int>& colours, int cluster, double share, std::ostream& out);

}  // namespace mardle::exporting
