// SPDX-License-Identifier: MIT
#include "tools/export/export_run.h"

#include <memory>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "lib/support/fatal.h"
#include "tools/export/clustering.h"
#include "tools/export/dot.h"
#include "tools/export/features.h"
#include "tools/export/linkage.h"
#include "tools/export/matrix_picture.h"
#include "tools/export/newick.h"
#include "tools/export/page/html_page.h"
#include "tools/export/request.h"
#include "tools/export/rows.h"
#include "tools/export/run_settings.h"
#include "tools/export/table.h"
#include "tools/export/tree.h"
#include "tools/export/wording.h"
#include "tools/text/file_error.h"
#include "tools/text/kept_inputs.h"
#include "tools/text/output_file.h"
#include "tools/text/run_files.h"
#include "tools/text/tool_frame.h"

namespace mardle::exporting {
namespace {

std::string TableText(const Request& request) {
  const NamedRows rows = ReadNamedRows(request.files);
  const Clustering clustering = ReadClustering(request.clustering, rows.nrows);
  std::ostringstream out;
  (request.format == Format::kTsv ? WriteTsv : WriteJson)(rows, clustering, out);
  return out.str();
}

// Rows by their labels; without a matrix leaves by their numbers.
std::vector<std::string> LeafLabels(const Request& request, const Tree& tree) {
  std::vector<std::string> labels(static_cast<std::size_t>(tree.nleaves));
  if (request.files.matrix.empty()) {
    for (std::size_t x = 0; x < labels.size(); ++x) labels[x] = std::to_string(x);
    return labels;
  }
  const NamedRows rows = ReadNamedRows(request.files);
  if (rows.nrows != tree.nleaves) {
    throw tools::FileError({request.tree, static_cast<std::int64_t>(tree.parent.size())},
                           "the file ends here, a tree of " + std::to_string(tree.nleaves) +
                               " leaves; the matrix has " + std::to_string(rows.nrows) + " rows");
  }
  for (std::size_t x = 0; x < labels.size(); ++x) {
    labels[x] = rows.rlabels[static_cast<std::int64_t>(x)];
  }
  return labels;
}

// What is written, the export and with it the labels of the leaves, and what is said.
struct ExportTexts {
  std::string main;
  std::string leaves;
  std::vector<std::string> warnings = {};  // told when all is written
};

std::string LeavesText(const Tree& tree, const std::vector<std::string>& labels) {
  std::string text;
  for (const int leaf : tree.Leaves()) text += labels[static_cast<std::size_t>(leaf)] + "\n";
  return text;
}

ExportTexts TreeTexts(const Request& request) {
  const Tree tree = ReadTree(request.tree);
  const std::vector<std::string> labels = LeafLabels(request, tree);
  const std::vector<double> heights = Heights(tree, request.heights);
  std::ostringstream out;
  if (request.format == Format::kNewick) WriteNewick(tree, labels, heights, out);
  if (request.format == Format::kLinkage) WriteLinkage(tree, heights, out);
  if (request.format == Format::kDot) WriteDot(tree, labels, heights, out);
  return {out.str(), LeavesText(tree, labels)};
}

// What the exports measure anew, with the run's own parameters.
struct MeasuredRun {
  explicit MeasuredRun(const Request& request)
      : settings(SettleRun(request)),
        mat(ReadWholeMatrix(request.files, settings.params.denseinput)),
        clustering(ReadClustering(request.clustering, mat.nrows)) {}
  RunSettings settings;
  Matrix mat;
  Clustering clustering;
};

ExportTexts PageTexts(const Request& request) {
  const MeasuredRun run(request);
  std::ostringstream out;
  WriteHtmlPage(
      {request.files.matrix, request.clustering, request.tree, run.settings.params, run.mat,
       WordingOf(request.contents, run.mat), run.settings.record ? &*run.settings.record : nullptr},
      run.clustering, out);
  return {out.str(), {}, run.settings.warnings};
}

DescribedClusters Describe(const Request& request, const MeasuredRun& run) {
  if (run.clustering.nclusters == 0) {
    throw tools::FileError({request.clustering, 0},
                           "no row has a cluster, there is nothing to show");
  }
  return {run.settings.params, run.mat, run.clustering.part, run.clustering.nclusters};
}

ExportTexts FeaturesTexts(const Request& request) {
  const MeasuredRun run(request);
  std::ostringstream out;
  (request.form == TableForm::kTsv ? WriteFeaturesTsv : WriteFeaturesJson)(
      run.mat, Describe(request, run), out);
  return {out.str(), {}, run.settings.warnings};
}

ExportTexts PictureTexts(const Request& request) {
  const MeasuredRun run(request);
  std::ostringstream out;
  WriteMatrixPicture(run.mat, Describe(request, run), WordingOf(request.contents, run.mat), out);
  return {out.str(), {}, run.settings.warnings};
}

ExportTexts TextsOf(const Request& request) {
  switch (request.format) {
    case Format::kTsv:
    case Format::kJson:
      return {TableText(request), {}};
    case Format::kNewick:
    case Format::kLinkage:
    case Format::kDot:
      return TreeTexts(request);
    case Format::kHtml:
      return PageTexts(request);
    case Format::kFeatures:
      return FeaturesTexts(request);
    case Format::kHeatMap:
      return PictureTexts(request);
  }
  return {};
}

// The readers of matrices take what has no name for the file beside the matrix.
std::string CompanionName(const std::string& given, const Request& request, const char* suffix) {
  return given.empty() ? request.files.matrix + suffix : given;
}

void RefuseInputsAsOutputs(const Request& request) {
  const MatrixFiles& files = request.files;
  const std::string inputs[] = {
      files.matrix,
      CompanionName(files.clabelfile, request, ".clabel"),
      CompanionName(files.rlabelfile, request, ".rlabel"),
      CompanionName(files.rclassfile, request, ".rclass"),
      request.clustering,
      request.tree,
      request.record.empty() ? tools::RecordPathOf(request.clustering) : request.record};
  const std::string outputs[] = {request.output.empty() ? "/dev/stdout" : request.output,
                                 request.leaves};
  tools::RefuseInputsAsOutputs(inputs, outputs);
}

// All texts are written before the first appears under its name.
void Write(const Request& request, const ExportTexts& texts) {
  std::vector<std::unique_ptr<tools::OutputFile>> files;
  std::vector<tools::OutputFile*> complete;
  const auto write = [&](const std::string& name, const std::string& text) {
    if (name.empty()) return;
    tools::OutputFile& file = *files.emplace_back(std::make_unique<tools::OutputFile>(name));
    file.Write(text);
    file.Complete();
    complete.push_back(&file);
  };
  write(request.leaves, texts.leaves);
  write(request.output, texts.main);
  if (request.output.empty()) tools::WriteStandardOutput(texts.main);
  tools::Publish(complete);
}

int Work(int argc, const char* const* argv) {
  const std::variant<Request, int> parsed = ParseRequest(argc, argv);
  if (const int* status = std::get_if<int>(&parsed)) return *status;
  const Request& request = std::get<Request>(parsed);
  RefuseInputsAsOutputs(request);
  // The whole export is made first, so one that fails leaves an older file as it was.
  const ExportTexts texts = TextsOf(request);
  Write(request, texts);
  for (const std::string& warning : texts.warnings) {
    tools::ReportError("mardle-export", "warning: " + warning);
  }
  return tools::kSuccess;
}

}  // namespace

int Export(int argc, const char* const* argv) {
  const molva::CatchableErrors errors_are_thrown;
  return tools::StatusOf("mardle-export", [&] { return Work(argc, argv); });
}

}  // namespace mardle::exporting
