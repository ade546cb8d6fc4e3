// SPDX-License-Identifier: MIT
#include "tools/import/dense_rows.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "lib/support/wide.h"

namespace mardle::tools {
namespace {

// Sums of many values keep more digits than the values have.
using Sum = molva::Wide;

bool IsMissing(double value) { return std::isnan(value); }

double MeanOf(const std::vector<double>& values) {
  const Sum sum = std::accumulate(values.begin(), values.end(), Sum{0});
  return static_cast<double>(sum / static_cast<Sum>(values.size()));
}

double MedianOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 == 1) return *middle;
  const double below = *std::max_element(values.begin(), middle);
  return below / 2 + *middle / 2;
}

// The square root of the mean squared distance from the mean.
double DeviationOf(const std::vector<double>& values, double mean) {
  const Sum squares =
      std::accumulate(values.begin(), values.end(), Sum{0}, [mean](Sum sum, double value) {
        const Sum distance = Sum{value} - Sum{mean};
        return sum + distance * distance;
      });
  return static_cast<double>(molva::Sqrt(squares / static_cast<Sum>(values.size())));
}

bool IsConstant(const std::vector<double>& values) {
  return std::adjacent_find(values.begin(), values.end(), std::not_equal_to<>()) == values.end();
}

const char* NameOf(Missing missing) {
  switch (missing) {
    case Missing::kMean:
      return "the mean of their columns";
    case Missing::kMedian:
      return "the median of their columns";
    default:
      return "0";
  }
}

std::optional<int> DenseColumns(const Preparation& preparation, std::size_t columns) {
  if (preparation.sparse) return std::nullopt;
  return static_cast<int>(columns);
}

std::string Count(std::int64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

DenseRows::DenseRows(const MatrixOutput& output, const Preparation& preparation,
                     std::size_t columns, ColumnName column_name)
    : preparation_(preparation),
      columns_(columns),
      column_name_(std::move(column_name)),
      writer_(output, DenseColumns(preparation, columns)),
      missing_(columns) {}

bool DenseRows::HoldsRows() const {
  return preparation_.standardize || preparation_.missing == Missing::kMean ||
         preparation_.missing == Missing::kMedian;
}

void DenseRows::AddRow(std::span<const double> values, const RowNames& names, const Place& place) {
  const bool has_missing = NoteMissing(values, place);
  if (has_missing && preparation_.missing == Missing::kDrop) return;
  if (HoldsRows()) {
    Hold(values, names, place);
  } else if (!has_missing) {
    Write(values, names, place);
  } else if (preparation_.missing == Missing::kZero) {
    std::vector<double> filled(values.begin(), values.end());
    std::replace_if(filled.begin(), filled.end(), IsMissing, 0.0);
    Write(filled, names, place);
  }
}

bool DenseRows::NoteMissing(std::span<const double> values, const Place& place) {
  bool has_missing = false;
  for (std::size_t j = 0; j < columns_; ++j) {
    if (!IsMissing(values[j])) continue;
    if (!has_missing && rows_with_missing_ == 0) {
      first_missing_ = place;
      first_missing_column_ = j;
    }
    has_missing = true;
    ++missing_[j];
  }
  if (has_missing) ++rows_with_missing_;
  return has_missing;
}

void DenseRows::Hold(std::span<const double> values, const RowNames& names, const Place& place) {
  values_.insert(values_.end(), values.begin(), values.end());
  HeldRow& row = rows_.emplace_back();
  if (names.label) row.label = std::string(*names.label);
  if (names.class_name) row.class_name = std::string(*names.class_name);
  row.place = place;
}

void DenseRows::Write(std::span<const double> values, const RowNames& names, const Place& place) {
  entries_.clear();
  for (std::size_t j = 0; j < columns_; ++j) {
    if (values[j] != 0) entries_.push_back({static_cast<int>(j), values[j]});
  }
  writer_.AddRow(entries_, names, place);
}

void DenseRows::WriteHeld() {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const HeldRow& row = rows_[i];
    RowNames names;
    if (row.label) names.label = *row.label;
    if (row.class_name) names.class_name = *row.class_name;
    Write(std::span(values_).subspan(i * columns_, columns_), names, row.place);
  }
}

