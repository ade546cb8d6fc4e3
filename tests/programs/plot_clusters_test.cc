// SPDX-License-Identifier: MIT
#include "programs/plot_clusters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "tests/testing/fatal.h"
#include "tests/testing/plots.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using testing_support::ColorOf;
using testing_support::DenseInput;
using testing_support::ErrorsOf;
using testing_support::ExpectedPlot;
using testing_support::ExpectInside;
using testing_support::ExpectSamePlot;
using testing_support::FloatRows;
using testing_support::MetaBox;
using testing_support::MetaColor;
using testing_support::Metafile;
using testing_support::MetaLabel;
using testing_support::NestedTree;
using testing_support::Pair;
using testing_support::PlotParams;
using testing_support::RandomRows;
using testing_support::SparseInput;
using testing_support::TempFolder;
using testing_support::Texts;
using testing_support::TextWidth;
using testing_support::UnitRows;
using Ints = std::vector<int>;

RunParams DenseParams(int nclusters) {
  RunParams params = PlotParams(nclusters);
  params.denseinput = 1;
  return params;
}

Metafile Plot(RunParams params, const Matrix& mat, const Ints& part) {
  return testing_support::PlotOf([&](const std::string& path) {
    params.plotclustersfile = molva::mystrdup(path.c_str());
    mardle::PlotTreeClusterMatrix(params, mat, {params.nclusters, part.data()});
  });
}

// What a plot shows.
struct Picture {
  std::vector<std::vector<double>> values;  // prepared rows
  Texts labels;                             // of the columns
  Ints part;
  std::optional<NestedTree> tree;  // over the clusters with rows, numbered 0, 1, ...
  Ints clusters;                   // the cluster at each position, from below
  Ints columns;                    // the column at each position, from the left
  bool zeroblack = false;
  std::optional<NestedTree> column_tree = {};
};

struct Cluster {
  int size = 0;
  double height = 0;
  std::vector<double> center;
};

std::vector<Cluster> ClustersOf(const Picture& picture) {
  std::vector<Cluster> clusters(picture.clusters.size());
  const std::size_t columns = picture.values[0].size();
  for (std::size_t k = 0; k < clusters.size(); ++k) {
    Cluster& cluster = clusters[k];
    cluster.center.resize(columns);
    for (std::size_t i = 0; i < picture.part.size(); ++i) {
      if (picture.part[i] != static_cast<int>(k)) continue;
      ++cluster.size;
      for (std::size_t j = 0; j < columns; ++j) cluster.center[j] += picture.values[i][j];
    }
    cluster.height = std::sqrt(cluster.size + 2.0);
    for (double& v : cluster.center) v /= std::max(cluster.size, 1);
  }
  return clusters;
}

// Gives the leaves the heights of their clusters; the second half of a pair is above the first.
void SetHeights(NestedTree& tree, const std::vector<double>& heights) {
  if (tree.children.empty()) tree.leaf_size = heights[static_cast<std::size_t>(tree.node)];
  for (NestedTree& child : tree.children) SetHeights(child, heights);
}

