// SPDX-License-Identifier: MIT
#include "tools/run/sampled_clusters.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

#include "lib/molva.h"
#include "lib/support/fatal.h"
#include "tools/run/block_sums.h"

namespace mardle::tools {
namespace {

constexpr int kRefinementPasses = 10;
constexpr double kLeastGain = 1e-4;

using block_sums::AddLevel;
using block_sums::AddMoves;
using block_sums::Changes;
using block_sums::GainOver;
using block_sums::kLevels;
using block_sums::Long;
using block_sums::Prepare;
using block_sums::PreparedBlock;
using block_sums::Size;
using block_sums::Sums;
using block_sums::View;

class Course {
 public:
  Course(const RunParams& params, const SampleSettings& settings, const MatrixBlocks& blocks,
         const std::function<void(const std::string&)>& say)
      : params_(params), settings_(settings), blocks_(blocks), say_(say) {}

  SampledClusters Complete() {
    Weigh();
    Start();
    while (!HasEnded()) Pass();
    return Finish();
  }

 private:
  // ---- Before the passes

  bool IsFull() const {
    const Long cells = Long{blocks_.header().nrows} * blocks_.header().ncols;
    return params_.simfun == MOLVA_SIM_CORRELATION || blocks_.entries() >= cells;
  }

  MOLVA_Space Space() const {
    return {params_.simfun, params_.rowmodel, weights_.empty() ? nullptr : weights_.data(),
            kept_.empty() ? nullptr : kept_.data()};
  }

  void Weigh() {
    const int ncols = blocks_.header().ncols;
    if (params_.colmodel == MOLVA_COL_IDF && IsFull()) {
      molva::FatalError(
          "IDF column model only applies to sparse matrices and non-correlation-coefficient similarities!\n");
    }
    if (IsFull()) return;
    std::vector<Long> counts(Size(ncols));
    blocks_.ForEach([&](const RowBlock& block) {
      MOLVA_B_CountColumns(block.nrows, ncols, block.starts(), block.columns(), counts.data());
    });
    if (params_.colmodel == MOLVA_COL_IDF) {
      weights_.resize(Size(ncols));
      MOLVA_B_WeighColumns(ncols, blocks_.header().nrows, counts.data(), weights_.data());
    }
    std::vector<Long> sums;
    if (params_.prune < 1) sums = ColumnSums(ncols);
    kept_.resize(Size(ncols));
    if (MOLVA_B_ChooseColumns(ncols, params_.prune, counts.data(),
                              sums.empty() ? nullptr : sums.data(), kept_.data()) == 0) {
      molva::FatalError("No column is stored in two rows, so none is left!\n");
    }
  }

  std::vector<Long> ColumnSums(int ncols) const {
    std::vector<Long> sums(Size(ncols));
    const MOLVA_Space space = Space();
    blocks_.ForEach([&](const RowBlock& block) {
      const PreparedBlock rows = Prepare(block, space);
      MOLVA_B_SumColumns(rows.nrows, rows.ncols, rows.rowptr.get(), rows.rowind.get(),
                         rows.rowval.get(), sums.data());
    });
    return sums;
  }

  std::uint64_t Salt(int number) const {
    return std::uint64_t{static_cast<std::uint32_t>(params_.seed)} << 16 |
           static_cast<std::uint64_t>(number);
  }

  // A row is in the sample when its hash is below rows / nrows of all hashes, of which two steps of
  // 32 bits make the 64.
  bool IsSampled(std::uint64_t hash) const {
    const auto nrows = static_cast<std::uint64_t>(blocks_.header().nrows);
    const auto rows = static_cast<std::uint64_t>(settings_.rows);
    if (rows >= nrows) return true;
    const std::uint64_t high = (rows << 32) / nrows;
    const std::uint64_t rest = (rows << 32) % nrows;
    return hash < (high << 32 | (rest << 32) / nrows);
  }

  // The prepared rows of the sample, and which rows of the file they are.
  struct Sample {
    std::vector<int> rowptr{0}, rowind, rows;
    std::vector<float> rowval;
    int ncols = 0;
    Long prepared_rows = 0;
    int nrows() const { return static_cast<int>(rows.size()); }
  };