std::vector<double> DenseRows::ColumnValues(std::size_t column) const {
  std::vector<double> values;
  for (std::size_t at = column; at < values_.size(); at += columns_) {
    if (!IsMissing(values_[at])) values.push_back(values_[at]);
  }
  return values;
}

double DenseRows::FillOf(std::size_t column) const {
  if (preparation_.missing == Missing::kZero) return 0;
  std::vector<double> values = ColumnValues(column);
  if (values.empty()) {
    throw FileError({first_missing_.path, 0},
                    column_name_(column) + " has no value at all, so nothing can be filled in");
  }
  return preparation_.missing == Missing::kMean ? MeanOf(values) : MedianOf(std::move(values));
}

void DenseRows::FillIn() {
  for (std::size_t j = 0; j < columns_; ++j) {
    if (missing_[j] == 0) continue;
    const double fill = FillOf(j);
    for (std::size_t at = j; at < values_.size(); at += columns_) {
      if (IsMissing(values_[at])) values_[at] = fill;
    }
  }
}

// A column that is the same in all rows tells nothing and becomes 0.
void DenseRows::Standardize(std::vector<std::string>& notes) {
  std::int64_t constant = 0;
  std::string first;
  for (std::size_t j = 0; j < columns_; ++j) {
    const std::vector<double> values = ColumnValues(j);
    const bool is_constant = IsConstant(values);
    if (is_constant && constant++ == 0) first = column_name_(j);
    const double mean = is_constant ? 0 : MeanOf(values);
    const double deviation = is_constant ? 1 : DeviationOf(values, mean);
    for (std::size_t at = j; at < values_.size(); at += columns_) {
      values_[at] = is_constant ? 0 : (values_[at] - mean) / deviation;
    }
  }
  if (constant > 0) {
    notes.push_back(Count(constant, "column is", "columns are") +
                    " the same in all rows, and so 0 when standardized" +
                    (constant > 1 ? ", the first: " : ": ") + first);
  }
}

std::string DenseRows::MissingByColumn() const {
  constexpr int kMostNamed = 8;
  std::string text;
  int named = 0;
  std::int64_t others = 0;
  for (std::size_t j = 0; j < columns_; ++j) {
    if (missing_[j] == 0) continue;
    if (named++ < kMostNamed) {
      text += (text.empty() ? "" : ", ") + std::to_string(missing_[j]) + " in " + column_name_(j);
    } else {
      others += missing_[j];
    }
  }
  return others == 0 ? text : text + ", " + std::to_string(others) + " in others";
}

void DenseRows::TellOfMissing(std::vector<std::string>& notes) const {
  const std::int64_t cells = std::accumulate(missing_.begin(), missing_.end(), std::int64_t{0});
  if (cells == 0) return;
  if (preparation_.missing == Missing::kRefused) {
    throw FileError(first_missing_,
                    column_name_(first_missing_column_) + " has no value; " +
                        Count(cells, "value is", "values are") + " missing in " +
                        Count(rows_with_missing_, "row", "rows") + ": " + MissingByColumn() +
                        "; --missing drop leaves these rows out, --missing mean, median or zero "
                        "fills in");
  }
  const std::string filled =
      preparation_.missing == Missing::kDrop
          ? Count(rows_with_missing_, "row", "rows") + " with missing values left out"
          : Count(cells, "missing value", "missing values") + " filled with " +
                NameOf(preparation_.missing);
  notes.push_back(filled + ": " + MissingByColumn());
}

MatrixSummary DenseRows::Finish(std::span<const std::string> column_labels,
                                std::vector<std::string>& notes) {
  TellOfMissing(notes);
  if (HoldsRows()) {
    FillIn();
    if (preparation_.standardize) Standardize(notes);
    WriteHeld();
  }
  return writer_.Finish(static_cast<std::int64_t>(columns_), column_labels);
}

}  // namespace mardle::tools
