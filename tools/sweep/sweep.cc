// SPDX-License-Identifier: MIT
#include "tools/sweep/sweep.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string>

#include "programs/io/engine_calls.h"
#include "tools/sweep/agreement.h"
#include "tools/sweep/dimension.h"
#include "tools/sweep/knee.h"

namespace mardle::tools {
namespace {

// One clustering: the cluster of each row, and the value of the criterion.
struct Fit {
  molva::Array<int> part;
  double value = 0;

  std::span<const int> labels() const { return {part.get(), part.size()}; }
};

class Sweeper {
 public:
  Sweeper(RunParams& params, const Matrix& mat, int nseeds, StageLine& line)
      : params_(params), mat_(mat), nseeds_(nseeds), line_(line) {}

  // Clusters into so many and adds a row and a point.
  void Add(int nclusters);
  Sweep Take();

 private:
  double Goodness(double value) const;
  double ValueOf(int nclusters, const int* part) const;
  std::vector<Fit> FitAll(int nclusters) const;
  const Fit& BestOf(const std::vector<Fit>& fits) const;
  void AddOneCluster(const Fit& fit);
  void AddPoint(int nclusters, double value);

  RunParams& params_;
  const Matrix& mat_;
  int nseeds_;
  StageLine& line_;
  std::vector<SweepRow> rows_;
  std::vector<CurvePoint> curve_;
  double added_ = std::numeric_limits<double>::quiet_NaN();  // by the point added last
};

double Sweeper::Goodness(double value) const {
  return LargerIsBetter(params_.crfun) ? value : -value;
}

double Sweeper::ValueOf(int nclusters, const int* part) const {
  return static_cast<double>(
      CriterionValue(RunInput(params_, mat_, {nclusters, part}), params_.crfun));
}

std::vector<Fit> Sweeper::FitAll(int nclusters) const {
  std::vector<Fit> fits;
  for (int seed = 1; seed <= nseeds_; ++seed) {
    line_.Begin(std::to_string(nclusters) + " clusters, seed " + std::to_string(seed) + " of " +
                std::to_string(nseeds_));
    Fit& fit = fits.emplace_back();
    fit.part = molva::AllocIntsSet(mat_.nrows, -1, "SweepNumbers: part");
    params_.seed = seed;
    FindClusters(params_, RunInput(params_, mat_, {nclusters, fit.part.get()}), fit.part);
    fit.value = ValueOf(nclusters, fit.part.get());
  }
  return fits;
}

// The first of equal ones; values that are none come last.
const Fit& Sweeper::BestOf(const std::vector<Fit>& fits) const {
  const auto goodness = [this](const Fit& fit) {
    return std::isfinite(fit.value) ? Goodness(fit.value)
                                    : -std::numeric_limits<double>::infinity();
  };
  return *std::max_element(fits.begin(), fits.end(), [&goodness](const Fit& a, const Fit& b) {
    return goodness(a) < goodness(b);
  });
}

void Sweeper::AddPoint(int nclusters, double value) {
  if (!curve_.empty()) {
    const CurvePoint& before = curve_.back();
    const double value_before = Goodness(before.goodness);  // The sign taken back.
    added_ = (value - value_before) / (nclusters - before.nclusters);
  }
  curve_.push_back({nclusters, Goodness(value)});
}

// All rows that have a cluster as one.
void Sweeper::AddOneCluster(const Fit& fit) {
  molva::Array<int> together = molva::AllocIntsSet(mat_.nrows, -1, "SweepNumbers: together");
  std::transform(fit.part.begin(), fit.part.end(), together.begin(),
                 [](int cluster) { return std::min(cluster, 0); });
  AddPoint(1, ValueOf(1, together.get()));
}

void MeasureSeeds(const std::vector<Fit>& fits, SweepRow& row) {
  double sum = 0;
  int pairs = 0;
  row.least_stability = 1;
  for (std::size_t one = 0; one < fits.size(); ++one) {
    for (std::size_t other = one + 1; other < fits.size(); ++other) {
      const double agreement = AdjustedRandIndex(fits[one].labels(), fits[other].labels());
      row.least_stability = std::min(row.least_stability, agreement);
      sum += agreement;
      ++pairs;
    }
  }
  row.stability = sum / pairs;
}

void MeasureSizes(const Fit& fit, SweepRow& row) {
  std::vector<int> sizes(static_cast<std::size_t>(row.nclusters));
  for (const int cluster : fit.part) {
    if (cluster >= 0) ++sizes[static_cast<std::size_t>(cluster)];
  }
  std::sort(sizes.begin(), sizes.end());
  row.smallest = sizes.front();
  row.largest = sizes.back();
  const std::size_t half = sizes.size() / 2;
  row.median = sizes.size() % 2 == 1 ? sizes[half] : (double(sizes[half - 1]) + sizes[half]) / 2;
}

void Sweeper::Add(int nclusters) {
  const std::vector<Fit> fits = FitAll(nclusters);
  const Fit& best = BestOf(fits);
  if (nclusters == 2) AddOneCluster(best);
  AddPoint(nclusters, best.value);
  SweepRow row;
  row.nclusters = nclusters;
  row.value = best.value;
  row.added = added_;
  MeasureSeeds(fits, row);
  MeasureSizes(best, row);
  if (mat_.rclasses) {
    const std::span<const int> classes(mat_.classes.get(), mat_.classes.size());
    row.classes = {Purity(best.labels(), classes),
                   NormalizedMutualInformation(classes, best.labels())};
  }
  rows_.push_back(row);
}

Sweep Sweeper::Take() {
  line_.Begin("dimensions");
  const SmoothCurve smooth{DimensionOf(RunInput(params_, mat_, {})), params_.rb};
  const std::optional<Knee> knee = FindKnee(curve_, smooth);
  Recommendation recommendation = Recommend(rows_, knee, params_.crfun);
  return {params_.crfun, std::move(rows_), std::move(recommendation)};
}

}  // namespace

Sweep SweepNumbers(RunParams& params, const Matrix& mat, const std::vector<int>& numbers,
                   int nseeds, StageLine& line) {
  Sweeper sweeper(params, mat, nseeds, line);
  for (const int nclusters : numbers) sweeper.Add(nclusters);
  return sweeper.Take();
}

}  // namespace mardle::tools
