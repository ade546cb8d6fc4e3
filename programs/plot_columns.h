// SPDX-License-Identifier: MIT
//
// The matrix that a plot shows: the run's prepared rows, cut to the columns that matter, and the
// tree over those columns.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "lib/molva.h"
#include "lib/support/alloc.h"
#include "programs/io/engine_calls.h"
#include "programs/io/matrix.h"
#include "programs/plot_page.h"
#include "programs/plot_tree.h"
#include "programs/run_params.h"

namespace mardle {

struct FreeHandedOut {
  void operator()(void* array) const { MOLVA_Free(array); }
};

// Rows are prepared rows, columns plotted columns.
struct PlottedMatrix {
  int nrows = 0;
  int ncols = 0;
  std::unique_ptr<int[], FreeHandedOut> rowptr;
  std::unique_ptr<int[], FreeHandedOut> rowind;
  std::unique_ptr<float[], FreeHandedOut> rowval;
  molva::Array<int> rperm;  // input row of each row
  molva::Array<int> cperm;  // input column of each column
  molva::Array<int> part;   // cluster of each row, -1 for none
  int nclusters = 0;

  std::span<const int> RowColumns(int i) const;
  std::span<const float> RowValues(int i) const;
  std::span<const float> values() const;
};

// Prepares the matrix as the run did, before any column is left out. The routine's name names the
// blocks.
PlottedMatrix PrepareForPlot(const RunParams& params, const Matrix& mat, const Clusters& clusters,
                             const char* routine);

// What the library is handed of a plotted matrix, which is prepared already: cosine, no models,
// nothing pruned but what every preparation prunes.
EngineInput PlotInput(const RunParams& params, const PlottedMatrix& plotted);

// Keeps the columns among the params.nfeatures most descriptive or discriminating ones of a
// cluster, measured on the prepared rows as they are; with dense input all columns.
void SelectColumns(const RunParams& params, PlottedMatrix& plotted, const char* routine);

// Removes the columns whose flag is 0 and numbers the others 0, 1, ... in their order, in place;
// entries keep their order within a row. map[new] = map[old]. Returns the number of columns kept.
int CompactMatrix(int nrows, int ncols, int* rowptr, int* rowind, float* rowval, std::span<int> map,
                  std::span<const int> keep);

// A tree drawn beside rows or columns, and the order in which they stand: those of the tree by its
// leaves, then those that the tree leaves out.
struct OrderedTree {
  PlotTree tree;             // over the leaves present, numbered 0, 1, ... by increasing item
  std::vector<int> leaf_of;  // the item of each leaf
  std::vector<int> order;    // the item at each position
};

// Cuts a tree over `items` leaves down to those that have a parent, or are alone.
OrderedTree KeepPresentLeaves(std::span<const int> ptree, std::span<const int> ftree, int items,
                              const NodeBlocks& blocks);

// The tree over the plotted columns, by agglomeration under I2, its leaves in the order of the
// reordering unless params.noreorder is set or there are more than 4999 columns.
OrderedTree ClusterColumns(const RunParams& params, const PlottedMatrix& plotted,
                           const char* routine);

// The order in which the columns stand: that of their tree, or else as they are.
std::vector<int> ColumnOrder(const std::optional<OrderedTree>& column_tree, int ncols);

// Draws a column's label running down, so that it ends at `end`. One that is longer than the room
// loses its last characters.
void DrawColumnLabel(PlotPage& page, Point end, double room, const char* label);

// More rows or columns than this keep the order of their tree.
constexpr int kMostReordered = 4999;

}  // namespace mardle
