// SPDX-License-Identifier: MIT
#include "lib/matrix/vector_model.h"

#include <cmath>

#include "lib/support/fatal.h"
#include "lib/support/narrowing.h"
#include "lib/support/team.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

// Rows are prepared many at a time, each on its own.
constexpr int kRowsOfAPiece = 1024;

template <typename Visit>
void ForEachRow(PreparedMatrix& mat, Visit visit) {
  ShareOut(mat.nrows, kRowsOfAPiece, [&](std::int64_t first, std::int64_t last, int) {
    for (auto i = static_cast<int>(first); i < last; ++i) visit(i, RowValues(mat, i));
  });
}

// The largest absolute value. A row of zeros gives 0, so its entries become 0/0, not-a-number, and
// no guard is wanted.
float LargestMagnitude(Span<const float> row) {
  float largest = 0;
  for (const float v : row) {
    if (std::fabs(v) > largest) largest = std::fabs(v);
  }
  return largest;
}

void ScaleByMaxTf(Span<float> row) {
  const Wide kHalf = 0.5;
  const Wide largest = LargestMagnitude(row);
  for (float& v : row) v = static_cast<float>(kHalf + kHalf * v / largest);
}

void ScaleBySqrt(Span<float> row) {
  for (float& v : row) {
    const Wide wide = v;
    if (v > 0) v = static_cast<float>(1 + Sqrt(wide));
    if (v < 0) v = static_cast<float>(1 - Sqrt(-wide));
  }
}

// The logarithm of a negative entry is taken of the entry itself, so it becomes not-a-number; that
// is how this model treats negative data.
void ScaleByLog(Span<float> row) {
  const Wide ln2 = Log(static_cast<Wide>(2));
  for (float& v : row) {
    const Wide wide = v;
    if (v > 0) {
      v = static_cast<float>(1 + Log(wide) / ln2);
    } else if (v < 0) {
      v = static_cast<float>(1 - Log(wide) / ln2);
    }
  }
}

// An entry counts whatever its value.
Array<int> ColumnLengths(const PreparedMatrix& mat) {
  Array<int> collen = AllocIntsSet(mat.ncols, 0, "ComputeScaleFactors: collen");
  for (int i = 0; i < mat.nrows; ++i) {
    for (const int j : Row(mat, i).columns) ++collen[j];
  }
  return collen;
}

void ScaleByIdf(PreparedMatrix& mat) {
  const Array<int> collen = ColumnLengths(mat);
  Array<float> vscale = AllocFloatsSet(mat.ncols, 0, "ComputeScaleFactors: vscale");
  for (int j = 0; j < mat.ncols; ++j) vscale[j] = IdfWeight(collen[j], mat.nrows);
  ScaleColumns(mat, vscale);
}

void ScaleToUnitLength(Span<float> row) {
  const Narrowed rough = NarrowedInverseRoot(RoughSquares(row));
  if (rough.is_certain) return ScaleFloats(rough.value, row);
  Wide squares = 0;
  for (const Wide v : row) squares += v * v;
  if (squares > 0) ScaleFloats(static_cast<float>(1 / Sqrt(squares)), row);
}

void SubtractMean(Span<float> row, int ncols) {
  Wide mean = 0;
  for (const float v : row) mean += v;
  mean /= ncols;
  for (float& v : row) v = static_cast<float>(v - mean);
}

template <typename Scale>
void ScaleEachRow(PreparedMatrix& mat, Scale scale) {
  ForEachRow(mat, [scale](int, Span<float> values) { scale(values); });
}

}  // namespace

void ApplyRowModel(const Control& control, PreparedMatrix& mat) {
  switch (control.rowmodel) {
    case MOLVA_ROW_NONE:
      return;
    case MOLVA_ROW_MAXTF:
      return ScaleEachRow(mat, ScaleByMaxTf);
    case MOLVA_ROW_SQRT:
      return ScaleEachRow(mat, ScaleBySqrt);
    case MOLVA_ROW_LOG:
      return ScaleEachRow(mat, ScaleByLog);
    default:
      FatalError("Unknown RowModel value of %d\n", control.rowmodel);
  }
}

void ComputeScaleFactors(const Control& control, PreparedMatrix& mat) {
  switch (control.colmodel) {
    case MOLVA_COL_NONE:
      return;
    case MOLVA_COL_IDF:
      if (mat.sparse == 0) {
        FatalError(
            "IDF column model only applies to sparse matrices and non-correlation-coefficient similarities!\n");
      }
      return ScaleByIdf(mat);
    default:
      FatalError("Unknown ColModel value of %d\n", control.colmodel);
  }
}

// A column of every row gets -0.0, the negated logarithm of 1.
float IdfWeight(std::int64_t stored, std::int64_t nrows) {
  if (stored <= 0) return 0;
  return static_cast<float>(-Log(static_cast<Wide>(stored) / static_cast<Wide>(nrows)));
}

void ScaleColumns(PreparedMatrix& mat, Span<const float> vscale) {
  ForEachRow(mat, [&](int i, Span<float> values) {
    const Span<const int> columns = Row(mat, i).columns;
    for (std::size_t p = 0; p < values.size(); ++p) values[p] *= vscale[columns[p]];
  });
}

void NormalizeRows(const Control& control, PreparedMatrix& mat) {
  switch (control.simfun) {
    case MOLVA_SIM_COSINE:
      return ScaleEachRow(mat, ScaleToUnitLength);
    case MOLVA_SIM_CORRELATION:
      return ScaleEachRow(mat, [ncols = mat.ncols](Span<float> row) {
        SubtractMean(row, ncols);
        ScaleToUnitLength(row);
      });
    default:
      FatalError("Unknown similarity function: %d\n", control.simfun);
  }
}

}  // namespace molva
