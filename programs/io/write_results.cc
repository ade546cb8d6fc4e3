// SPDX-License-Identifier: MIT
#include "programs/io/write_results.h"

#include <cstdint>
#include <string>

#include "lib/molva.h"
#include "lib/support/fatal.h"
#include "lib/support/files.h"
#include "lib/support/printed.h"

namespace mardle {
namespace {

std::string NameOf(const molva::String& given, const molva::String& stem, const char* kind,
                   int count) {
  if (given) return given.get();
  return std::string(stem.get()) + kind + std::to_string(count);
}

void WriteClusters(std::FILE* out, const Matrix& mat, const int* part) {
  for (int i = 0; i < mat.nrows; ++i) std::fprintf(out, "%d\n", part[i]);
}

// The blocks carry the quality report's names, which measures the same way.
void WriteClustersAndScores(std::FILE* out, const RunParams& params, const Matrix& mat,
                            const int* part) {
  using molva::AllocFloatsSet;
  const int nclusters = params.nclusters;
  molva::Array<int> pwgts = molva::AllocIntsSet(nclusters, 0, "EvaluateClusters: pwgts");
  molva::Array<float> cintsim = AllocFloatsSet(nclusters, 0, "EvaluateClusters: cintsim");
  molva::Array<float> cintsdev = AllocFloatsSet(nclusters, 0, "EvaluateClusters: cintsdev");
  molva::Array<float> izscores = AllocFloatsSet(mat.nrows, 0, "EvaluateClusters: izscores");
  molva::Array<float> cextsim = AllocFloatsSet(nclusters, 0, "EvaluateClusters: cextsim");
  molva::Array<float> cextsdev = AllocFloatsSet(nclusters, 0, "EvaluateClusters: cextsdev");
  molva::Array<float> ezscores = AllocFloatsSet(mat.nrows, 0, "EvaluateClusters: ezscores");
  MOLVA_V_GetClusterStats(mat.nrows, mat.ncols, mat.rowptr.get(), mat.rowind.get(),
                          mat.rowval.get(), params.simfun, params.rowmodel, params.colmodel,
                          params.prune, nclusters, part, pwgts.get(), cintsim.get(), cintsdev.get(),
                          izscores.get(), cextsim.get(), cextsdev.get(), ezscores.get());
  for (int i = 0; i < mat.nrows; ++i) {
    const bool clustered = part[i] >= 0 && part[i] < nclusters;
    std::fprintf(out, "%d %f %f\n", part[i],
                 molva::Printed(izscores[i], clustered ? cintsim[part[i]] : 0),
                 molva::Printed(ezscores[i], clustered ? cextsim[part[i]] : 0));
  }
}

}  // namespace

std::string ClusteringName(const RunParams& params) {
  return NameOf(params.outputfile, params.filename, ".clustering.", params.nclusters);
}

std::string TreeName(const molva::String& filename, const molva::String& treefile, int n) {
  return NameOf(treefile, filename, ".tree.", n);
}

void WriteClustering(const RunParams& params, const Matrix& mat, const int* part) {
  const std::string name = ClusteringName(params);
  // Opened before the z-scores are computed, so a name that cannot be written is reported at once.
  molva::File file = molva::OpenFile(name.c_str(), "w");
  if (!file) molva::FatalError("Problems in opening the clustering file: %s", name.c_str());
  if (params.zscores != 0) {
    WriteClustersAndScores(file.get(), params, mat, part);
  } else {
    WriteClusters(file.get(), mat, part);
  }
  molva::CloseFile(file);
}

void WriteTree(const molva::String& filename, const molva::String& treefile, int n,
               const int* ptree, const float* tsims) {
  const std::string name = TreeName(filename, treefile, n);
  molva::File file = molva::OpenFile(name.c_str(), "w");
  if (!file) molva::FatalError("Problems in creating the tree file: %s", name.c_str());
  for (std::int64_t x = 0; x < 2 * std::int64_t{n} - 1; ++x) {
    std::fprintf(file.get(), "%d %f\n", ptree[x], molva::Printed(tsims[x]));
  }
  molva::CloseFile(file);
}

}  // namespace mardle
