// SPDX-License-Identifier: MIT
//
// The entry points. Each turns the caller's pointers into spans, prepares a copy of the matrix that
// carries the routine's name, and calls one worker of the engine. Their threads end with them.
#include "lib/molva.h"

#include <algorithm>
#include <cstdint>

#include "lib/matrix/control.h"
#include "lib/matrix/prepare.h"
#include "lib/measure/cluster_features.h"
#include "lib/measure/cluster_stats.h"
#include "lib/measure/solution_quality.h"
#include "lib/measure/tree_features.h"
#include "lib/measure/tree_stats.h"
#include "lib/partition/cluster_direct.h"
#include "lib/partition/cluster_rb.h"
#include "lib/support/alloc.h"
#include "lib/support/progress.h"
#include "lib/support/team.h"
#include "lib/tree/agglomerate.h"
#include "lib/tree/build_tree.h"
#include "lib/tree/cluster_rows.h"
#include "lib/tree/tree_reorder.h"

namespace molva {
namespace {

// Counts below 0 are taken as 0.
std::size_t Size(int count) { return static_cast<std::size_t>(std::max(count, 0)); }

// The record of a call: what every one says of the matrix, and what else this one says.
Control WithModels(int simfun, int rowmodel, int colmodel, float prune, Control rest = {}) {
  rest.simfun = simfun;
  rest.rowmodel = rowmodel;
  rest.colmodel = colmodel;
  rest.prune = prune;
  return rest;
}

// A copy with the caller's clustering, one element per row, mapped in.
PreparedCopy CopyWithClusters(const Control& control, const RawMatrix& raw, const char* routine,
                              const int* part) {
  PreparedCopy copy = MakePreparedCopy(control, raw, routine);
  MapPartIn(copy, {part, copy.rperm.size()});
  return copy;
}

void GiveClusters(const PreparedCopy& copy, int* part) {
  MapPartOut(copy, {part, copy.rperm.size()});
}

// The label names the internal scores also for the external ones; it is shared on purpose.
Array<float> PrivateScores(const float* wanted, int nrows) {
  if (wanted == nullptr) return {};
  return AllocFloatsSet(nrows, -100.0F, "MOLVA_V_GetClusterStats: pizscores");
}

void GiveScores(const PreparedCopy& copy, const Array<float>& scores, float* wanted) {
  if (wanted == nullptr) return;
  for (int i = 0; i < copy.nrows; ++i) wanted[copy.rperm[i]] = scores[i];
}

// The caller's n x n matrix, or a copy of it when it is to be kept.
constexpr int kKeepsMatrix = 1;

float* WorkMatrix(std::size_t n, float* smat, int handling, Array<float>& nsmat) {
  if (handling != kKeepsMatrix) return smat;
  nsmat = AllocFloats(static_cast<std::int64_t>(n * n), "MOLVA_SA_Cluster: nsmat");
  std::copy_n(smat, n * n, nsmat.data());
  return nsmat.data();
}

// The same with room for all nodes of a tree, which a matrix that is not to be kept comes with.
float* WorkNodeMatrix(std::size_t n, float* smat, int handling, Array<float>& nsmat) {
  if (handling != kKeepsMatrix) return smat;
  nsmat = AllocFloats(NodeCells(static_cast<int>(n)), "MOLVA_S_TreeReorder: nsmat");
  for (std::size_t i = 0; i < n; ++i) std::copy_n(smat + i * n, n, nsmat.data() + i * 2 * n);
  return nsmat.data();
}

}  // namespace
}  // namespace molva

using namespace molva;

const char* MOLVA_Version(void) { return MOLVA_VERSION; }

void MOLVA_SetProgressHook(MOLVA_ProgressHook hook, void* data) { SetProgressHook(hook, data); }

void MOLVA_SetNumThreads(int nthreads) { SetThreadCount(nthreads); }
int MOLVA_GetNumThreads(void) { return ThreadCount(); }

void MOLVA_VP_ClusterRB(int nrows, int ncols, const int* rowptr, const int* rowind,
                        const float* rowval, int simfun, int crfun, int rowmodel, int colmodel,
                        float prune, int ntrials, int niter, int seed, int refine, int dbglvl,
                        int nparts, int* part) {
  const TeamScope team;
  const Control control = WithModels(
      simfun, rowmodel, colmodel, prune,
      {.crfun = crfun, .ntrials = ntrials, .niter = niter, .dbglvl = dbglvl, .seed = seed});
  PreparedCopy copy =
      MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval}, "MOLVA_VP_ClusterRB");
  ClusterRB(control, *copy.mat, nparts, refine != 0, copy.part());
  GiveClusters(copy, part);
}

void MOLVA_VP_ClusterDirect(int nrows, int ncols, const int* rowptr, const int* rowind,
                            const float* rowval, int simfun, int crfun, int rowmodel, int colmodel,
                            float prune, int ntrials, int niter, int seed, int dbglvl, int nparts,
                            int* part) {
  const TeamScope team;
  const Control control = WithModels(
      simfun, rowmodel, colmodel, prune,
      {.crfun = crfun, .ntrials = ntrials, .niter = niter, .dbglvl = dbglvl, .seed = seed});
  PreparedCopy copy =
      MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval}, "MOLVA_VP_ClusterDirect");
  ClusterDirect(control, *copy.mat, nparts, copy.part());
  GiveClusters(copy, part);
}

