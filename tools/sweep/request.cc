// SPDX-License-Identifier: MIT
#include "tools/sweep/request.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <climits>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "programs/options.h"
#include "tools/cluster/mardle_options.h"
#include "tools/text/fields.h"
#include "tools/text/file_error.h"
#include "tools/text/numbers.h"
#include "tools/text/parse_or_answer.h"
#include "tools/text/shell_text.h"

namespace mardle::tools {
namespace {

namespace fs = std::filesystem;

constexpr char kName[] = "mardle-sweep";
constexpr char kDescription[] =
    "Clusters the rows of MATRIX into FROM to TO clusters with several seeds, prints a table of all\n"
    "numbers, and tells which one to take and why, or that nothing speaks for one.";
constexpr char kFooter[] =
    "Options of mardle are taken with one dash and their values behind =, as -crfun=1 -rowmodel=4;\n"
    "'mardle -help' explains them. Without -rb every number is clustered directly.\n"
    "Environment: MOLVA_NUM_THREADS, the number of threads.\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage.";
constexpr int kFewestClusters = 2;
constexpr int kFewestSeeds = 2;

// Options of mardle that change the clusterings, or what they are measured against.
constexpr std::array<std::string_view, 14> kTaken = {
    "crfun", "rowmodel", "colmodel", "prune",      "ntrials",    "niter",      "sim",
    "rb",    "direct",   "refine",   "clabelfile", "rlabelfile", "rclassfile", "denseinput"};

std::string NameOf(const std::string& option) { return option.substr(1, option.find('=') - 1); }

bool IsOptionOfMardle(const std::string& name) {
  const auto options = OptionTable();
  return std::any_of(options.begin(), options.end(),
                     [&name](const Option& option) { return name == option.name; });
}

// What mardle knows and a sweep has no use for is told apart from what nobody knows.
void CheckOptions(std::vector<std::string>& options) {
  for (const std::string& option : options) {
    const std::string name = NameOf(option);
    if (name == "seed") {
      throw std::invalid_argument(option + ": a sweep has several seeds; --seeds tells how many");
    }
    if (std::find(kTaken.begin(), kTaken.end(), name) != kTaken.end()) continue;
    if (IsOptionOfMardle(name)) {
      throw std::invalid_argument("-" + name + " has no use here: a sweep keeps no clustering");
    }
  }
  CheckMardleOptions(options);
}

int NumberIn(const std::string& text, const char* what, int least) {
  const auto number = ParseInteger(text);
  if (number && *number >= least && *number <= INT_MAX) return static_cast<int>(*number);
  throw std::invalid_argument(std::string(what) + " is a whole number from " +
                              std::to_string(least) + " on, not " + Quoted(text));
}

void RequireMatrix(const std::string& matrix, const std::string& to) {
  std::error_code ignored;
  if (fs::exists(matrix, ignored)) return;
  if (ParseInteger(matrix) && fs::exists(to, ignored)) {
    throw std::invalid_argument("MATRIX comes first, then FROM and TO");
  }
  throw FileError({matrix, 0}, "No such file or directory");
}

struct Numbers {
  std::string from;
  std::string to;
  std::string step = "1";
};

std::vector<int> NumbersOf(const SweepRequest& request, const Numbers& texts) {
  const int from = NumberIn(texts.from, "FROM", kFewestClusters);
  const int to = NumberIn(texts.to, "TO", kFewestClusters);
  const int step = NumberIn(texts.step, "--step", 1);
  if (from > to) {
    throw std::invalid_argument("FROM is above TO; did you mean '" + std::string(kName) + " " +
                                ShellText(request.matrix) + " " + texts.to + " " + texts.from +
                                "'?");
  }
  std::vector<int> numbers;
  for (long long number = from; number <= to; number += step) {
    numbers.push_back(static_cast<int>(number));
  }
  return numbers;
}

}  // namespace

std::optional<int> ParseSweepRequest(int argc, const char* const* argv, SweepRequest& request) {
  const std::vector<const char*> others = TakeMardleOptions(argc, argv, request.mardle_options);
  Numbers numbers;
  std::string seeds = std::to_string(request.nseeds);
  CLI::App app(kDescription, kName);
  AddHelp(app, kName, kFooter);
  app.add_option("MATRIX", request.matrix, "The matrix, as mardle reads it")
      ->required()
      ->type_name("");
  app.add_option("FROM", numbers.from, "The fewest clusters")->required()->type_name("");
  app.add_option("TO", numbers.to, "The most clusters")->required()->type_name("");
  app.add_option("--step", numbers.step, "From one number to the next (default 1)")->type_name("N");
  app.add_option("--seeds", seeds, "Seeds to try with every number (default 3)")->type_name("N");
  app.add_option("--csv", request.csv, "Write the table with all its digits to this file")
      ->type_name("FILE");
  app.add_option("--picture", request.picture, "Draw the curves into this file, as SVG")
      ->type_name("FILE");
  app.add_flag("--quiet", request.quiet, "Print no progress");
  const auto parse = [&] { app.parse(static_cast<int>(others.size()), others.data()); };
  // A value apart from its option is counted among the arguments.
  const auto check = [&] { CheckOptions(request.mardle_options); };
  if (const auto status = ParseOrAnswer(app, kName, parse, check)) return status;
  RequireMatrix(request.matrix, numbers.to);
  request.numbers = NumbersOf(request, numbers);
  request.nseeds = NumberIn(seeds, "--seeds", kFewestSeeds);
  if (!request.csv.empty() && request.csv == request.picture) {
    throw std::invalid_argument("--csv and --picture want two names");
  }
  CheckOptions(request.mardle_options);
  return std::nullopt;
}

}  // namespace mardle::tools
