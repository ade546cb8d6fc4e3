// SPDX-License-Identifier: MIT
//
// The lengths are fixed so that all bands together are 10000 units high and all cells 13330 units
// wide.
#include "programs/plot_clusters.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "lib/support/wide.h"
#include "programs/plot_cells.h"
#include "programs/plot_columns.h"
#include "programs/plot_page.h"
#include "programs/plot_tree.h"

namespace mardle {
namespace {

constexpr char kRoutine[] = "PlotSparseTreeMatrix";

// The bands. Their height grows with the square root of the number of rows; two rows more than
// there are keep empty clusters visible.
struct Bands {
  explicit Bands(int nclusters)
      : sizes(molva::AllocIntsSet(nclusters, 0, "PlotTreeClusterMatrix: pwgts")),
        heights(molva::AllocFloatsSet(nclusters, 0, "PlotTreeClusterMatrix: tpwgts")) {}
  molva::Array<int> sizes;
  molva::Array<float> heights;
};

Bands MeasureBands(int nclusters, const PlottedMatrix& plotted) {
  Bands bands(nclusters);
  for (const int k : plotted.part) {
    if (k >= 0 && k < nclusters) ++bands.sizes[k];
  }
  for (int k = 0; k < nclusters; ++k) {
    bands.heights[k] =
        static_cast<float>(molva::Sqrt(static_cast<molva::Wide>(bands.sizes[k]) + 2));
  }
  return bands;
}

struct ClusterLayout {
  ClusterLayout(int nclusters, int ncols, const Bands& bands)
      : clusters(nclusters),
        columns(ncols),
        font(std::min(300.0, 5000.0 / clusters)),
        label_size(std::min(13330.0 / columns, 399.9)),
        cell_width(13330.0 / columns),
        unit(10000.0 / std::accumulate(bands.heights.begin(), bands.heights.end(), 0.0)),
        width(5 * font + 15329.5),
        height(15 * label_size + 11500) {}