void MOLVA_V_GetClusterStats(int nrows, int ncols, const int* rowptr, const int* rowind,
                             const float* rowval, int simfun, int rowmodel, int colmodel,
                             float colprune, int nparts, const int* part, int* pwgts,
                             float* cintsim, float* cintsdev, float* izscores, float* cextsim,
                             float* cextsdev, float* ezscores) {
  const TeamScope team;
  const Control control = WithModels(simfun, rowmodel, colmodel, colprune);
  PreparedCopy copy = CopyWithClusters(control, {nrows, ncols, rowptr, rowind, rowval},
                                       "MOLVA_V_GetClusterStats", part);
  Array<float> pizscores = PrivateScores(izscores, nrows);
  Array<float> pezscores = PrivateScores(ezscores, nrows);
  const std::size_t clusters = Size(nparts);
  GetClusterStats(*copy.mat, copy.part(),
                  {.pwgts = {pwgts, clusters},
                   .isim = {cintsim, clusters},
                   .isdev = {cintsdev, clusters},
                   .izscores = pizscores,
                   .esim = {cextsim, clusters},
                   .esdev = {cextsdev, clusters},
                   .ezscores = pezscores});
  GiveScores(copy, pizscores, izscores);
  GiveScores(copy, pezscores, ezscores);
}

float MOLVA_V_GetSolutionQuality(int nrows, int ncols, const int* rowptr, const int* rowind,
                                 const float* rowval, int simfun, int crfun, int rowmodel,
                                 int colmodel, float colprune, int nparts, const int* part) {
  const TeamScope team;
  const Control control = WithModels(simfun, rowmodel, colmodel, colprune, {.crfun = crfun});
  PreparedCopy copy = CopyWithClusters(control, {nrows, ncols, rowptr, rowind, rowval},
                                       "MOLVA_V_GetSolutionQuality", part);
  return GetCriterionFunctionValue(control, *copy.mat, nparts, copy.part());
}

void MOLVA_V_GetClusterFeatures(int nrows, int ncols, const int* rowptr, const int* rowind,
                                const float* rowval, int simfun, int rowmodel, int colmodel,
                                float colprune, int nparts, const int* part, int nfeatures,
                                int* internalids, float* internalwgts, int* externalids,
                                float* externalwgts) {
  const TeamScope team;
  const Control control = WithModels(simfun, rowmodel, colmodel, colprune);
  PreparedCopy copy = CopyWithClusters(control, {nrows, ncols, rowptr, rowind, rowval},
                                       "MOLVA_V_GetClusterFeatures", part);
  GetClusterFeatures(*copy.mat, nparts, copy.part(),
                     {copy.cperm, nfeatures, internalids, internalwgts},
                     {copy.cperm, nfeatures, externalids, externalwgts});
}

void MOLVA_V_BuildTree(int nrows, int ncols, const int* rowptr, const int* rowind,
                       const float* rowval, int simfun, int crfun, int rowmodel, int colmodel,
                       float colprune, int treetype, int dbglvl, int nparts, const int* part,
                       int* ptree, float* tsims) {
  const TeamScope team;
  const Control control =
      WithModels(simfun, rowmodel, colmodel, colprune, {.crfun = crfun, .dbglvl = dbglvl});
  PreparedCopy copy =
      CopyWithClusters(control, {nrows, ncols, rowptr, rowind, rowval}, "MOLVA_V_BuildTree", part);
  const std::size_t nodes = 2 * Size(treetype == MOLVA_TREE_CLUSTERS ? nparts : nrows);
  BuildTree(control, copy, treetype, std::max(nparts, 0), {ptree, nodes}, {tsims, nodes});
}

void MOLVA_VA_Cluster(int nrows, int ncols, const int* rowptr, const int* rowind,
                      const float* rowval, int simfun, int crfun, int rowmodel, int colmodel,
                      float colprune, int dbglvl, int nparts, int* part, int* ptree, float* tsims) {
  const TeamScope team;
  const Control control =
      WithModels(simfun, rowmodel, colmodel, colprune, {.crfun = crfun, .dbglvl = dbglvl});
  PreparedCopy copy =
      MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval}, "MOLVA_VA_Cluster");
  const std::size_t nodes = 2 * Size(nrows);
  ClusterRows(control, copy, nparts, {ptree, nodes}, {tsims, nodes});
  GiveClusters(copy, part);
}

