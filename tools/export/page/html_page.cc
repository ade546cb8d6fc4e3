// SPDX-License-Identifier: MIT
#include "tools/export/page/html_page.h"

#include <array>
#include <cstdio>
#include <filesystem>

#include "programs/code_names.h"
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
  return Html(std::filesystem::path(run.matrix_name).filename().string());
}

void WriteTile(const std::string& name, const std::string& value, std::ostream& out) {
  out << "<div><dt>" << name << "</dt><dd>" << value << "</dd></div>\n";
}

std::string CriterionText(float value) {
  std::array<char, 40> text;
  std::snprintf(text.data(), text.size(), "%.4g", static_cast<double>(value));
  return text.data();
}

void WriteTiles(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  out << "<dl class=\"tiles\">\n";
  WriteTile("Clusters", Grouped(numbers.nclusters), out);
  WriteTile("Rows", Grouped(run.mat.nrows), out);
  if (numbers.nclustered < run.mat.nrows) {
    WriteTile("Without a cluster", Grouped(run.mat.nrows - numbers.nclustered), out);
  }
  WriteTile("Criterion " + Html(CriterionName(run.params.crfun)), CriterionText(numbers.crvalue),
            out);
  if (numbers.has_classes) {
    WriteTile("Entropy", Decimals(static_cast<double>(numbers.entropy), 3), out);
    WriteTile("Purity", Decimals(static_cast<double>(numbers.purity), 3), out);
  }
  if (numbers.has_fscores) {
    WriteTile("F-score", Decimals(static_cast<double>(numbers.fscore), 3), out);
  }
  out << "</dl>\n";
}

void WriteHeader(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  const RunParams& params = run.params;
  out << "<header>\n<p class=\"dim\">mardle</p>\n<h1>" << TitleOf(run) << "</h1>\n<p>"
      << Grouped(run.mat.nrows) << " rows, " << Grouped(run.mat.ncols) << " columns, "
      << Grouped(NonZeroCount(run.mat)) << " entries in " << Grouped(numbers.nclusters)
      << (numbers.nclusters == 1 ? " cluster" : " clusters") << "</p>\n<p class=\"dim\">"
      << SimilarityName(params.simfun) << " similarity · row model "
      << RowModelName(params.rowmodel) << " · column model " << ColumnModelName(params.colmodel)
      << " · pruning " << Decimals(static_cast<double>(params.prune), 2) << "</p>\n";
  WriteTiles(run, numbers, out);
  out << "</header>\n<nav aria-label=\"Sections\"><a href=\"#glance\">Glance</a> "
         "<a href=\"#quality\">Quality</a> <a href=\"#features\">Columns</a> "
         "<a href=\"#tree\">Tree</a> <a href=\"#rows\">Rows</a></nav>\n";
}

}  // namespace

void WriteHtmlPage(const PageRun& run, const Clustering& clustering, std::ostream& out) {
  const PageNumbers numbers = Measure(run, clustering);
  out << kHead << "<title>" << TitleOf(run) << ": " << numbers.nclusters
      << (numbers.nclusters == 1 ? " cluster" : " clusters") << "</title>\n<style>\n"
      << kPageStyle << "</style>\n</head>\n<body>\n";
  WriteHeader(run, numbers, out);
  out << "<main>\n";
  WritePictures(run, numbers, out);
  WriteQualityTable(run, numbers, out);
  WriteFeatureCards(run, numbers, out);
  WriteTreeSection(run, numbers, out);
  WriteRowList(run, numbers, clustering, out);
  out << "</main>\n<script>\n" << kPageScript << "</script>\n</body>\n</html>\n";
}

}  // namespace mardle::exporting