  Sample TakeSample() const {
    Sample sample;
    blocks_.ForEach([&](const RowBlock& block) {
      const PreparedBlock rows = Prepare(block, Space());
      std::vector<std::uint64_t> hashes(Size(block.nrows));
      MOLVA_B_HashRows(block.first, block.nrows, Salt(0), hashes.data());
      sample.ncols = rows.ncols;
      sample.prepared_rows += rows.nrows;
      for (int i = 0; i < rows.nrows; ++i) {
        const int row = rows.rows[Size(i)];
        if (!IsSampled(hashes[Size(row)])) continue;
        const int begin = rows.rowptr.get()[i], end = rows.rowptr.get()[i + 1];
        sample.rowind.insert(sample.rowind.end(), rows.rowind.get() + begin,
                             rows.rowind.get() + end);
        sample.rowval.insert(sample.rowval.end(), rows.rowval.get() + begin,
                             rows.rowval.get() + end);
        sample.rowptr.push_back(static_cast<int>(sample.rowind.size()));
        sample.rows.push_back(static_cast<int>(block.first) + row);
      }
    });
    return sample;
  }

  void Start() {
    const Sample sample = TakeSample();
    const int nparts = params_.nclusters;
    sampled_rows_ = sample.nrows();
    if (sampled_rows_ < nparts) {
      molva::FatalError("The sample has %d rows for %d clusters!\n", sampled_rows_, nparts);
    }
    say_("clustering a sample of " + std::to_string(sampled_rows_) + " of " +
         std::to_string(sample.prepared_rows) + " rows");
    std::vector<int> labels(Size(sampled_rows_));
    MOLVA_VP_ClusterDirect(sampled_rows_, sample.ncols, sample.rowptr.data(), sample.rowind.data(),
                           sample.rowval.data(), MOLVA_SIM_COSINE, params_.crfun, MOLVA_ROW_NONE,
                           MOLVA_COL_NONE, 1.0F, params_.ntrials, kRefinementPasses, params_.seed,
                           0, nparts, labels.data());
    clusters_ = Sums(nparts, sample.ncols);
    const std::vector<int> none(labels.size(), -1);
    AddMoves({sampled_rows_, sample.ncols, sample.rowptr.data(), sample.rowind.data(),
              sample.rowval.data()},
             nparts, none, labels, clusters_.sums);
    before_.assign(Size(blocks_.header().nrows), -1);
    for (std::size_t i = 0; i < labels.size(); ++i) {
      before_[Size(sample.rows[i])] = labels[i];
      if (labels[i] >= 0) ++clusters_.pwgts[Size(labels[i])];
    }
    after_ = before_;
    clusters_.Measure(params_.crfun);
    const Long placed = std::accumulate(clusters_.pwgts.begin(), clusters_.pwgts.end(), Long{0});
    scale_ =
        static_cast<double>(sample.prepared_rows) / static_cast<double>(std::max<Long>(placed, 1));
  }

  // ---- Passes

  bool HasEnded() const {
    if (number_ == 0) return false;
    if (number_ >= settings_.passes) return true;
    if (number_ == 1) return false;
    if (share_ == kLevels) return !looked_ahead_;
    return GainOver(clusters_, params_.crfun, last_value_) < kLeastGain;
  }

  // Rows are judged by where the clusters are going; as another change like the last one would make
  // them.
  View MakeView() {
    if (number_ == 0) return {clusters_, scale_};
    looked_ahead_ = has_last_;
    if (!has_last_) return {clusters_, 1.0};
    Sums ahead = clusters_;
    for (std::size_t p = 0; p < ahead.sums.size(); ++p)
      ahead.sums[p] += ahead.sums[p] - last_.sums[p];
    for (std::size_t k = 0; k < ahead.pwgts.size(); ++k) {
      ahead.pwgts[k] = std::max<Long>(2 * ahead.pwgts[k] - last_.pwgts[k], 1);
    }
    ahead.Measure(params_.crfun);
    return {ahead, 1.0};
  }

  int LevelOf(std::uint64_t hash) const {
    int level = 0;
    while (level + 1 < kLevels && hash < std::uint64_t{1} << (63 - level)) ++level;
    return level;
  }

