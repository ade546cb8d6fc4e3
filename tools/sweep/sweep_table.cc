// SPDX-License-Identifier: MIT
#include "tools/sweep/sweep_table.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "tools/sweep/written_value.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

struct Column {
  const char* head;
  const char* name;    // in CSV
  const char* format;  // of printf, for doubles
  double (*value)(const SweepRow& row);
};

constexpr Column kColumns[] = {
    {"clusters", "n_clusters", "%.0f", [](const SweepRow& row) { return double(row.nclusters); }},
    {"value", "value", "%.5g", [](const SweepRow& row) { return row.value; }},
    {"added", "added", "%.3g", [](const SweepRow& row) { return row.added; }},
    {"stability", "stability", "%.3f", [](const SweepRow& row) { return row.stability; }},
    {"least", "least_stability", "%.3f", [](const SweepRow& row) { return row.least_stability; }},
    {"smallest", "smallest", "%.0f", [](const SweepRow& row) { return double(row.smallest); }},
    {"median", "median", "%g", [](const SweepRow& row) { return row.median; }},
    {"largest", "largest", "%.0f", [](const SweepRow& row) { return double(row.largest); }},
    {"purity", "purity", "%.3f", [](const SweepRow& row) { return row.classes->purity; }},
    {"NMI", "nmi", "%.3f", [](const SweepRow& row) { return row.classes->nmi; }}};
constexpr std::size_t kOfClasses = 2;  // the last ones

std::span<const Column> ColumnsFor(const std::vector<SweepRow>& rows) {
  const bool has_classes = !rows.empty() && rows[0].classes;
  return std::span(kColumns).first(std::size(kColumns) - (has_classes ? 0 : kOfClasses));
}

std::string Cell(const Column& column, const SweepRow& row) {
  const double value = column.value(row);
  return std::isnan(value) ? "-" : WrittenValue(column.format, value);
}

}  // namespace

std::string TableText(const std::vector<SweepRow>& rows) {
  std::vector<std::string> lines(rows.size() + 1);
  for (const Column& column : ColumnsFor(rows)) {
    std::vector<std::string> cells{column.head};
    for (const SweepRow& row : rows) cells.push_back(Cell(column, row));
    std::size_t width = 0;
    for (const std::string& cell : cells) width = std::max(width, cell.size());
    for (std::size_t line = 0; line < lines.size(); ++line) {
      if (!lines[line].empty()) lines[line] += "  ";
      lines[line] += std::string(width - cells[line].size(), ' ') + cells[line];
    }
  }
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

std::string CsvText(const std::vector<SweepRow>& rows) {
  const std::span<const Column> columns = ColumnsFor(rows);
  std::string text;
  for (const Column& column : columns) text += (text.empty() ? "" : ",") + std::string(column.name);
  for (const SweepRow& row : rows) {
    text += "\n";
    for (const Column& column : columns) {
      if (&column != columns.data()) text += ",";
      AppendNumber(text, column.value(row));
    }
  }
  return text + "\n";
}

}  // namespace mardle::tools
