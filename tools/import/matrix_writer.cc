// SPDX-License-Identifier: MIT
#include "tools/import/matrix_writer.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <filesystem>

#include "tools/import/label_text.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

// Room for three numbers of ten digits. The header is as long whatever the numbers are; what is
// left of it is blank, which readers ignore.
constexpr std::size_t kHeaderLength = 32;

constexpr const char* kSuffixes[] = {"", ".rlabel", ".rclass", ".clabel"};

const std::string& RefuseExisting(const MatrixOutput& output) {
  if (output.replace) return output.path;
  for (const std::string& name : FilesOf(output)) {
    if (std::filesystem::exists(name)) {
      throw FileError({name, 0}, "exists already; --force replaces it");
    }
  }
  return output.path;
}

void CheckCount(const std::string& path, std::int64_t count, const char* what) {
  if (count <= INT_MAX) return;
  throw FileError({path, 0},
                  "more " + std::string(what) + " than mardle takes, " + std::to_string(INT_MAX));
}

void CheckLength(const std::string& line, const Place& place) {
  if (line.size() <= kLongestLine + 1) return;
  throw FileError(place, "the row would be a line of " + std::to_string(line.size() - 1) +
                             " characters, and mardle reads no more than " +
                             std::to_string(kLongestLine) +
                             ": raise --min-count, leave columns out or split the document");
}

bool AreWhole(std::span<const Entry> entries) {
  return std::all_of(entries.begin(), entries.end(),
                     [](const Entry& entry) { return entry.value == std::round(entry.value); });
}

}  // namespace

std::vector<std::string> FilesOf(const MatrixOutput& output) {
  std::vector<std::string> names;
  for (const char* suffix : kSuffixes) names.push_back(output.path + suffix);
  return names;
}

MatrixWriter::MatrixWriter(const MatrixOutput& output, std::optional<int> dense_columns)
    : output_(output), matrix_(RefuseExisting(output)) {
  summary_.dense = dense_columns.has_value();
  summary_.columns = dense_columns.value_or(0);
  matrix_.Write(Header());
}

void MatrixWriter::AddRow(std::span<const Entry> entries, const RowNames& names,
                          const Place& place) {
  if (entries.empty()) ++summary_.empty_rows;
  if (entries.empty() && output_.drop_empty) return;
  ++summary_.rows;
  summary_.entries += static_cast<std::int64_t>(entries.size());
  summary_.whole_numbers = summary_.whole_numbers && AreWhole(entries);
  CheckCount(output_.path, summary_.rows, "rows");
  CheckCount(output_.path, summary_.entries, "entries");
  line_.clear();
  summary_.dense ? AppendDense(entries) : AppendSparse(entries);
  if (!line_.empty()) line_.pop_back();
  line_ += '\n';
  CheckLength(line_, place);
  matrix_.Write(line_);
  WriteName(names.label, ".rlabel", row_labels_);
  WriteName(names.class_name, ".rclass", row_classes_);
}

void MatrixWriter::AppendSparse(std::span<const Entry> entries) {
  for (const Entry& entry : entries) {
    AppendNumber(line_, entry.column + 1LL);
    line_ += ' ';
    AppendNumber(line_, entry.value);
    line_ += ' ';
  }
}

void MatrixWriter::AppendDense(std::span<const Entry> entries) {
  auto entry = entries.begin();
  for (int j = 0; j < summary_.columns; ++j) {
    const bool stored = entry != entries.end() && entry->column == j;
    AppendNumber(line_, stored ? entry->value : 0.0);
    if (stored) ++entry;
    line_ += ' ';
  }
}

void MatrixWriter::WriteName(std::optional<std::string_view> name, const char* suffix,
                             std::unique_ptr<OutputFile>& file) const {
  if (!name) return;
  if (!file) file = std::make_unique<OutputFile>(output_.path + suffix);
  file->Write(LabelText(*name) + '\n');
}

std::string MatrixWriter::Header() const {
  std::string header = std::to_string(summary_.rows) + ' ' + std::to_string(summary_.columns);
  if (!summary_.dense) header += ' ' + std::to_string(summary_.entries);
  header.resize(kHeaderLength, ' ');
  return header + '\n';
}

MatrixSummary MatrixWriter::Finish(std::int64_t columns,
                                   std::span<const std::string> column_labels) {
  CheckCount(output_.path, columns, "columns");
  if (summary_.rows == 0) throw FileError({output_.path, 0}, "there are no rows to write");
  if (columns == 0) throw FileError({output_.path, 0}, "there are no columns to write");
  summary_.columns = columns;
  matrix_.WriteFirst(Header());
  for (const std::string& label : column_labels) WriteName(label, ".clabel", column_labels_);
  PublishFiles();
  return summary_;
}

// The matrix comes last, so that where it is, its labels are.
void MatrixWriter::PublishFiles() {
  std::vector<OutputFile*> files;
  std::vector<std::string> leftovers;
  const auto add = [&](OutputFile* file, const char* suffix) {
    if (file == nullptr) {
      leftovers.push_back(output_.path + suffix);
      return;
    }
    file->Complete();
    files.push_back(file);
  };
  add(row_labels_.get(), ".rlabel");
  add(row_classes_.get(), ".rclass");
  add(column_labels_.get(), ".clabel");
  add(&matrix_, "");
  // Another import may have made the same files meanwhile.
  Publish(files, leftovers, [this] { RefuseExisting(output_); });
}

}  // namespace mardle::tools
