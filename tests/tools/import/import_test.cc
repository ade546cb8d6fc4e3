// SPDX-License-Identifier: MIT
#include "tools/import/import.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/tools/import/imported.h"
#include "tools/import/command_line.h"

namespace {

using namespace mardle::tools;
using testing_support::Imported;

InputFormat Detected(const std::string& name, const std::string& beginning = "") {
  return DetectFormat(name, beginning);
}

TEST(DetectFormat, GoesByFolderBannerAndName) {
  EXPECT_EQ(Detected("/"), InputFormat::kFolder);
  EXPECT_EQ(Detected("x.txt", "%%MatrixMarket matrix"), InputFormat::kMatrixMarket);
  EXPECT_EQ(Detected("x.mtx"), InputFormat::kMatrixMarket);
  EXPECT_EQ(Detected("x.csv"), InputFormat::kTable);
  EXPECT_EQ(Detected("x.tab"), InputFormat::kTable);
  EXPECT_EQ(Detected("x.libsvm"), InputFormat::kSvmlight);
  EXPECT_EQ(Detected("x.txt", "a,b\n1,2\n"), InputFormat::kLines);
  EXPECT_EQ(Detected("x.csv.gz"), InputFormat::kTable);
  EXPECT_EQ(BinaryFormatOf("x.npz"), InputFormat::kNpz);
  EXPECT_EQ(BinaryFormatOf("x.npy.gz"), InputFormat::kNpy);
  EXPECT_EQ(BinaryFormatOf("x.csv"), std::nullopt);
}

TEST(DetectFormat, GoesByTheFirstLinesElse) {
  EXPECT_EQ(Detected("x", "# c\n1 2:3\n"), InputFormat::kSvmlight);
  EXPECT_EQ(Detected("x", "a,b\r\nq,2\r\n"), InputFormat::kTable);
  EXPECT_EQ(Detected("x", "a\tb\n1\t2\n"), InputFormat::kTable);
  EXPECT_EQ(Detected("x", "Yes, it is\nNo, never\n"), InputFormat::kLines);
  EXPECT_EQ(Detected("x", "a,b\n1\n"), InputFormat::kLines);
  EXPECT_EQ(Detected("x", ""), InputFormat::kLines);
}

TEST(Import, AFormatMayBeNamed) {
  Imported imported("x.txt", "a,b\n1,2\n");
  imported.options.format = InputFormat::kTable;
  EXPECT_EQ(imported.Run(), "1 2\n1 2\n");
}

TEST(Import, AFolderIsNoFile) {
  Imported imported("x", "");
  imported.options.input = "/usr";
  imported.options.format = InputFormat::kTable;
  EXPECT_EQ(imported.Failure(), "/usr: Is a directory");
}

TEST(Import, TellsWhatItMade) {
  Imported imported("x.csv", "a,b\n1,2\n0,0\n");
  EXPECT_EQ(imported.WithoutFolder(Summary(imported.options, Import(imported.options))),
            "out.mat: 2 rows, 2 columns, 2 entries, dense, from x.csv (table)\n"
            "1 row without entries kept (--drop-empty leaves them out)\n"
            "Cluster with: mardle -denseinput out.mat NCLUSTERS\n");
}

TEST(Import, TheCommandCanBeTyped) {
  Imported imported("x.csv", "a,b\n1,2\n");
  imported.options.output.path = imported.folder.Path("my matrix");
  const std::string summary = Summary(imported.options, Import(imported.options));
  EXPECT_TRUE(
      summary.ends_with("mardle -denseinput '" + imported.options.output.path + "' NCLUSTERS\n"))
      << summary;
}

TEST(Import, TellsThatAMatrixOfStoredCellsAloneHasNoIdf) {
  Imported imported("x.svm", "0 1:2 2:1\n1 1:1 2:3\n");
  EXPECT_EQ(imported.WithoutFolder(Summary(imported.options, Import(imported.options))),
            "out.mat: 2 rows, 2 columns, 4 entries, sparse, from x.svm (svmlight)\n"
            "Cluster with: mardle -colmodel=1 out.mat NCLUSTERS\n");
}

TEST(Import, TellsThatValuesLookWeightedAlready) {
  Imported imported("x.svm", "0 1:2 2:1\n1 1:0.5\n");
  EXPECT_EQ(
      imported.WithoutFolder(Summary(imported.options, Import(imported.options))),
      "out.mat: 2 rows, 2 columns, 3 entries, sparse, from x.svm (svmlight)\n"
      "The values are not whole numbers, so they look weighted already: -colmodel=1 weighs the "
      "columns no further\n"
      "Cluster with: mardle -colmodel=1 out.mat NCLUSTERS\n");
}

TEST(Import, OptionsWithoutUseAreRefused) {
  using Change = std::function<void(ImportOptions&)>;
  const struct {
    std::string name, text, option;
    Change change;
  } kCases[] = {
      {"x.svm", "1 1:1\n", "--label-column", [](auto& o) { o.table.label_column = "name"; }},
      {"x.svm", "1 1:1\n", "--class-column", [](auto& o) { o.table.class_column = "kind"; }},
      {"x.txt", "a b\n", "--text-column", [](auto& o) { o.table.text_columns = {"text"}; }},
      {"x.txt", "a b\n", "--skip-column", [](auto& o) { o.table.skipped_columns = {"1"}; }},
      {"x.txt", "a b\n", "--delimiter", [](auto& o) { o.table.delimiter = ';'; }},
      {"x.txt", "a b\n", "--no-header", [](auto& o) { o.table.no_header = true; }},
      {"x.txt", "a b\n", "--sparse", [](auto& o) { o.preparation.sparse = true; }},
      {"x.txt", "a b\n", "--standardize", [](auto& o) { o.preparation.standardize = true; }},
      {"x.svm", "1 1:1\n", "--missing", [](auto& o) { o.preparation.missing = Missing::kDrop; }},
      {"x.txt", "a b\n", "--decimal-comma", [](auto& o) { o.table.decimal_comma = true; }},
      {"x.txt", "a b\n", "--numbers-only", [](auto& o) { o.table.numbers_only = true; }},
      {"x.csv", "a\n1\n", "--labels", [](auto& o) { o.labels.columns = "l"; }},
      {"x.txt", "a b\n", "--row-labels", [](auto& o) { o.labels.rows = "l"; }},
      {"x.npy", "", "--encoding", [](auto& o) { o.encoding = "latin1"; }},
      {"x.csv", "a\n1\n", "--zero-based", [](auto& o) { o.zero_based = true; }},
      {"x.csv", "a\n1\n", "--files", [](auto& o) { o.folder.file_pattern = "*.x"; }},
      {"x.csv", "a\n1\n", "--folder-classes", [](auto& o) { o.folder.folder_classes = true; }},
      {"x.csv", "a\n1\n", "--token-pattern", [](auto& o) { o.words.rules.pattern = "[a-z]+"; }},
      {"x.csv", "a\n1\n", "--digits", [](auto& o) { o.words.rules.digits = true; }},
      {"x.csv", "a\n1\n", "--more-stop-words", [](auto& o) { o.words.more_stop_words = {"de"}; }},
      {"x.csv", "a\n1\n", "--stem", [](auto& o) { o.words.stem_language = "german"; }},
      {"x.csv", "a\n1\n", "--pairs", [](auto& o) { o.words.pairs = true; }},
      {"x.csv", "a\n1\n", "--stop-words", [](auto& o) { o.words.stop_words = {"none"}; }},
      {"x.csv", "a\n1\n", "--min-count", [](auto& o) { o.limits.min_count = 1; }},
      {"x.csv", "a\n1\n", "--max-fraction", [](auto& o) { o.limits.max_fraction = 0.5; }},
  };
  for (const auto& example : kCases) {
    Imported imported(example.name, example.text);
    example.change(imported.options);
    EXPECT_TRUE(imported.Failure().starts_with(example.option + " has no use for this input: "))
        << example.option;
  }
}

std::optional<int> Parse(std::vector<const char*> arguments, ImportOptions& options) {
  arguments.insert(arguments.begin(), "mardle-import");
  return ParseImportOptions(static_cast<int>(arguments.size()), arguments.data(), options);
}

TEST(ImportOptions, EachSetsItsField) {
  ImportOptions options;
  EXPECT_FALSE(Parse({"--format",
                      "table",
                      "--label-column",
                      "l",
                      "--class-column",
                      "c",
                      "--text-column",
                      "t",
                      "--skip-column",
                      "s",
                      "in",
                      "out",
                      "--skip-column",
                      "u",
                      "--delimiter",
                      "tab",
                      "--no-header",
                      "--sparse",
                      "--zero-based",
                      "--files",
                      "*.x",
                      "--folder-classes",
                      "--token-pattern",
                      "x+",
                      "--stop-words",
                      "none",
                      "--min-count",
                      "3",
                      "--max-fraction",
                      "0.5",
                      "--drop-empty",
                      "--force",
                      "--quiet",
                      "--text-column",
                      "v",
                      "--stop-words",
                      "f",
                      "--more-stop-words",
                      "g",
                      "--stem",
                      "french",
                      "--pairs",
                      "--labels",
                      "lc",
                      "--row-labels",
                      "lr",
                      "--encoding",
                      "latin1",
                      "--decimal-comma",
                      "--missing",
                      "median",
                      "--standardize"},
                     options));
  EXPECT_EQ(options.input, "in");
  EXPECT_EQ(options.output.path, "out");
  EXPECT_EQ(options.format, InputFormat::kTable);
  EXPECT_EQ(options.table.label_column, "l");
  EXPECT_EQ(options.table.class_column, "c");
  EXPECT_EQ(options.table.text_columns, (std::vector<std::string>{"t", "v"}));
  EXPECT_EQ(options.table.skipped_columns, (std::vector<std::string>{"s", "u"}));
  EXPECT_EQ(options.table.delimiter, '\t');
  EXPECT_TRUE(options.table.no_header);
  EXPECT_TRUE(options.preparation.sparse);
  EXPECT_TRUE(options.zero_based);
  EXPECT_EQ(options.folder.file_pattern, "*.x");
  EXPECT_TRUE(options.folder.folder_classes);
  EXPECT_EQ(options.words.rules.pattern, "x+");
  EXPECT_EQ(options.words.stop_words, (std::vector<std::string>{"none", "f"}));
  EXPECT_EQ(options.words.more_stop_words, (std::vector<std::string>{"g"}));
  EXPECT_EQ(options.words.stem_language, "french");
  EXPECT_TRUE(options.words.pairs);
  EXPECT_EQ(options.labels.columns, "lc");
  EXPECT_EQ(options.labels.rows, "lr");
  EXPECT_EQ(options.limits.min_count, 3);
  EXPECT_EQ(options.limits.max_fraction, 0.5);
  EXPECT_TRUE(options.output.drop_empty);
  EXPECT_TRUE(options.output.replace);
  EXPECT_TRUE(options.quiet);
  EXPECT_EQ(options.encoding, "latin1");
  EXPECT_TRUE(options.table.decimal_comma);
  EXPECT_EQ(options.preparation.missing, Missing::kMedian);
  EXPECT_TRUE(options.preparation.standardize);
}

TEST(ImportOptions, WrongOnesEndWithStatusTwo) {
  const std::vector<std::vector<const char*>> kWrong = {
      {},
      {"in"},
      {"in", "out", "more"},
      {"--bogus", "in", "out"},
      {"--format", "xls", "in", "out"},
      {"--min-count", "0", "in", "out"},
      {"--max-fraction", "1.5", "in", "out"},
      {"--delimiter", "ab", "in", "out"},
      {"--digits", "--token-pattern", "x", "in", "out"},
      {"--missing", "guess", "in", "out"},
  };
  for (const auto& arguments : kWrong) {
    ImportOptions options;
    EXPECT_EQ(Parse(arguments, options), 2);
  }
}

}  // namespace
