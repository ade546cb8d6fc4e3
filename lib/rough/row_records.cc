// SPDX-License-Identifier: MIT
#include "lib/rough/row_records.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "lib/rough/rounding.h"
#include "lib/support/span.h"

namespace molva {
namespace {

// To single precision, never below.
float RoundedUp(double x) { return static_cast<float>(x * (1 + 2 * kUnitSingle) + kVanishing); }

// Not a number once one of them is not.
double MostOf(double a, double b) { return std::isnan(a) || a >= b ? a : b; }

bool Increases(Span<const int> columns) {
  return std::adjacent_find(columns.begin(), columns.end(), std::greater_equal<int>()) ==
         columns.end();
}

// Finds out which rows store a column more than once.
class RepeatFinder {
 public:
  RepeatFinder(int ncols, BlockName name) : ncols_(ncols), name_(name) {}

  bool Repeats(Span<const int> columns, int i) {
    if (Increases(columns)) return false;
    if (!last_row_) last_row_ = AllocIntsSet(ncols_, -1, name_);
    bool repeats = false;
    for (const int j : columns) repeats = std::exchange(last_row_[j], i) == i || repeats;
    return repeats;
  }

 private:
  int ncols_;
  BlockName name_;
  Array<int> last_row_;  // in which row each column was seen last
};

// Where a column repeats, |d|_1 stands in for |d|: no vector of these entries is longer.
void MeasureSizes(const RowView& row, RowRecord& record) {
  double square = 0;
  double absolute = 0;
  for (const float value : row.values) {
    const double v = std::fabs(static_cast<double>(value));
    square += v * v;
    absolute += v;
  }
  record.square = RoundedUp(square);
  record.length = RoundedUp(record.repeats != 0 ? absolute : std::sqrt(square));
}

double Dot(const RowView& row, Span<const float> vector) {
  double sum = 0;
  for (std::size_t p = 0; p < row.size(); ++p) {
    sum += static_cast<double>(row.values[p]) * static_cast<double>(vector[row.columns[p]]);
  }
  return sum;
}

double LengthOf(Span<const float> vector) {
  double square = 0;
  for (const float value : vector)
    square += static_cast<double>(value) * static_cast<double>(value);
  return std::sqrt(square) * (1 + 2 * kUnitSingle) + kVanishing;
}

}  // namespace

RowRecords::RowRecords(const PreparedMatrix& mat, BlockName name)
    : mat_(mat),
      name_(name),
      block_(std::int64_t{mat.nrows} + 1, name),
      first_(AlignedFirst(block_, sizeof(RowRecord))) {
  RepeatFinder finder(mat.ncols, name);
  std::fill_n(first_, mat.nrows, RowRecord{});
  for (int i = 0; i < mat.nrows; ++i) {
    const RowView row = Row(mat, i);
    RowRecord& record = first_[i];
    record.begin = mat.rowptr[i];
    record.size = static_cast<std::uint32_t>(row.size()) & 0x7fffffffU;
    record.repeats = finder.Repeats(row.columns, i) ? 1 : 0;
    MeasureSizes(row, record);
    extremes_.longest = MostOf(extremes_.longest, record.length);
    const bool is_full = std::cmp_equal(row.size(), mat.ncols) && Increases(row.columns);
    extremes_.are_full = extremes_.are_full && is_full;
    extremes_.most_entries = std::max(extremes_.most_entries, static_cast<int>(row.size()));
  }
}

RowRecords::RowRecords(const RowRecords& measured)
    : mat_(measured.mat_),
      name_(measured.name_),
      block_(static_cast<std::int64_t>(measured.block_.size()), measured.name_),
      first_(AlignedFirst(block_, sizeof(RowRecord))),
      extremes_(measured.extremes_),
      is_measured_against_whole_(measured.is_measured_against_whole_) {
  std::copy_n(measured.first_, measured.count(), first_);
}

// Summing n products in double and in the full arithmetic rounds by kWholePerEntry of |d| |G| for
// each, storing by kUnitSingle.
void RowRecords::MeasureAgainst(Span<const float> whole) {
  if (is_measured_against_whole_) return;
  is_measured_against_whole_ = true;
  double most = 0;
  for (int i = 0; i < count(); ++i) {
    const double product = Dot(Row(mat_, i), whole);
    first_[i].whole = static_cast<float>(product);
    if (i == 0 || product < extremes_.least_whole) extremes_.least_whole = product;
    if (i == 0 || product > extremes_.most_whole) extremes_.most_whole = product;
    most = MostOf(most, std::fabs(product));
  }
  const double entries = extremes_.most_entries + kExtraEntries;
  extremes_.whole_error = kStoredWhole * most +
                          entries * kWholePerEntry * extremes_.longest * LengthOf(whole) +
                          kVanishing;
  extremes_.least_whole -= extremes_.whole_error;
  extremes_.most_whole += extremes_.whole_error;
}

}  // namespace molva
