// SPDX-License-Identifier: MIT
#include "tools/import/table_columns.h"

#include <algorithm>
#include <set>
#include <utility>

#include "tools/text/fields.h"
#include "tools/text/numbers.h"
#include "tools/text/suggestion.h"

namespace mardle::tools {
namespace {

char DelimiterFor(InputLines& input, const TableOptions& options) {
  if (options.delimiter) return *options.delimiter;
  const std::string_view beginning = input.Beginning();
  return DelimiterOf(beginning.substr(0, beginning.find('\n')));
}

constexpr char kNamesAdvice[] =
    "; if rows begin with a name that has no heading, put a comma or a heading for it in front of "
    "the headings";

}  // namespace

Table::Table(InputLines& input, const TableOptions& options)
    : reader_(input, DelimiterFor(input, options)), has_header_(!options.no_header) {
  if (!reader_.Next(fields_)) input.Fail("the table is empty");
  header_ = has_header_ ? fields_ : std::vector<std::string>(fields_.size());
  first_is_pending_ = !has_header_;
  label_column = Find(options.label_column);
  class_column = Find(options.class_column);
  for (const std::string& name : options.text_columns) {
    if (const auto column = Find(name)) text_columns.push_back(*column);
  }
  std::set<std::size_t> others(text_columns.begin(), text_columns.end());
  for (const auto& column : {label_column, class_column}) {
    if (column) others.insert(*column);
  }
  for (const std::string& name : options.skipped_columns) {
    if (const auto column = Find(name)) others.insert(*column);
  }
  for (std::size_t j = 0; j < header_.size(); ++j) {
    if (!others.contains(j)) value_columns.push_back(j);
  }
}

bool Table::Next() {
  if (!ahead_.empty()) {
    fields_ = std::move(ahead_.front().fields);
    ahead_place_ = std::move(ahead_.front().place);
    ahead_.pop_front();
    return true;
  }
  if (first_is_pending_) {
    first_is_pending_ = false;
    return true;
  }
  if (!reader_.Next(fields_)) return false;
  if (fields_.size() != header_.size()) {
    throw FileError(place(),
                    "the row has " + std::to_string(fields_.size()) + " fields instead of " +
                        std::to_string(header_.size()) +
                        (fields_.size() == header_.size() + 1 && has_header_ ? kNamesAdvice : ""));
  }
  return true;
}

void Table::LookAhead(const std::function<void()>& look) {
  std::deque<Row> rows;
  while (Next()) {
    look();
    rows.push_back({fields_, place()});
  }
  ahead_ = std::move(rows);
}

std::optional<std::string_view> Table::Field(std::optional<std::size_t> column) const {
  if (!column) return std::nullopt;
  return fields_[*column];
}

std::string Table::ColumnName(std::size_t column) const {
  const std::string number = "column " + std::to_string(column + 1);
  return header_[column].empty() ? number : number + " (" + header_[column] + ")";
}

std::string Table::OptionName(std::size_t column) const {
  return header_[column].empty() ? std::to_string(column + 1) : header_[column];
}

std::vector<std::string> Table::Headings() const {
  std::vector<std::string> headings;
  if (!has_header_) return headings;
  for (const std::size_t j : value_columns) headings.push_back(header_[j]);
  return headings;
}

std::optional<std::size_t> Table::Find(const std::string& name) const {
  if (name.empty()) return std::nullopt;
  const auto heading = std::find(header_.begin(), header_.end(), name);
  if (heading != header_.end()) return static_cast<std::size_t>(heading - header_.begin());
  const auto number = ParseInteger(name);
  const auto columns = static_cast<long long>(header_.size());
  if (!number || *number < 1 || *number > columns) {
    RefuseColumn(name);
  }
  return static_cast<std::size_t>(*number - 1);
}

void Table::RefuseColumn(const std::string& name) const {
  constexpr std::size_t kMostNamed = 20;
  std::string message = "there is no column " + Quoted(name);
  const std::string count = std::to_string(header_.size());
  if (!has_header_) {
    throw FileError(place(), message + "; there are " + count + ", without headings");
  }
  message += DidYouMean(name, header_);
  message += (message.ends_with('?') ? " The columns are " : "; the columns are ");
  for (std::size_t j = 0; j < std::min(header_.size(), kMostNamed); ++j) {
    message += (j > 0 ? ", " : "") + header_[j];
  }
  if (header_.size() > kMostNamed) message += ", ... (" + count + " in all)";
  throw FileError(place(), message);
}

}  // namespace mardle::tools
