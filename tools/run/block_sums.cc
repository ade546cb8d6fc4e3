// SPDX-License-Identifier: MIT
#include "tools/run/block_sums.h"

#include <algorithm>
#include <cmath>

namespace mardle::tools::block_sums {
namespace {

bool IsMinimised(int crfun) {
  return crfun == MOLVA_CRFUN_E1 || crfun == MOLVA_CRFUN_G1 || crfun == MOLVA_CRFUN_G1P ||
         crfun == MOLVA_CRFUN_H3;
}

}  // namespace

PreparedBlock Prepare(const RowBlock& block, const MOLVA_Space& space) {
  PreparedBlock prepared;
  prepared.rows.resize(Size(block.nrows));
  int* rowptr = nullptr;
  int* rowind = nullptr;
  float* rowval = nullptr;
  MOLVA_B_Prepare(block.nrows, block.ncols, block.starts(), block.columns(), block.rowval.data(),
                  &space, &prepared.nrows, &prepared.ncols, &rowptr, &rowind, &rowval,
                  prepared.rows.data());
  prepared.rowptr.reset(rowptr);
  prepared.rowind.reset(rowind);
  prepared.rowval.reset(rowval);
  return prepared;
}

Sums::Sums(int clusters, int columns)
    : nparts(clusters),
      ncols(columns),
      sums(Size(Long{clusters} * columns)),
      pwgts(Size(clusters)) {}

void Sums::Measure(int crfun) {
  dnorms.resize(Size(nparts));
  csim.resize(Size(nparts));
  MOLVA_B_MeasureSums(nparts, ncols, sums.data(), dnorms.data(), csim.data());
  value = MOLVA_B_CriterionValue(crfun, nparts, pwgts.data(), dnorms.data(), csim.data());
}

double GainOver(const Sums& clusters, int crfun, double value) {
  const Long fewest = *std::min_element(clusters.pwgts.begin(), clusters.pwgts.end());
  if (!std::isfinite(clusters.value) || fewest < 1) return -HUGE_VAL;
  const double change = clusters.value - value;
  const double gain = value != 0 ? change / std::fabs(value) : change;
  return IsMinimised(crfun) ? -gain : gain;
}

View::View(const Sums& clusters, double scale)
    : nparts_(clusters.nparts),
      composites_(clusters.sums.size()),
      whole_(Size(clusters.ncols)),
      dnorms_(clusters.dnorms),
      csim_(clusters.csim) {
  MOLVA_B_MakeView(nparts_, clusters.ncols, clusters.sums.data(), scale, composites_.data(),
                   whole_.data());
  for (const Long size : clusters.pwgts) {
    pwgts_.push_back(std::max<Long>(std::llrint(static_cast<double>(size) * scale), 1));
  }
  for (double& length : dnorms_) length *= scale * scale;
  for (double& similarity : csim_) similarity *= scale * scale;
}

MOLVA_View View::view() const {
  return {nparts_,
          static_cast<int>(whole_.size()),
          composites_.data(),
          whole_.data(),
          pwgts_.data(),
          dnorms_.data(),
          csim_.data()};
}

Changes::Changes(const Sums& clusters)
    : sums(Size(Long{kLevels} * clusters.nparts * clusters.ncols)),
      sizes(Size(Long{kLevels} * clusters.nparts)) {}

void AddLevel(const Changes& changes, int level, int sign, Sums& clusters) {
  const Long* sums = changes.sums.data() + Long{level} * Long(clusters.sums.size());
  for (Long& sum : clusters.sums) sum += sign * *sums++;
  const Long* sizes = changes.sizes.data() + Long{level} * clusters.nparts;
  for (Long& size : clusters.pwgts) size += sign * *sizes++;
}

Long AddMoves(const PreparedRows& rows, int nlists, const std::vector<int>& from,
              const std::vector<int>& to, std::vector<Long>& sums) {
  std::vector<Long> starts(Size(nlists) + 1);
  int* columns = nullptr;
  Long* changes = nullptr;
  const Long reach =
      MOLVA_B_SumChanges(rows.nrows, rows.ncols, rows.rowptr, rows.rowind, rows.rowval, nlists,
                         from.data(), to.data(), starts.data(), &columns, &changes);
  const Handed<int> of_columns(columns, MOLVA_Free);
  const Handed<Long> of_changes(changes, MOLVA_Free);
  for (int l = 0; l < nlists; ++l) {
    Long* list = sums.data() + Long{l} * rows.ncols;
    for (Long p = starts[Size(l)]; p < starts[Size(l) + 1]; ++p) list[columns[p]] += changes[p];
  }
  return reach;
}

}  // namespace mardle::tools::block_sums
