// SPDX-License-Identifier: MIT
#include "tools/export/request.h"

#include <CLI/CLI.hpp>
#include <map>
#include <optional>
#include <utility>

#include "lib/molva.h"
#include "tools/text/numbers.h"
#include "tools/text/parse_or_answer.h"
#include "tools/text/version.h"

namespace mardle::exporting {
namespace {

// What CLI11 fills and a request holds in another form.
struct Texts {
  std::string prune = "1.0";
};

// More than a report prints, since a page has room for them.
constexpr int kPageFeatures = 10;

constexpr char kName[] = "mardle-export";

CLI::App* AddFormat(CLI::App& app, const char* name, const char* what, Format format,
                    Request& request) {
  CLI::App* command = app.add_subcommand(name, what);
  command->callback([&request, format] { request.format = format; });
  command->add_option("--output", request.output, "Write to this file, not to standard output")
      ->type_name("FILE");
  return command;
}

CLI::Option* AddFile(CLI::App* command, const char* name, std::string& path, const char* what) {
  return command->add_option(name, path, what)->type_name("FILE");
}

void AddRowFiles(CLI::App* command, CLI::Option* matrix, MatrixFiles& files) {
  AddFile(command, "--rlabelfile", files.rlabelfile, "Row labels, instead of MATRIX.rlabel")
      ->needs(matrix);
}

void AddClassFile(CLI::App* command, CLI::Option* matrix, MatrixFiles& files) {
  AddFile(command, "--rclassfile", files.rclassfile, "Row classes, instead of MATRIX.rclass")
      ->needs(matrix);
}

CLI::Option* AddMatrix(CLI::App* command, MatrixFiles& files, const char* what) {
  return AddFile(command, "--matrix", files.matrix, what);
}

void AddClustering(CLI::App* command, Request& request) {
  AddFile(command, "--clustering", request.clustering, "The clustering file of the run")
      ->required();
}

void AddTable(CLI::App* command, Request& request) {
  AddClustering(command, request);
  CLI::Option* matrix = AddMatrix(command, request.files, "The matrix that was clustered");
  matrix->required();
  AddRowFiles(command, matrix, request.files);
  AddClassFile(command, matrix, request.files);
}

// An option whose value is one of a few words.
template <typename Value>
void AddChoice(CLI::App* command, const char* name, const std::map<std::string, Value>& choices,
               Value& chosen, const char* what) {
  std::string words;
  for (const auto& [word, value] : choices) words += (words.empty() ? "" : "|") + word;
  command
      ->add_option_function<std::string>(
          name, [&chosen, choices](const std::string& word) { chosen = choices.at(word); }, what)
      ->check(CLI::IsMember(choices))
      ->type_name(words);
}

void AddTree(CLI::App* command, Request& request) {
  AddFile(command, "--tree", request.tree, "The tree file of the run")->required();
  CLI::Option* matrix = AddMatrix(
      command, request.files,
      "The matrix whose rows are the leaves; without it leaves are called by their numbers");
  AddRowFiles(command, matrix, request.files);
  AddChoice<HeightsFrom>(
      command, "--heights",
      {{"order", HeightsFrom::kOrder}, {"similarity", HeightsFrom::kSimilarity}}, request.heights,
      "Heights of the nodes: their order (default), or 1 - similarity, which only the tree over "
      "the clusters allows");
}

// Empty for a number from 0 to 1, else what is wrong. A text such as "nan" is no such number.
std::string CheckFraction(const std::string& text) {
  const std::optional<double> value = tools::ParseNumber(text);
  return value && *value >= 0 && *value <= 1 ? "" : "'" + text + "' is not a number from 0 to 1";
}

// The codes of an enumeration, first to last.
CLI::Range Codes(int first, int last) { return {first, last}; }

// The models of a run, without which its files cannot be measured.
void AddModels(CLI::App* command, Request& request, Texts& texts) {
  RunParams& run = request.run;
  AddFile(command, "--record", request.record,
          "The record of the run, instead of the .run.json beside the clustering");
  command->add_option("--sim", run.simfun, "Similarity: 1 cosine (default), 2 correlation")
      ->check(Codes(MOLVA_SIM_COSINE, MOLVA_SIM_CORRELATION))
      ->type_name("INT");
  command->add_option("--rowmodel", run.rowmodel, "Row model, 1 to 4 (default 1, none)")
      ->check(Codes(MOLVA_ROW_NONE, MOLVA_ROW_LOG))
      ->type_name("INT");
  command->add_option("--colmodel", run.colmodel, "Column model: 1 none, 2 IDF (default)")
      ->check(Codes(MOLVA_COL_NONE, MOLVA_COL_IDF))
      ->type_name("INT");
  command->add_option("--prune", texts.prune, "Pruning fraction, 0 to 1 (default 1.0)")
      ->check(CheckFraction)
      ->type_name("FLOAT");
  command->add_flag("--denseinput", run.denseinput, "The matrix is in the dense format");
}

void AddFeatureCount(CLI::App* command, Request& request, const char* what) {
  command->add_option("--nfeatures", request.run.nfeatures, what)
      ->check(CLI::Range(1, 100))
      ->type_name("INT");
  request.run.nfeatures = kPageFeatures;
}

void AddColumnLabels(CLI::App* command, Request& request) {
  AddFile(command, "--clabelfile", request.files.clabelfile,
          "Column labels, instead of MATRIX.clabel");
}

void AddContents(CLI::App* command, Request& request) {
  AddChoice<Contents>(command, "--contents",
                      {{"text", Contents::kText}, {"table", Contents::kTable}}, request.contents,
                      "Call rows and columns documents and words (text) or not (table); by default "
                      "a sparse matrix without negative values whose columns are called by letters "
                      "alone is text");
}

void AddPage(CLI::App* command, Request& request, Texts& texts) {
  RunParams& run = request.run;
  AddTable(command, request);
  AddColumnLabels(command, request);
  AddFile(command, "--tree", request.tree,
          "A tree file of the run: the tree over the clusters is shown instead of a computed one, "
          "the complete tree is drawn below each cluster and gives F-scores");
  AddContents(command, request);
  command->add_option("--crfun", run.crfun, "Criterion of the run, 1 to 9 (default 2, I2)")
      ->check(Codes(MOLVA_CRFUN_I1, MOLVA_CRFUN_H3))
      ->type_name("INT");
  command
      ->add_option("--treecrfun", run.treecrfun, "Criterion of the tree, 1 to 7 (default: --crfun)")
      ->check(Codes(MOLVA_CRFUN_I1, MOLVA_CRFUN_H2))
      ->type_name("INT");
  AddModels(command, request, texts);
  AddFeatureCount(command, request, "Columns shown of each kind (default 10)");
  command->add_flag("--noreorder", run.noreorder, "Show the tree's branches in number order");
}

void AddFeatures(CLI::App* command, Request& request, Texts& texts) {
  AddClustering(command, request);
  AddMatrix(command, request.files, "The matrix that was clustered")->required();
  AddColumnLabels(command, request);
  AddChoice<TableForm>(command, "--as", {{"tsv", TableForm::kTsv}, {"json", TableForm::kJson}},
                       request.form, "Tab-separated lines (default) or JSON");
  AddModels(command, request, texts);
  AddFeatureCount(command, request, "Columns of each kind (default 10)");
}

void AddHeatMap(CLI::App* command, Request& request, Texts& texts) {
  AddTable(command, request);
  AddColumnLabels(command, request);
  AddContents(command, request);
  AddModels(command, request, texts);
}

// Which options of the run were given, and not left to their defaults.
std::set<std::string> GivenOptions(const CLI::App& app) {
  std::set<std::string> given;
  for (const CLI::App* command : app.get_subcommands()) {
    for (const CLI::Option* option : command->get_options()) {
      if (option->count() > 0) given.insert(option->get_name());
    }
  }
  return given;
}

// A complete tree's similarities do not stand at its nodes, and only it has rows for leaves.
void CheckHeights(const Request& request) {
  if (request.heights == HeightsFrom::kSimilarity && !request.files.matrix.empty()) {
    throw CLI::ValidationError("--heights",
                               "the similarities of a tree over the rows give no heights");
  }
}

void SettleOptions(const Texts& texts, Format format, RunParams& run) {
  run.prune = static_cast<float>(*tools::ParseNumber(texts.prune));
  DeriveSettings(run);
  if (format == Format::kHtml && run.treecrfun > MOLVA_CRFUN_H2) {
    throw CLI::ValidationError("--treecrfun",
                               "trees are built under the criteria 1 to 7; one of them is wanted");
  }
}

void Describe(CLI::App& app) {
  app.description("Turns what mardle wrote into tables, trees and pages for other programs.");
  app.name(kName);
  app.set_version_flag("--version", std::string(kName) + " " + tools::kVersion);
  app.set_help_flag("--help", "Print this help");
  // That there is one is checked last, so that a word which is none is named.
  app.require_subcommand(0, 1);
  app.footer("mardle-export FORMAT --help lists the options of one format.");
}

}  // namespace

std::variant<Request, int> ParseRequest(int argc, const char* const* argv) {
  Request request;
  Texts texts;
  CLI::App app;
  Describe(app);
  AddTable(AddFormat(app, "tsv", "The clustering as tab-separated lines", Format::kTsv, request),
           request);
  AddTable(AddFormat(app, "json", "The clustering as JSON", Format::kJson, request), request);
  AddTree(AddFormat(app, "newick", "A tree in the Newick form", Format::kNewick, request), request);
  CLI::App* linkage =
      AddFormat(app, "linkage", "A tree as a linkage table", Format::kLinkage, request);
  AddTree(linkage, request);
  AddFile(linkage, "--leaves", request.leaves, "Write the labels of the leaves to this file");
  AddTree(AddFormat(app, "dot", "A tree for Graphviz", Format::kDot, request), request);
  AddPage(AddFormat(app, "html", "The run as one page", Format::kHtml, request), request, texts);
  AddFeatures(AddFormat(app, "features", "The columns of the clusters with their shares",
                        Format::kFeatures, request),
              request, texts);
  AddHeatMap(
      AddFormat(app, "heatmap", "The matrix as a picture, an SVG file", Format::kHeatMap, request),
      request, texts);
  const auto parse = [&] {
    app.parse(argc, argv);
    if (app.get_subcommands().empty()) throw CLI::RequiredError("A format");
    CheckHeights(request);
    request.told = GivenOptions(app);
    SettleOptions(texts, request.format, request.run);
  };
  if (const auto status = tools::ParseOrAnswer(app, kName, parse)) return *status;
  return request;
}

}  // namespace mardle::exporting
