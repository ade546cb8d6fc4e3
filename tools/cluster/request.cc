// SPDX-License-Identifier: MIT
#include "tools/cluster/request.h"

#include <CLI/CLI.hpp>
#include <climits>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "tools/cluster/mardle_options.h"
#include "tools/import/command_line.h"
#include "tools/text/fields.h"
#include "tools/text/file_error.h"
#include "tools/text/numbers.h"
#include "tools/text/parse_or_answer.h"
#include "tools/text/shell_text.h"
#include "tools/text/suggestion.h"

namespace mardle::tools {
namespace {

namespace fs = std::filesystem;

constexpr char kName[] = "mardle-cluster";
constexpr char kDescription[] =
    "Clusters INPUT into NCLUSTERS clusters and leaves the matrix, the clustering, trees, a page to\n"
    "look at and a record of the run in one folder. INPUT is a folder of texts, a file with one text\n"
    "a line, a table (CSV, TSV), a Matrix Market or svmlight file, an array of NumPy or a sparse matrix\n"
    "of SciPy (.npy, .npz), or a matrix of mardle; - is standard input.";
constexpr char kFooter[] =
    "Options of mardle are taken with one dash and their values behind =, as -crfun=3 -direct;\n"
    "'mardle -help' explains them.\n"
    "Environment: MOLVA_NUM_THREADS, the number of threads.\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage.";

// The options that were given, as they could be typed again.
std::vector<std::string> GivenOptions(const CLI::App& app, const std::set<std::string>& others) {
  std::vector<std::string> given;
  for (const CLI::Option* option : app.get_options()) {
    const std::string name = option->get_name(false, true);
    if (option->count() == 0 || !name.starts_with("--") || others.contains(name)) continue;
    if (option->get_expected_max() == 0) {
      given.push_back(name);
      continue;
    }
    for (const std::string& value : option->results()) given.insert(given.end(), {name, value});
  }
  return given;
}

std::string ClustersAdvice(const std::string& text) {
  return "NCLUSTERS is a whole number from 1 on, not " + Quoted(text);
}

// Names in the folder in which the input should be.
std::vector<std::string> NamesBeside(const std::string& input) {
  std::vector<std::string> names;
  const fs::path folder = fs::path(input).parent_path();
  std::error_code error;
  for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end;
       !error && entry != end; entry.increment(error)) {
    names.push_back((folder / entry->path().filename()).string());
  }
  return names;
}

void RequireInput(const std::string& input, const std::string& nclusters) {
  std::error_code ignored;
  if (input == "-" || fs::exists(input, ignored)) return;
  if (ParseInteger(input) && fs::exists(nclusters, ignored)) {
    throw std::invalid_argument("INPUT comes first, then NCLUSTERS; did you mean '" +
                                std::string(kName) + " " + ShellText(nclusters) + " " + input +
                                "'?");
  }
  throw FileError({input, 0}, "No such file or directory" + DidYouMean(input, NamesBeside(input)));
}

int ClustersIn(const std::string& text) {
  const auto number = ParseInteger(text);
  if (number && *number >= 1 && *number <= INT_MAX) return static_cast<int>(*number);
  std::string message = ClustersAdvice(text);
  const auto value = ParseNumber(text);
  if (value && *value > 1 && *value < INT_MAX) {
    message += "; did you mean " + std::to_string(static_cast<int>(*value)) + "?";
  }
  throw std::invalid_argument(message);
}

}  // namespace

std::string StemOf(const std::string& input) {
  fs::path name = fs::path(input).lexically_normal();
  if (!name.has_filename()) name = name.parent_path();
  std::error_code ignored;
  std::string stem = name.filename().string();
  if (input == "-") return "input";
  if (stem.empty() || stem == "." || stem == "..") {
    return fs::canonical(input, ignored).filename().string();
  }
  if (fs::is_directory(input, ignored)) return stem;
  if (stem.ends_with(".gz")) stem.resize(stem.size() - 3);
  const std::size_t dot = stem.rfind('.');
  return dot == std::string::npos || dot == 0 ? stem : stem.substr(0, dot);
}

std::optional<int> ParseClusterRequest(int argc, const char* const* argv, ClusterRequest& request) {
  request.program = argv[0];
  const std::vector<const char*> others = TakeMardleOptions(argc, argv, request.mardle_options);
  std::string nclusters;
  CLI::App app(kDescription, kName);
  AddHelp(app, kName, kFooter);
  app.add_option("INPUT", request.input, "What to cluster")->required()->type_name("");
  app.add_option("NCLUSTERS", nclusters, "The number of clusters")->required()->type_name("");
  app.add_option("--output", request.output,
                 "The folder for the results; by default NAME-NCLUSTERS")
      ->type_name("FOLDER");
  app.add_flag("--force", request.replace, "Replace results that are in the folder");
  app.add_flag("--quiet", request.quiet, "Print no progress and no summary");
  AddImportOptions(app, request.import);
  const auto parse = [&] { app.parse(static_cast<int>(others.size()), others.data()); };
  // A value apart from its option is counted among the arguments.
  const auto check = [&] { CheckMardleOptions(request.mardle_options); };
  if (const auto status = ParseOrAnswer(app, kName, parse, check)) return status;
  request.import_options =
      GivenOptions(app, {"--output", "--force", "--quiet", "--help", "--version"});
  RequireInput(request.input, nclusters);
  request.nclusters = ClustersIn(nclusters);
  CheckMardleOptions(request.mardle_options);
  request.import.input = request.input;
  request.import.quiet = request.quiet;
  if (request.output.empty()) {
    request.output = StemOf(request.input) + "-" + std::to_string(request.nclusters);
  }
  return std::nullopt;
}

}  // namespace mardle::tools