void MOLVA_SA_Cluster(int n, const int* pwgts, float* smat, int crfun, int handling, int dbglvl,
                      int nparts, int* part, int* ptree, float* tsims, float* gains) {
  const TeamScope team;
  CheckItemCount(n);
  const std::size_t items = Size(n);
  Array<float> nsmat;
  const Merging merging{static_cast<int>(items),
                        pwgts,
                        WorkMatrix(items, smat, handling, nsmat),
                        {ptree, 2 * items},
                        {tsims, 2 * items},
                        {gains, 2 * items}};
  MergeItems({.crfun = crfun, .dbglvl = dbglvl}, merging, nparts, {part, items});
}

void MOLVA_V_GetTreeStats(int nrows, int ncols, const int* rowptr, const int* rowind,
                          const float* rowval, int simfun, int rowmodel, int colmodel,
                          float colprune, int nparts, const int* part, const int* ptree, int* pwgts,
                          float* isims, float* xsims) {
  const TeamScope team;
  const Control control = WithModels(simfun, rowmodel, colmodel, colprune);
  PreparedCopy copy = CopyWithClusters(control, {nrows, ncols, rowptr, rowind, rowval},
                                       "MOLVA_V_GetTreeStats", part);
  const std::size_t nodes = 2 * Size(nparts);
  GetTreeStats(*copy.mat, std::max(nparts, 0), copy.part(), {ptree, nodes}, {pwgts, nodes},
               {isims, nodes}, {xsims, nodes});
}

void MOLVA_V_GetTreeFeatures(int nrows, int ncols, const int* rowptr, const int* rowind,
                             const float* rowval, int simfun, int rowmodel, int colmodel,
                             float colprune, int nparts, const int* part, const int* ptree,
                             int nfeatures, int* internalids, float* internalwgts, int* externalids,
                             float* externalwgts) {
  const TeamScope team;
  const Control control = WithModels(simfun, rowmodel, colmodel, colprune);
  PreparedCopy copy = CopyWithClusters(control, {nrows, ncols, rowptr, rowind, rowval},
                                       "MOLVA_V_GetTreeFeatures", part);
  GetTreeFeatures(*copy.mat, std::max(nparts, 0), copy.part(), {ptree, 2 * Size(nparts)},
                  {copy.cperm, nfeatures, internalids, internalwgts},
                  {copy.cperm, nfeatures, externalids, externalwgts});
}

void MOLVA_S_TreeReorder(int n, const int* wgts, float* smat, int handling, int /*dbglvl*/,
                         const int* ptree, int* ftree) {
  const TeamScope team;
  const std::size_t leaves = Size(n);
  Array<float> nsmat;
  ReorderTree(n, {wgts, leaves}, WorkNodeMatrix(leaves, smat, handling, nsmat), {ptree, 2 * leaves},
              {ftree, 4 * leaves});
}

void MOLVA_V_TreeReorder(int nrows, int ncols, const int* rowptr, const int* rowind,
                         const float* rowval, int simfun, int rowmodel, int colmodel,
                         float colprune, int dbglvl, const int* ptree, int* ftree) {
  const TeamScope team;
  const Control control = WithModels(simfun, rowmodel, colmodel, colprune, {.dbglvl = dbglvl});
  PreparedCopy copy = MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval},
                                       "MOLVA_V_TreeReorder", Clustering::kNone);
  ReorderTreeOfRows(control, copy, {ptree, 2 * Size(nrows)}, {ftree, 4 * Size(nrows)});
}

void MOLVA_V_ClusterTreeReorder(int nrows, int ncols, const int* rowptr, const int* rowind,
                                const float* rowval, int simfun, int rowmodel, int colmodel,
                                float colprune, int dbglvl, int nparts, const int* part,
                                const int* ptree, int* ftree) {
  const TeamScope team;
  const Control control = WithModels(simfun, rowmodel, colmodel, colprune, {.dbglvl = dbglvl});
  PreparedCopy copy = CopyWithClusters(control, {nrows, ncols, rowptr, rowind, rowval},
                                       "MOLVA_V_ClusterTreeReorder", part);
  ReorderTreeOfClusters(copy, nparts, {ptree, 2 * Size(nparts)}, {ftree, 4 * Size(nparts)});
}

void MOLVA_InternalizeMatrix(int nrows, int ncols, const int* rowptr, const int* rowind,
                             const float* rowval, int simfun, int rowmodel, int colmodel,
                             float colprune, int* prepared_nrows, int* prepared_ncols,
                             int** prepared_rowptr, int** prepared_rowind, float** prepared_rowval,
                             int* rperm, int* cperm) {
  const TeamScope team;
  const Control control = WithModels(simfun, rowmodel, colmodel, colprune);
  PreparedCopy copy = MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval},
                                       "MOLVA_InternalizeMatrix", Clustering::kNone);
  PreparedMatrix& mat = *copy.mat;
  *prepared_nrows = mat.nrows;
  *prepared_ncols = mat.ncols;
  std::copy_n(copy.rperm.get(), mat.nrows, rperm);
  std::copy_n(copy.cperm.get(), mat.ncols, cperm);
  *prepared_rowptr = mat.rowptr.Release();
  *prepared_rowind = mat.rowind.Release();
  *prepared_rowval = mat.rowval.Release();
}

void MOLVA_Free(void* array) { RVfree(array); }
