// SPDX-License-Identifier: MIT
//
// How good the solution is: its numbers as a whole, the similarities of the clusters, their table
// with the numbers of the run's own report, and that of the classes.
#include <algorithm>

#include "programs/code_names.h"
#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

void WriteTile(const std::string& name, const std::string& value, std::ostream& out) {
  out << "<div><dt>" << name << "</dt><dd>" << value << "</dd></div>\n";
}

void WriteTiles(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  out << "<dl class=\"tiles\">\n";
  WriteTile("Criterion " + Html(CriterionName(run.params.crfun)),
            FourDigits(static_cast<double>(numbers.crvalue)), out);
  if (numbers.has_classes) {
    WriteTile("Entropy", Decimals(static_cast<double>(numbers.entropy), 3), out);
    WriteTile("Purity", Decimals(static_cast<double>(numbers.purity), 3), out);
  }
  if (numbers.has_fscores) {
    WriteTile("F-score", Decimals(static_cast<double>(numbers.fscore), 3), out);
  }
  out << "</dl>\n";
}

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
  out << "<tr><th scope=\"row\"><a href=\"#cluster-" << k << "\">" << k
      << "</a></th><td class=\"text\">" << NameText(run, numbers, k) << "</td><td>"
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
  WriteHead("Size", "How many of the class have a cluster", out);
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

void WriteQuality(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  out << "<section id=\"quality\" aria-labelledby=\"quality-heading\">\n"
         "<h2 id=\"quality-heading\">Quality</h2>\n";
  WriteTiles(run, numbers, out);
  WriteSimilarityPicture(run, numbers, out);
  OpenTable("Quality of the clusters", "wide", out);
  WriteHead("Cluster", "Numbered by falling internal minus external similarity", out);
  out << "<th scope=\"col\" class=\"text\">Name</th>";
  WriteHead("Size", "How many it holds", out);
  WriteHead("ISim", "Average similarity of two members", out);
  WriteHead("ISdev", "Deviation of ISim over its members", out);
  WriteHead("ESim", "Average similarity of a member and one of the others", out);
  WriteHead("ESdev", "Deviation of ESim over its members", out);
  if (numbers.has_classes) {
    WriteHead("Entropy", "0 when one class fills the cluster, 1 when all share it evenly", out);
    WriteHead("Purity", "Share of the largest class", out);
    out << "<th scope=\"col\" class=\"text\">Largest class</th>";
  }
  out << "</tr></thead>\n<tbody>\n";
  for (int k = 0; k < numbers.nclusters; ++k) WriteCluster(run, numbers, k, out);
  out << "</tbody></table></div>\n";
  WriteCsvButton("clusters", "This table as CSV", out);
  if (numbers.has_fscores) WriteFScores(run, numbers, out);
  out << "</section>\n";
}

}  // namespace mardle::exporting
