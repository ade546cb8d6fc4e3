// SPDX-License-Identifier: MIT
#include "lib/blocks/assign_rows.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "lib/blocks/batch_gains.h"
#include "lib/criteria/table.h"
#include "lib/support/alloc.h"
#include "lib/support/team.h"

namespace molva {
namespace {

constexpr int kRowsOfAPiece = 256;
// A pair is not broken up.
constexpr std::int64_t kFewestToLeave = 3;

bool HasCluster(const MOLVA_View& view, int k) { return k >= 0 && k < view.nparts; }

Array<BatchMeasure> MeasuresOf(const MOLVA_View& view) {
  Array<BatchMeasure> measures(view.nparts, "AssignRows: measures");
  for (int k = 0; k < view.nparts; ++k) {
    measures[k] = {view.pwgts[k], view.dnorms[k], view.csim[k]};
  }
  return measures;
}

// The row's products with all composites, side by side for each column, each added up in the order
// of the row's entries.
void MultiplyWithAll(const MOLVA_View& view, const RowView& row, double* products) {
  const int nparts = view.nparts;
  std::fill_n(products, nparts, 0.0);
  for (std::size_t p = 0; p < row.size(); ++p) {
    const double v = row.values[p];
    const float* lanes = view.composites + std::int64_t{row.columns[p]} * nparts;
    for (int k = 0; k < nparts; ++k) products[k] += v * static_cast<double>(lanes[k]);
  }
}

struct RowMeasure {
  double squared_length;
  double similarity;  // with the whole
};

RowMeasure Measure(const MOLVA_View& view, const RowView& row) {
  RowMeasure measure{0, 0};
  for (std::size_t p = 0; p < row.size(); ++p) {
    const double v = row.values[p];
    measure.squared_length += v * v;
    measure.similarity += v * static_cast<double>(view.whole[row.columns[p]]);
  }
  return measure;
}

template <typename Objective>
class BatchPass {
 public:
  BatchPass(const MOLVA_View& view, const PreparedMatrix& mat)
      : view_(view),
        mat_(mat),
        clusters_(MeasuresOf(view)),
        gains_(clusters_),
        products_(std::int64_t{view.nparts} * TeamSize(), "AssignRows: products") {}

  // With work space of the member's own.
  int BestOf(int i, int own, int member) {
    double* products = products_.data() + std::int64_t{member} * view_.nparts;
    const bool is_placed = HasCluster(view_, own);
    if (is_placed && clusters_[own].size < kFewestToLeave) return own;
    const RowView row = Row(mat_, i);
    MultiplyWithAll(view_, row, products);
    return Best(Measure(view_, row), is_placed ? own : -1, products);
  }

 private:
  int Best(const RowMeasure& row, int own, const double* products) const {
    typename BatchGains<Objective>::Leaving leaving;
    if (own >= 0) {
      const BatchMeasure& home = clusters_[own];
      leaving = gains_.Leave(
          own, {home.size - 1, home.squared_length - 2 * products[own] + row.squared_length,
                home.similarity - row.similarity});
    }
    int best = own;
    double most = own >= 0 ? 0 : -HUGE_VAL;
    for (int k = 0; k < view_.nparts; ++k) {
      if (k == own) continue;
      const BatchMeasure& target = clusters_[k];
      const double gain =
          gains_.Of(leaving, k,
                    {target.size + 1, target.squared_length + 2 * products[k] + row.squared_length,
                     target.similarity + row.similarity});
      if (!(gain > most)) continue;
      most = gain;
      best = k;
    }
    return best >= 0 ? best : 0;
  }

  const MOLVA_View& view_;
  const PreparedMatrix& mat_;
  Array<BatchMeasure> clusters_;
  BatchGains<Objective> gains_;
  Array<double> products_;
};

}  // namespace

void AssignRows(int crfun, const MOLVA_View& view, const PreparedMatrix& mat, Span<const int> part,
                Span<int> best) {
  WithCriterion(crfun, [&](const auto& criterion) {
    using Objective = typename std::decay_t<decltype(criterion)>::Objective;
    BatchPass<Objective> pass(view, mat);
    ShareOut(mat.nrows, kRowsOfAPiece, [&](std::int64_t first, std::int64_t last, int member) {
      for (auto i = static_cast<int>(first); i < last; ++i) {
        best[i] = pass.BestOf(i, part[i], member);
      }
    });
  });
}

void AverageRows(const MOLVA_View& view, const PreparedMatrix& mat, Span<const int> part,
                 const RowAverages& averages) {
  std::int64_t nrows = 0;
  for (int k = 0; k < view.nparts; ++k) nrows += view.pwgts[k];
  ShareOut(mat.nrows, kRowsOfAPiece, [&](std::int64_t first, std::int64_t last, int) {
    for (auto i = static_cast<int>(first); i < last; ++i) {
      averages.internal[i] = averages.external[i] = 0;
      const int own = part[i];
      if (!HasCluster(view, own)) continue;
      const RowView row = Row(mat, i);
      double product = 0;
      for (std::size_t p = 0; p < row.size(); ++p) {
        const std::int64_t lane = std::int64_t{row.columns[p]} * view.nparts + own;
        product += static_cast<double>(row.values[p]) * static_cast<double>(view.composites[lane]);
      }
      const auto size = static_cast<double>(view.pwgts[own]);
      const double outside = Measure(view, row).similarity - product;
      averages.internal[i] = static_cast<float>(product / size);
      averages.external[i] = static_cast<float>(outside / (static_cast<double>(nrows) - size));
    }
  });
}

}  // namespace molva
