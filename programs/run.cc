// SPDX-License-Identifier: MIT
#include "programs/run.h"

#include "lib/molva.h"
#include "lib/support/alloc.h"
#include "lib/support/clock.h"
#include "programs/io/matrix.h"
#include "programs/io/read_matrix.h"
#include "programs/io/write_results.h"
#include "programs/options.h"
#include "programs/quality_report.h"
#include "programs/run_params.h"
#include "programs/run_report.h"

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

// Clusters the rows and returns the criterion value of the clustering.
float FindSolution(RunParams& params, const Matrix& mat, int* part) {
  const TimedScope timed(params.ClusterTmr);
  Cluster(params, mat, part);
  return MOLVA_V_GetSolutionQuality(mat.nrows, mat.ncols, mat.rowptr.get(), mat.rowind.get(),
                                    mat.rowval.get(), params.simfun, params.crfun, params.rowmodel,
                                    params.colmodel, params.prune, params.nclusters, part);
}

void Write(RunParams& params, const Matrix& mat, const int* part) {
  const TimedScope timed(params.IOTmr);
  if (params.nooutput == 0) WriteClustering(params, mat, part);
}

void Report(RunParams& params, const Matrix& mat, const int* part, float crvalue) {
  const TimedScope timed(params.ReportTmr);
  EvaluateClusters(params, mat, part, crvalue);
}

}  // namespace

int Run(int argc, char** argv) {
  RunParams params;
  ParseCommandLine(params, argc, argv);
  const molva::Owned<Matrix> mat = CreateMatrix();
  Read(params, *mat);
  if (params.nclusters == 0) params.nclusters = mat->nclasses;
  PrintRunInfo(params, *mat);

  molva::Array<int> part = molva::AllocIntsSet(mat->nrows, -1, "main: part");
  const float crvalue = FindSolution(params, *mat, part.get());
  Write(params, *mat, part.get());
  Report(params, *mat, part.get(), crvalue);
  return PrintTimingInfo(params);
}

}  // namespace mardle
