// SPDX-License-Identifier: MIT
#include "lib/matrix/similarities.h"

#include <algorithm>
#include <cstdio>

#include "lib/matrix/composites.h"
#include "lib/support/printed.h"
#include "lib/support/progress.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

// Adds the products of row i with every row that shares a column with it.
void AddRowProducts(const PreparedMatrix& mat, int i, float* products) {
  const RowView row = Row(mat, i);
  for (std::size_t p = 0; p < row.size(); ++p) {
    const int column = row.columns[p];
    const Wide v = row.values[p];
    for (int q = mat.colptr[column]; q < mat.colptr[column + 1]; ++q) {
      float& product = products[mat.colind[q]];
      product = static_cast<float>(product + v * mat.colval[q]);
    }
  }
}

void ReportRow(const Control& control, int i) {
  if (!HasDebugBit(control, MOLVA_DBG_CLUSTERING) || i % 100 != 0) return;
  std::printf(".");
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
    for (std::size_t l = k; l < clusters; ++l) {
      smat[k * stride + l] = smat[l * stride + k] = DotFloats(centers[k], centers[l]);
    }
  }
}

void ComputeRowSimilarities(const Control& control, PreparedMatrix& mat, float* smat,
                            std::size_t stride) {
  if (HasDebugBit(control, MOLVA_DBG_CLUSTERING)) {
    std::printf("Computing pairwise similarities:");
    std::fflush(stdout);
  }
  CreateColMat(mat);
  for (int i = 0; i < mat.nrows; ++i) {
    ReportRow(control, i);
    Poll();
    float* products = smat + static_cast<std::size_t>(i) * stride;
    std::fill_n(products, mat.nrows, 0.0F);
    AddRowProducts(mat, i, products);
  }
  ReportFill(control, mat.nrows, smat, stride);
}

}  // namespace molva
