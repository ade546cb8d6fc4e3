// SPDX-License-Identifier: MIT
//
// What every cluster is about, a line each, so that a screen holds many. Bars behind the lines tell
// the sizes.
#include <algorithm>

#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

// What a cluster is called, and as many words again, fainter.
void WriteWords(const PageRun& run, const PageNumbers& numbers, int k, std::ostream& out) {
  const std::vector<int> name = NameOf(numbers.words[static_cast<std::size_t>(k)], 2 * kNameWords);
  out << "<b>" << NameText(run, numbers, k) << "</b>";
  for (std::size_t word = kNameWords; word < name.size(); ++word) {
    out << (word == kNameWords ? " <i>" : ", ") << Html(WordText(run, numbers, k, name[word]));
  }
  if (name.size() > kNameWords) out << "</i>";
}

}  // namespace

void WriteOverview(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const int largest = *std::max_element(numbers.pwgts.begin(), numbers.pwgts.end());
  out << "<section id=\"overview\" aria-labelledby=\"overview-heading\">\n"
         "<h2 id=\"overview-heading\">What the clusters are about</h2>\n";
  if (run.record != nullptr && run.record->sampled) {
    out << "<p class=\"dim\">Sampled form: " << SampleText(run, *run.record->sampled) << ".</p>\n";
  }
  out << "<ol class=\"overview\" start=\"0\">\n";
  for (int k = 0; k < numbers.nclusters; ++k) {
    out << "<li style=\"--v:" << Percent(double{1} * numbers.pwgts[k] / std::max(largest, 1))
        << "\"><a href=\"#cluster-" << k << "\"><span class=\"no\">" << k << "</span> ";
    WriteWords(run, numbers, k, out);
    out << "</a> <span class=\"count\">" << Grouped(numbers.pwgts[k]) << "</span></li>\n";
  }
  out << "</ol>\n</section>\n";
}

}  // namespace mardle::exporting
