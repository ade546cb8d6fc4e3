// SPDX-License-Identifier: MIT
#include "programs/run.h"

#include <new>

#include "lib/molva.h"
#include "lib/support/alloc.h"
#include "lib/support/clock.h"
#include "lib/support/fatal.h"
#include "lib/support/printed.h"
#include "programs/data_numbers.h"
#include "programs/feature_report.h"
#include "programs/io/matrix.h"
#include "programs/io/read_matrix.h"
#include "programs/io/write_results.h"
#include "programs/options.h"
#include "programs/plot_clusters.h"
#include "programs/plot_matrix.h"
#include "programs/quality_report.h"
#include "programs/run_params.h"
#include "programs/run_report.h"
#include "programs/tree_report.h"

namespace mardle {
namespace {

// Adds the processor time of a scope to a timer: subtracts the clock at its start and adds it at
// its end. The timer is single precision at both.
class TimedScope {
 public:
  explicit TimedScope(float& timer) : timer_(timer) {
    timer_ = static_cast<float>(timer_ - molva::CPUSeconds());
  }
  ~TimedScope() { timer_ = static_cast<float>(timer_ + molva::CPUSeconds()); }
  TimedScope(const TimedScope&) = delete;
  TimedScope& operator=(const TimedScope&) = delete;

 private:
  float& timer_;
};

void Read(RunParams& params, Matrix& mat) {
  const TimedScope timed(params.IOTmr);
  ReadMatrix(params, mat);
}

// With both methods asked for, repeated bisection runs.
void Cluster(const RunParams& params, const Matrix& mat, int* part) {
  if (params.rb != 0) {
    MOLVA_VP_ClusterRB(mat.nrows, mat.ncols, mat.rowptr.get(), mat.rowind.get(), mat.rowval.get(),
                       params.simfun, params.crfun, params.rowmodel, params.colmodel, params.prune,
                       params.ntrials, params.niter, params.seed, params.refine, params.dbglvl,
                       params.nclusters, part);
  } else {
    MOLVA_VP_ClusterDirect(mat.nrows, mat.ncols, mat.rowptr.get(), mat.rowind.get(),
                           mat.rowval.get(), params.simfun, params.crfun, params.rowmodel,
                           params.colmodel, params.prune, params.ntrials, params.niter, params.seed,
                           params.dbglvl, params.nclusters, part);
  }
}

// What a run finds. The tree arrays are null without the complete tree.
struct Solution {
  molva::Array<int> part;
  molva::Array<int> ptree;
  molva::Array<float> tsims;
  float crvalue = 0;
};

// The complete tree is built under the criterion of the clustering. Its file is written here, and
// the flag cleared, so that the report of the tree over the clusters does not write again.
void BuildFullTree(RunParams& params, const Matrix& mat, Solution& solution) {
  const std::int64_t nodes = 2 * std::int64_t{mat.nrows};
  solution.ptree = molva::AllocIntsSet(nodes, -1, "main: ptree");
  solution.tsims = molva::AllocFloatsSet(nodes, 0, "main: tsims");
  MOLVA_V_BuildTree(mat.nrows, mat.ncols, mat.rowptr.get(), mat.rowind.get(), mat.rowval.get(),
                    params.simfun, params.crfun, params.rowmodel, params.colmodel, params.prune, 2,
                    params.dbglvl, params.nclusters, solution.part.get(), solution.ptree.get(),
                    solution.tsims.get());
  if (params.writetree != 0) {
    WriteTree(params.filename, params.treefile, mat.nrows, solution.ptree.get(),
              solution.tsims.get());
  }
  params.writetree = 0;
}

Solution FindSolution(RunParams& params, const Matrix& mat) {
  Solution solution;
  solution.part = molva::AllocIntsSet(mat.nrows, -1, "main: part");
  const TimedScope timed(params.ClusterTmr);
  molva::DataBringNotANumber(DataBringNotANumber(params, mat));
  Cluster(params, mat, solution.part.get());
  solution.crvalue = MOLVA_V_GetSolutionQuality(
      mat.nrows, mat.ncols, mat.rowptr.get(), mat.rowind.get(), mat.rowval.get(), params.simfun,
      params.crfun, params.rowmodel, params.colmodel, params.prune, params.nclusters,
      solution.part.get());
  if (params.fulltree != 0) BuildFullTree(params, mat, solution);
  return solution;
}

void Write(RunParams& params, const Matrix& mat, const Solution& solution) {
  const TimedScope timed(params.IOTmr);
  if (params.nooutput == 0) WriteClustering(params, mat, solution.part.get());
}

void Report(RunParams& params, const Matrix& mat, const Solution& solution) {
  const TimedScope timed(params.ReportTmr);
  const int* part = solution.part.get();
  EvaluateClusters(params, mat, part, {solution.ptree.get(), solution.ptree.size()},
                   solution.crvalue);
  if (params.showfeatures != 0) ShowClusterFeatures(params, mat, part);
  if (params.showtree != 0 || params.writetree != 0) ShowHACTree(params, mat, part);
  // Sparse rows under the correlation coefficient are not plotted, and nothing is said about it.
  const bool can_plot = params.denseinput != 0 || params.simfun == 1;
  if (params.plotmatrixfile && can_plot) {
    PlotMatrix(params, mat, {solution.ptree.get(), solution.ptree.size()}, part);
  }
  if (params.plotclustersfile && can_plot) PlotTreeClusterMatrix(params, mat, part);
}

int RunToTheEnd(int argc, char** argv) {
  RunParams params;
  ParseCommandLine(params, argc, argv);
  const molva::Owned<Matrix> mat = CreateMatrix();
  Read(params, *mat);
  if (params.nclusters == 0) params.nclusters = mat->nclasses;
  PrintRunInfo(params, *mat);

  const Solution solution = FindSolution(params, *mat);
  Write(params, *mat, solution);
  Report(params, *mat, solution);
  return PrintTimingInfo(params);
}

}  // namespace

// Strings and tables of the standard library carry no name of their own.
int Run(int argc, char** argv) {
  try {
    return RunToTheEnd(argc, argv);
  } catch (const std::bad_alloc&) {
    molva::FatalError("***Memory allocation failed for mardle.");
  }
}

}  // namespace mardle
