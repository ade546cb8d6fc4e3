// SPDX-License-Identifier: MIT
//
// How the run was made, as far as the page was told: models, criterion, and a command line that
// says the same.
#include "programs/code_names.h"
#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

void WriteNote(const char* name, const std::string& value, std::ostream& out) {
  out << "<div><dt>" << name << "</dt><dd>" << value << "</dd></div>\n";
}

}  // namespace

void WriteRunNotes(const PageRun& run, std::ostream& out) {
  const RunParams& params = run.params;
  out << "<section id=\"run\" aria-labelledby=\"run-heading\">\n"
         "<h2 id=\"run-heading\">How the run was made</h2>\n<dl class=\"notes\">\n";
  WriteNote("Matrix", Html(run.matrix_name), out);
  WriteNote("Clustering", Html(run.clustering_name), out);
  if (!run.tree_name.empty()) WriteNote("Tree", Html(run.tree_name), out);
  WriteNote("Entries", Grouped(NonZeroCount(run.mat)), out);
  WriteNote("Similarity", SimilarityName(params.simfun), out);
  WriteNote("Criterion", Html(CriterionName(params.crfun)), out);
  WriteNote("Row model", RowModelName(params.rowmodel), out);
  WriteNote("Column model", ColumnModelName(params.colmodel), out);
  WriteNote("Pruning", Shortest(static_cast<double>(params.prune)), out);
  out << "</dl>\n</section>\n";
}

}  // namespace mardle::exporting
