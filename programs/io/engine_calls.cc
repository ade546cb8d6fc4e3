// SPDX-License-Identifier: MIT
#include "programs/io/engine_calls.h"

namespace mardle {

EngineInput RunInput(const RunParams& params, const Matrix& mat, const Clusters& clusters) {
  return {.nrows = mat.nrows,
          .ncols = mat.ncols,
          .rowptr = mat.rowptr.get(),
          .rowind = mat.rowind.get(),
          .rowval = mat.rowval.get(),
          .simfun = params.simfun,
          .rowmodel = params.rowmodel,
          .colmodel = params.colmodel,
          .prune = params.prune,
          .dbglvl = params.dbglvl,
          .clusters = clusters};
}

void FindClusters(const RunParams& params, const EngineInput& in, molva::Array<int>& part) {
  if (params.rb) {
    MOLVA_VP_ClusterRB(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun, params.crfun,
                       in.rowmodel, in.colmodel, in.prune, params.ntrials, params.niter,
                       params.seed, params.refine ? 1 : 0, in.dbglvl, in.clusters.count,
                       part.get());
  } else {
    MOLVA_VP_ClusterDirect(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun,
                           params.crfun, in.rowmodel, in.colmodel, in.prune, params.ntrials,
                           params.niter, params.seed, in.dbglvl, in.clusters.count, part.get());
  }
}

float CriterionValue(const EngineInput& in, int crfun) {
  return MOLVA_V_GetSolutionQuality(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun,
                                    crfun, in.rowmodel, in.colmodel, in.prune, in.clusters.count,
                                    in.clusters.part);
}

void MeasureClusters(const EngineInput& in, const ClusterArrays& written) {
  MOLVA_V_GetClusterStats(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun,
                          in.rowmodel, in.colmodel, in.prune, in.clusters.count, in.clusters.part,
                          written.pwgts.get(), written.cintsim.get(), written.cintsdev.get(),
                          written.izscores.get(), written.cextsim.get(), written.cextsdev.get(),
                          written.ezscores.get());
}

void DescribeClusters(const EngineInput& in, int nfeatures, const FeatureArrays& written) {
  MOLVA_V_GetClusterFeatures(
      in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun, in.rowmodel, in.colmodel,
      in.prune, in.clusters.count, in.clusters.part, nfeatures, written.internalids.get(),
      written.internalwgts.get(), written.externalids.get(), written.externalwgts.get());
}

void BuildTree(const EngineInput& in, MOLVA_TreeType treetype, int crfun, molva::Array<int>& ptree,
               molva::Array<float>& tsims) {
  MOLVA_V_BuildTree(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun, crfun,
                    in.rowmodel, in.colmodel, in.prune, treetype, in.dbglvl, in.clusters.count,
                    in.clusters.part, ptree.get(), tsims.get());
}

void MergeRows(const EngineInput& in, int crfun, int nparts, const MergedRows& written) {
  MOLVA_VA_Cluster(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun, crfun,
                   in.rowmodel, in.colmodel, in.prune, in.dbglvl, nparts, written.part.get(),
                   written.ptree.get(), written.tsims.get());
}

void MeasureNodes(const EngineInput& in, const molva::Array<int>& ptree,
                  const NodeArrays& written) {
  MOLVA_V_GetTreeStats(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun, in.rowmodel,
                       in.colmodel, in.prune, in.clusters.count, in.clusters.part, ptree.get(),
                       written.pwgts.get(), written.isims.get(), written.xsims.get());
}

void DescribeNodes(const EngineInput& in, const molva::Array<int>& ptree, int nfeatures,
                   const FeatureArrays& written) {
  MOLVA_V_GetTreeFeatures(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun,
                          in.rowmodel, in.colmodel, in.prune, in.clusters.count, in.clusters.part,
                          ptree.get(), nfeatures, written.internalids.get(),
                          written.internalwgts.get(), written.externalids.get(),
                          written.externalwgts.get());
}

void ReorderClusterTree(const EngineInput& in, const molva::Array<int>& ptree,
                        molva::Array<int>& ftree) {
  MOLVA_V_ClusterTreeReorder(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun,
                             in.rowmodel, in.colmodel, in.prune, in.dbglvl, in.clusters.count,
                             in.clusters.part, ptree.get(), ftree.get());
}

void ReorderRowTree(const EngineInput& in, const molva::Array<int>& ptree,
                    molva::Array<int>& ftree) {
  MOLVA_V_TreeReorder(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun, in.rowmodel,
                      in.colmodel, in.prune, in.dbglvl, ptree.get(), ftree.get());
}

}  // namespace mardle
