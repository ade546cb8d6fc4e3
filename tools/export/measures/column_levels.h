// SPDX-License-Identifier: MIT
//
// How high a column stands in each cluster, counted from the matrix as it was read. In a sparse
// matrix that is the share of rows that hold the column, in a dense one the average of its values.
// The matrix is one that the library has taken: its columns are within it.
#pragma once

#include <cstddef>
#include <vector>

#include "programs/io/matrix.h"
#include "tools/export/measures/cluster_rows.h"

namespace mardle::exporting {

class ColumnLevels {
 public:
  ColumnLevels() = default;  // of no clusters
  ColumnLevels(const Matrix& mat, const ClusterRows& rows);

  // Whether levels are shares of rows, from 0 to 1.
  bool are_shares() const { return are_shares_; }
  // The level of column j in cluster k, and in all other clusters together; 0 where there are no
  // rows.
  double Inside(int k, int j) const;
  double Elsewhere(int k, int j) const;
  // How far the average of cluster k stands above that of all rows, in deviations of the column
  // over the rows; 0 for a column of one value. For a dense matrix.
  double Standing(int k, int j) const { return StandingOf(Inside(k, j), j); }
  // The same for any average of column j.
  double StandingOf(double average, int j) const;

 private:
  struct Sum {
    int column;
    double sum;
  };
  void AddShares(const Matrix& mat, const ClusterRows& rows);
  void AddValues(const Matrix& mat, const ClusterRows& rows);
  void TakeCluster(std::vector<double>& sums, std::vector<int>& columns);
  double SumOf(int k, int j) const;

  bool are_shares_ = true;
  std::vector<int> sizes_;
  int total_size_ = 0;
  std::vector<std::size_t> begins_ = {0};  // where the sums of each cluster begin
  std::vector<Sum> sums_;                  // columns increasing within a cluster, none with sum 0
  std::vector<double> totals_;             // over all clusters, by column
  std::vector<double> squares_;            // the same of squares; empty for shares
};

}  // namespace mardle::exporting
