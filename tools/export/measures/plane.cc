// SPDX-License-Identifier: MIT
#include "tools/export/measures/plane.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace mardle::exporting {
namespace {

using Vector = std::vector<double>;

// A symmetric table, row by row.
struct Table {
  explicit Table(std::size_t size) : n(size), cells(size * size, 0) {}
  double& At(std::size_t i, std::size_t j) { return cells[i * n + j]; }
  double At(std::size_t i, std::size_t j) const { return cells[i * n + j]; }
  std::size_t n;
  Vector cells;
};

double Dot(std::span<const SumEntry> a, std::span<const SumEntry> b) {
  double sum = 0;
  for (std::size_t p = 0, q = 0; p < a.size() && q < b.size();) {
    if (a[p].column == b[q].column) sum += a[p].value * b[q].value;
    const bool first_is_behind = a[p].column <= b[q].column;
    const bool second_is_behind = b[q].column <= a[p].column;
    p += first_is_behind ? 1 : 0;
    q += second_is_behind ? 1 : 0;
  }
  return std::isfinite(sum) ? sum : 0;
}

Table Similarities(const ClusterSums& sums, const std::vector<int>& clusters) {
  Table table(clusters.size());
  for (std::size_t i = 0; i < table.n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      table.At(i, j) = table.At(j, i) = Dot(sums[clusters[i]], sums[clusters[j]]);
    }
  }
  return table;
}

Table Distances(const Table& similarities) {
  Table table(similarities.n);
  for (std::size_t i = 0; i < table.n; ++i) {
    for (std::size_t j = 0; j < table.n; ++j) {
      if (i == j) continue;
      table.At(i, j) = std::sqrt(std::max(2 - 2 * similarities.At(i, j), 0.0));
    }
  }
  return table;
}

// Products about the mean of all points: every row and every column sums to 0.
void Centre(Table& table) {
  Vector means(table.n, 0);
  double mean = 0;
  for (std::size_t i = 0; i < table.n; ++i) {
    for (std::size_t j = 0; j < table.n; ++j) means[i] += table.At(i, j) / double(table.n);
    mean += means[i] / double(table.n);
  }
  for (std::size_t i = 0; i < table.n; ++i) {
    for (std::size_t j = 0; j < table.n; ++j) table.At(i, j) += mean - means[i] - means[j];
  }
}

double Dot(const Vector& a, const Vector& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

// Takes from a vector what it has of the others, and brings it to unit length; to 0 when nothing is
// left.
void Orthonormalise(Vector& vector, const std::vector<Vector>& others) {
  for (const Vector& other : others) {
    const double share = Dot(vector, other);
    for (std::size_t i = 0; i < vector.size(); ++i) vector[i] -= share * other[i];
  }
  const double length = std::sqrt(Dot(vector, vector));
  for (double& value : vector) value = length > 1e-12 ? value / length : 0;
}

Vector Product(const Table& table, const Vector& vector) {
  Vector product(table.n, 0);
  for (std::size_t i = 0; i < table.n; ++i) {
    for (std::size_t j = 0; j < table.n; ++j) product[i] += table.At(i, j) * vector[j];
  }
  return product;
}

// Numbers without a pattern, the same at every call; others for every axis, as where eigenvalues
// are equal an axis takes all that its start has of them.
Vector Start(std::size_t n, std::size_t axis) {
  Vector vector(n);
  std::uint64_t state = 88172645463325252U + axis;
  for (double& value : vector) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    value = static_cast<double>(state >> 40) / double{1 << 24} - 0.5;
  }
  return vector;
}

constexpr int kPowerSteps = 400;

// The eigenvector of the largest eigenvalue beside those found, times the root of that value.
Vector NextAxis(const Table& products, std::vector<Vector>& found) {
  Vector axis = Start(products.n, found.size());
  Orthonormalise(axis, found);
  for (int step = 0; step < kPowerSteps; ++step) {
    axis = Product(products, axis);
    Orthonormalise(axis, found);
  }
  // Of the two directions, that in which the farthest point is positive.
  const auto farthest = std::max_element(
      axis.begin(), axis.end(), [](double a, double b) { return std::fabs(a) < std::fabs(b); });
  if (*farthest < 0) {
    for (double& value : axis) value = -value;
  }
  const double eigenvalue = std::max(Dot(axis, Product(products, axis)), 0.0);
  found.push_back(axis);
  for (double& value : axis) value *= std::sqrt(eigenvalue);
  return axis;
}

std::vector<Point> ClassicalScaling(Table products) {
  std::vector<Point> points(products.n);
  if (products.n == 0) return points;
  Centre(products);
  std::vector<Vector> found;
  const Vector x = NextAxis(products, found);
  const Vector y = NextAxis(products, found);
  for (std::size_t i = 0; i < points.size(); ++i) points[i] = {x[i], y[i]};
  return points;
}

constexpr int kMoves = 200;

// Every point goes to the middle of where the others want it, which never makes the distances
// worse in the mean of their squared faults.
void FollowDistances(const Table& distances, std::vector<Point>& points) {
  std::vector<Point> moved(points.size());
  for (int move = 0; move < kMoves; ++move) {
    for (std::size_t i = 0; i < points.size(); ++i) {
      moved[i] = {0, 0};
      for (std::size_t j = 0; j < points.size(); ++j) {
        const double dx = points[i].x - points[j].x;
        const double dy = points[i].y - points[j].y;
        const double length = std::hypot(dx, dy);
        const double factor = length > 1e-12 ? distances.At(i, j) / length : 0;
        moved[i].x += (points[j].x + factor * dx) / double(points.size());
        moved[i].y += (points[j].y + factor * dy) / double(points.size());
      }
    }
    points.swap(moved);
  }
}

}  // namespace

std::vector<Point> PlaceInPlane(const ClusterSums& sums, const std::vector<int>& clusters) {
  const Table similarities = Similarities(sums, clusters);
  std::vector<Point> points = ClassicalScaling(similarities);
  FollowDistances(Distances(similarities), points);
  return points;
}

}  // namespace mardle::exporting
