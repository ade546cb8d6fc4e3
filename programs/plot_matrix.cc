// SPDX-License-Identifier: MIT
//
// From left to right: the tree over the rows, the cells, the clusters' names. From below: the
// cells, the tree over the columns, the columns' labels.
#include "programs/plot_matrix.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "programs/plot_cells.h"
#include "programs/plot_columns.h"
#include "programs/plot_page.h"
#include "programs/plot_tree.h"

namespace mardle {
namespace {

// Lengths in units of the page. The room around the cells, 20 font sizes in each direction, is
// divided so that nothing leaves the page: a cluster's name may stand out by 3 font sizes above and
// below a single row.
struct MatrixLayout {
  MatrixLayout(int nrows, int ncols, bool has_row_tree, bool has_column_tree)
      : rows(nrows),
        columns(ncols),
        cell(5.0 * std::max(rows / columns, columns / rows)),
        font(0.8 * cell),
        width(columns * cell + rows + 20 * font),
        height(rows * cell + columns + 20 * font),
        left(has_row_tree ? rows + cell : font + cell),
        bottom(3 * font),
        label_bottom(top() + (has_column_tree ? columns : 0) + 0.5 * font),
        label_room(height - 0.5 * font - label_bottom) {}

  double RowMiddle(double position) const { return bottom + (position + 0.5) * cell; }
  double ColumnLeft(double position) const { return left + position * cell; }
  double right() const { return left + columns * cell; }
  double top() const { return bottom + rows * cell; }

  double rows, columns;
  double cell;           // the side of a cell
  double font;           // the size of the labels
  double width, height;  // of the page
  double left, bottom;   // of the cells
  double label_bottom;   // where labels end
  double label_room;     // the longest label
};

// The complete tree, cut down to the prepared rows and reordered. Internal nodes stand as many
// numbers lower as rows were dropped.
OrderedTree TreeOverRows(const RunParams& params, const PlottedMatrix& plotted,
                         std::span<const int> ptree, const char* routine) {
  const int n = plotted.nrows;
  const int dropped = static_cast<int>(ptree.size() / 2) - n;
  molva::Array<int> parents = molva::AllocIntsSet(2 * std::int64_t{n}, -1, {routine, ": ptree"});
  for (int x = 0; x < 2 * n - 2; ++x) {
    const int node = x < n ? plotted.rperm[x] : x + dropped;
    parents[x] = std::max(ptree[static_cast<std::size_t>(node)] - dropped, -1);
  }
  molva::Array<int> ftree =
      molva::MakeChildTable({parents.get(), parents.size()}, {routine, ": ftree"});
  if (!params.noreorder && n <= kMostReordered) {
    ReorderRowTree(PlotInput(params, plotted), parents, ftree);
  }
  return KeepPresentLeaves({parents.get(), parents.size()}, ftree, n,
                           {routine, ": rxnode", ": rynode"});
}

// Cluster by cluster, rows without a cluster last.
std::vector<int> RowsByCluster(const PlottedMatrix& plotted) {
  std::vector<int> order(static_cast<std::size_t>(plotted.nrows));
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&plotted](int i, int j) {
    return static_cast<unsigned>(plotted.part[i]) < static_cast<unsigned>(plotted.part[j]);
  });
  return order;
}

std::vector<double> PositionsOf(const std::vector<int>& order) {
  std::vector<double> positions(order.size());
  for (std::size_t p = 0; p < order.size(); ++p) {
    positions[static_cast<std::size_t>(order[p])] = static_cast<double>(p);
  }
  return positions;
}

// Labels end just above the cells or the tree over the columns.
void DrawColumnLabels(PlotPage& page, const MatrixLayout& layout, const Matrix& mat,
                      const PlottedMatrix& plotted, const std::vector<int>& order) {
  for (std::size_t p = 0; p < order.size(); ++p) {
    const double middle = layout.ColumnLeft(static_cast<double>(p) + 0.5);
    DrawColumnLabel(page, {middle, layout.label_bottom}, layout.label_room,
                    mat.clabels[plotted.cperm[order[p]]]);
  }
}

struct GridOrder {
  std::vector<int> rows;     // the row at each position, from below
  std::vector<int> columns;  // the column at each position, from the left
  std::vector<double> column_position;
};

void DrawCells(PlotPage& page, const MatrixLayout& layout, const PlottedMatrix& plotted,
               const GridOrder& grid, bool zeroblack) {
  ValueRange range;
  range.Include(plotted.values());
  page.StartCells();
  for (std::size_t p = 0; p < grid.rows.size(); ++p) {
    const double middle = layout.RowMiddle(static_cast<double>(p));
    const auto draw = [&](double column, Color color) {
      page.Cell({layout.ColumnLeft(column), middle - 0.5 * layout.cell},
                {layout.ColumnLeft(column + 1), middle + 0.5 * layout.cell}, color);
    };
    if (zeroblack) {
      for (int column = 0; column < plotted.ncols; ++column) draw(column, {0, 0, 0});
    }
    const std::span<const int> columns = plotted.RowColumns(grid.rows[p]);
    const std::span<const float> values = plotted.RowValues(grid.rows[p]);
    for (std::size_t e = 0; e < values.size(); ++e) {
      const std::optional<Color> color = CellColor(values[e], range, zeroblack);
      if (color) draw(grid.column_position[static_cast<std::size_t>(columns[e])], *color);
    }
  }
}

