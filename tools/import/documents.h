// SPDX-License-Identifier: MIT
//
// Where texts come from: the files of a folder, the lines of a file, a column of a table.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/import/matrix_writer.h"
#include "tools/import/table_columns.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {

struct Document {
  std::string_view text;
  RowNames names;
  Place place;
};
using DocumentVisitor = std::function<void(const Document&)>;

struct FolderOptions {
  std::string file_pattern = "*";  // of the names of the files, as in a shell
  bool folder_classes = false;
};

// Visits the files below a folder whose names fit, in the order of their paths, which become the
// labels. Names that begin with a dot are passed over. With folder_classes the first folder of a
// path is the class; "." for files that lie in none. Returns how many files were passed over
// because they hold NUL bytes and so are no text.
std::int64_t VisitFolder(const std::string& folder, const FolderOptions& options,
                         const DocumentVisitor& visit);

// Visits the lines of a file. The fields that stand in the label and class columns between tabs,
// counted from 1, are taken out of the text; without any the whole line is text. Blank lines are
// documents too.
struct LineOptions {
  std::optional<int> label_column;
  std::optional<int> class_column;
};
void VisitLines(InputLines& input, const LineOptions& options, const DocumentVisitor& visit);

// Visits the cells of a table's text column.
void VisitTable(InputLines& input, const TableOptions& options, const DocumentVisitor& visit);

}  // namespace mardle::tools
