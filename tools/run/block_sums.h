// SPDX-License-Identifier: MIT
//
// Blocks of rows and sums of clusters as the passes over a file need them, over the entry points of
// molva_blocks.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "lib/molva.h"
#include "tools/run/matrix_blocks.h"

namespace mardle::tools::block_sums {

// Of the moves of a pass all may be made, or a half, a quarter, an eighth of them.
inline constexpr int kLevels = 4;

using Long = std::int64_t;
inline std::size_t Size(Long count) { return static_cast<std::size_t>(count); }

template <typename T>
using Handed = std::unique_ptr<T, decltype(&MOLVA_Free)>;

// Prepared rows, borrowed.
struct PreparedRows {
  int nrows, ncols;
  const int* rowptr;
  const int* rowind;
  const float* rowval;
};

// The prepared rows of a block.
struct PreparedBlock {
  PreparedRows rows_of() const { return {nrows, ncols, rowptr.get(), rowind.get(), rowval.get()}; }

  int nrows = 0, ncols = 0;
  Handed<int> rowptr{nullptr, MOLVA_Free}, rowind{nullptr, MOLVA_Free};
  Handed<float> rowval{nullptr, MOLVA_Free};
  std::vector<int> rows;  // the block's row of each
};
PreparedBlock Prepare(const RowBlock& block, const MOLVA_Space& space);

// Clusters by their sums, and what is measured from them.
struct Sums {
  Sums() = default;
  Sums(int clusters, int columns);
  void Measure(int crfun);

  int nparts = 0, ncols = 0;
  std::vector<Long> sums, pwgts;
  std::vector<double> dnorms, csim;
  double value = 0;
};

// By which part of it the criterion of the clusters is better than a value; endlessly worse when a
// cluster has no rows.
double GainOver(const Sums& clusters, int crfun, double value);

// What rows are judged against: the clusters as they stand for `scale` times as many rows.
class View {
 public:
  View(const Sums& clusters, double scale);
  MOLVA_View view() const;

 private:
  int nparts_;
  std::vector<float> composites_, whole_;
  std::vector<Long> pwgts_;
  std::vector<double> dnorms_, csim_;
};

// What the moves of a pass change, level by level.
struct Changes {
  explicit Changes(const Sums& clusters);

  std::vector<Long> sums, sizes;
  Long moves = 0;
  Long reach = 0;  // a bound on the magnitude of all sums
};
void AddLevel(const Changes& changes, int level, int sign, Sums& clusters);

// Takes the rows from the lists that they leave and adds them to those that they join; returns what
// bounds the magnitude of any sum over some of them.
Long AddMoves(const PreparedRows& rows, int nlists, const std::vector<int>& from,
              const std::vector<int>& to, std::vector<Long>& sums);

}  // namespace mardle::tools::block_sums
