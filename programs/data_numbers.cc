// SPDX-License-Identifier: MIT
#include "programs/data_numbers.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "lib/molva.h"
#include "lib/support/alloc.h"

namespace mardle {
namespace {

bool IsNotANumber(float value) { return std::isnan(value); }

// Prepares the matrix once more, for it alone tells which rows and columns are kept.
bool PreparedHoldsNotANumber(const RunParams& params, const Matrix& mat) {
  molva::Array<int> rperm = molva::AllocInts(mat.nrows, "DataBringNotANumber: rperm");
  molva::Array<int> cperm = molva::AllocInts(mat.ncols, "DataBringNotANumber: cperm");
  int nrows = 0;
  int ncols = 0;
  int* rowptr = nullptr;
  int* rowind = nullptr;
  float* rowval = nullptr;
  MOLVA_InternalizeMatrix(mat.nrows, mat.ncols, mat.rowptr.get(), mat.rowind.get(),
                          mat.rowval.get(), params.simfun, params.rowmodel, params.colmodel,
                          params.prune, &nrows, &ncols, &rowptr, &rowind, &rowval, rperm.get(),
                          cperm.get());
  const bool holds = std::any_of(rowval, rowval + rowptr[nrows], IsNotANumber);
  for (void* array :
       {static_cast<void*>(rowptr), static_cast<void*>(rowind), static_cast<void*>(rowval)}) {
    MOLVA_Free(array);
  }
  return holds;
}

}  // namespace

// Nearly all matrices are told by their values as they stand.
bool DataBringNotANumber(const RunParams& params, const Matrix& mat) {
  const std::span<const float> values{mat.rowval.get(), mat.rowval.size()};
  const bool refuses_negatives = params.rowmodel == MOLVA_ROW_LOG;
  const bool may_bring = std::any_of(values.begin(), values.end(), [&](float value) {
    return IsNotANumber(value) || (refuses_negatives && value < 0);
  });
  return may_bring && PreparedHoldsNotANumber(params, mat);
}

}  // namespace mardle