  // Makes the moves of the pass before that were to be made.
  void Settle(const RowBlock& block) {
    if (number_ == 0) return;
    std::vector<std::uint64_t> hashes(Size(block.nrows));
    MOLVA_B_HashRows(block.first, block.nrows, Salt(number_), hashes.data());
    for (int i = 0; i < block.nrows; ++i) {
      const std::size_t row = Size(block.first + i);
      if (LevelOf(hashes[Size(i)]) >= share_) before_[row] = after_[row];
    }
  }

  void AssignBlock(const RowBlock& block, const MOLVA_View& view, Changes& changes) {
    Settle(block);
    const PreparedBlock rows = Prepare(block, Space());
    std::vector<int> part(Size(rows.nrows)), best(Size(rows.nrows));
    for (int i = 0; i < rows.nrows; ++i) {
      part[Size(i)] = before_[Size(block.first + rows.rows[Size(i)])];
    }
    MOLVA_B_AssignRows(rows.nrows, rows.rowptr.get(), rows.rowind.get(), rows.rowval.get(),
                       params_.crfun, &view, part.data(), best.data());
    std::vector<std::uint64_t> hashes(Size(block.nrows));
    MOLVA_B_HashRows(block.first, block.nrows, Salt(number_ + 1), hashes.data());
    for (int i = 0; i < rows.nrows; ++i) {
      const int row = rows.rows[Size(i)];
      int& from = part[Size(i)];
      int& to = best[Size(i)];
      if (number_ == 0 && from >= 0) to = from;
      after_[Size(block.first + row)] = to;
      const int list = number_ == 0 ? 0 : LevelOf(hashes[Size(row)]) * params_.nclusters;
      if (from != to) {
        ++changes.moves;
        ++changes.sizes[Size(list + to)];
        if (from >= 0) --changes.sizes[Size(list + from)];
      }
      to += list;
      if (from >= 0) from += list;
    }
    const Long reach =
        AddMoves(rows.rows_of(), kLevels * params_.nclusters, part, best, changes.sums);
    if (__builtin_add_overflow(changes.reach, reach, &changes.reach)) {
      molva::FatalError("A sum of rows passes 64 bits: there are too many rows for one sum!\n");
    }
  }

  void Pass() {
    Changes changes(clusters_);
    {
      const View held = MakeView();
      const MOLVA_View view = held.view();
      blocks_.ForEach([&](const RowBlock& block) { AssignBlock(block, view, changes); });
    }
    Sums before = clusters_;
    last_value_ = clusters_.value;
    if (number_ == 0) {
      AddLevel(changes, 0, 1, clusters_);
      clusters_.Measure(params_.crfun);
    } else {
      MakeBestShare(changes);
    }
    // The first pass is no change of clusters, and one without moves is none at all. Looking ahead
    // takes three times the room of a sum.
    has_last_ = number_ > 0 && share_ < kLevels && changes.reach < Long{1} << 61;
    if (has_last_) last_ = std::move(before);
    ++number_;
    TellPass(changes);
  }

  // The share of the moves that the criterion gains most by; kLevels stands for none.
  void MakeBestShare(const Changes& changes) {
    double most = 0;
    int best = kLevels;
    for (int share = kLevels - 1; share >= 0; --share) {
      AddLevel(changes, share, 1, clusters_);
      clusters_.Measure(params_.crfun);
      const double gain = GainOver(clusters_, params_.crfun, last_value_);
      if (!(gain > most)) continue;
      most = gain;
      best = share;
    }
    for (int share = 0; share < best; ++share) AddLevel(changes, share, -1, clusters_);
    clusters_.Measure(params_.crfun);
    share_ = best;
  }

  void TellPass(const Changes& changes) const {
    char text[128];
    const double share = share_ < kLevels ? 100.0 / (1 << share_) : 0;
    std::snprintf(text, sizeof text, "pass %d: %lld rows would move, %.0f%% do, criterion %.6g",
                  number_, static_cast<long long>(changes.moves), share, clusters_.value);
    say_(text);
  }

  // ---- After the passes

  SampledClusters Finish() {
    SampledClusters found;
    found.value = clusters_.value;
    found.sampled_rows = sampled_rows_;
    found.passes = number_;
    Average(found);
    Deviate(found);
    Renumber(found);
    return found;
  }

