// SPDX-License-Identifier: MIT
#include "programs/run_report.h"

#include <cstdio>
#include <string_view>

#include "programs/code_names.h"

namespace mardle {
namespace {

constexpr char kAsterisks[] =
    "***********************************************************************************\n";
constexpr int kVersionMajor = 1;
constexpr int kVersionMinor = 5;

const char* YesOrNo(bool flag) { return flag ? "YES" : "NO"; }

}  // namespace

void PrintRunInfo(const RunParams& params, const Matrix& mat, int nclusters) {
  std::printf("%s", kAsterisks);
  std::printf(" MOLVA %d.%d - mardle\n\n", kVersionMajor, kVersionMinor);
  std::printf(
      "Matrix Information --------------------------------------------------------------\n");
  std::printf("  Name: %s, #Rows: %d, #Columns: %d, #NonZeros: %lld\n\n", params.filename.get(),
              mat.nrows, mat.ncols, static_cast<long long>(NonZeroCount(mat)));
  std::printf(
      "Options -------------------------------------------------------------------------\n");
  std::printf("  CRfun=%s, RowModel=%s, ColModel=%s, Prune=%.2f, NTrials=%d, NIter=%d\n",
              CriterionName(params.crfun), RowModelName(params.rowmodel),
              ColumnModelName(params.colmodel), static_cast<double>(params.prune), params.ntrials,
              params.niter);
  std::printf("  Direct=%s, RB=%s, Refine=%s, SimFun=%s, #Clusters: %d\n\n", YesOrNo(params.direct),
              YesOrNo(params.rb), YesOrNo(params.refine), SimilarityName(params.simfun), nclusters);
  std::printf(
      "Solution ------------------------------------------------------------------------\n\n");
}

int PrintTimingInfo(const RunTimers& timers) {
  std::printf(
      "\nTiming Information --------------------------------------------------------------\n");
  std::printf("   I/O:                              %10.3f sec\n",
              static_cast<double>(timers.IOTmr));
  std::printf("   Clustering:                       %10.3f sec\n",
              static_cast<double>(timers.ClusterTmr));
  std::printf("   Reporting:                        %10.3f sec\n",
              static_cast<double>(timers.ReportTmr));
  std::printf("%s", kAsterisks);
  return static_cast<int>(std::string_view(kAsterisks).size());
}

}  // namespace mardle
