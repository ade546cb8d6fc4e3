// SPDX-License-Identifier: MIT
#include "tools/import/import.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <iterator>
#include <stdexcept>

#include "tools/import/matrix_market.h"
#include "tools/import/numpy_matrix.h"
#include "tools/import/option_scope.h"
#include "tools/import/progress.h"
#include "tools/import/stop_words.h"
#include "tools/import/svmlight.h"
#include "tools/import/table_matrix.h"
#include "tools/import/text_input.h"
#include "tools/import/unpacked_file.h"
#include "tools/text/fields.h"
#include "tools/text/input_lines.h"
#include "tools/text/kept_inputs.h"
#include "tools/text/numbers.h"
#include "tools/text/shell_text.h"

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
  for (const std::string& file : {options.labels.columns, options.labels.rows}) {
    if (!file.empty()) inputs.push_back(file);
  }
  for (const auto* names : {&options.words.stop_words, &options.words.more_stop_words}) {
    std::copy_if(names->begin(), names->end(), std::back_inserter(inputs), IsStopWordFile);
  }
  return inputs;
}

std::vector<std::string> OutputsOf(const ImportOptions& options) {
  std::vector<std::string> outputs = FilesOf(options.output);
  if (!options.quiet) outputs.emplace_back("/dev/stdout");
  return outputs;
}

std::string Count(std::int64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

constexpr char kOtherEncodings[] = "; --encoding NAME reads other encodings, latin1 for instance";

std::vector<std::string> NotesOn(const FolderReport& report) {
  std::vector<std::string> notes;
  const auto first = [](const FileCount& files) {
    return (files.count > 1 ? ", the first: " : ": ") + files.first;
  };
  if (const FileCount& files = report.results; files.count > 0) {
    notes.push_back(Count(files.count, "file is a result", "files are results") +
                    " of an earlier run and left out" + first(files));
  }
  if (const FileCount& files = report.no_texts; files.count > 0) {
    notes.push_back(Count(files.count, "file is", "files are") + " no text and left out" +
                    first(files));
  }
  if (const FileCount& files = report.malformed; files.count > 0) {
    notes.push_back(Count(files.count, "file holds", "files hold") + " bytes that are not UTF-8" +
                    first(files) + kOtherEncodings);
  }
  return notes;
}

void NoteMalformedLines(const TextWatch& watch, std::vector<std::string>& notes) {
  if (watch.malformed_lines() == 0) return;
  notes.push_back(Count(watch.malformed_lines(), "line holds", "lines hold") +
                  " bytes that are not UTF-8, the first is line " +
                  std::to_string(watch.first_malformed_line()) + kOtherEncodings);
}

void VisitInputFolder(const ImportOptions& options, const DocumentVisitor& visit,
                      ImportResult& result) {
  const std::vector<std::string> outputs = OutputsOf(options);
  const auto visit_input = [&](const Document& document) {
    RefuseInputsAsOutputs({&document.place.path, 1}, outputs);
    visit(document);
  };
  const FolderReport report =
      VisitFolder(options.input, options.folder, options.encoding, visit_input);
  result.files = report.files;
  result.notes = NotesOn(report);
}

void NoteMarkedUp(std::int64_t texts, std::vector<std::string>& notes) {
  if (texts == 0) return;
  notes.push_back(Count(texts, "text holds", "texts hold") +
                  " marks of formatting (HTML, XML, roff), which are left out");
}

ImportResult ImportTexts(const ImportOptions& options, InputFormat format, InputLines* input,
                         Progress& progress) {
  TermCounts terms(options.words);
  std::int64_t marked_up = 0;
  const auto visit = [&](const Document& document) {
    terms.Add(document);
    marked_up += document.was_marked_up ? 1 : 0;
    progress.Step();
  };
  ImportResult result{format};
  if (format == InputFormat::kFolder) {
    VisitInputFolder(options, visit, result);
  } else if (format == InputFormat::kTable) {
    VisitTable(*input, options.table, visit);
  } else {
    VisitLines(*input,
               {LineColumn(options.table.label_column), LineColumn(options.table.class_column)},
               visit);
  }
  NoteMarkedUp(marked_up, result.notes);
  result.matrix = terms.Write(options.output, options.limits);
  return result;
}

ImportResult ImportNumbers(const ImportOptions& options, InputLines& input, Progress& progress) {
  ImportResult result{InputFormat::kTable};
  result.matrix = ImportTable(input, options.table, options.preparation, options.output, progress,
                              result.notes);
  return result;
}

ImportResult ImportLines(const ImportOptions& options, InputFormat format, InputLines& input,
                         Progress& progress) {
  const GivenLabels labels(options.labels);
  switch (format) {
    case InputFormat::kMatrixMarket:
      return {format, ImportMatrixMarket(input, options.output, options.preparation.sparse, labels,
                                         progress)};
    case InputFormat::kSvmlight:
      return {format, ImportSvmlight(input, options.output, options.zero_based, labels, progress)};
    case InputFormat::kTable:
      if (!options.table.text_columns.empty()) break;
      return ImportNumbers(options, input, progress);
    case InputFormat::kLines:
    case InputFormat::kFolder:
    case InputFormat::kNpy:
    case InputFormat::kNpz:
      break;
  }
  return ImportTexts(options, format, &input, progress);
}

ImportResult ImportNumpy(const ImportOptions& options, InputFormat format) {
  RefuseIdleOptions(options, format);
  const GivenLabels labels(options.labels);
  UnpackedFile file(options.input);
  std::string bytes = WholeContents(file);
  ImportResult result{format};
  const NumpyRequest request{file.name(), options.output, options.preparation, labels};
  result.matrix = format == InputFormat::kNpy ? ImportNpy(std::move(bytes), request, result.notes)
                                              : ImportNpz(bytes, request, result.notes);
  return result;
}

ImportResult ImportFile(const ImportOptions& options, Progress& progress) {
  TextInput input(options.input, options.encoding);
  InputLines& lines = input.lines();
  const InputFormat format =
      options.format ? *options.format : DetectFormat(options.input, lines.Beginning());
  RefuseIdleOptions(options, format);
  ImportResult result = ImportLines(options, format, lines, progress);
  NoteMalformedLines(input.watch(), result.notes);
  return result;
}

}  // namespace