// The plot put together from its formulas. Where the labels of the columns end and where the tree
// over the columns stands are choices: half a label above what is below; a quarter of the room
// above the bands.
Metafile Described(const Picture& picture) {
  const std::vector<Cluster> clusters = ClustersOf(picture);
  const auto k = static_cast<double>(clusters.size());
  const auto c = static_cast<double>(picture.values[0].size());
  double heights = 0;
  std::vector<double> present;
  for (const Cluster& cluster : clusters) {
    heights += cluster.height;
    if (cluster.size > 0) present.push_back(cluster.height);
  }
  const double fs = std::min(300.0, 5000 / k);
  const double cw = std::min(13330 / c, 399.9);
  const double w = 13330 / c;
  const double u = 10000 / heights;
  ExpectedPlot plot(5 * fs + 15329.5, 15 * cw + 11500);

  const double step = 1999.5 / k;
  const auto n = static_cast<int>(present.size());
  if (picture.tree) {
    NestedTree tree = *picture.tree;
    SetHeights(tree, present);
    DrawHorizontally(plot, tree, n, {1999.5 - (n - 1) * step, 1500 / c}, step, u);
  }
  std::vector<double> middles(clusters.size());
  double y = 1500 / c;
  for (const int position : picture.clusters) {
    const auto cluster = static_cast<std::size_t>(position);
    middles[cluster] = y + 0.5 * (clusters[cluster].height - 1) * u;
    y += clusters[cluster].height * u;
  }
  const double top = 1500 / c - 0.5 * u + 10000;

  for (std::size_t i = 0; i < clusters.size(); ++i) {
    plot.Label({1999.5 + 0.5 * fs, middles[i]}, 90, "ct", std::to_string(i), fs);
    plot.Label({1999.5 + 1.75 * fs, middles[i]}, 90, "ct",
               std::to_string(clusters[i].size).insert(0, 1, '(').append(1, ')'), 0.5 * fs);
  }
  // Four letters of 20 in 33 of their size.
  const double left = 4 * fs * 20 / 33 + 1999.5 + 0.5 * w;
  double labels_end = top + 0.5 * cw;
  if (picture.column_tree) {
    const double room = 0.25 * (15 * cw + 11500 - top);
    const double ystep = room / (c - 1);
    DrawVertically(plot, *picture.column_tree, static_cast<int>(c), {left + 0.5 * w, top + room}, w,
                   ystep);
    labels_end += room + 0.5 * ystep;
  }
  for (std::size_t p = 0; p < picture.columns.size(); ++p) {
    const std::string& text = picture.labels[static_cast<std::size_t>(picture.columns[p])];
    plot.Label({left + (static_cast<double>(p) + 0.5) * w, labels_end + TextWidth(text, 0.8 * cw)},
               -90, "lc", text, 0.8 * cw);
  }

  double maxpos = 0;
  double minneg = 0;
  for (const Cluster& cluster : clusters) {
    for (const double v : cluster.center) {
      maxpos = std::max(maxpos, v);
      minneg = std::min(minneg, v);
    }
  }
  for (std::size_t i = 0; i < clusters.size(); ++i) {
    if (clusters[i].size == 0) continue;
    const double half = 0.5 * clusters[i].height * u;
    for (std::size_t p = 0; p < picture.columns.size(); ++p) {
      const double v = clusters[i].center[static_cast<std::size_t>(picture.columns[p])];
      if (std::fabs(v) <= 0.00001 && !picture.zeroblack) continue;
      const double x = left + static_cast<double>(p) * w;
      plot.Cell({x, middles[i] - half}, {x + w, middles[i] + half},
                ColorOf(v, v < 0 ? minneg : maxpos, picture.zeroblack));
    }
  }
  for (std::size_t i = 0; i < clusters.size(); ++i) {
    const double half = 0.5 * clusters[i].height * u;
    plot.Frame({left, middles[i] - half}, {left + c * w, middles[i] + half});
  }
  return plot.plot();
}

const Texts kLabels = {"first", "second", "third"};

// One band, 10000 units high: the root of 2 + 2 rows is 2, so a unit is 5000, the lowest half of
// which lies below 1500 / 2. The average of the two rows is (0.7, 0.1).
TEST(ClusterPlot, OfOneCluster) {
  const Metafile plot = Plot(DenseParams(1), DenseInput({{3, 4}, {4, -3}}, {"X", "XX"}), {0, 0});
  ExpectedPlot expected(16829.5, 17498.5);
  const double left = 8000 / 11.0 + 1999.5 + 3332.5;
  expected.Label({2149.5, 3250}, 90, "ct", "0", 300);
  expected.Label({2524.5, 3250}, 90, "ct", "(2)", 150);
  expected.Label({left + 3332.5, 8449.95 + 319.92 * 20 / 33}, -90, "lc", "X", 319.92);
  expected.Label({left + 9997.5, 8449.95 + 319.92 * 40 / 33}, -90, "lc", "XX", 319.92);
  expected.Cell({left, -1750}, {left + 6665, 8250}, {65535, 0, 0});
  expected.Cell({left + 6665, -1750}, {left + 13330, 8250}, {65535, 56172, 56172});
  expected.Frame({left, -1750}, {left + 13330, 8250});
  ExpectSamePlot(plot, expected.plot());
}

