// SPDX-License-Identifier: MIT
#include "bench/vectors.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <span>

#include "bench/draws.h"

namespace bench {
namespace {

// Parts of the variance of a cell, to which the factors of centres bring 1.
constexpr double kShared = 0.6;
constexpr double kNoise = 0.4;

std::vector<double> NormalNumbers(Random& random, std::size_t n, double spread) {
  std::vector<double> numbers(n);
  for (double& number : numbers) number = spread * Normal(random);
  return numbers;
}

// Adds `factors` times a matrix with one row a factor.
void AddFactors(std::span<const double> factors, std::span<const double> matrix,
                std::span<double> row) {
  for (std::size_t f = 0; f < factors.size(); ++f) {
    for (std::size_t j = 0; j < row.size(); ++j) row[j] += factors[f] * matrix[f * row.size() + j];
  }
}

void AppendUnitRow(std::span<const double> row, std::vector<float>& cells) {
  const double length = std::sqrt(std::inner_product(row.begin(), row.end(), row.begin(), 0.0));
  for (const double cell : row) cells.push_back(static_cast<float>(cell / length));
}

// What the rows are drawn from.
struct Law {
  std::vector<double> matrix;  // a row of it for each factor
  std::vector<double> shared;
  std::vector<double> centers;  // the factors of each
};

Law DrawLaw(Random& random, const VectorsShape& shape) {
  const auto ncols = static_cast<std::size_t>(shape.ncols);
  const auto nfactors = static_cast<std::size_t>(shape.factors);
  Law law;
  law.matrix = NormalNumbers(random, nfactors * ncols, 1 / std::sqrt(shape.factors));
  law.shared = NormalNumbers(random, ncols, std::sqrt(kShared));
  law.centers = NormalNumbers(random, static_cast<std::size_t>(shape.centers) * nfactors, 1);
  return law;
}

std::vector<double> DrawRow(Random& random, const Law& law, std::span<const double> center,
                            double spread) {
  std::vector<double> factors = NormalNumbers(random, center.size(), spread);
  for (std::size_t f = 0; f < factors.size(); ++f) factors[f] += center[f];
  std::vector<double> row = NormalNumbers(random, law.shared.size(), std::sqrt(kNoise));
  for (std::size_t j = 0; j < row.size(); ++j) row[j] += law.shared[j];
  AddFactors(factors, law.matrix, row);
  return row;
}

}  // namespace

Vectors MakeVectors(const VectorsShape& shape) {
  Random random(static_cast<Random::result_type>(shape.seed));
  const Law law = DrawLaw(random, shape);
  const UnequalShares shares(shape.centers, shape.center_slope);
  const auto nfactors = static_cast<std::size_t>(shape.factors);

  Vectors vectors;
  vectors.ncols = shape.ncols;
  for (int i = 0; i < shape.nrows; ++i) {
    const std::size_t center = shares.Draw(random);
    const auto factors = std::span(law.centers).subspan(center * nfactors, nfactors);
    AppendUnitRow(DrawRow(random, law, factors, shape.spread), vectors.cells);
    vectors.center.push_back(static_cast<int>(center));
  }
  return vectors;
}

std::string HeaderLine(const Vectors& vectors) {
  return std::to_string(vectors.center.size()) + ' ' + std::to_string(vectors.ncols) + '\n';
}

std::string RowLine(const Vectors& vectors, int i) {
  const auto ncols = static_cast<std::size_t>(vectors.ncols);
  const std::span row =
      std::span(vectors.cells).subspan(static_cast<std::size_t>(i) * ncols, ncols);
  std::string line;
  std::array<char, 32> digits;
  for (const float cell : row) {
    line.append(digits.data(),
                std::to_chars(digits.data(), digits.data() + digits.size(), cell).ptr);
    line += ' ';
  }
  line.back() = '\n';
  return line;
}

}  // namespace bench
