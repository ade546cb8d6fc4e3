// SPDX-License-Identifier: MIT
#include "tools/export/measures/plane.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/tools/export/measures/matrices.h"

namespace {

using mardle::Matrix;
using mardle::exporting::ClusterRows;
using mardle::exporting::ClusterSums;
using mardle::exporting::PlaceInPlane;
using mardle::exporting::Point;
using testing_support::PlainInput;
using testing_support::SparseMatrixOf;

// Every row twice, so that no column stands in one row only, and a cluster each.
std::vector<Point> PointsOf(std::vector<std::vector<float>> rows) {
  const std::size_t n = rows.size();
  std::vector<int> part;
  std::vector<int> clusters;
  for (std::size_t i = 0; i < 2 * n; ++i) part.push_back(static_cast<int>(i % n));
  for (std::size_t i = 0; i < n; ++i) clusters.push_back(static_cast<int>(i));
  rows.resize(2 * n);
  std::copy_n(rows.begin(), n, rows.begin() + static_cast<std::ptrdiff_t>(n));
  const Matrix mat = SparseMatrixOf(rows);
  const int nclusters = static_cast<int>(n);
  return PlaceInPlane(ClusterSums(PlainInput(mat, part, nclusters), ClusterRows(part, nclusters)),
                      clusters);
}

double Distance(const Point& a, const Point& b) { return std::hypot(a.x - b.x, a.y - b.y); }

TEST(Plane, KeepsDistancesThatAPlaneCanHave) {
  // Unit vectors of a plane: the ends lie sqrt(2 - 2 cos) apart.
  const std::vector<Point> points = PointsOf({{1, 0}, {4, 3}, {3, 4}, {0, 1}});
  ASSERT_EQ(points.size(), 4U);
  EXPECT_NEAR(Distance(points[0], points[1]), std::sqrt(0.4), 1e-3);
  EXPECT_NEAR(Distance(points[1], points[2]), std::sqrt(0.08), 1e-3);
  EXPECT_NEAR(Distance(points[0], points[3]), std::sqrt(2.0), 1e-3);
}

TEST(Plane, MakesAnEvenTriangleOfThreeThatShareNothing) {
  const std::vector<Point> points = PointsOf({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  EXPECT_NEAR(Distance(points[0], points[1]), std::sqrt(2.0), 1e-6);
  EXPECT_NEAR(Distance(points[1], points[2]), std::sqrt(2.0), 1e-6);
  EXPECT_NEAR(Distance(points[0], points[2]), std::sqrt(2.0), 1e-6);
}

TEST(Plane, PutsEqualClustersOnOnePlace) {
  const std::vector<Point> points = PointsOf({{2, 1}, {2, 1}, {1, 4}});
  EXPECT_NEAR(Distance(points[0], points[1]), 0, 1e-6);
  EXPECT_GT(Distance(points[0], points[2]), 0.5);
}

TEST(Plane, KeepsNearWhatIsSimilarWhereItCannotKeepAllDistances) {
  // Three pairs: within a pair the distance is sqrt(0.4), between pairs sqrt(2).
  const std::vector<Point> points = PointsOf({{2, 1, 0, 0, 0, 0},
                                              {1, 2, 0, 0, 0, 0},
                                              {0, 0, 2, 1, 0, 0},
                                              {0, 0, 1, 2, 0, 0},
                                              {0, 0, 0, 0, 2, 1},
                                              {0, 0, 0, 0, 1, 2}});
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = 0; j < 6; ++j) {
      if (i / 2 == j / 2) continue;
      EXPECT_LT(Distance(points[i], points[i ^ 1]), Distance(points[i], points[j]));
    }
  }
}

TEST(Plane, IsTheSameEveryTime) {
  const std::vector<std::vector<float>> rows = {{2, 1, 0}, {1, 2, 5}, {0, 1, 1}, {3, 0, 1}};
  const std::vector<Point> first = PointsOf(rows);
  const std::vector<Point> second = PointsOf(rows);
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_EQ(first[i].x, second[i].x);
    EXPECT_EQ(first[i].y, second[i].y);
  }
}

}  // namespace