// Two bands of roots 2 and 3: a unit is 2000, the tree begins at 999.75, and its leaves stand at
// 750 + 0.5 * 1 * 2000 and at 750 + 2 * 2000 + 0.5 * 2 * 2000.
TEST(ClusterPlot, OfTwoClusters) {
  FloatRows rows(9, {3, 4});
  rows[0] = rows[1] = {4, 3};
  const Metafile plot = Plot(DenseParams(2), DenseInput(rows), {0, 0, 1, 1, 1, 1, 1, 1, 1});
  ASSERT_EQ(plot.order, "LLLLTTTTTTBBBBBB");
  EXPECT_FLOAT_EQ(static_cast<float>(plot.lines[0].from.x), 999.75F);
  EXPECT_FLOAT_EQ(static_cast<float>(plot.lines[0].from.y), 1750);
  EXPECT_FLOAT_EQ(static_cast<float>(plot.lines[0].to.y), 6750);
  EXPECT_FLOAT_EQ(static_cast<float>(plot.lines[2].to.x), 1999.5F);
  EXPECT_EQ(plot.labels[0].text, "0");
  EXPECT_EQ(plot.labels[1].text, "(2)");
  EXPECT_EQ(plot.labels[2].text, "1");
  EXPECT_EQ(plot.labels[3].text, "(7)");
  EXPECT_FLOAT_EQ(static_cast<float>(plot.boxes[4].corner.y), -250);
  EXPECT_FLOAT_EQ(static_cast<float>(plot.boxes[4].opposite.y), 3750);
  EXPECT_FLOAT_EQ(static_cast<float>(plot.boxes[5].corner.y), 3750);
  EXPECT_FLOAT_EQ(static_cast<float>(plot.boxes[5].opposite.y), 9750);
}

// The directions (1, 0), (0, 1) and (0.6, 0.8) in clusters of 2, 3 and 1 rows: the last two are the
// closest and are joined first.
const FloatRows kSixRows = {{5, 0}, {5, 0}, {0, 5}, {0, 5}, {0, 5}, {3, 4}};
const Ints kSixParts = {0, 0, 1, 1, 1, 2};
const Texts kTwoLabels = {"first", "second"};

Picture SixRows(const Ints& clusters) {
  Picture picture = {UnitRows(kSixRows), kTwoLabels, kSixParts, {}, clusters, {0, 1}};
  picture.tree = Pair(4, {0}, Pair(3, {clusters[1]}, {clusters[2]}));
  return picture;
}

TEST(ClusterPlot, PutsAlikeClustersNextToEachOther) {
  ExpectSamePlot(Plot(PlotParams(3), SparseInput(kSixRows, kTwoLabels), kSixParts),
                 Described(SixRows({0, 2, 1})));
}

TEST(ClusterPlot, KeepsTheOrderOfTheTreeWhenToldSo) {
  RunParams params = PlotParams(3);
  params.noreorder = 1;
  ExpectSamePlot(Plot(std::move(params), SparseInput(kSixRows, kTwoLabels), kSixParts),
                 Described(SixRows({0, 1, 2})));
}

TEST(ClusterPlot, OfDenseInput) {
  ExpectSamePlot(Plot(DenseParams(3), DenseInput(kSixRows, kTwoLabels), kSixParts),
                 Described(SixRows({0, 2, 1})));
}

// All entries of centroids are drawn, and nothing under them.
TEST(ClusterPlot, PaintsZerosBlack) {
  for (const bool dense : {false, true}) {
    RunParams params = dense ? DenseParams(3) : PlotParams(3);
    params.zeroblack = 1;
    Picture picture = SixRows({0, 2, 1});
    picture.zeroblack = true;
    const Metafile plot = Plot(
        std::move(params),
        dense ? DenseInput(kSixRows, kTwoLabels) : SparseInput(kSixRows, kTwoLabels), kSixParts);
    ExpectSamePlot(plot, Described(picture));
    EXPECT_EQ(plot.boxes.size(), 6U + 3U);
  }
}

