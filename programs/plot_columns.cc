// SPDX-License-Identifier: MIT
#include "programs/plot_columns.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <string>

#include "lib/support/compact_columns.h"
namespace mardle {
namespace {

using molva::AllocFloats;
using molva::AllocInts;
using molva::AllocIntsSet;

void Mark(const molva::Array<int>& ids, molva::Array<int>& cmarker) {
  for (const int column : ids) {
    if (column >= 0) cmarker[column] = 1;
  }
}

// The columns of the plotted matrix as rows.
struct ColumnRows {
  molva::Array<int> colptr;
  molva::Array<int> colind;
  molva::Array<float> colval;
};

ColumnRows Transpose(const PlottedMatrix& m, const char* routine) {
  const int entries = m.rowptr[m.nrows];
  ColumnRows t{AllocIntsSet(std::int64_t{m.ncols} + 1, 0, {routine, ": colptr"}),
               AllocInts(entries, {routine, ": colind"}),
               AllocFloats(entries, {routine, ": colval"})};
  for (int p = 0; p < entries; ++p) ++t.colptr[m.rowind[p] + 1];
  std::partial_sum(t.colptr.begin(), t.colptr.end(), t.colptr.begin());
  std::vector<int> next(t.colptr.begin(), t.colptr.end());
  for (int i = 0; i < m.nrows; ++i) {
    for (int p = m.rowptr[i]; p < m.rowptr[i + 1]; ++p) {
      const int position = next[static_cast<std::size_t>(m.rowind[p])]++;
      t.colind[position] = i;
      t.colval[position] = m.rowval[p];
    }
  }
  return t;
}

}  // namespace

std::span<const int> PlottedMatrix::RowColumns(int i) const {
  return {rowind.get() + rowptr[i], static_cast<std::size_t>(rowptr[i + 1] - rowptr[i])};
}

std::span<const float> PlottedMatrix::RowValues(int i) const {
  return {rowval.get() + rowptr[i], static_cast<std::size_t>(rowptr[i + 1] - rowptr[i])};
}

std::span<const float> PlottedMatrix::values() const {
  return {rowval.get(), static_cast<std::size_t>(rowptr[nrows])};
}

PlottedMatrix PrepareForPlot(const RunParams& params, const Matrix& mat, const Clusters& clusters,
                             const char* routine) {
  PlottedMatrix plotted;
  plotted.nclusters = clusters.count;
  plotted.rperm = AllocInts(mat.nrows, {routine, ": rperm"});
  plotted.cperm = AllocInts(mat.ncols, {routine, ": cperm"});
  const EngineInput in = RunInput(params, mat, clusters);
  int* rowptr = nullptr;
  int* rowind = nullptr;
  float* rowval = nullptr;
  MOLVA_InternalizeMatrix(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun,
                          in.rowmodel, in.colmodel, in.prune, &plotted.nrows, &plotted.ncols,
                          &rowptr, &rowind, &rowval, plotted.rperm.get(), plotted.cperm.get());
  plotted.rowptr.reset(rowptr);
  plotted.rowind.reset(rowind);
  plotted.rowval.reset(rowval);
  plotted.part = AllocInts(plotted.nrows, {routine, ": part"});
  for (int i = 0; i < plotted.nrows; ++i) plotted.part[i] = clusters.part[plotted.rperm[i]];
  return plotted;
}

EngineInput PlotInput(const RunParams& params, const PlottedMatrix& plotted) {
  return {.nrows = plotted.nrows,
          .ncols = plotted.ncols,
          .rowptr = plotted.rowptr.get(),
          .rowind = plotted.rowind.get(),
          .rowval = plotted.rowval.get(),
          .dbglvl = params.dbglvl,
          .clusters = {plotted.nclusters, plotted.part.get()}};
}

void SelectColumns(const RunParams& params, PlottedMatrix& plotted, const char* routine) {
  if (params.denseinput) return;
  const int nfeatures = std::max(params.nfeatures, 0);
  const std::int64_t slots = std::int64_t{plotted.nclusters} * nfeatures;
  molva::Array<int> internalids = AllocInts(slots, {routine, ": internalids"});
  molva::Array<float> internalwgts = AllocFloats(slots, {routine, ": internalwgts"});
  molva::Array<int> externalids = AllocInts(slots, {routine, ": externalids"});
  molva::Array<float> externalwgts = AllocFloats(slots, {routine, ": externalwgts"});
  DescribeClusters(PlotInput(params, plotted), nfeatures,
                   {internalids, internalwgts, externalids, externalwgts});
  molva::Array<int> cmarker = AllocIntsSet(plotted.ncols, 0, {routine, ": cmarker"});
  Mark(internalids, cmarker);
  Mark(externalids, cmarker);
  plotted.ncols = CompactMatrix(plotted.nrows, plotted.ncols, plotted.rowptr.get(),
                                plotted.rowind.get(), plotted.rowval.get(), plotted.cperm, cmarker);
}

int CompactMatrix(int nrows, int ncols, int* rowptr, int* rowind, float* rowval, std::span<int> map,
                  std::span<const int> keep) {
  molva::Array<int> cmap = AllocInts(ncols, "CompactMatrix: cmap");
  return molva::CompactColumns({nrows, rowptr, rowind, rowval}, map, cmap,
                               [keep](std::size_t j) { return keep[j] != 0; });
}

OrderedTree KeepPresentLeaves(std::span<const int> ptree, std::span<const int> ftree, int items,
                              const NodeBlocks& blocks) {
  OrderedTree ordered;
  std::vector<int> absent;
  for (int item = 0; item < items; ++item) {
    const bool present = molva::HasParent(ptree, item) || items == 1;
    (present ? ordered.leaf_of : absent).push_back(item);
  }
  const auto n = static_cast<int>(ordered.leaf_of.size());
  const int shift = items - n;
  PlotTree& tree = ordered.tree;
  tree.n = n;
  tree.blocks = blocks;
  tree.ftree = AllocIntsSet(4 * std::int64_t{n}, -1, {blocks.routine, ": ftree"});
  tree.tsize = molva::AllocFloatsSet(2 * std::int64_t{n}, 0, {blocks.routine, ": tsize"});
  tree.xnode = molva::AllocFloatsSet(2 * std::int64_t{n}, 0, {blocks.routine, blocks.x});
  tree.ynode = molva::AllocFloatsSet(2 * std::int64_t{n}, 0, {blocks.routine, blocks.y});

  // Internal nodes stand `shift` lower, leaves where they are in the list of those present.
  const auto renumbered = [&](int node) {
    if (node >= items) return node - shift;
    const auto at = std::lower_bound(ordered.leaf_of.begin(), ordered.leaf_of.end(), node);
    return static_cast<int>(at - ordered.leaf_of.begin());
  };
  for (int x = n; x < 2 * n - 1; ++x) {
    const auto old = 2 * static_cast<std::size_t>(x + shift);
    tree.children().first(x) = renumbered(ftree[old]);
    tree.children().second(x) = renumbered(ftree[old + 1]);
  }
  std::vector<int> parents(2 * static_cast<std::size_t>(n), -1);
  for (int x = n; x < 2 * n - 1; ++x) {
    parents[static_cast<std::size_t>(tree.children().first(x))] = x;
    parents[static_cast<std::size_t>(tree.children().second(x))] = x;
  }
  if (n > 0) {
    molva::ForEachLeafBelow(tree.root(), parents, tree.children(), [&ordered](int leaf) {
      ordered.order.push_back(ordered.leaf_of[static_cast<std::size_t>(leaf)]);
    });
  }
  ordered.order.insert(ordered.order.end(), absent.begin(), absent.end());
  std::fill_n(tree.tsize.begin(), n, 1.0F);
  SumSizes(parents, tree);
  return ordered;
}

OrderedTree ClusterColumns(const RunParams& params, const PlottedMatrix& plotted,
                           const char* routine) {
  const int c = plotted.ncols;
  const ColumnRows columns = Transpose(plotted, routine);
  molva::Array<int> cpart = AllocInts(c, {routine, ": cpart"});
  molva::Array<int> cptree = AllocInts(2 * std::int64_t{c}, {routine, ": cptree"});
  molva::Array<float> ctsims = AllocFloats(2 * std::int64_t{c}, {routine, ": ctsims"});
  const EngineInput input{.nrows = c,
                          .ncols = plotted.nrows,
                          .rowptr = columns.colptr.get(),
                          .rowind = columns.colind.get(),
                          .rowval = columns.colval.get(),
                          .dbglvl = params.dbglvl};
  MergeRows(input, MOLVA_CRFUN_I2, 1, {cpart, cptree, ctsims});
  molva::Array<int> ftree =
      molva::MakeChildTable({cptree.get(), cptree.size()}, {routine, ": ftree"});
  if (!params.noreorder && c <= kMostReordered) ReorderRowTree(input, cptree, ftree);
  return KeepPresentLeaves({cptree.get(), cptree.size()}, ftree, c,
                           {routine, ": cxnode", ": cynode"});
}

std::vector<int> ColumnOrder(const std::optional<OrderedTree>& column_tree, int ncols) {
  if (column_tree) return column_tree->order;
  std::vector<int> order(static_cast<std::size_t>(ncols));
  std::iota(order.begin(), order.end(), 0);
  return order;
}

void DrawColumnLabel(PlotPage& page, Point end, double room, const char* label) {
  std::string text = PrintableLabel(label);
  double length = page.LabelWidth(text);
  while (length > room && !text.empty()) {
    text.pop_back();
    length = page.LabelWidth(text);
  }
  page.Label({end.x, end.y + length}, -90, Along::kStart, Across::kCenter, text);
}

}  // namespace mardle
