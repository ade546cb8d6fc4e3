// SPDX-License-Identifier: MIT
#include "tests/testing/both_arithmetics.h"

#include <cmath>
#include <cstdio>
#include <iterator>
#include <random>

#include "lib/molva.h"
#include "lib/rough/rough_looks.h"

namespace testing_support {
namespace {

enum class Values { kDigits, kSigned, kSigns, kVotes, kAnswers, kCounts, kReal, kAllSizes };
constexpr Values kKinds[] = {Values::kDigits,  Values::kSigned, Values::kSigns, Values::kVotes,
                             Values::kAnswers, Values::kCounts, Values::kReal,  Values::kAllSizes};

float DrawValue(Values kind, const Below& below) {
  const auto in = [&below](int least, int most) {
    return static_cast<float>(least + below(most - least + 1));
  };
  switch (kind) {
    case Values::kDigits:
      return in(0, 9);
    case Values::kSigned:
      return in(-4, 5);
    case Values::kSigns:
      return in(-1, 1);
    case Values::kVotes:
      return below(2) == 0 ? -1.0F : 1.0F;
    case Values::kAnswers:
      return in(1, 5);
    case Values::kCounts:
      return below(3) == 0 ? in(1, 4) : 0.0F;
    case Values::kReal:
      return in(-128, 127) / 100;
    case Values::kAllSizes:
      return in(-9, 9) * std::ldexp(1.0F, -below(40));
  }
  return 0;
}

// A full table stores every cell; otherwise zeros are left out, and columns may repeat.
SparseMatrix DrawMatrix(const Below& below) {
  const Values kind = kKinds[below(static_cast<int>(std::size(kKinds)))];
  const bool is_full = below(3) == 0;
  const bool repeats = !is_full && below(4) == 0;
  SparseMatrix matrix;
  matrix.nrows = 4 + below(below(8) == 0 ? 120 : 36);
  matrix.ncols = 1 + below(below(8) == 0 ? 24 : 6);
  for (int i = 0; i < matrix.nrows; ++i) {
    for (int j = 0; j < matrix.ncols; ++j) {
      const float value = DrawValue(kind, below);
      if (!is_full && value == 0) continue;
      matrix.rowind.push_back(repeats ? below(matrix.ncols) : j);
      matrix.rowval.push_back(value);
    }
    matrix.rowptr.push_back(static_cast<int>(matrix.rowind.size()));
  }
  return matrix;
}

template <typename T>
void Append(std::string& bytes, const std::vector<T>& values) {
  bytes.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T));
}

// What the calls of one run hand out.
struct Results {
  const ClusteringRun& run;
  std::vector<int> part;
  float quality = 0;
  std::vector<int> ptree;
  std::vector<float> tsims;

  void Fill();
};

void Results::Fill() {
  const SparseMatrix& m = run.matrix;
  part.assign(static_cast<std::size_t>(m.nrows), -1);
  if (run.direct) {
    MOLVA_VP_ClusterDirect(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                           run.simfun, run.crfun, run.rowmodel, run.colmodel, run.prune,
                           run.ntrials, run.niter, run.seed, 0, run.nclusters, part.data());
  } else {
    MOLVA_VP_ClusterRB(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                       run.simfun, run.crfun, run.rowmodel, run.colmodel, run.prune, run.ntrials,
                       run.niter, run.seed, run.refine ? 1 : 0, 0, run.nclusters, part.data());
  }
  quality = MOLVA_V_GetSolutionQuality(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(),
                                       m.rowval.data(), run.simfun, run.crfun, run.rowmodel,
                                       run.colmodel, run.prune, run.nclusters, part.data());
  if (run.treetype == 0) return;
  const int leaves = run.treetype == 1 ? run.nclusters : m.nrows;
  ptree.assign(2 * static_cast<std::size_t>(leaves), -1);
  tsims.assign(ptree.size(), 0);
  MOLVA_V_BuildTree(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(), run.simfun,
                    run.crfun, run.rowmodel, run.colmodel, run.prune, run.treetype, 0,
                    run.nclusters, part.data(), ptree.data(), tsims.data());
}

}  // namespace

std::string ClusteringRun::Options() const {
  char text[200];
  std::snprintf(text, sizeof text,
                "-sim=%d -crfun=%d -rowmodel=%d -colmodel=%d -prune=%g -ntrials=%d -niter=%d "
                "-seed=%d%s%s, %d clusters, tree type %d",
                simfun, crfun, rowmodel, colmodel, static_cast<double>(prune), ntrials, niter, seed,
                direct ? " -direct" : "", refine ? " -refine" : "", nclusters, treetype);
  return text;
}

ClusteringRun DrawRun(const Below& below) {
  ClusteringRun run;
  run.matrix = DrawMatrix(below);
  run.simfun = 1 + below(2);
  run.crfun = 1 + below(9);
  run.rowmodel = below(4) == 0 ? 1 + below(4) : 1;
  // IDF is for sparse matrices under the cosine.
  const auto cells =
      static_cast<std::size_t>(run.matrix.nrows) * static_cast<unsigned>(run.matrix.ncols);
  const bool may_scale = run.simfun == 1 && run.matrix.rowval.size() < cells;
  run.colmodel = may_scale ? 1 + below(2) : 1;
  run.prune = below(6) == 0 ? 0.7F : 1.0F;
  run.ntrials = 1 + below(10);
  run.niter = below(3) == 0 ? below(31) : 10;
  run.seed = below(1000);
  run.direct = below(2) == 0;
  run.refine = !run.direct && below(2) == 0;
  run.nclusters = 2 + below(below(4) == 0 ? 30 : 5);
  // The two products have no trees.
  run.treetype = run.crfun <= 7 ? below(3) : 0;
  return run;
}

ClusteringRun DrawRun(std::uint32_t seed) {
  std::mt19937 random(seed);
  return DrawRun(
      [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); });
}

std::string Outcome(const ClusteringRun& run, bool rough_looks) {
  Results results{run, {}, 0, {}, {}};
  char message[400];
  molva::UseRoughLooks(rough_looks);
  MOLVA_Try([](void* r) { static_cast<Results*>(r)->Fill(); }, &results, message, sizeof message);
  molva::UseRoughLooks(true);
  std::string bytes = message;
  Append(bytes, results.part);
  Append(bytes, std::vector{results.quality});
  Append(bytes, results.ptree);
  Append(bytes, results.tsims);
  return bytes;
}

}  // namespace testing_support