  double clusters, columns;
  double font;        // of the clusters' numbers
  double label_size;  // the height that a column's label may take
  double cell_width;
  double unit;           // of the bands' heights
  double width, height;  // of the page
};

// The tree over the clusters of the plotted rows, under the tree criterion. Clusters that it leaves
// out, for want of rows, follow after the others.
OrderedTree TreeOverClusters(const RunParams& params, const PlottedMatrix& plotted) {
  const int k = plotted.nclusters;
  molva::Array<int> ptree = molva::AllocInts(2 * std::int64_t{k}, {kRoutine, ": ptree"});
  molva::Array<float> tsims = molva::AllocFloats(2 * std::int64_t{k}, {kRoutine, ": tsims"});
  const EngineInput input = PlotInput(params, plotted);
  BuildTree(input, MOLVA_TREE_CLUSTERS, params.treecrfun, ptree, tsims);
  molva::Array<int> ftree =
      molva::MakeChildTable({ptree.get(), ptree.size()}, {kRoutine, ": ftree"});
  if (!params.noreorder) ReorderClusterTree(input, ptree, ftree);
  return KeepPresentLeaves({ptree.get(), ptree.size()}, ftree, k, {kRoutine, ": xnode", ": ynode"});
}

// Gives the leaves the heights of their bands instead of one each.
void SetLeafSizes(const Bands& bands, OrderedTree& ordered) {
  PlotTree& tree = ordered.tree;
  for (int x = 0; x < 2 * tree.n - 1; ++x) {
    tree.tsize[x] =
        x < tree.n ? bands.heights[ordered.leaf_of[static_cast<std::size_t>(x)]]
                   : tree.tsize[tree.children().first(x)] + tree.tsize[tree.children().second(x)];
  }
}

// Draws the tree and returns where each cluster's leaf stands, in the middle of its band.
std::vector<Point> DrawClusterTree(PlotPage& page, const ClusterLayout& layout, const Bands& bands,
                                   OrderedTree& ordered) {
  const double step = 1999.5 / layout.clusters;
  const double leaf_x = 1999.5;
  SetLeafSizes(bands, ordered);
  PlotTree& tree = ordered.tree;
  double y = 1500.0 / layout.columns;
  std::vector<Point> leaves(bands.sizes.size());
  if (tree.n > 0) {
    const double root_x = leaf_x - (tree.n - 1) * step;
    DrawTreeHorizontally(page, tree, {root_x, y}, step, layout.unit, kNoLabels);
    for (int leaf = 0; leaf < tree.n; ++leaf) {
      const auto cluster =
          static_cast<std::size_t>(ordered.leaf_of[static_cast<std::size_t>(leaf)]);
      leaves[cluster] = {tree.xnode[leaf], tree.ynode[leaf]};
    }
    y += static_cast<double>(tree.tsize[tree.root()]) * layout.unit;
  }
  for (auto p = static_cast<std::size_t>(tree.n); p < ordered.order.size(); ++p) {
    const auto cluster = static_cast<std::size_t>(ordered.order[p]);
    const auto height = static_cast<double>(bands.heights[cluster]);
    leaves[cluster] = {leaf_x, y + 0.5 * (height - 1) * layout.unit};
    y += height * layout.unit;
  }
  return leaves;
}

std::string SizeLabel(int size) {
  std::string text = "(";
  text += std::to_string(size);
  text += ')';
  return text;
}

void LabelClusters(PlotPage& page, const ClusterLayout& layout, const Bands& bands,
                   const std::vector<Point>& leaves) {
  for (std::size_t k = 0; k < leaves.size(); ++k) {
    page.SetFontSize(layout.font);
    page.Label({leaves[k].x + 0.5 * layout.font, leaves[k].y}, 90, Along::kCenter, Across::kTop,
               std::to_string(k));
    page.SetFontSize(0.5 * layout.font);
    page.Label({leaves[k].x + 1.75 * layout.font, leaves[k].y}, 90, Along::kCenter, Across::kTop,
               SizeLabel(bands.sizes[k]));
  }
}

// The cells of all bands: their left edge, and the upper edge of the highest band.
struct Grid {
  double left;
  double top;
};

// Labels end half a label size above the bands, or above the tree over the columns.
void LabelColumns(PlotPage& page, const ClusterLayout& layout, const Matrix& mat,
                  const PlottedMatrix& plotted, const std::vector<int>& order, const Grid& grid,
                  double bottom) {
  const double label_end = bottom + 0.5 * layout.label_size;
  const double room = layout.height - 0.25 * layout.label_size - label_end;
  page.SetFontSize(0.8 * layout.label_size);
  for (std::size_t p = 0; p < order.size(); ++p) {
    const double middle = grid.left + (static_cast<double>(p) + 0.5) * layout.cell_width;
    DrawColumnLabel(page, {middle, label_end}, room, mat.clabels[plotted.cperm[order[p]]]);
  }
}

// The average of the rows of a cluster that has rows.
void ComputeCentroid(const PlottedMatrix& plotted, int cluster, int size,
                     molva::Array<float>& center) {
  center.Fill(0);
  for (int i = 0; i < plotted.nrows; ++i) {
    if (plotted.part[i] != cluster) continue;
    const std::span<const int> columns = plotted.RowColumns(i);
    const std::span<const float> values = plotted.RowValues(i);
    for (std::size_t e = 0; e < values.size(); ++e) center[columns[e]] += values[e];
  }
  for (float& v : center) v = static_cast<float>(static_cast<molva::Wide>(v) / size);
}

void DrawBands(PlotPage& page, const ClusterLayout& layout, const Bands& bands,
               const PlottedMatrix& plotted, const std::vector<Point>& leaves,
               const std::vector<int>& order, const Grid& grid, bool zeroblack) {
  molva::Array<float> center = molva::AllocFloats(plotted.ncols, "PlotTreeClusterMatrix: center");
  // A cluster without rows has no centroid and draws no cells.
  const auto for_each_centroid = [&](auto&& visit) {
    for (std::size_t k = 0; k < leaves.size(); ++k) {
      if (bands.sizes[k] == 0) continue;
      ComputeCentroid(plotted, static_cast<int>(k), bands.sizes[k], center);
      visit(k);
    }
  };
  ValueRange range;
  for_each_centroid([&](std::size_t) { range.Include({center.get(), center.size()}); });
  const auto half_height = [&](std::size_t k) {
    return 0.5 * static_cast<double>(bands.heights[k]) * layout.unit;
  };
  page.StartCells();
  for_each_centroid([&](std::size_t k) {
    for (std::size_t p = 0; p < order.size(); ++p) {
      const std::optional<Color> color = CellColor(center[order[p]], range, zeroblack);
      if (!color) continue;
      const double left = grid.left + static_cast<double>(p) * layout.cell_width;
      page.Cell({left, leaves[k].y - half_height(k)},
                {left + layout.cell_width, leaves[k].y + half_height(k)}, *color);
    }
  });
  page.StartFrames();
  const double right = grid.left + layout.columns * layout.cell_width;
  for (std::size_t k = 0; k < leaves.size(); ++k) {
    page.Frame({grid.left, leaves[k].y - half_height(k)}, {right, leaves[k].y + half_height(k)});
  }
}

double TopOf(const ClusterLayout& layout, const Bands& bands, const std::vector<Point>& leaves) {
  double top = 0;
  for (std::size_t k = 0; k < leaves.size(); ++k) {
    top = std::max(top, leaves[k].y + 0.5 * static_cast<double>(bands.heights[k]) * layout.unit);
  }
  return top;
}

}  // namespace

void PlotTreeClusterMatrix(const RunParams& params, const Matrix& mat, const Clusters& clusters) {
  PlottedMatrix plotted = PrepareForPlot(params, mat, clusters, kRoutine);
  const Bands bands = MeasureBands(clusters.count, plotted);
  SelectColumns(params, plotted, kRoutine);
  if (plotted.nrows < 1 || plotted.ncols < 1 || clusters.count < 1) {
    std::fprintf(stderr, "No rows or no columns to plot: %s is not written\n",
                 params.plotclustersfile.get());
    return;
  }
  OrderedTree cluster_tree = TreeOverClusters(params, plotted);
  std::optional<OrderedTree> column_tree;
  if (params.clustercolumns) column_tree = ClusterColumns(params, plotted, kRoutine);

  const ClusterLayout layout(clusters.count, plotted.ncols, bands);
  PlotPage page(params.plotclustersfile.get(), "PlotTreeClusterMatrix: fpout",
                params.plotformat.data(), layout.width, layout.height);
  const std::vector<Point> leaves = DrawClusterTree(page, layout, bands, cluster_tree);
  page.SetFontSize(layout.font);
  const double number_width = page.LabelWidth("XXXX");
  LabelClusters(page, layout, bands, leaves);

  const Grid grid{number_width + leaves[0].x + 0.5 * layout.cell_width,
                  TopOf(layout, bands, leaves)};
  const std::vector<int> order = ColumnOrder(column_tree, plotted.ncols);
  double labels_from = grid.top;
  if (column_tree && column_tree->tree.n > 1) {
    // The tree takes a quarter of the room above the bands.
    const double room = 0.25 * (layout.height - grid.top);
    DrawTreeVertically(page, column_tree->tree,
                       {grid.left + 0.5 * layout.cell_width, grid.top + room}, layout.cell_width,
                       room / (column_tree->tree.n - 1), kNoLabels);
    labels_from += room + 0.5 * room / (column_tree->tree.n - 1);
  }
  LabelColumns(page, layout, mat, plotted, order, grid, labels_from);
  DrawBands(page, layout, bands, plotted, leaves, order, grid, params.zeroblack);
  page.Close();
}

}  // namespace mardle