ImportResult Import(const ImportOptions& options) {
  if (!options.encoding.empty()) RequireEncoding(options.encoding);
  RefuseInputsAsOutputs(InputsOf(options), OutputsOf(options));
  Progress progress(options.quiet);
  if (!options.format && std::filesystem::is_directory(options.input)) {
    RefuseIdleOptions(options, InputFormat::kFolder);
    return ImportTexts(options, InputFormat::kFolder, nullptr, progress);
  }
  const auto binary = options.format ? options.format : BinaryFormatOf(options.input);
  if (binary == InputFormat::kNpy || binary == InputFormat::kNpz) {
    return ImportNumpy(options, *binary);
  }
  return ImportFile(options, progress);
}

std::vector<std::string> MardleOptionsFor(const MatrixSummary& matrix) {
  if (matrix.dense) return {"-denseinput"};
  const bool full = matrix.entries == matrix.rows * matrix.columns;
  if (full || !matrix.whole_numbers) return {"-colmodel=1"};
  return {};
}

std::string SummaryWithoutCommand(const ImportOptions& options, const ImportResult& result) {
  const MatrixSummary& matrix = result.matrix;
  const std::string& path = options.output.path;
  std::string text = path + ": " + Count(matrix.rows, "row", "rows") + ", " +
                     Count(matrix.columns, "column", "columns") + ", " +
                     Count(matrix.entries, "entry", "entries") + ", " +
                     (matrix.dense ? "dense" : "sparse") + ", from " + options.input + " (" +
                     FormatName(result.format) + ")\n";
  for (const std::string& note : result.notes) text += note + "\n";
  if (matrix.empty_rows > 0) {
    text += Count(matrix.empty_rows, "row", "rows") + " without entries " +
            (options.output.drop_empty ? "left out" : "kept (--drop-empty leaves them out)") + "\n";
  }
  if (!matrix.dense && !matrix.whole_numbers) {
    text +=
        "The values are not whole numbers, so they look weighted already: -colmodel=1 weighs the "
        "columns no further\n";
  }
  return text;
}

std::string Summary(const ImportOptions& options, const ImportResult& result) {
  std::string command = "mardle";
  for (const std::string& option : MardleOptionsFor(result.matrix)) command += " " + option;
  return SummaryWithoutCommand(options, result) + "Cluster with: " + command + " " +
         ShellText(options.output.path) + " NCLUSTERS\n";
}

}  // namespace mardle::tools
