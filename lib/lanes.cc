// SPDX-License-Identifier: MIT
#include "lib/lanes.h"

#include <algorithm>
#include <vector>

namespace molva {
namespace {

// Few lanes stand without padding, so that two clusters take 8 bytes a column; many are padded to
// vectors of 8.
std::size_t PaddedCount(int count) {
  const auto lanes = static_cast<std::size_t>(count > 0 ? count : 1);
  if (lanes <= 2) return lanes;
  return lanes <= 4 ? 4 : (lanes + 7) / 8 * 8;
}

// The dot products with kLanes neighbouring lanes, kept in registers.
template <std::size_t kLanes>
[[gnu::always_inline]] inline void DotSome(const RowView& row, const float* lanes,
                                           std::size_t stride, double* products) {
  double sums[kLanes] = {};
  const std::size_t size = row.size();
  for (std::size_t p = 0; p < size; ++p) {
    const float* column = lanes + static_cast<std::size_t>(row.columns[p]) * stride;
    const double v = static_cast<double>(row.values[p]);
    for (std::size_t l = 0; l < kLanes; ++l) sums[l] += v * static_cast<double>(column[l]);
  }
  for (std::size_t l = 0; l < kLanes; ++l) products[l] = sums[l];
}

// Compiled for the vector units of several processors; the one at hand is picked at load time.
#if defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)
#define MOLVA_VECTOR_CLONES [[gnu::target_clones("avx512f", "avx2", "default")]]
#else
#define MOLVA_VECTOR_CLONES
#endif

MOLVA_VECTOR_CLONES
void DotAll(const RowView& row, const float* lanes, std::size_t stride, double* products) {
  switch (stride) {
    case 1:
      return DotSome<1>(row, lanes, stride, products);
    case 2:
      return DotSome<2>(row, lanes, stride, products);
    case 4:
      return DotSome<4>(row, lanes, stride, products);
    default:
      break;
  }
  std::size_t lane = 0;
  for (; lane + 16 <= stride; lane += 16) DotSome<16>(row, lanes + lane, stride, products + lane);
  if (lane < stride) DotSome<8>(row, lanes + lane, stride, products + lane);
}

}  // namespace

Lanes::Lanes(int count, int ncols, BlockName name)
    : ncols_(ncols),
      stride_(PaddedCount(count)),
      values_(AllocFloatsSet(static_cast<std::int64_t>(stride_) * ncols, 0, name)) {}

void Lanes::Set(const RowView& row, int lane) {
  float* values = values_.data() + lane;
  for (std::size_t p = 0; p < row.size(); ++p) {
    values[static_cast<std::size_t>(row.columns[p]) * stride_] = row.values[p];
  }
}

void Lanes::Add(const RowView& row, int lane) {
  float* values = values_.data() + lane;
  for (std::size_t p = 0; p < row.size(); ++p) {
    values[static_cast<std::size_t>(row.columns[p]) * stride_] += row.values[p];
  }
}

void Lanes::Subtract(const RowView& row, int lane) {
  float* values = values_.data() + lane;
  for (std::size_t p = 0; p < row.size(); ++p) {
    values[static_cast<std::size_t>(row.columns[p]) * stride_] -= row.values[p];
  }
}

// Some hundred columns are taken at a time, so that they stay in the cache while each lane is
// summed over them; within a lane the columns come in their order all the same.
template <typename Product>
void Lanes::SumOverColumns(std::span<float> results, Product product) const {
  constexpr std::size_t kColumns = 256;
  std::vector<Wide> sums(results.size());
  const auto ncols = static_cast<std::size_t>(ncols_);
  for (std::size_t begin = 0; begin < ncols; begin += kColumns) {
    const std::size_t end = std::min(begin + kColumns, ncols);
    for (std::size_t lane = 0; lane < sums.size(); ++lane) {
      const float* values = values_.data() + lane;
      Wide sum = sums[lane];
      for (std::size_t j = begin; j < end; ++j) sum += product(values[j * stride_], j);
      sums[lane] = sum;
    }
  }
  std::transform(sums.begin(), sums.end(), results.begin(),
                 [](Wide sum) { return static_cast<float>(sum); });
}

void Lanes::SquaredLengths(std::span<float> squares) const {
  SumOverColumns(squares, [](Wide c, std::size_t) { return c * c; });
}

void Lanes::DotsWith(std::span<const float> vector, std::span<float> dots) const {
  SumOverColumns(dots, [vector](Wide c, std::size_t j) { return c * vector[j]; });
}

void Lanes::DotRow(const RowView& row, double* products) const {
  DotAll(row, values_.data(), stride_, products);
}

}  // namespace molva