// 0.8 and -0.8 cancel out; the average of 0.6 and 0 is 0.3.
TEST(ClusterPlot, AveragesTheRowsOfACluster) {
  const FloatRows rows = {{3, 4, 0}, {0, -4, 3}, {3, 0, 4}, {-4, 0, -3}};
  const Metafile plot = Plot(DenseParams(2), DenseInput(rows, kLabels), {0, 0, 1, 1});
  const Picture picture = {UnitRows(rows),    kLabels, {0, 0, 1, 1},
                           Pair(2, {0}, {1}), {0, 1},  {0, 1, 2}};
  ExpectSamePlot(plot, Described(picture));
  // Cluster 0 has cells at the first and the third column, cluster 1 a green and a red one.
  ASSERT_EQ(plot.boxes.size(), 6U);
  EXPECT_EQ(plot.boxes[0].fill, (MetaColor{65535, 0, 0}));
  EXPECT_EQ(plot.boxes[1].fill, (MetaColor{65535, 0, 0}));
  EXPECT_EQ(plot.boxes[2].fill, (MetaColor{0, 65535, 0}));
}

// Its band is the root of 2 high and lies above those of the others, which the tree joins.
TEST(ClusterPlot, FramesAnEmptyClusterAboveTheOthers) {
  const FloatRows rows = {{4, 3}, {4, 3}, {3, 4}};
  const Metafile plot = Plot(DenseParams(3), DenseInput(rows, kTwoLabels), {0, 0, 2});
  const Picture picture = {UnitRows(rows),    kTwoLabels, {0, 0, 2},
                           Pair(2, {0}, {1}), {0, 2, 1},  {0, 1}};
  ExpectSamePlot(plot, Described(picture));
  EXPECT_EQ(plot.boxes.size(), 4U + 3U);
  EXPECT_EQ(plot.labels[3].text, "(0)");
  const double unit = 10000 / (2 + std::sqrt(2.0) + std::sqrt(3.0));
  EXPECT_NEAR(plot.boxes[5].opposite.y - plot.boxes[5].corner.y, std::sqrt(2.0) * unit, 0.01);
}

TEST(ClusterPlot, OfASingleClusterWithRowsStacksAllByNumber) {
  const FloatRows rows = {{4, 3}, {3, 4}};
  const Picture picture = {UnitRows(rows), kTwoLabels, {1, 1}, {}, {0, 1, 2}, {0, 1}};
  ExpectSamePlot(Plot(DenseParams(3), DenseInput(rows, kTwoLabels), {1, 1}), Described(picture));
}

TEST(ClusterPlot, OfRowsWithoutAnyClusterHasFramesAlone) {
  const FloatRows rows = {{4, 3}, {3, 4}};
  const Picture picture = {UnitRows(rows), kTwoLabels, {-1, -1}, {}, {0, 1}, {0, 1}};
  ExpectSamePlot(Plot(DenseParams(2), DenseInput(rows, kTwoLabels), {-1, -1}), Described(picture));
}

TEST(ClusterPlot, CountsRowsOfItsClustersOnly) {
  const FloatRows rows = {{4, 3}, {3, 4}, {4, -3}, {4, 3}};
  const Picture picture = {UnitRows(rows),    kTwoLabels, {0, 1, -1, 7},
                           Pair(2, {0}, {1}), {0, 1},     {0, 1}};
  ExpectSamePlot(Plot(DenseParams(2), DenseInput(rows, kTwoLabels), {0, 1, -1, 7}),
                 Described(picture));
}

