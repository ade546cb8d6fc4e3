// SPDX-License-Identifier: MIT
#include "lib/matrix/similarities.h"

#include <algorithm>
#include <cstdio>

#include "lib/matrix/composites.h"
#include "lib/support/narrowing.h"
#include "lib/support/printed.h"
#include "lib/support/progress.h"
#include "lib/support/team.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

// Shared out among threads.
constexpr int kRowsAtATime = 1000;
constexpr int kRowsOfAPiece = 4;
constexpr int kProductsOfAPiece = 8;

// Adds wide, rounded at once; the product is exact in double.
void AddProduct(float a, float b, float& sum) {
  const double rough = static_cast<double>(sum) + static_cast<double>(a) * static_cast<double>(b);
  sum = NarrowsAlike(rough) ? static_cast<float>(rough)
                            : static_cast<float>(sum + static_cast<Wide>(a) * b);
}

// Adds the products of row i with every row that shares a column with it.
void AddRowProducts(const PreparedMatrix& mat, int i, float* products) {
  const RowView row = Row(mat, i);
  for (std::size_t p = 0; p < row.size(); ++p) {
    const int column = row.columns[p];
    const float v = row.values[p];
    for (int q = mat.colptr[column]; q < mat.colptr[column + 1]; ++q) {
      AddProduct(v, mat.colval[q], products[mat.colind[q]]);
    }
  }
}

// A point for every hundred of the rows to come.
void ReportRows(const Control& control, int rows) {
  if (!HasDebugBit(control, MOLVA_DBG_CLUSTERING)) return;
  for (int i = 0; i < rows; i += 100) std::printf(".");
  std::fflush(stdout);
}

void ReportFill(const Control& control, int n, const float* smat, std::size_t stride) {
  if (!HasDebugBit(control, MOLVA_DBG_CLUSTERING)) return;
  const auto size = static_cast<std::size_t>(n);
  std::ptrdiff_t positive = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const float* row = smat + i * stride;
    positive += std::count_if(row, row + size, [](float s) { return s > 0; });
  }
  const double cells = static_cast<double>(size) * static_cast<double>(size);
  std::printf(":Done! (%d, fill=%.3f)\n", n, Printed(static_cast<double>(positive) / cells, 0));
}

}  // namespace

void ComputeCluster2ClusterSimilarities(const PreparedMatrix& mat, int nparts, Span<const int> part,
                                        float* smat, std::size_t stride, Span<int> pwgts) {
  Rows<float> centers =
      AllocFloatMatrix(nparts, mat.ncols, 0, "ComputeCluster2ClusterSimilarities: centers");
  SetInts(pwgts, 0);
  AccumulateComposites(mat, part, pwgts, centers, {});
  const auto clusters = static_cast<std::size_t>(std::max(nparts, 0));
  for (std::size_t k = 0; k < clusters; ++k) {
    Poll();
    ShareOut(static_cast<std::int64_t>(clusters - k), kProductsOfAPiece,
             [&](std::int64_t first, std::int64_t last, int) {
               for (auto l = k + static_cast<std::size_t>(first);
                    l < k + static_cast<std::size_t>(last); ++l) {
                 smat[k * stride + l] = smat[l * stride + k] = DotFloats(centers[k], centers[l]);
               }
             });
  }
}

void ComputeRowSimilarities(const Control& control, PreparedMatrix& mat, float* smat,
                            std::size_t stride) {
  if (HasDebugBit(control, MOLVA_DBG_CLUSTERING)) {
    std::printf("Computing pairwise similarities:");
    std::fflush(stdout);
  }
  CreateColMat(mat);
  for (int begin = 0; begin < mat.nrows; begin += kRowsAtATime) {
    const int rows = std::min(kRowsAtATime, mat.nrows - begin);
    ReportRows(control, rows);
    Poll();
    ShareOut(rows, kRowsOfAPiece, [&](std::int64_t first, std::int64_t last, int) {
      for (auto i = begin + static_cast<int>(first); i < begin + static_cast<int>(last); ++i) {
        float* products = smat + static_cast<std::size_t>(i) * stride;
        std::fill_n(products, mat.nrows, 0.0F);
        AddRowProducts(mat, i, products);
      }
    });
  }
  ReportFill(control, mat.nrows, smat, stride);
}

}  // namespace molva
