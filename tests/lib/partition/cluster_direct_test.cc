// SPDX-License-Identifier: MIT
#include "lib/partition/cluster_direct.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::OutputOf;
using testing_support::RandomDocuments;
using testing_support::SparseMatrix;
using testing_support::SparseOf;

std::vector<int> Direct(const SparseMatrix& m, int nparts, int crfun = 2, int dbglvl = 0) {
  std::vector<int> part(static_cast<std::size_t>(m.nrows), -7);
  MOLVA_VP_ClusterDirect(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                         MOLVA_SIM_COSINE, crfun, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 10, 10, 1,
                         dbglvl, nparts, part.data());
  return part;
}

TEST(DirectClustering, FindsThePlantedPairsUnderEveryCriterion) {
  const SparseMatrix matrix = SparseOf({{1, 0, 0},
                                        {0, 1, 0},
                                        {0, 0, 1},
                                        {1, 0, 0},
                                        {0, 1, 0},
                                        {0, 0, 1},
                                        {1, 0, 0},
                                        {0, 1, 0},
                                        {0, 0, 1}});
  for (int code = 1; code <= 9; ++code) {
    const std::vector<int> part = Direct(matrix, 3, code);
    for (std::size_t i = 3; i < part.size(); ++i) EXPECT_EQ(part[i], part[i - 3]) << code;
    EXPECT_EQ(*std::max_element(part.begin(), part.end()), 2) << code;
  }
}

TEST(DirectClustering, ReportsItsTrialsWithATabBeforeTheValue) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}});
  EXPECT_EQ(OutputOf([&] { Direct(matrix, 2, 2, 1); }),
            "\n------------------------------------------------------------------------------\n"
            "Clustering a matrix of size [nrows:4 ncols:2 nnz:4]\tSim: 1.0000\n"
            "------------------------------------------------------------------------------\n");
}

TEST(DirectClustering, LeavesRowsThatPreparationDropsWithoutACluster) {
  EXPECT_EQ(Direct(SparseOf({{1, 0}, {0, 0}, {1, 0}, {0, 4}}), 1),
            (std::vector<int>{0, -1, 0, -1}));
}

TEST(DirectClustering, RepeatsItselfForTheSameSeed) {
  const SparseMatrix matrix = RandomDocuments(8, 100, 80, 5, 8);
  EXPECT_EQ(Direct(matrix, 5), Direct(matrix, 5));
}

TEST(DirectClustering, ClustersDenseRowsByCorrelation) {
  // Rising and falling rows at different levels and scales: correlation sees only the direction.
  const std::vector<float> values = {1, 2, 3, 9, 6, 3, 11, 12, 13, 5, 4, 3, 0, 50, 100, 7, 0, -7};
  std::vector<int> part(6);
  MOLVA_VP_ClusterDirect(6, 3, nullptr, nullptr, values.data(), MOLVA_SIM_CORRELATION, 2,
                         MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 10, 10, 1, 0, 2, part.data());
  EXPECT_EQ(part[0], part[2]);
  EXPECT_EQ(part[0], part[4]);
  EXPECT_EQ(part[1], part[3]);
  EXPECT_EQ(part[1], part[5]);
  EXPECT_NE(part[0], part[1]);
}

TEST(DirectClustering, EndsTheRunWhenThereAreMoreClustersThanRows) {
  EXPECT_FATAL(Direct(SparseOf({{1, 1}, {1, 1}}), 3),
               "Cannot make 3 clusters out of 2 rows with entries!\n");
}

}  // namespace
}  // namespace molva
