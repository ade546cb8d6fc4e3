// SPDX-License-Identifier: MIT
//
// How the run was made, as far as the page was told: models and criterion, and with a record of the
// run its seed and its command.
#include "programs/code_names.h"
#include "tools/export/escape.h"
#include "tools/export/page/page_parts.h"
#include "tools/text/shell_text.h"

namespace mardle::exporting {
namespace {

void WriteNote(const char* name, const std::string& value, std::ostream& out) {
  out << "<div><dt>" << name << "</dt><dd>" << value << "</dd></div>\n";
}

// A command that makes the clustering again, when all that it hangs on is told.
std::string CommandOf(const PageRun& run, const RunRecord& record) {
  std::string command = record.sampled ? "mardle-run" : "mardle";
  for (const std::string& option : record.options) command += " " + tools::ShellText(option);
  if (!OptionOf(record, "seed")) command += " -seed=" + std::to_string(record.seed);
  return command + " " + tools::ShellText(run.matrix_name) + " " + std::to_string(record.clusters);
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + tools::ShellText(word);
  return text;
}

void WriteRecord(const PageRun& run, std::ostream& out) {
  if (run.record == nullptr) {
    WriteNote("Seed", "not recorded", out);
    return;
  }
  const RunRecord& record = *run.record;
  WriteNote("Command", "<code>" + Html(CommandOf(run, record)) + "</code>", out);
  if (record.sampled) WriteNote("Sampled form", SampleText(run, *record.sampled), out);
  WriteNote("Seed", std::to_string(record.seed), out);
  WriteNote("Version", "mardle " + Html(record.version), out);
  WriteNote("Threads", Grouped(record.threads), out);
  if (record.import_options) {
    WriteNote("Import", "<code>mardle-import " + Html(Joined(*record.import_options)) + "</code>",
              out);
  }
  WriteNote("Record", Html(record.path), out);
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
  WriteRecord(run, out);
  out << "</dl>\n</section>\n";
}

}  // namespace mardle::exporting
