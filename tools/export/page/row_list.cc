// SPDX-License-Identifier: MIT
//
// The rows, as data for the page's script, which makes table lines only of those that are looked
// at.
#include <cmath>
#include <nlohmann/json.hpp>

#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

using nlohmann::json;

// Three decimals; null for what is no number and for rows without a cluster.
json Score(int cluster, float score) {
  if (cluster < 0 || !std::isfinite(score)) return nullptr;
  return std::round(static_cast<double>(score) * 1000) / 1000;
}

// One list per column of the table, which is smaller than one record per row.
std::string RowData(const PageRun& run, const PageNumbers& numbers, const Clustering& clustering) {
  json data;
  for (const char* list : {"labels", "clusters", "classes", "internal", "external", "classnames"}) {
    data[list] = json::array();
  }
  for (std::size_t i = 0; i < clustering.part.size(); ++i) {
    const int cluster = clustering.part[i];
    data["labels"].push_back(ValidUtf8(run.mat.rlabels[static_cast<std::int64_t>(i)]));
    data["clusters"].push_back(cluster);
    data["internal"].push_back(Score(cluster, numbers.izscores[i]));
    data["external"].push_back(Score(cluster, numbers.ezscores[i]));
    if (numbers.has_classes) data["classes"].push_back(run.mat.classes[i]);
  }
  for (std::size_t c = 0; numbers.has_classes && c < run.mat.classnames.size(); ++c) {
    data["classnames"].push_back(ValidUtf8(run.mat.classnames[c]));
  }
  return ScriptJson(data.dump());
}

void WriteHead(const char* key, const char* name, const char* kind, std::ostream& out) {
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

}  // namespace

void WriteRowList(const PageRun& run, const PageNumbers& numbers, const Clustering& clustering,
                  std::ostream& out) {
  out << "<section id=\"rows\" aria-labelledby=\"rows-heading\">\n"
         "<h2 id=\"rows-heading\">"
      << Capital(run.wording.rows)
      << "</h2>\n"
         "<noscript><p>The list of rows needs the page’s script.</p></noscript>\n"
         "<div id=\"row-view\" hidden>\n<form class=\"tools\" role=\"search\">\n"
         "<label>Search <input id=\"row-search\" type=\"search\" autocomplete=\"off\" "
         "placeholder=\"part of a label\"></label>\n";
  WriteClusterChoice(numbers.nclusters, out);
  if (numbers.has_classes) WriteClassChoice(run, out);
  out << "<button type=\"button\" data-csv=\"rows\">These as CSV</button>\n"
         "</form>\n<p id=\"row-count\" role=\"status\"></p>\n"
         "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"The list\"><table>\n"
         "<caption>With their z-scores: how many deviations each stands above its cluster’s average</caption>\n<thead><tr>";
  WriteHead("row", "Row", "text", out);
  WriteHead("labels", "Label", "text", out);
  if (numbers.has_classes) WriteHead("classes", "Class", "text", out);
  WriteHead("clusters", "Cluster", "number", out);
  WriteHead("internal", "Internal z", "number", out);
  WriteHead("external", "External z", "number", out);
  out << "</tr></thead>\n<tbody id=\"row-lines\"></tbody></table></div>\n"
         "<p><button type=\"button\" id=\"row-more\">Show more</button></p>\n</div>\n</section>\n"
         "<script type=\"application/json\" id=\"row-data\">"
      << RowData(run, numbers, clustering) << "</script>\n";
}

}  // namespace mardle::exporting
