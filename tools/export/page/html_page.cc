// SPDX-License-Identifier: MIT
#include "tools/export/page/html_page.h"

#include <filesystem>

#include "tools/export/escape.h"
#include "tools/export/page/page_assets.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

// The policy forbids every request, whatever a label may try.
constexpr char kHead[] =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
    "style-src 'unsafe-inline'; script-src 'unsafe-inline'; img-src data:; base-uri 'none'; "
    "form-action 'none'\">\n"
    "<meta name=\"color-scheme\" content=\"light dark\">\n<link rel=\"icon\" href=\"data:,\">\n";

std::string TitleOf(const PageRun& run) {
  const std::filesystem::path name = std::filesystem::path(run.matrix_name).filename();
  return Html((name.extension() == ".mat" ? name.stem() : name).string());
}

void WriteHeader(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const std::int64_t outside = std::int64_t{run.mat.nrows} - numbers.rows.Total();
  out << "<header>\n<h1>" << TitleOf(run) << "</h1>\n<p>" << CountedRows(run, run.mat.nrows)
      << " in " << Counted(numbers.nclusters, "cluster", "clusters") << " by "
      << Counted(run.mat.ncols, run.wording.column, run.wording.columns);
  if (outside > 0) out << ", " << Grouped(outside) << " without a cluster";
  out << "</p>\n</header>\n";
}

void WriteNavigation(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  out << "<nav aria-label=\"Sections\"><div class=\"links\"><a href=\"#overview\">Overview</a> "
         "<a href=\"#clusters\">Clusters</a> "
         "<a href=\"#heat\">Heat map</a> ";
  if (HasMap(numbers)) out << "<a href=\"#map\">Map</a> ";
  out << "<a href=\"#tree\">Tree</a> ";
  if (numbers.complete)
    out << "<a href=\"#row-trees\">" << Capital(run.wording.row) << " tree</a> ";
  out << "<a href=\"#quality\">Quality</a> <a href=\"#rows\">" << Capital(run.wording.rows)
      << "</a> <a href=\"#run\">Run</a></div>\n"
         "<form role=\"search\" class=\"tools\" hidden><label>"
      << Capital(run.wording.column)
      << " <input id=\"word-search\" type=\"search\" autocomplete=\"off\" size=\"12\"></label> "
         "<output id=\"word-count\" for=\"word-search\"></output></form></nav>\n";
}

}  // namespace

void WriteHtmlPage(const PageRun& run, const Clustering& clustering, std::ostream& out) {
  const PageNumbers numbers = Measure(run, clustering);
  out << kHead << "<title>" << TitleOf(run) << ": " << numbers.nclusters
      << (numbers.nclusters == 1 ? " cluster" : " clusters") << "</title>\n<style>\n"
      << kPageStyle << "</style>\n</head>\n<body>\n";
  WriteHeader(run, numbers, out);
  WriteNavigation(run, numbers, out);
  out << "<main>\n";
  WriteOverview(run, numbers, out);
  WriteClusterCards(run, numbers, out);
  WriteHeatMap(run, numbers, out);
  WriteClusterMap(run, numbers, out);
  WriteTreeSection(run, numbers, out);
  WriteRowTrees(run, numbers, out);
  WriteQuality(run, numbers, out);
  WriteRowList(run, numbers, clustering, out);
  WriteRunNotes(run, out);
  out << "</main>\n<script>\n" << kPageScript << "</script>\n</body>\n</html>\n";
}

}  // namespace mardle::exporting