// Column 2 occurs once, and row 2 has nothing else.
TEST(ClusterPlot, LeavesOutWhatPreparationDrops) {
  const FloatRows rows = {{3, 4, 0}, {4, 3, 0}, {0, 0, 5}, {5, 0, 0}};
  const Picture picture = {
      UnitRows({{3, 4}, {4, 3}, {5, 0}}), kTwoLabels, {0, 0, 1}, Pair(2, {0}, {1}), {0, 1}, {0, 1}};
  ExpectSamePlot(Plot(PlotParams(2), SparseInput(rows, {"first", "second", "gone"}), {0, 0, -1, 1}),
                 Described(picture));
}

// As unit vectors the columns are (1, 0), (0, 1) and (0.6, 0.8), of which the last two are joined.
TEST(ClusterPlot, ClustersColumns) {
  const FloatRows rows = {{4, 0, 3}, {0, 3, 4}};
  Picture picture = {UnitRows(rows), kLabels, {0, 1}, Pair(2, {0}, {1}), {0, 1}, {0, 2, 1}};
  picture.column_tree = Pair(4, {0}, Pair(3, {2}, {1}));
  RunParams params = DenseParams(2);
  params.clustercolumns = 1;
  ExpectSamePlot(Plot(std::move(params), DenseInput(rows, kLabels), {0, 1}), Described(picture));
}

TEST(ClusterPlot, ClustersColumnsWithoutReordering) {
  const FloatRows rows = {{4, 0, 3}, {0, 3, 4}};
  Picture picture = {UnitRows(rows), kLabels, {0, 1}, Pair(2, {0}, {1}), {0, 1}, {0, 1, 2}};
  picture.column_tree = Pair(4, {0}, Pair(3, {1}, {2}));
  RunParams params = DenseParams(2);
  params.clustercolumns = 1;
  params.noreorder = 1;
  ExpectSamePlot(Plot(std::move(params), DenseInput(rows, kLabels), {0, 1}), Described(picture));
}

// Each cluster is described by its column of 4; columns 0 and 2 are not among the features.
TEST(ClusterPlot, ShowsTheFeaturesOfClusters) {
  RunParams params = PlotParams(2);
  params.nfeatures = 1;
  const FloatRows rows = {{3, 4, 0, 0}, {3, 4, 0, 0}, {0, 0, 3, 4}, {0, 0, 3, 4}};
  const Picture picture = {{{0.8, 0}, {0.8, 0}, {0, 0.8}, {0, 0.8}},
                           {"c1", "c3"},
                           {0, 0, 1, 1},
                           Pair(2, {0}, {1}),
                           {0, 1},
                           {0, 1}};
  ExpectSamePlot(Plot(std::move(params), SparseInput(rows), {0, 0, 1, 1}), Described(picture));
}

TEST(ClusterPlot, ShowsAllColumnsOfDenseInput) {
  RunParams params = DenseParams(3);
  params.nfeatures = 0;
  ExpectSamePlot(Plot(std::move(params), DenseInput(kSixRows, kTwoLabels), kSixParts),
                 Described(SixRows({0, 2, 1})));
}

// The size of the labels of clusters and of columns, and the width of a cell.
struct Sizes {
  double font, small_font, column_font, cell_width;
};

Sizes SizesOf(int nclusters, std::size_t ncols) {
  const auto nrows = static_cast<std::size_t>(nclusters);
  Ints part(nrows);
  for (std::size_t i = 0; i < nrows; ++i) part[i] = static_cast<int>(i);
  const Metafile plot = Plot(DenseParams(nclusters), DenseInput(RandomRows(2, nrows, ncols)), part);
  const MetaBox& cell = plot.boxes[0];
  return {plot.labels[0].font_size, plot.labels[1].font_size, plot.labels.back().font_size,
          cell.opposite.x - cell.corner.x};
}

TEST(ClusterPlot, ShrinksTheNumbersOfMoreThan16Clusters) {
  EXPECT_FLOAT_EQ(static_cast<float>(SizesOf(16, 2).font), 300);
  EXPECT_NEAR(SizesOf(17, 2).font, 5000 / 17.0, 1e-3);
  EXPECT_FLOAT_EQ(static_cast<float>(SizesOf(40, 2).font), 125);
  EXPECT_FLOAT_EQ(static_cast<float>(SizesOf(40, 2).small_font), 62.5);
}

