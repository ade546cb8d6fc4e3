// SPDX-License-Identifier: MIT
//
// The table of the clusters, with the numbers of the run's own report, and that of the classes.
#include <algorithm>

#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

// A scrolling frame that the keyboard reaches too.
void OpenTable(const char* caption, const char* width, std::ostream& out) {
  out << "<div class=\"scroll " << width << "\" tabindex=\"0\" role=\"region\" aria-label=\""
      << caption << "\"><table>\n<caption>" << caption << "</caption>\n<thead><tr>";
}

void WriteHead(const char* name, const char* meaning, std::ostream& out) {
  out << "<th scope=\"col\"><abbr title=\"" << meaning << "\">" << name << "</abbr></th>";
}

void WriteCell(float value, std::ostream& out) {
  out << "<td>" << Decimals(static_cast<double>(value), 3) << "</td>";
}

// The class with the most rows; the first of equals.
void WriteLargestClass(const PageRun& run, const PageNumbers& numbers, int k, std::ostream& out) {
  const std::span<const int> counts = numbers.classdist[k];
  const auto largest = std::max_element(counts.begin(), counts.end());
  out << "<td class=\"text\">"
      << (*largest == 0 ? "" : Html(run.mat.classnames[largest - counts.begin()])) << "</td>";
}

void WriteCluster(const PageRun& run, const PageNumbers& numbers, int k, std::ostream& out) {
  out << "<tr><th scope=\"row\"><a href=\"#cluster-" << k << "\">" << k << "</a></th><td>"
      << Grouped(numbers.pwgts[k]) << "</td>";
  WriteCell(numbers.cintsim[k], out);
  WriteCell(numbers.cintsdev[k], out);
  WriteCell(numbers.cextsim[k], out);
  WriteCell(numbers.cextsdev[k], out);
  if (numbers.has_classes) {
    WriteCell(numbers.entropies[k], out);
    WriteCell(numbers.purities[k], out);
    WriteLargestClass(run, numbers, k, out);
  }
  out << "</tr>\n";
}

void WriteFScores(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  OpenTable("Classes in the complete tree", "narrow", out);
  WriteHead("Class", "The name of the class", out);
  WriteHead("Size", "Clustered rows of the class", out);
  WriteHead("F-score", "Of the node of the complete tree that fits the class best", out);
  out << "</tr></thead>\n<tbody>\n";
  for (int c = 0; c < run.mat.nclasses; ++c) {
    out << "<tr><th scope=\"row\">" << Html(run.mat.classnames[c]) << "</th><td>"
        << Grouped(numbers.ocldist[c]) << "</td>";
    WriteCell(numbers.fscores[c], out);
    out << "</tr>\n";
  }
  out << "</tbody></table></div>\n";
}

}  // namespace

void WriteQualityTable(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  out << "<section id=\"quality\" aria-labelledby=\"quality-heading\">\n"
         "<h2 id=\"quality-heading\">Quality</h2>\n";
  OpenTable("Quality of the clusters", "wide", out);
  WriteHead("Cluster", "Numbered by falling internal minus external similarity", out);
  WriteHead("Size", "Rows of the cluster", out);
  WriteHead("ISim", "Average similarity of two rows of the cluster", out);
  WriteHead("ISdev", "Deviation of ISim over the rows", out);
  WriteHead("ESim", "Average similarity of a row inside and a row outside", out);
  WriteHead("ESdev", "Deviation of ESim over the rows", out);
  if (numbers.has_classes) {
    WriteHead("Entropy", "0 when one class fills the cluster, 1 when all share it evenly", out);
    WriteHead("Purity", "Share of the largest class", out);
    out << "<th scope=\"col\" class=\"text\">Largest class</th>";
  }
  out << "</tr></thead>\n<tbody>\n";
  for (int k = 0; k < numbers.nclusters; ++k) WriteCluster(run, numbers, k, out);
  out << "</tbody></table></div>\n";
  if (numbers.has_fscores) WriteFScores(run, numbers, out);
  out << "</section>\n";
}

}  // namespace mardle::exporting
