// SPDX-License-Identifier: MIT
//
// Finds the composite whose length a row would make grow most, where rough arithmetic can tell.
//
// A root is concave, so the growth of |D| = sqrt(q) to sqrt(q + x), x = 2 d.D + d.d, is at most
// x / (2 sqrt(q)). The composite with the largest such bound is measured with its error, and then
// those alone whose bound reaches as far; when one is certain to grow more than all others, the
// full arithmetic would choose it too. Two composites are both measured, in double arithmetic.
#pragma once

#include "lib/rough/bound_arrays.h"
#include "lib/rough/lanes.h"
#include "lib/rough/length_bound.h"
#include "lib/rough/rounding.h"
#include "lib/rough/row_records.h"
#include "lib/rough/vector_kernels.h"

namespace molva {

class GrowthScreen {
 public:
  // The composites are lanes 0 to nparts - 1. The blocks carry the given name.
  GrowthScreen(const Lanes& lanes, int nparts, const RowExtremes& rows, BlockName name);

  // A row has started cluster k, or come into it; the squared length as it is stored.
  void Start(int k, float squared_length);
  void Change(int k, const RowRecord& row, float squared_length);

  // The cluster that grows most, -1 where that is not certain.
  int Choose(const RowView& entries, const RowRecord& row);

  // The squared length of cluster k with the row that was chosen for last, where all that it can be
  // rounds to one number of single precision.
  struct MaybeSquare {
    bool is_certain;
    float value;
  };
  MaybeSquare SquaredLengthWith(const RowView& entries, const RowRecord& row, int k) const;

 private:
  struct Cluster {
    double squared_length = 0;
    double root = 0;
    double error = 0;  // of x, per counted entry
    LengthBound length;
  };

  void SetBound(int k);
  int ChooseOfTwo(const RowView& entries, const RowRecord& row);
  Interval Growth(int k, const RowFactors& row) const;
  Interval GrowthTo(const Cluster& cluster, double square, double error) const;
  double SquareError(const Cluster& cluster, const RowRecord& row) const;
  MaybeSquare Rounded(const Interval& square) const;

  const Lanes& lanes_;
  int nparts_;
  const RowExtremes& rows_;
  VectorKernel kernel_;
  Array<Cluster> clusters_;
  Array<float> products_;
  Array<double> most_;  // that each composite can grow
  BoundArrays bounds_;
  Interval two_squares_[2] = {};  // of each of two clusters with the row chosen for last
};

}  // namespace molva
