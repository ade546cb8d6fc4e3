// SPDX-License-Identifier: MIT
#include "tools/sweep/dimension.h"

#include <memory>
#include <span>
#include <vector>

namespace mardle::tools {
namespace {

constexpr int kSample = 1000;

struct FreeByLibrary {
  void operator()(void* array) const { MOLVA_Free(array); }
};
template <typename T>
using Handed = std::unique_ptr<T[], FreeByLibrary>;

// The rows as the library prepares them.
struct PreparedRows {
  explicit PreparedRows(const EngineInput& in);

  int nrows = 0;
  int ncols = 0;
  Handed<int> rowptr;
  Handed<int> rowind;
  Handed<float> rowval;
};

PreparedRows::PreparedRows(const EngineInput& in) {
  molva::Array<int> rperm(in.nrows, "DimensionOf: rperm");
  molva::Array<int> cperm(in.ncols, "DimensionOf: cperm");
  int* starts = nullptr;
  int* columns = nullptr;
  float* values = nullptr;
  MOLVA_InternalizeMatrix(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun,
                          in.rowmodel, in.colmodel, in.prune, &nrows, &ncols, &starts, &columns,
                          &values, rperm.get(), cperm.get());
  rowptr.reset(starts);
  rowind.reset(columns);
  rowval.reset(values);
}

// Products of all pairs of some rows.
class Products {
 public:
  Products(const PreparedRows& rows, int step);

  // Takes the averages of lines and columns away: the products about the mean of the rows.
  void Center();
  double Trace() const;
  double SumOfSquares() const;

 private:
  double& At(std::size_t i, std::size_t j) { return values_[i * n_ + j]; }

  std::size_t n_;
  std::vector<double> values_;
};

Products::Products(const PreparedRows& rows, int step)
    : n_(static_cast<std::size_t>((rows.nrows + step - 1) / step)), values_(n_ * n_) {
  std::vector<double> row(static_cast<std::size_t>(rows.ncols));
  for (std::size_t a = 0; a < n_; ++a) {
    const int i = static_cast<int>(a) * step;
    for (int p = rows.rowptr[i]; p < rows.rowptr[i + 1]; ++p) {
      row[static_cast<std::size_t>(rows.rowind[p])] += static_cast<double>(rows.rowval[p]);
    }
    for (std::size_t b = 0; b <= a; ++b) {
      const int j = static_cast<int>(b) * step;
      double product = 0;
      for (int p = rows.rowptr[j]; p < rows.rowptr[j + 1]; ++p) {
        product +=
            row[static_cast<std::size_t>(rows.rowind[p])] * static_cast<double>(rows.rowval[p]);
      }
      At(a, b) = At(b, a) = product;
    }
    for (int p = rows.rowptr[i]; p < rows.rowptr[i + 1]; ++p) {
      row[static_cast<std::size_t>(rows.rowind[p])] = 0;
    }
  }
}

void Products::Center() {
  std::vector<double> averages(n_);
  double average = 0;
  for (std::size_t i = 0; i < n_; ++i) {
    for (std::size_t j = 0; j < n_; ++j) averages[i] += At(i, j) / static_cast<double>(n_);
    average += averages[i] / static_cast<double>(n_);
  }
  for (std::size_t i = 0; i < n_; ++i) {
    for (std::size_t j = 0; j < n_; ++j) At(i, j) -= averages[i] + averages[j] - average;
  }
}

double Products::Trace() const {
  double trace = 0;
  for (std::size_t i = 0; i < n_; ++i) trace += values_[i * n_ + i];
  return trace;
}

double Products::SumOfSquares() const {
  double sum = 0;
  for (const double value : values_) sum += value * value;
  return sum;
}

}  // namespace

double DimensionOf(const EngineInput& in) {
  constexpr double kOneLine = 0.5;
  const PreparedRows rows(in);
  Products products(rows, (rows.nrows + kSample - 1) / kSample);
  products.Center();
  const double squares = products.SumOfSquares();
  return squares > 0 ? products.Trace() * products.Trace() / squares / 2 : kOneLine;
}

}  // namespace mardle::tools
