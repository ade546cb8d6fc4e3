// SPDX-License-Identifier: MIT
#include "tools/import/svmlight.h"

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "tools/import/matrix_value.h"
#include "tools/text/fields.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

constexpr std::string_view kQueryPrefix = "qid:";

std::string_view WithoutComment(std::string_view line) { return line.substr(0, line.find('#')); }

bool IsPair(std::string_view field) {
  const std::size_t colon = field.find(':');
  return colon != std::string_view::npos && ParseInteger(field.substr(0, colon)) &&
         ParseNumber(field.substr(colon + 1));
}

std::string ClassOf(std::string_view label) {
  const auto number = ParseNumber(label);
  if (!number) return std::string(label);
  std::string text;
  AppendNumber(text, *number + 0.0);  // no "-0"
  return text;
}

Entry ParsePair(std::string_view field, bool zero_based, const InputLines& input) {
  const std::size_t colon = field.find(':');
  if (colon == std::string_view::npos) input.Fail("not COLUMN:VALUE: " + Quoted(field));
  const auto column = ParseInteger(field.substr(0, colon));
  const long long first = zero_based ? 0 : 1;
  if (!column || *column < 0 || *column - first >= INT_MAX) {
    input.Fail("no column number: " + Quoted(field));
  }
  if (*column < first) input.Fail("columns count from 1; --zero-based counts from 0");
  const double value = MatrixValue(field.substr(colon + 1), input.place(),
                                   "the value of column " + std::to_string(*column));
  return {static_cast<int>(*column - first), value};
}

// Sorted by column, without zeros.
void ParseEntries(const std::vector<std::string_view>& fields, bool zero_based,
                  const InputLines& input, std::vector<Entry>& entries) {
  entries.clear();
  for (std::size_t i = 1; i < fields.size(); ++i) {
    if (i == 1 && fields[i].starts_with(kQueryPrefix)) continue;
    entries.push_back(ParsePair(fields[i], zero_based, input));
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.column < b.column; });
  const auto twice =
      std::adjacent_find(entries.begin(), entries.end(),
                         [](const Entry& a, const Entry& b) { return a.column == b.column; });
  if (twice != entries.end()) {
    input.Fail("column " + std::to_string(twice->column + (zero_based ? 0 : 1)) +
               " is given twice");
  }
}

}  // namespace

bool LooksLikeSvmlight(std::string_view line) {
  std::vector<std::string_view> fields = FieldsOf(WithoutComment(line));
  if (fields.size() > 1 && fields[1].starts_with(kQueryPrefix)) fields.erase(fields.begin() + 1);
  return fields.size() > 1 && fields[0].find(':') == std::string_view::npos &&
         std::all_of(fields.begin() + 1, fields.end(), IsPair);
}

MatrixSummary ImportSvmlight(InputLines& input, const MatrixOutput& output, bool zero_based,
                             const GivenLabels& labels, Progress& progress) {
  MatrixWriter writer(output);
  std::vector<Entry> entries;
  auto columns = static_cast<std::int64_t>(labels.columns().size());
  std::int64_t row = 0;
  std::string_view line;
  while (input.Next(line)) {
    const std::vector<std::string_view> fields = FieldsOf(WithoutComment(line));
    if (fields.empty()) continue;
    if (fields[0].find(':') != std::string_view::npos) {
      input.Fail("the label is missing before " + Quoted(fields[0]));
    }
    ParseEntries(fields, zero_based, input, entries);
    if (!entries.empty()) columns = std::max<std::int64_t>(columns, entries.back().column + 1LL);
    std::erase_if(entries, [](const Entry& entry) { return entry.value == 0; });
    RowNames names = labels.OfRow(row++);
    const std::string class_name = ClassOf(fields[0]);
    names.class_name = class_name;
    writer.AddRow(entries, names, input.place());
    progress.Step();
  }
  labels.RequireRows(row);
  labels.RequireColumns(columns);
  return writer.Finish(columns, labels.columns());
}

}  // namespace mardle::tools
