// SPDX-License-Identifier: MIT
#include "tools/import/command_line.h"

#include <CLI/CLI.hpp>
#include <climits>
#include <cstdio>
#include <map>
#include <string>

#include "tools/text/parse_or_answer.h"

namespace mardle::tools {
namespace {

constexpr char kName[] = "mardle-import";
constexpr char kDescription[] =
    "Turns INPUT into a matrix that mardle reads, with the labels of its rows (.rlabel) and columns\n"
    "(.clabel) and the classes of its rows (.rclass) beside it. INPUT is a folder of texts, a file\n"
    "with one text a line, a table (CSV, TSV), a Matrix Market file, an svmlight file, an array of\n"
    "NumPy or a sparse matrix of SciPy (.npy, .npz); - is standard input. Its format is found out unless --format names it.";
constexpr char kFooter[] = "Exit status: 0 done, 1 failed, 2 wrong usage.";

const std::map<std::string, InputFormat> kFormats = {
    {"mtx", InputFormat::kMatrixMarket}, {"svmlight", InputFormat::kSvmlight},
    {"table", InputFormat::kTable},      {"lines", InputFormat::kLines},
    {"npy", InputFormat::kNpy},          {"npz", InputFormat::kNpz}};

const std::map<std::string, Missing> kMissing = {{"drop", Missing::kDrop},
                                                 {"mean", Missing::kMean},
                                                 {"median", Missing::kMedian},
                                                 {"zero", Missing::kZero}};

char DelimiterNamed(const std::string& name) {
  if (name == "tab") return '\t';
  if (name.size() == 1 && name != "\"" && name != "\n") return name[0];
  throw CLI::ValidationError("--delimiter", "one character or tab is wanted");
}

void AddGeneral(CLI::App& app, ImportOptions& options) {
  app.add_option_function<std::string>(
         "--format", [&options](const std::string& name) { options.format = kFormats.at(name); },
         "The format of the file: mtx, svmlight, table, lines, npy, npz")
      ->type_name("NAME")
      ->check(CLI::IsMember({"mtx", "svmlight", "table", "lines", "npy", "npz"}).description(""));
  app.add_option("--encoding", options.encoding, "The encoding of texts and tables, as latin1")
      ->type_name("NAME");
  app.add_flag("--drop-empty", options.output.drop_empty, "Leave rows without entries out");
}

void AddColumns(CLI::App& app, ImportOptions& options) {
  TableOptions& table = options.table;
  app.add_option("--label-column", table.label_column, "The column with the labels of the rows")
      ->type_name("NAME|N");
  app.add_option("--class-column", table.class_column, "The column with the classes of the rows")
      ->type_name("NAME|N");
  app.add_option("--text-column", table.text_columns, "Count the words of this column of a table")
      ->type_name("NAME|N")
      ->allow_extra_args(false);
  app.add_option("--skip-column", table.skipped_columns, "Leave this column of a table out")
      ->type_name("NAME|N")
      ->allow_extra_args(false);
  app.add_option_function<std::string>(
         "--delimiter",
         [&table](const std::string& name) { table.delimiter = DelimiterNamed(name); },
         "What stands between the fields of a table; tab is a tab")
      ->type_name("CHARACTER");
  app.add_flag("--no-header", table.no_header, "The first record of the table is a row");
  app.add_flag("--decimal-comma", table.decimal_comma, "Numbers of a table are written as 1,5");
  app.add_flag("--numbers-only", table.numbers_only,
               "Leave out columns of a table that are no numbers");
  app.add_option_function<std::string>(
         "--missing",
         [&options](const std::string& name) { options.preparation.missing = kMissing.at(name); },
         "Missing values: drop their rows, or fill in the mean or median of the column or zero")
      ->type_name("WAY")
      ->check(CLI::IsMember({"drop", "mean", "median", "zero"}).description(""));
  app.add_flag("--standardize", options.preparation.standardize,
               "Bring the columns of a table to mean 0 and deviation 1");
  app.add_flag("--sparse", options.preparation.sparse,
               "Write a table or an array as a sparse matrix");
  app.add_option("--labels", options.labels.columns,
                 "The labels of the columns, one a line; for formats that have none")
      ->type_name("FILE");
  app.add_option("--row-labels", options.labels.rows, "The same for the rows")->type_name("FILE");
  app.add_flag("--zero-based", options.zero_based, "Columns of svmlight files count from 0");
}

void AddTexts(CLI::App& app, ImportOptions& options) {
  app.add_option("--files", options.folder.file_pattern, "Take files of a folder with such names")
      ->type_name("PATTERN");
  app.add_flag("--folder-classes", options.folder.folder_classes,
               "The first folder below INPUT is the class");
  WordOptions& words = options.words;
  CLI::Option* const pattern = app.add_option("--token-pattern", words.rules.pattern,
                                              "What a word is; by default two letters or more")
                                   ->type_name("REGEX");
  app.add_flag("--digits", words.rules.digits, "Digits may stand in words, too")->excludes(pattern);
  app.add_option(
         "--stop-words", words.stop_words,
         "Words to leave out: a language (default english), none or a file; may be repeated")
      ->type_name("NAME|FILE")
      ->allow_extra_args(false);
  app.add_option("--more-stop-words", words.more_stop_words, "Words to leave out as well")
      ->type_name("NAME|FILE")
      ->allow_extra_args(false);
  app.add_option("--stem", words.stem_language, "Take the endings of a language off the words")
      ->type_name("LANGUAGE");
  app.add_flag("--pairs", words.pairs, "Count pairs of neighbouring words, too");
  app.add_option("--min-count", options.limits.min_count,
                 "Leave out words of fewer documents (default 2)")
      ->type_name("N")
      ->check(CLI::Range(1, INT_MAX).description(""));
  app.add_option("--max-fraction", options.limits.max_fraction,
                 "Leave out words of more than this part of the documents")
      ->type_name("F")
      ->check(CLI::Range(0.0, 1.0).description(""));
}

}  // namespace

void AddImportOptions(CLI::App& app, ImportOptions& options) {
  AddGeneral(app, options);
  AddColumns(app, options);
  AddTexts(app, options);
}

std::optional<int> ParseImportOptions(int argc, const char* const* argv, ImportOptions& options) {
  CLI::App app(kDescription, kName);
  AddHelp(app, kName, kFooter);
  app.add_option("INPUT", options.input, "The folder or file to import")->required()->type_name("");
  app.add_option("MATRIX", options.output.path, "The matrix file to write")
      ->required()
      ->type_name("");
  app.add_flag("--force", options.output.replace, "Replace files that exist");
  app.add_flag("--quiet", options.quiet, "Print no progress and no summary");
  AddImportOptions(app, options);
  return ParseOrAnswer(app, kName, [&] { app.parse(argc, argv); });
}

}  // namespace mardle::tools
