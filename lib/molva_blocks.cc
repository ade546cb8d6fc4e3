// SPDX-License-Identifier: MIT
//
// The entry points for blocks of rows: pointers become spans, one worker is called.
#include <algorithm>
#include <cstdint>
#include <utility>

#include "lib/blocks/assign_rows.h"
#include "lib/blocks/block_rows.h"
#include "lib/blocks/cluster_sums.h"
#include "lib/blocks/row_hash.h"
#include "lib/blocks/sum_changes.h"
#include "lib/matrix/vector_model.h"
#include "lib/molva.h"
#include "lib/support/team.h"

namespace molva {
namespace {

// The worker's form of a prepared block, which is copied: its rows are few beside what is kept of
// other blocks, and the engine's matrix owns its arrays.
PreparedMatrix BlockOf(int nrows, int ncols, const int* rowptr, const int* rowind,
                       const float* rowval) {
  PreparedMatrix mat;
  SetUpMatrix({}, mat, {nrows, ncols, rowptr, rowind, rowval});
  return mat;
}

}  // namespace
}  // namespace molva

using namespace molva;

void MOLVA_B_CountColumns(int nrows, int ncols, const int* rowptr, const int* rowind,
                          int64_t* counts) {
  CountColumns({nrows, ncols, rowptr, rowind, nullptr}, {counts, std::max(ncols, 0)});
}

void MOLVA_B_WeighColumns(int ncols, int64_t nrows, const int64_t* counts, float* weights) {
  for (int j = 0; j < ncols; ++j) weights[j] = IdfWeight(counts[j], nrows);
}

void MOLVA_B_SumColumns(int nrows, int ncols, const int* rowptr, const int* rowind,
                        const float* rowval, int64_t* sums) {
  const PreparedMatrix mat = BlockOf(nrows, ncols, rowptr, rowind, rowval);
  SumColumns(mat, {sums, mat.ncols});
}

int MOLVA_B_ChooseColumns(int ncols, float prune, const int64_t* counts, const int64_t* sums,
                          signed char* kept) {
  const int columns = std::max(ncols, 0);
  ChooseColumns(prune, {counts, columns}, {sums, sums == nullptr ? 0 : columns}, {kept, columns});
  return static_cast<int>(std::count(kept, kept + columns, 1));
}

void MOLVA_B_Prepare(int nrows, int ncols, const int* rowptr, const int* rowind,
                     const float* rowval, const MOLVA_Space* space, int* prepared_nrows,
                     int* prepared_ncols, int** prepared_rowptr, int** prepared_rowind,
                     float** prepared_rowval, int* rperm) {
  const TeamScope team;
  PreparedCopy copy = PrepareBlock(*space, {nrows, ncols, rowptr, rowind, rowval});
  PreparedMatrix& mat = *copy.mat;
  *prepared_nrows = mat.nrows;
  *prepared_ncols = mat.ncols;
  std::copy_n(copy.rperm.data(), mat.nrows, rperm);
  *prepared_rowptr = mat.rowptr.Release();
  *prepared_rowind = mat.rowind.Release();
  *prepared_rowval = mat.rowval.Release();
}

void MOLVA_B_HashRows(int64_t first, int nrows, uint64_t salt, uint64_t* hashes) {
  for (int i = 0; i < nrows; ++i) hashes[i] = RowHash(first + i, salt);
}

void MOLVA_B_AssignRows(int nrows, const int* rowptr, const int* rowind, const float* rowval,
                        int crfun, const MOLVA_View* view, const int* part, int* best) {
  const TeamScope team;
  const PreparedMatrix mat = BlockOf(nrows, view->ncols, rowptr, rowind, rowval);
  AssignRows(crfun, *view, mat, {part, mat.nrows}, {best, mat.nrows});
}

int64_t MOLVA_B_SumChanges(int nrows, int ncols, const int* rowptr, const int* rowind,
                           const float* rowval, int nlists, const int* from, const int* to,
                           int64_t* starts, int** columns, int64_t** sums) {
  const TeamScope team;
  const PreparedMatrix mat = BlockOf(nrows, ncols, rowptr, rowind, rowval);
  const int64_t reach = ReachOfSums(mat);
  SparseSums changes = SumChanges(mat, std::max(nlists, 0), {from, mat.nrows}, {to, mat.nrows});
  std::copy(changes.starts.begin(), changes.starts.end(), starts);
  *columns = changes.columns.Release();
  *sums = changes.sums.Release();
  return reach;
}

void MOLVA_B_MeasureSums(int nparts, int ncols, const int64_t* sums, double* dnorms, double* csim) {
  const TeamScope team;
  MeasureSums({nparts, ncols, sums}, {dnorms, nparts}, {csim, nparts});
}

void MOLVA_B_MultiplySums(int nparts, int ncols, const int64_t* sums, float* smat) {
  const TeamScope team;
  MultiplySums({nparts, ncols, sums}, {smat, std::int64_t{nparts} * nparts});
}

void MOLVA_B_MakeView(int nparts, int ncols, const int64_t* sums, double scale, float* composites,
                      float* whole) {
  const TeamScope team;
  MakeView({nparts, ncols, sums}, scale, {composites, std::int64_t{nparts} * ncols},
           {whole, ncols});
}

double MOLVA_B_CriterionValue(int crfun, int nparts, const int64_t* pwgts, const double* dnorms,
                              const double* csim) {
  return CriterionOfSums(crfun, {pwgts, nparts}, {dnorms, nparts}, {csim, nparts});
}

void MOLVA_B_AverageRows(int nrows, const int* rowptr, const int* rowind, const float* rowval,
                         const MOLVA_View* view, const int* part, float* internal,
                         float* external) {
  const TeamScope team;
  const PreparedMatrix mat = BlockOf(nrows, view->ncols, rowptr, rowind, rowval);
  AverageRows(*view, mat, {part, mat.nrows}, {{internal, mat.nrows}, {external, mat.nrows}});
}