// 13330 / 33 is above 399.9, 13330 / 40 = 333.25 below.
TEST(ClusterPlot, ShrinksTheLabelsOfManyColumns) {
  EXPECT_FLOAT_EQ(static_cast<float>(SizesOf(2, 33).column_font), 319.92F);
  EXPECT_NEAR(SizesOf(2, 33).cell_width, 13330 / 33.0, 2e-3);
  EXPECT_FLOAT_EQ(static_cast<float>(SizesOf(2, 40).column_font), 266.6F);
  EXPECT_NEAR(SizesOf(2, 40).cell_width, 333.25, 2e-3);
}

TEST(ClusterPlot, PrintsColumnLabelsAsTheyAre) {
  const Metafile plot =
      Plot(DenseParams(1), DenseInput({{1, 2, 3}}, {"a\\spb", "caf\xc3\xa9\t", ""}), {0});
  ASSERT_EQ(plot.labels.size(), 4U);
  EXPECT_EQ(plot.labels[2].text, "a\\spb");
  EXPECT_EQ(plot.labels[3].text, "caf\xe9");
}

TEST(ClusterPlot, CutsColumnLabelsThatAreTooLongForThePage) {
  const std::string text(5000, 'X');
  const Metafile plot = Plot(DenseParams(1), DenseInput({{3, 4}, {4, 3}}, {text, "b"}), {0, 0});
  const MetaLabel& label = plot.labels[2];
  const double end = 8250 + 0.5 * 399.9;
  const double longest = 17498.5 - 0.25 * 399.9 - end;
  const double letter = 319.92 * 20 / 33;
  const double letters = std::floor(longest / letter);
  EXPECT_EQ(label.text, text.substr(0, static_cast<std::size_t>(letters)));
  EXPECT_NEAR(label.at.y, end + letters * letter, 0.05);
}

// The other row of its cluster makes no number of a sum with what is not a number.
TEST(ClusterPlot, LeavesWhatIsNotANumberOut) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const int zeroblack : {0, 1}) {
    RunParams params = DenseParams(1);
    params.zeroblack = zeroblack;
    EXPECT_EQ(Plot(std::move(params), DenseInput({{3, 4}, {nan, 3}}), {0, 0}).order, "TTTTBB");
  }
}

// Two places are fixed and lead outside: the lowest band by half a unit less 1500 units by
// the number of columns, the cells to the right by half a cell less what the labels of the clusters
// leave of their room.
TEST(ClusterPlot, LiesInsideItsPageButForItsFixedPlaces) {
  struct Shape {
    std::size_t rows, columns;
    int nclusters;
  };
  for (const Shape& shape : {Shape{1, 1, 1},
                             {1, 7, 1},
                             {7, 1, 2},
                             {300, 3, 40},
                             {3, 300, 2},
                             {40, 40, 40},
                             {12, 9, 1},
                             {50, 30, 2}}) {
    Ints part(shape.rows);
    for (std::size_t i = 0; i < part.size(); ++i) part[i] = static_cast<int>(i) % shape.nclusters;
    Texts labels(shape.columns, std::string(300, 'W'));
    labels[0] = "i";
    const FloatRows rows = RandomRows(8, shape.rows, shape.columns);
    double heights = 0;
    for (int k = 0; k < shape.nclusters; ++k) {
      heights += std::sqrt(static_cast<double>(std::count(part.begin(), part.end(), k)) + 2);
    }
    const auto c = static_cast<double>(shape.columns);
    const double fs = std::min(300.0, 5000.0 / shape.nclusters);
    const double below = std::max(0.0, 0.5 * 10000 / heights - 1500 / c);
    const double right = std::max(0.0, 0.5 * 13330 / c - (5 - 80 / 33.0) * fs);
    for (const int clustercolumns : {0, 1}) {
      SCOPED_TRACE(std::to_string(shape.rows) + "x" + std::to_string(shape.columns));
      RunParams params = DenseParams(shape.nclusters);
      params.clustercolumns = clustercolumns;
      const Metafile plot = Plot(std::move(params), DenseInput(rows, labels), part);
      ExpectInside(plot, {right, below});
      double top = 0;
      for (const MetaBox& box : plot.boxes) top = std::max(top, box.opposite.y);
      for (const auto& line : plot.lines) top = std::max(top, line.from.y);
      for (const MetaLabel& label : plot.labels) {
        if (label.angle > 0) continue;
        EXPECT_GT(label.at.y - TextWidth(label.text, label.font_size), top) << label.text;
      }
    }
  }
}

