// SPDX-License-Identifier: MIT
#include "programs/run.h"

#include <cstdint>
#include <new>
#include <span>

#include "lib/molva.h"
#include "lib/support/alloc.h"
#include "lib/support/clock.h"
#include "lib/support/fatal.h"
#include "lib/support/printed.h"
#include "programs/data_numbers.h"
#include "programs/feature_report.h"
#include "programs/io/engine_calls.h"
#include "programs/io/matrix.h"
#include "programs/io/read_matrix.h"
#include "programs/io/write_results.h"
#include "programs/options.h"
#include "programs/plot_clusters.h"
#include "programs/plot_matrix.h"
#include "programs/quality_report.h"
#include "programs/run_params.h"
#include "programs/run_report.h"
#include "programs/thread_count.h"
#include "programs/tree_report.h"

namespace mardle {
namespace {

RunParams ParsedCommandLine(int argc, char** argv) {
  RunParams params;
  ParseCommandLine(params, argc, argv);
  return params;
}

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

// What a run finds. The tree arrays are null without the complete tree.
struct Solution {
  int nclusters = 0;
  molva::Array<int> part;
  molva::Array<int> ptree;
  molva::Array<float> tsims;
  float crvalue = 0;

  Clusters clusters() const { return {nclusters, part.get()}; }
  std::span<const int> parents() const { return {ptree.get(), ptree.size()}; }
};

// The complete tree is built under the criterion of the clustering. Its file is written here.
void BuildFullTree(const RunParams& params, const EngineInput& input, Solution& solution) {
  const std::int64_t nodes = 2 * std::int64_t{input.nrows};
  solution.ptree = molva::AllocIntsSet(nodes, -1, "main: ptree");
  solution.tsims = molva::AllocFloatsSet(nodes, 0, "main: tsims");
  BuildTree(input, MOLVA_TREE_ROWS, params.crfun, solution.ptree, solution.tsims);
  if (params.writetree) {
    WriteTree(params.filename, params.treefile, input.nrows, solution.ptree.get(),
              solution.tsims.get());
  }
}

Solution FindSolution(const RunParams& params, const Matrix& mat, int nclusters) {
  Solution solution;
  solution.nclusters = nclusters;
  solution.part = molva::AllocIntsSet(mat.nrows, -1, "main: part");
  const EngineInput input = RunInput(params, mat, solution.clusters());
  molva::DataBringNotANumber(DataBringNotANumber(params, mat));
  FindClusters(params, input, solution.part);
  solution.crvalue = CriterionValue(input, params.crfun);
  if (params.fulltree) BuildFullTree(params, input, solution);
  return solution;
}

// With the complete tree its file is the one that was asked for.
TreeOutput ClusterTreeOutput(const RunParams& params) {
  return {.written = params.writetree && !params.fulltree, .printed = params.showtree};
}

void Report(const RunParams& params, const Matrix& mat, const Solution& solution) {
  const Clusters clusters = solution.clusters();
  EvaluateClusters(params, mat, clusters, solution.parents(), solution.crvalue);
  if (params.showfeatures) ShowClusterFeatures(params, mat, clusters);
  const TreeOutput tree = ClusterTreeOutput(params);
  if (tree.written || tree.printed) ShowHACTree(params, mat, clusters, tree);
  // Sparse rows under the correlation coefficient are not plotted, and nothing is said about it.
  const bool can_plot = params.denseinput || params.simfun == MOLVA_SIM_COSINE;
  if (params.plotmatrixfile && can_plot) PlotMatrix(params, mat, solution.parents(), clusters);
  if (params.plotclustersfile && can_plot) PlotTreeClusterMatrix(params, mat, clusters);
}

// Runs a step and adds its time to a timer.
template <typename Step>
auto Timed(float& timer, Step step) {
  const TimedScope timed(timer);
  return step();
}

int RunToTheEnd(int argc, char** argv) {
  const RunParams params = ParsedCommandLine(argc, argv);
  UseThreadsOfEnvironment();
  RunTimers timers;
  const molva::Owned<Matrix> mat = CreateMatrix();
  Timed(timers.IOTmr, [&] { ReadMatrix(params, *mat); });
  const int nclusters = params.nclusters != 0 ? params.nclusters : mat->nclasses;
  PrintRunInfo(params, *mat, nclusters);

  const Solution solution =
      Timed(timers.ClusterTmr, [&] { return FindSolution(params, *mat, nclusters); });
  Timed(timers.IOTmr, [&] {
    if (!params.nooutput) WriteClustering(params, *mat, solution.clusters());
  });
  Timed(timers.ReportTmr, [&] { Report(params, *mat, solution); });
  return PrintTimingInfo(timers);
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