// The first and the last position of each cluster's rows.
struct Band {
  double first = -1, last = -1;
};

std::vector<Band> BandsOf(int nclusters, const PlottedMatrix& plotted,
                          const std::vector<int>& rows) {
  std::vector<Band> bands(static_cast<std::size_t>(std::max(nclusters, 0)));
  for (std::size_t p = 0; p < rows.size(); ++p) {
    const int k = plotted.part[rows[p]];
    if (k < 0 || k >= nclusters) continue;
    Band& band = bands[static_cast<std::size_t>(k)];
    if (band.first < 0) band.first = static_cast<double>(p);
    band.last = static_cast<double>(p);
  }
  return bands;
}

void DrawFrames(PlotPage& page, const MatrixLayout& layout, const std::vector<Band>& bands) {
  page.StartFrames();
  for (std::size_t k = 0; k < bands.size(); ++k) {
    if (bands[k].first < 0) continue;
    const double smallest = layout.RowMiddle(bands[k].first);
    const double largest = layout.RowMiddle(bands[k].last);
    page.Frame({layout.left, smallest - 0.5 * layout.cell},
               {layout.right(), largest + 0.5 * layout.cell});
    page.Label({layout.right() + 0.5 * layout.cell, 0.5 * (smallest + largest)}, 90, Along::kCenter,
               Across::kCenter, "cluster " + std::to_string(k));
  }
}

void PlotTreeMatrix(const RunParams& params, const Matrix& mat, std::span<const int> ptree,
                    const Clusters& clusters, const char* routine) {
  PlottedMatrix plotted = PrepareForPlot(params, mat, clusters, routine);
  std::optional<OrderedTree> row_tree;
  if (!ptree.empty() && plotted.nrows > 0) {
    row_tree = TreeOverRows(params, plotted, ptree, routine);
  }
  SelectColumns(params, plotted, routine);
  if (plotted.nrows < 1 || plotted.ncols < 1) {
    std::fprintf(stderr, "No rows or no columns to plot: %s is not written\n",
                 params.plotmatrixfile.get());
    return;
  }
  std::optional<OrderedTree> column_tree;
  if (params.clustercolumns) column_tree = ClusterColumns(params, plotted, routine);

  const MatrixLayout layout(plotted.nrows, plotted.ncols, row_tree.has_value(),
                            column_tree.has_value());
  PlotPage page(params.plotmatrixfile.get(), "PlotFullTree: fpout", params.plotformat.data(),
                layout.width, layout.height);
  page.SetFontSize(layout.font);
  if (row_tree && row_tree->tree.n > 1) {
    DrawTreeHorizontally(page, row_tree->tree, {1, layout.RowMiddle(0)}, 1, layout.cell, kNoLabels);
  }
  if (column_tree && column_tree->tree.n > 1) {
    const double root = layout.top() + column_tree->tree.n - 1;
    DrawTreeVertically(page, column_tree->tree, {layout.ColumnLeft(0.5), root}, layout.cell, 1,
                       kNoLabels);
  }
  GridOrder grid{row_tree ? row_tree->order : RowsByCluster(plotted),
                 ColumnOrder(column_tree, plotted.ncols),
                 {}};
  grid.column_position = PositionsOf(grid.columns);
  DrawColumnLabels(page, layout, mat, plotted, grid.columns);
  DrawCells(page, layout, plotted, grid, params.zeroblack);
  DrawFrames(page, layout, BandsOf(clusters.count, plotted, grid.rows));
  page.Close();
}

}  // namespace

void PlotMatrix(const RunParams& params, const Matrix& mat, std::span<const int> ptree,
                const Clusters& clusters) {
  if (params.denseinput) {
    PlotDenseTreeMatrix(params, mat, ptree, clusters);
  } else {
    PlotSparseTreeMatrix(params, mat, ptree, clusters);
  }
}

void PlotSparseTreeMatrix(const RunParams& params, const Matrix& mat, std::span<const int> ptree,
                          const Clusters& clusters) {
  PlotTreeMatrix(params, mat, ptree, clusters, "PlotSparseTreeMatrix");
}

void PlotDenseTreeMatrix(const RunParams& params, const Matrix& mat, std::span<const int> ptree,
                         const Clusters& clusters) {
  PlotTreeMatrix(params, mat, ptree, clusters, "PlotDenseTreeMatrix");
}

}  // namespace mardle
