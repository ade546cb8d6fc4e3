// SPDX-License-Identifier: MIT
//
// The rows. Without the script they are lines of text, a fold for each cluster; the script reads
// these lines and makes of them a table that can be searched, narrowed and sorted. So the page
// holds every label once.
#include <algorithm>
#include <cmath>
#include <utility>

#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

// Two decimals; a dash for what is no number and for rows without a cluster.
std::string Score(float score) {
  return std::isfinite(score) ? Decimals(static_cast<double>(score), 2) : "-";
}

// A row without a cluster has no scores.
void WriteRow(const PageRun& run, const PageNumbers& numbers, int i, bool has_cluster,
              std::ostream& out) {
  out << i << '\t' << (has_cluster ? Score(numbers.izscores[i]) : "-") << '\t'
      << (has_cluster ? Score(numbers.ezscores[i]) : "-") << '\t' << Html(run.mat.rlabels[i])
      << '\n';
}

// Row lines begin with a number, the names of classes above their rows with a colon.
void WriteRows(const PageRun& run, const PageNumbers& numbers, std::vector<int> rows,
               bool has_cluster, std::ostream& out) {
  const auto& classes = run.mat.classes;
  if (numbers.has_classes) {
    std::stable_sort(rows.begin(), rows.end(),
                     [&classes](int a, int b) { return classes[a] < classes[b]; });
  }
  int last_class = -1;
  for (const int i : rows) {
    if (numbers.has_classes && classes[i] != std::exchange(last_class, classes[i])) {
      out << ':' << Html(run.mat.classnames[classes[i]]) << '\n';
    }
    WriteRow(run, numbers, i, has_cluster, out);
  }
}

void WriteFold(const PageRun& run, const PageNumbers& numbers, int k, const std::string& title,
               const std::vector<int>& rows, std::ostream& out) {
  out << "<details data-cluster=\"" << k << "\"><summary>" << title << " <span class=\"dim\">"
      << CountedRows(run, static_cast<std::int64_t>(rows.size())) << "</span></summary>\n<pre>\n";
  WriteRows(run, numbers, rows, k >= 0, out);
  out << "</pre></details>\n";
}

void WriteFolds(const PageRun& run, const PageNumbers& numbers, const Clustering& clustering,
                std::ostream& out) {
  out << "<div id=\"row-texts\">\n<p class=\"dim\">Lines have the number of the " << run.wording.row
      << " from 0, its internal and external z-scores, and its label"
      << (numbers.has_classes ? "; the names of classes stand above their " + run.wording.rows : "")
      << ".</p>\n";
  for (int k = 0; k < numbers.nclusters; ++k) {
    const std::span<const int> rows = numbers.rows[k];
    WriteFold(run, numbers, k, TitleText(run, numbers, k), {rows.begin(), rows.end()}, out);
  }
  std::vector<int> others;
  for (std::size_t i = 0; i < clustering.part.size(); ++i) {
    if (clustering.part[i] < 0) others.push_back(static_cast<int>(i));
  }
  if (!others.empty()) WriteFold(run, numbers, -1, "Without a cluster", others, out);
  out << "</div>\n";
}

void WriteHead(const char* key, const std::string& name, const char* kind, std::ostream& out) {
  out << "<th scope=\"col\" class=\"" << kind << "\"><button type=\"button\" data-sort=\"" << key
      << "\">" << name << "</button></th>";
}

void WriteClusterChoice(int nclusters, std::ostream& out) {
  out << "<label>Cluster <select id=\"row-cluster\"><option value=\"\">all</option>";
  for (int k = 0; k < nclusters; ++k) out << "<option>" << k << "</option>";
  out << "<option value=\"-1\">none</option></select></label>\n";
}

void WriteClassChoice(const PageRun& run, std::ostream& out) {
  out << "<label>Class <select id=\"row-class\"><option value=\"\">all</option>";
  for (int c = 0; c < run.mat.nclasses; ++c) {
    out << "<option value=\"" << c << "\">" << Html(run.mat.classnames[c]) << "</option>";
  }
  out << "</select></label>\n";
}

// What the script fills.
void WriteTable(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  out << "<div id=\"row-view\" hidden>\n<form class=\"tools\" role=\"search\">\n"
         "<label>Search <input id=\"row-search\" type=\"search\" autocomplete=\"off\" "
         "placeholder=\"part of a label\"></label>\n";
  WriteClusterChoice(numbers.nclusters, out);
  if (numbers.has_classes) WriteClassChoice(run, out);
  out << "<button type=\"button\" data-csv=\"rows\">These as CSV</button>\n"
         "</form>\n<p id=\"row-count\" role=\"status\" data-rows=\""
      << run.wording.rows
      << "\"></p>\n"
         "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"The list\"><table>\n"
         "<caption>With their z-scores: how many deviations each stands above its cluster’s "
         "average</caption>\n<thead><tr>";
  WriteHead("row", Capital(run.wording.row), "text", out);
  WriteHead("labels", "Label", "text", out);
  if (numbers.has_classes) WriteHead("classes", "Class", "text", out);
  WriteHead("clusters", "Cluster", "number", out);
  WriteHead("internal", "Internal z", "number", out);
  WriteHead("external", "External z", "number", out);
  out << "</tr></thead>\n<tbody id=\"row-lines\"></tbody></table></div>\n"
         "<p><button type=\"button\" id=\"row-more\">Show more</button></p>\n</div>\n";
}

}  // namespace

void WriteRowList(const PageRun& run, const PageNumbers& numbers, const Clustering& clustering,
                  std::ostream& out) {
  out << "<section id=\"rows\" aria-labelledby=\"rows-heading\">\n"
         "<h2 id=\"rows-heading\">"
      << Capital(run.wording.rows) << "</h2>\n";
  WriteTable(run, numbers, out);
  WriteFolds(run, numbers, clustering, out);
  out << "</section>\n";
}

}  // namespace mardle::exporting
