// SPDX-License-Identifier: MIT
#include "programs/io/write_results.h"

#include <cstdint>
#include <string>

#include "lib/support/fatal.h"
#include "lib/support/printed.h"
#include "programs/io/result_file.h"

namespace mardle {
namespace {

std::string NameOf(const molva::String& given, const molva::String& stem, const char* kind,
                   int count) {
  if (given) return given.get();
  return std::string(stem.get()) + kind + std::to_string(count);
}

void WriteClusters(std::FILE* out, int nrows, const int* part) {
  for (int i = 0; i < nrows; ++i) std::fprintf(out, "%d\n", part[i]);
}

// The blocks carry the quality report's names, which measures the same way.
void WriteClustersAndScores(std::FILE* out, const RunParams& params, const Matrix& mat,
                            const Clusters& clusters) {
  using molva::AllocFloatsSet;
  const int nclusters = clusters.count;
  molva::Array<int> pwgts = molva::AllocIntsSet(nclusters, 0, "EvaluateClusters: pwgts");
  molva::Array<float> cintsim = AllocFloatsSet(nclusters, 0, "EvaluateClusters: cintsim");
  molva::Array<float> cintsdev = AllocFloatsSet(nclusters, 0, "EvaluateClusters: cintsdev");
  molva::Array<float> izscores = AllocFloatsSet(mat.nrows, 0, "EvaluateClusters: izscores");
  molva::Array<float> cextsim = AllocFloatsSet(nclusters, 0, "EvaluateClusters: cextsim");
  molva::Array<float> cextsdev = AllocFloatsSet(nclusters, 0, "EvaluateClusters: cextsdev");
  molva::Array<float> ezscores = AllocFloatsSet(mat.nrows, 0, "EvaluateClusters: ezscores");
  MeasureClusters(RunInput(params, mat, clusters), {.pwgts = pwgts,
                                                    .cintsim = cintsim,
                                                    .cintsdev = cintsdev,
                                                    .izscores = izscores,
                                                    .cextsim = cextsim,
                                                    .cextsdev = cextsdev,
                                                    .ezscores = ezscores});
  for (int i = 0; i < mat.nrows; ++i) {
    const int k = clusters.part[i];
    const bool clustered = k >= 0 && k < nclusters;
    std::fprintf(out, "%d %f %f\n", k, molva::Printed(izscores[i], clustered ? cintsim[k] : 0),
                 molva::Printed(ezscores[i], clustered ? cextsim[k] : 0));
  }
}

}  // namespace

std::string ClusteringName(const RunParams& params, int nclusters) {
  return NameOf(params.outputfile, params.filename, ".clustering.", nclusters);
}

std::string ClusteringName(const RunParams& params) {
  return ClusteringName(params, params.nclusters);
}

std::string TreeName(const molva::String& filename, const molva::String& treefile, int n) {
  return NameOf(treefile, filename, ".tree.", n);
}

void WriteClustering(const RunParams& params, const Matrix& mat, const Clusters& clusters) {
  const std::string name = ClusteringName(params, clusters.count);
  // Opened before the z-scores are computed, so a name that cannot be written is reported at once.
  ResultFile file(name);
  if (!file) molva::FatalError("Problems in opening the clustering file: %s", name.c_str());
  if (params.zscores) {
    WriteClustersAndScores(file.get(), params, mat, clusters);
  } else {
    WriteClusters(file.get(), mat.nrows, clusters.part);
  }
  file.Complete();
}

void WriteTree(const molva::String& filename, const molva::String& treefile, int n,
               const int* ptree, const float* tsims) {
  const std::string name = TreeName(filename, treefile, n);
  ResultFile file(name);
  if (!file) molva::FatalError("Problems in creating the tree file: %s", name.c_str());
  for (std::int64_t x = 0; x < 2 * std::int64_t{n} - 1; ++x) {
    std::fprintf(file.get(), "%d %f\n", ptree[x], molva::Printed(tsims[x]));
  }
  file.Complete();
}

}  // namespace mardle