  void Average(SampledClusters& found) const {
    const auto total = static_cast<double>(
        std::accumulate(clusters_.pwgts.begin(), clusters_.pwgts.end(), Long{0}));
    found.pwgts = clusters_.pwgts;
    for (std::size_t k = 0; k < found.pwgts.size(); ++k) {
      const auto size = static_cast<double>(found.pwgts[k]);
      const double length = clusters_.dnorms[k];
      found.isim.push_back(static_cast<float>(length / (size * size)));
      found.esim.push_back(
          static_cast<float>((clusters_.csim[k] - length) / ((total - size) * size)));
    }
  }

  // One more reading, in which the last moves are made.
  void Deviate(SampledClusters& found) {
    found.isdev.assign(found.isim.size(), 0);
    found.esdev.assign(found.isim.size(), 0);
    const View held(clusters_, 1.0);
    const MOLVA_View view = held.view();
    blocks_.ForEach([&](const RowBlock& block) {
      Settle(block);
      const PreparedBlock rows = Prepare(block, Space());
      std::vector<int> part(Size(rows.nrows));
      for (int i = 0; i < rows.nrows; ++i) {
        part[Size(i)] = before_[Size(block.first + rows.rows[Size(i)])];
      }
      std::vector<float> internal(part.size()), external(part.size());
      MOLVA_B_AverageRows(rows.nrows, rows.rowptr.get(), rows.rowind.get(), rows.rowval.get(),
                          &view, part.data(), internal.data(), external.data());
      for (std::size_t i = 0; i < part.size(); ++i) {
        const std::size_t k = Size(part[i]);
        found.isdev[k] += std::pow(static_cast<double>(internal[i]) - found.isim[k], 2);
        found.esdev[k] += std::pow(static_cast<double>(external[i]) - found.esim[k], 2);
      }
    });
    for (std::size_t k = 0; k < found.isdev.size(); ++k) {
      const auto degrees = static_cast<double>(found.pwgts[k] - 1);
      found.isdev[k] = std::sqrt(found.isdev[k] / degrees);
      found.esdev[k] = std::sqrt(found.esdev[k] / degrees);
    }
  }

  // By falling internal minus external similarity.
  void Renumber(SampledClusters& found) {
    std::vector<int> order(found.isim.size());
    std::iota(order.begin(), order.end(), 0);
    const auto key = [&](int k) {
      const double difference = found.isim[Size(k)] - found.esim[Size(k)];
      return std::isnan(difference) ? -HUGE_VAL : difference;
    };
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return key(a) > key(b); });
    std::vector<int> number(order.size());
    for (std::size_t at = 0; at < order.size(); ++at)
      number[Size(order[at])] = static_cast<int>(at);
    const auto reorder = [&](auto& values) {
      auto sorted = values;
      for (std::size_t at = 0; at < order.size(); ++at) sorted[at] = values[Size(order[at])];
      values = sorted;
    };
    reorder(found.pwgts);
    for (std::vector<double>* values : {&found.isim, &found.isdev, &found.esim, &found.esdev}) {
      reorder(*values);
    }
    found.part = std::move(before_);
    for (int& k : found.part) {
      if (k >= 0) k = number[Size(k)];
    }
  }

  const RunParams& params_;
  const SampleSettings& settings_;
  const MatrixBlocks& blocks_;
  const std::function<void(const std::string&)>& say_;
  std::vector<float> weights_;
  std::vector<signed char> kept_;
  int sampled_rows_ = 0;
  double scale_ = 1;
  Sums clusters_, last_;             // now, and before the last pass
  std::vector<int> before_, after_;  // labels before the last pass, and after all its moves
  int number_ = 0, share_ = 0;
  bool has_last_ = false, looked_ahead_ = false;
  double last_value_ = 0;
};

}  // namespace

SampledClusters ClusterBySample(const RunParams& params, const SampleSettings& settings,
                                const MatrixBlocks& blocks,
                                const std::function<void(const std::string&)>& say) {
  return Course(params, settings, blocks, say).Complete();
}

}  // namespace mardle::tools
