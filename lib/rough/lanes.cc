// SPDX-License-Identifier: MIT
#include "lib/rough/lanes.h"

#include <algorithm>
#include <cmath>

#include "lib/rough/rough_looks.h"
#include "lib/support/narrowing.h"
#include "lib/support/span.h"

namespace molva {
namespace {

// Few lanes stand without padding, so that two clusters take 8 bytes a column; many are padded to
// vectors of 8.
std::size_t PaddedCount(int count) {
  const auto lanes = static_cast<std::size_t>(count > 0 ? count : 1);
  if (lanes <= 2) return lanes;
  return lanes <= 4 ? 4 : (lanes + 7) / 8 * 8;
}

// Adds the squares of kLanes neighbouring lanes over some columns.
template <std::size_t kLanes>
void AddSquares(const float* columns, std::size_t count, std::size_t stride, double* squares) {
  double sums[kLanes];
  std::copy_n(squares, kLanes, sums);
  for (std::size_t j = 0; j < count; ++j) {
    for (std::size_t l = 0; l < kLanes; ++l) {
      const auto c = static_cast<double>(columns[j * stride + l]);
      sums[l] += c * c;
    }
  }
  std::copy_n(sums, kLanes, squares);
}

}  // namespace

Lanes::Lanes(int count, int ncols, BlockName name)
    : ncols_(ncols),
      stride_(PaddedCount(count)),
      name_(name),
      block_(AllocFloatsSet(
          static_cast<std::int64_t>(stride_) * ncols + static_cast<std::int64_t>(kLine), 0, name)),
      values_(AlignedFirst(block_, kLine * sizeof(float))),
      dot_(CurrentKernel().dot) {}

void Lanes::Set(const RowView& row, int lane) {
  float* values = values_ + lane;
  for (std::size_t p = 0; p < row.size(); ++p) {
    values[static_cast<std::size_t>(row.columns[p]) * stride_] = row.values[p];
  }
}

void Lanes::Add(const RowView& row, int lane) {
  float* values = values_ + lane;
  for (std::size_t p = 0; p < row.size(); ++p) {
    values[static_cast<std::size_t>(row.columns[p]) * stride_] += row.values[p];
  }
}

void Lanes::Subtract(const RowView& row, int lane) {
  float* values = values_ + lane;
  for (std::size_t p = 0; p < row.size(); ++p) {
    values[static_cast<std::size_t>(row.columns[p]) * stride_] -= row.values[p];
  }
}

// Most sums of squares are settled by double arithmetic. Each product is exact there, so of m
// terms, none negative, m roundings of 2^-53 separate it from the true sum, and m of 2^-64 the wide
// one.
void Lanes::SquaredLengths(Span<float> squares) const {
  if (!RoughLooksAreUsed()) {
    for (std::size_t lane = 0; lane < squares.size(); ++lane) {
      squares[lane] = static_cast<float>(SquaredLength(lane));
    }
    return;
  }
  const Array<double> rough = RoughSquares();
  const double unit = (static_cast<double>(ncols_) + kExtraEntries) * kSumOfSquares;
  for (std::size_t lane = 0; lane < squares.size(); ++lane) {
    const double error = unit * rough[lane];
    const auto least = static_cast<float>(rough[lane] - error);
    const auto most = static_cast<float>(rough[lane] + error);
    squares[lane] = least == most ? least : static_cast<float>(SquaredLength(lane));
  }
}

Array<double> Lanes::RoughSquares() const {
  // Few hundred columns stay in the cache while block after block of lanes is summed over them.
  constexpr int kColumns = 256;
  Array<double> squares = AllocDoublesSet(static_cast<std::int64_t>(stride_), 0, name_);
  for (int begin = 0; begin < ncols_; begin += kColumns) {
    const auto count = static_cast<std::size_t>(std::min(kColumns, ncols_ - begin));
    const float* columns = values_ + static_cast<std::size_t>(begin) * stride_;
    switch (stride_) {
      case 1:
        AddSquares<1>(columns, count, stride_, squares.data());
        break;
      case 2:
        AddSquares<2>(columns, count, stride_, squares.data());
        break;
      case 4:
        AddSquares<4>(columns, count, stride_, squares.data());
        break;
      default:
        for (std::size_t lane = 0; lane < stride_; lane += 8) {
          AddSquares<8>(columns + lane, count, stride_, squares.data() + lane);
        }
    }
  }
  return squares;
}

Wide Lanes::SquaredLength(std::size_t lane) const {
  Wide sum = 0;
  const float* value = values_ + lane;
  for (int j = 0; j < ncols_; ++j, value += stride_) sum += static_cast<Wide>(*value) * *value;
  return sum;
}

// Some hundred columns are taken at a time, so that they stay in the cache while each lane is
// summed over them; within a lane the columns come in their order all the same.
template <typename Sum, typename AddTerm>
Array<Sum> Lanes::SumsWith(Span<const float> vector, std::size_t lanes, AddTerm add) const {
  constexpr std::size_t kColumns = 256;
  auto sums = Array<Sum>::Zeroed(static_cast<std::int64_t>(lanes), name_);
  for (std::size_t begin = 0; begin < vector.size(); begin += kColumns) {
    const std::size_t end = std::min(begin + kColumns, vector.size());
    for (std::size_t lane = 0; lane < sums.size(); ++lane) {
      const LaneView composite{values_ + lane, stride_};
      for (std::size_t j = begin; j < end; ++j) {
        add(composite[j], vector[j], sums[lane]);
      }
    }
  }
  return sums;
}

void Lanes::DotsWith(Span<const float> vector, Span<float> dots) const {
  if (RoughLooksAreUsed() && DotsAreCertain(vector, dots)) return;
  const auto sums = SumsWith<Wide>(
      vector, dots.size(), [](float a, float b, Wide& sum) { sum += static_cast<Wide>(a) * b; });
  std::transform(sums.begin(), sums.end(), dots.begin(),
                 [](Wide sum) { return static_cast<float>(sum); });
}

// Whether double arithmetic tells them all.
bool Lanes::DotsAreCertain(Span<const float> vector, Span<float> dots) const {
  struct Sums {
    double sum, magnitudes;
  };
  const auto sums = SumsWith<Sums>(vector, dots.size(), [](float a, float b, Sums& sum) {
    const double term = static_cast<double>(a) * static_cast<double>(b);
    sum.sum += term;
    sum.magnitudes += std::fabs(term);
  });
  for (std::size_t lane = 0; lane < dots.size(); ++lane) {
    const Narrowed dot =
        NarrowedSum({sums[lane].sum, sums[lane].magnitudes, static_cast<double>(vector.size())});
    if (!dot.is_certain) return false;
    dots[lane] = dot.value;
  }
  return true;
}

}  // namespace molva
