// SPDX-License-Identifier: MIT
//
// Where texts come from: the files of a folder, the lines of a file, a column of a table.
// Marks of formatting are left out of them, what stands as an HTML entity is the character, and a
// row that has no label gets the first 80 characters of its text.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/import/matrix_writer.h"
#include "tools/import/table_columns.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {

struct Document {
  std::string_view text;
  RowNames names;
  Place place;
  bool was_marked_up = false;  // for its formatting
};
using DocumentVisitor = std::function<void(const Document&)>;

struct FolderOptions {
  std::string file_pattern = "*";  // of the names of the files, as in a shell
  bool folder_classes = false;
};

// Files that something is said of: how many, and of the first what and where.
struct FileCount {
  std::int64_t count = 0;
  std::string first;
};

struct FolderReport {
  FileCount results;               // of earlier runs, passed over
  FileCount no_texts;              // passed over, too
  FileCount malformed;             // with bytes that are not UTF-8
  std::vector<std::string> files;  // that were visited, from the folder
};

// Visits the files below a folder whose names fit, in the order of their paths, which become the
// labels. Names that begin with a dot are passed over, and so are the results of earlier runs and
// files that are no texts. With folder_classes the first folder of a path is the class; "." for
// files that lie in none.
FolderReport VisitFolder(const std::string& folder, const FolderOptions& options,
                         const std::string& encoding, const DocumentVisitor& visit);

// Visits the lines of a file. The fields that stand in the label and class columns between tabs,
// counted from 1, are taken out of the text; without any the whole line is text. Blank lines are
// documents too.
struct LineOptions {
  std::optional<int> label_column;
  std::optional<int> class_column;
};
void VisitLines(InputLines& input, const LineOptions& options, const DocumentVisitor& visit);

// Visits the rows of a table, whose texts are the cells in its text columns.
void VisitTable(InputLines& input, const TableOptions& options, const DocumentVisitor& visit);

}  // namespace mardle::tools
