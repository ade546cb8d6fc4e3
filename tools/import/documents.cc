// SPDX-License-Identifier: MIT
#include "tools/import/documents.h"

#include <fnmatch.h>

#include <filesystem>
#include <iterator>
#include <set>

#include "tools/import/html_entities.h"
#include "tools/import/markup.h"
#include "tools/import/text_input.h"
#include "tools/text/fields.h"
#include "tools/text/run_files.h"
#include "tools/text/utf8.h"

namespace mardle::tools {
namespace {

namespace fs = std::filesystem;

// Texts of one row stand apart like paragraphs.
constexpr char kBetweenTexts[] = "\n\n";
constexpr std::string_view kBlanksAndLineEnds = " \t\r\n";

bool IsHidden(const fs::path& path) { return path.filename().string().starts_with('.'); }

void Note(FileCount& files, const std::string& what) {
  if (files.count++ == 0) files.first = what;
}

// Paths below the folder, in the order of their bytes, which no locale and no file system changes.
std::set<std::string> FilesBelow(const std::string& folder) {
  std::set<std::string> files;
  for (auto entry = fs::recursive_directory_iterator(folder);
       entry != fs::recursive_directory_iterator(); ++entry) {
    const fs::path& path = entry->path();
    if (IsHidden(path)) {
      if (entry->is_directory()) entry.disable_recursion_pending();
      continue;
    }
    if (entry->is_regular_file()) files.insert(path.lexically_relative(folder).string());
  }
  return files;
}

// Takes out what an earlier run has left, which its record tells.
FileCount TakeResults(std::set<std::string>& files) {
  FileCount taken;
  const auto take = [&](const std::string& file) {
    if (files.erase(file) > 0) Note(taken, file);
  };
  const std::set<std::string> all = files;
  for (std::string name : all) {
    if (!name.ends_with(kRecordEnding)) continue;
    name.resize(name.size() - std::size(kRecordEnding) + 1);
    for (const RunFile& result : kRunFiles) take(name + result.ending);
    take(name + kPageEnding);
    take(name + kRecordEnding);
  }
  return taken;
}

bool IsCalled(const std::string& file, const std::string& pattern) {
  return fnmatch(pattern.c_str(), fs::path(file).filename().c_str(), 0) == 0;
}

std::string_view FirstFolder(std::string_view path) {
  const std::size_t slash = path.find('/');
  return slash == std::string_view::npos ? "." : path.substr(0, slash);
}

// What a file holds, or why that is no text.
struct FileText {
  std::string text;
  std::string no_text;
  std::int64_t first_malformed_line = 0;  // 0: there is none
};

FileText WholeText(const std::string& path, const std::string& encoding) {
  TextInput input(path, encoding);
  FileText file;
  std::string_view line;
  try {
    while (input.lines().Next(line)) (file.text += line) += '\n';
  } catch (const NoText& error) {
    file.no_text = error.what();
  }
  file.first_malformed_line = input.watch().first_malformed_line();
  return file;
}

// Takes the columns out of the line and returns what is left.
std::string TakeColumns(std::string_view line, const LineOptions& options, RowNames& names) {
  std::string text;
  int column = 0;
  for (const std::string_view field : FieldsBetween(line, '\t')) {
    ++column;
    const bool is_label = column == options.label_column;
    const bool is_class = column == options.class_column;
    if (is_label) names.label = field;
    if (is_class) names.class_name = field;
    if (!is_label && !is_class) (text += field) += ' ';
  }
  return text;
}

void RequireColumn(std::optional<int> column, const std::optional<std::string_view>& name,
                   const InputLines& input) {
  if (column && !name) {
    input.Fail("the line has no column " + std::to_string(*column) + " between tabs");
  }
}

// A text without a label is called by its beginning.
std::string BeginningOf(std::string_view text) {
  constexpr int kCharacters = 80;
  std::string beginning;
  int characters = 0;
  for (std::string_view word : FieldsOf(text, kBlanksAndLineEnds)) {
    if (!beginning.empty() && ++characters < kCharacters) beginning += ' ';
    for (; !word.empty() && characters < kCharacters; ++characters) {
      const std::size_t length = std::max<std::size_t>(CharacterLength(word), 1);
      beginning += word.substr(0, length);
      word.remove_prefix(length);
    }
    if (characters >= kCharacters) break;
  }
  return beginning;
}

// Without marks of formatting, when there are any.
std::optional<std::string> Unmarked(std::string_view text) {
  if (IsManualPage(text)) return WithoutRequests(text);
  if (HasTags(text)) return WithoutTags(text);
  return std::nullopt;
}

void VisitText(std::string_view raw, RowNames names, const Place& place,
               const DocumentVisitor& visit) {
  const std::optional<std::string> unmarked = Unmarked(raw);
  const std::string text = WithoutEntities(unmarked ? *unmarked : raw);
  std::string beginning;
  if (!names.label) names.label = beginning = BeginningOf(text);
  visit({text, names, place, unmarked.has_value()});
}

}  // namespace

FolderReport VisitFolder(const std::string& folder, const FolderOptions& options,
                         const std::string& encoding, const DocumentVisitor& visit) {
  FolderReport report;
  std::set<std::string> files = FilesBelow(folder);
  report.results = TakeResults(files);
  for (const std::string& file : files) {
    if (!IsCalled(file, options.file_pattern)) continue;
    const std::string path = (fs::path(folder) / file).string();
    const FileText whole = WholeText(path, encoding);
    if (!whole.no_text.empty()) {
      Note(report.no_texts, whole.no_text);
      continue;
    }
    if (whole.first_malformed_line > 0) {
      Note(report.malformed, path + ":" + std::to_string(whole.first_malformed_line));
    }
    RowNames names{.label = file};
    if (options.folder_classes) names.class_name = FirstFolder(file);
    VisitText(whole.text, names, {path, 0}, visit);
    report.files.push_back(file);
  }
  return report;
}

void VisitLines(InputLines& input, const LineOptions& options, const DocumentVisitor& visit) {
  const bool has_columns = options.label_column || options.class_column;
  std::string_view line;
  while (input.Next(line)) {
    if (!has_columns) {
      VisitText(line, {}, input.place(), visit);
      continue;
    }
    RowNames names;
    const std::string text = TakeColumns(line, options, names);
    RequireColumn(options.label_column, names.label, input);
    RequireColumn(options.class_column, names.class_name, input);
    VisitText(text, names, input.place(), visit);
  }
}

void VisitTable(InputLines& input, const TableOptions& options, const DocumentVisitor& visit) {
  Table table(input, options);
  std::string text;
  while (table.Next()) {
    text.clear();
    for (const std::size_t column : table.text_columns) {
      (text += text.empty() ? "" : kBetweenTexts) += table.fields()[column];
    }
    VisitText(text, {table.Field(table.label_column), table.Field(table.class_column)},
              table.place(), visit);
  }
}

}  // namespace mardle::tools
