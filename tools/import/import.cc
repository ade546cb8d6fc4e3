// SPDX-License-Identifier: MIT
#include "tools/import/import.h"

#include <climits>
#include <filesystem>
#include <stdexcept>

#include "tools/import/matrix_market.h"
#include "tools/import/option_scope.h"
#include "tools/import/progress.h"
#include "tools/import/stop_words.h"
#include "tools/import/svmlight.h"
#include "tools/import/table_matrix.h"
#include "tools/text/fields.h"
#include "tools/text/file_identity.h"
#include "tools/text/input_lines.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

// Lines have no headings, so their columns go by number.
std::optional<int> LineColumn(const std::string& name) {
  if (name.empty()) return std::nullopt;
  const auto number = ParseInteger(name);
  if (!number || *number < 1 || *number > INT_MAX) {
    throw std::invalid_argument("columns of lines are numbers, counted from 1, not " +
                                Quoted(name));
  }
  return static_cast<int>(*number);
}

// Those of a folder are looked at one by one, as they are read.
std::vector<std::string> InputsOf(const ImportOptions& options) {
  std::vector<std::string> inputs = {options.input == "-" ? "/dev/stdin" : options.input};
  if (IsStopWordFile(options.stop_words)) inputs.push_back(options.stop_words);
  return inputs;
}

std::vector<std::string> OutputsOf(const ImportOptions& options) {
  std::vector<std::string> outputs = FilesOf(options.output);
  if (!options.quiet) outputs.emplace_back("/dev/stdout");
  return outputs;
}

ImportResult ImportFolder(const ImportOptions& options, TermCounts& terms,
                          const DocumentVisitor& visit) {
  const std::vector<std::string> outputs = OutputsOf(options);
  const auto visit_input = [&](const Document& document) {
    RefuseInputsAsOutputs({&document.place.path, 1}, outputs);
    visit(document);
  };
  const std::int64_t passed_over = VisitFolder(options.input, options.folder, visit_input);
  return {InputFormat::kFolder, terms.Write(options.output, options.limits), passed_over};
}

ImportResult ImportTexts(const ImportOptions& options, InputFormat format, InputLines* input,
                         Progress& progress) {
  const StopWords stop_words = StopWordsNamed(options.stop_words);
  TextTokens tokens(options.token_pattern);
  TermCounts terms(tokens, stop_words);
  const auto visit = [&](const Document& document) {
    terms.Add(document);
    progress.Step();
  };
  if (format == InputFormat::kFolder) return ImportFolder(options, terms, visit);
  if (format == InputFormat::kTable) {
    VisitTable(*input, options.table, visit);
  } else {
    VisitLines(*input,
               {LineColumn(options.table.label_column), LineColumn(options.table.class_column)},
               visit);
  }
  return {format, terms.Write(options.output, options.limits)};
}

ImportResult ImportFile(const ImportOptions& options, Progress& progress) {
  InputLines input(options.input);
  const InputFormat format =
      options.format ? *options.format : DetectFormat(options.input, input.Beginning());
  RefuseIdleOptions(options, format);
  switch (format) {
    case InputFormat::kMatrixMarket:
      return {format, ImportMatrixMarket(input, options.output, options.sparse, progress)};
    case InputFormat::kSvmlight:
      return {format, ImportSvmlight(input, options.output, options.zero_based, progress)};
    case InputFormat::kTable:
      if (!options.table.text_column.empty()) break;
      return {format, ImportTable(input, options.table, options.output, options.sparse, progress)};
    case InputFormat::kLines:
    case InputFormat::kFolder:
      break;
  }
  return ImportTexts(options, format, &input, progress);
}

std::string Count(std::int64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

// What mardle needs to be told of the matrix. A sparse one whose cells are all stored has no IDF.
const char* OptionsFor(const MatrixSummary& matrix) {
  if (matrix.dense) return "-denseinput ";
  return matrix.entries == matrix.rows * matrix.columns ? "-colmodel=1 " : "";
}

}  // namespace

ImportResult Import(const ImportOptions& options) {
  RefuseInputsAsOutputs(InputsOf(options), OutputsOf(options));
  Progress progress(options.quiet);
  if (!options.format && std::filesystem::is_directory(options.input)) {
    RefuseIdleOptions(options, InputFormat::kFolder);
    return ImportTexts(options, InputFormat::kFolder, nullptr, progress);
  }
  return ImportFile(options, progress);
}

std::string Summary(const ImportOptions& options, const ImportResult& result) {
  const MatrixSummary& matrix = result.matrix;
  const std::string& path = options.output.path;
  std::string text = path + ": " + Count(matrix.rows, "row", "rows") + ", " +
                     Count(matrix.columns, "column", "columns") + ", " +
                     Count(matrix.entries, "entry", "entries") + ", " +
                     (matrix.dense ? "dense" : "sparse") + ", from " + options.input + " (" +
                     FormatName(result.format) + ")\n";
  if (result.files_passed_over > 0) {
    text += Count(result.files_passed_over, "file is", "files are") + " no text and left out\n";
  }
  if (matrix.empty_rows > 0) {
    text += Count(matrix.empty_rows, "row", "rows") + " without entries " +
            (options.output.drop_empty ? "left out" : "kept (--drop-empty leaves them out)") + "\n";
  }
  return text + "Cluster with: mardle " + OptionsFor(matrix) + path + " NCLUSTERS\n";
}

}  // namespace mardle::tools