std::string ErrorsWithoutPlot(RunParams params, const Matrix& mat, const Ints& part) {
  const TempFolder folder;
  const std::string path = folder.Path("plot");
  params.plotclustersfile = molva::mystrdup(path.c_str());
  std::string errors = ErrorsOf([&] {
    mardle::PlotTreeClusterMatrix(params, mat, {params.nclusters, part.data()});
  });
  EXPECT_FALSE(std::filesystem::exists(path));
  return errors.replace(errors.find(path), path.size(), "PATH");
}

TEST(ClusterPlot, IsNotMadeWithoutColumns) {
  RunParams params = PlotParams(3);
  params.nfeatures = 0;
  EXPECT_EQ(ErrorsWithoutPlot(std::move(params), SparseInput(kSixRows), kSixParts),
            "No rows or no columns to plot: PATH is not written\n");
}

TEST(ClusterPlot, IsNotMadeWithoutRows) {
  EXPECT_EQ(ErrorsWithoutPlot(PlotParams(1), SparseInput({{1, 0}, {0, 2}}), {-1, -1}),
            "No rows or no columns to plot: PATH is not written\n");
}

TEST(ClusterPlot, EndsTheRunWhenItsFileCannotBeOpened) {
  EXPECT_FATAL(
      {
        RunParams params = DenseParams(1);
        params.plotclustersfile = molva::mystrdup("/no/such/folder/plot");
        mardle::PlotTreeClusterMatrix(params, DenseInput({{1, 2}}), {1, Ints{0}.data()});
      },
      "PlotTreeClusterMatrix: fpout: " + std::string(std::strerror(ENOENT)) +
          "\nFailed on RVfopen\n");
}

// Codes 8 and 9 have no trees.
TEST(ClusterPlot, JoinsClustersUnderTheCriterionOfTrees) {
  EXPECT_FATAL(
      {
        RunParams params = DenseParams(2);
        params.crfun = 2;
        params.treecrfun = 8;
        params.plotclustersfile = molva::mystrdup("/dev/null");
        mardle::PlotTreeClusterMatrix(params, DenseInput({{1, 2}, {2, 1}}), {2, Ints{0, 1}.data()});
      },
      "Unknown clustering criterion function (CRFun) of 8\n");
}

TEST(ClusterPlot, NamesTheBlocksThatCannotBeHad) {
  const Matrix mat = SparseInput(kSixRows);
  RunParams params = PlotParams(3);
  params.clustercolumns = 1;
  const TempFolder folder;
  params.plotclustersfile = molva::mystrdup(folder.Path("plot").c_str());
  const Texts names = testing_support::NamesOfBlocks([&] {
    mardle::PlotTreeClusterMatrix(params, mat, {3, kSixParts.data()});
  });
  for (const char* name : {"PlotTreeClusterMatrix: pwgts", "PlotTreeClusterMatrix: tpwgts",
                           "PlotTreeClusterMatrix: center", "PlotSparseTreeMatrix: tsize",
                           "PlotSparseTreeMatrix: part", "PlotSparseTreeMatrix: ptree",
                           "PlotSparseTreeMatrix: cmarker", "PlotSparseTreeMatrix: colptr",
                           "PlotSparseTreeMatrix: cptree"}) {
    EXPECT_GT(std::count(names.begin(), names.end(), name), 0) << name;
  }
}

}  // namespace
