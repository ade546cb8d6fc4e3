// SPDX-License-Identifier: MIT
#include "programs/plot_matrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
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
using testing_support::MetaPoint;
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

Metafile Plot(RunParams params, const Matrix& mat, const Ints& part, const Ints& ptree = {}) {
  return testing_support::PlotOf([&](const std::string& path) {
    params.plotmatrixfile = molva::mystrdup(path.c_str());
    mardle::PlotMatrix(params, mat, ptree, {params.nclusters, part.data()});
  });
}

// What a plot shows. Rows and columns are prepared ones; 0 stands for no entry in sparse input.
struct Picture {
  std::vector<std::vector<double>> values;
  bool dense = false;
  Texts labels;  // of the columns
  Ints part;
  int nclusters;
  Ints rows;     // the row at each position, from below
  Ints columns;  // the column at each position, from the left
  bool zeroblack = false;
  std::optional<NestedTree> row_tree = {};
  std::optional<NestedTree> column_tree = {};
};

// The plot put together from its formulas. Where the cells lie on the page, where the column labels
// end and where trees begin are choices: three font sizes from below; next to the tree over the
// rows, which begins at 1, or one font size and one cell from the left; half a font size above what
// is below.
Metafile Described(const Picture& picture) {
  const auto r = static_cast<double>(picture.values.size());
  const auto c = static_cast<double>(picture.values[0].size());
  const double s = 5.0 * std::max(r / c, c / r);
  const double f = 0.8 * s;
  ExpectedPlot plot(c * s + r + 20 * f, r * s + c + 20 * f);
  const double bottom = 3 * f;
  const double left = picture.row_tree ? r + s : f + s;
  const auto middle_of = [&](std::size_t position) {
    return bottom + (static_cast<double>(position) + 0.5) * s;
  };

  if (picture.row_tree) {
    DrawHorizontally(plot, *picture.row_tree, static_cast<int>(r), {1, middle_of(0)}, 1, s);
  }
  double labels_end = bottom + r * s + 0.5 * f;
  if (picture.column_tree) {
    DrawVertically(plot, *picture.column_tree, static_cast<int>(c),
                   {left + 0.5 * s, bottom + r * s + c - 1}, s, 1);
    labels_end += c;
  }
  for (std::size_t p = 0; p < picture.columns.size(); ++p) {
    const std::string& text = picture.labels[static_cast<std::size_t>(picture.columns[p])];
    plot.Label({left + (static_cast<double>(p) + 0.5) * s, labels_end + TextWidth(text, f)}, -90,
               "lc", text, f);
  }

  double maxpos = 0;
  double minneg = 0;
  for (const std::vector<double>& row : picture.values) {
    for (const double v : row) {
      maxpos = std::max(maxpos, v);
      minneg = std::min(minneg, v);
    }
  }
  for (std::size_t p = 0; p < picture.rows.size(); ++p) {
    const auto draw = [&](double position, MetaColor color) {
      plot.Cell({left + position * s, middle_of(p) - 0.5 * s},
                {left + (position + 1) * s, middle_of(p) + 0.5 * s}, color);
    };
    if (picture.zeroblack) {
      for (double position = 0; position < c; ++position) draw(position, {0, 0, 0});
    }
    const std::vector<double>& row = picture.values[static_cast<std::size_t>(picture.rows[p])];
    for (std::size_t j = 0; j < row.size(); ++j) {
      if (row[j] == 0 && !(picture.dense && picture.zeroblack)) continue;
      const auto at = std::find(picture.columns.begin(), picture.columns.end(), j);
      draw(static_cast<double>(at - picture.columns.begin()),
           ColorOf(row[j], row[j] < 0 ? minneg : maxpos, picture.zeroblack));
    }
  }

  for (int k = 0; k < picture.nclusters; ++k) {
    std::vector<double> middles;
    for (std::size_t p = 0; p < picture.rows.size(); ++p) {
      if (picture.part[static_cast<std::size_t>(picture.rows[p])] == k) {
        middles.push_back(middle_of(p));
      }
    }
    if (middles.empty()) continue;
    const auto [smallest, largest] = std::minmax_element(middles.begin(), middles.end());
    plot.Frame({left, *smallest - 0.5 * s}, {left + c * s, *largest + 0.5 * s});
    plot.Label({left + c * s + 0.5 * s, 0.5 * (*smallest + *largest)}, 90, "cc",
               "cluster " + std::to_string(k), f);
  }
  return plot.plot();
}

// Two pairs of alike rows: of their three columns all pairs share one.
const FloatRows kFourRows = {{3, 4, 0}, {4, 3, 0}, {0, 3, 4}, {0, -4, 3}};
const Texts kLabels = {"first", "second", "third"};

Picture FourRows(const Ints& part, const Ints& rows) {
  return {UnitRows(kFourRows), false, kLabels, part, 2, rows, {0, 1, 2}};
}

// Square matrices have cells of 5 units and letters of 4; the page is 2 * 5 + 2 + 20 * 4 wide and
// high. The rows (0.6, 0.8) and (0.8, -0.6): 65535 * (1 - 0.6 / 0.8) = 16383.75.
TEST(MatrixPlot, OfTwoRows) {
  const Metafile plot = Plot(DenseParams(2), DenseInput({{3, 4}, {4, -3}}, {"X", "XX"}), {0, 1});
  ExpectedPlot expected(92, 92);
  expected.Label({11.5, 24 + 4 * 20 / 33.0}, -90, "lc", "X", 4);
  expected.Label({16.5, 24 + 4 * 40 / 33.0}, -90, "lc", "XX", 4);
  expected.Cell({9, 12}, {14, 17}, {65535, 16383, 16383});
  expected.Cell({14, 12}, {19, 17}, {65535, 0, 0});
  expected.Cell({9, 17}, {14, 22}, {65535, 0, 0});
  expected.Cell({14, 17}, {19, 22}, {0, 65535, 0});
  expected.Frame({9, 12}, {19, 17});
  expected.Label({21.5, 14.5}, 90, "cc", "cluster 0", 4);
  expected.Frame({9, 17}, {19, 22});
  expected.Label({21.5, 19.5}, 90, "cc", "cluster 1", 4);
  ExpectSamePlot(plot, expected.plot());
}

// The tree over two rows: one connector, one stub, two branches. Its leaves stand at x = 2, the
// cells begin one cell further.
TEST(MatrixPlot, OfTwoRowsUnderATree) {
  const Metafile plot = Plot(DenseParams(1), DenseInput({{3, 4}, {4, -3}}), {0, 0}, {2, 2, -1, -1});
  ASSERT_EQ(plot.order, "LLLLTTBBBBBT");
  ExpectedPlot expected(92, 92);
  expected.Line({1, 14.5}, {1, 19.5});
  expected.Line({0.5, 17}, {1, 17});
  expected.Line({1, 14.5}, {2, 14.5});
  expected.Line({1, 19.5}, {2, 19.5});
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(plot.lines[i].from.x, expected.plot().lines[i].from.x, 1e-5);
    EXPECT_NEAR(plot.lines[i].from.y, expected.plot().lines[i].from.y, 1e-5);
    EXPECT_NEAR(plot.lines[i].to.x, expected.plot().lines[i].to.x, 1e-5);
    EXPECT_NEAR(plot.lines[i].to.y, expected.plot().lines[i].to.y, 1e-5);
  }
  EXPECT_NEAR(plot.boxes[0].corner.x, 7, 1e-5);
}

TEST(MatrixPlot, HasLargerCellsTheLessSquareTheMatrixIs) {
  const auto side_of_first_cell = [](std::size_t rows, std::size_t columns) {
    const FloatRows ones(rows, std::vector<float>(columns, 1));
    const MetaBox cell = Plot(DenseParams(1), DenseInput(ones), Ints(rows, 0)).boxes[0];
    EXPECT_NEAR(cell.opposite.y - cell.corner.y, cell.opposite.x - cell.corner.x, 1e-3);
    return cell.opposite.x - cell.corner.x;
  };
  EXPECT_NEAR(side_of_first_cell(3, 3), 5, 1e-4);
  EXPECT_NEAR(side_of_first_cell(20, 2), 50, 1e-3);
  EXPECT_NEAR(side_of_first_cell(2, 20), 50, 1e-3);
}

// Without a tree the rows stand cluster by cluster, by increasing y.
TEST(MatrixPlot, StacksTheRowsClusterByCluster) {
  ExpectSamePlot(Plot(PlotParams(2), SparseInput(kFourRows, kLabels), {1, 0, 1, 0}),
                 Described(FourRows({1, 0, 1, 0}, {1, 3, 0, 2})));
}

TEST(MatrixPlot, PaintsZerosBlack) {
  RunParams params = PlotParams(2);
  params.zeroblack = 1;
  Picture picture = FourRows({0, 0, 1, 1}, {0, 1, 2, 3});
  picture.zeroblack = true;
  ExpectSamePlot(Plot(std::move(params), SparseInput(kFourRows, kLabels), {0, 0, 1, 1}),
                 Described(picture));
}

TEST(MatrixPlot, OfDenseInput) {
  Picture picture = FourRows({0, 1, 0, 1}, {0, 2, 1, 3});
  picture.dense = true;
  ExpectSamePlot(Plot(DenseParams(2), DenseInput(kFourRows, kLabels), {0, 1, 0, 1}),
                 Described(picture));
}

// The zeros of dense input are entries: black on black.
TEST(MatrixPlot, PaintsZerosOfDenseInputBlack) {
  RunParams params = DenseParams(2);
  params.zeroblack = 1;
  Picture picture = FourRows({0, 1, 0, 1}, {0, 2, 1, 3});
  picture.dense = true;
  picture.zeroblack = true;
  ExpectSamePlot(Plot(std::move(params), DenseInput(kFourRows, kLabels), {0, 1, 0, 1}),
                 Described(picture));
}

TEST(MatrixPlot, OfNegativeValuesAloneIsGreen) {
  const FloatRows rows = {{-3, -4}, {-4, -3}};
  const Metafile plot = Plot(DenseParams(1), DenseInput(rows, {"a", "b"}), {0, 0});
  ExpectSamePlot(plot, Described({UnitRows(rows), true, {"a", "b"}, {0, 0}, 1, {0, 1}, {0, 1}}));
  EXPECT_EQ(plot.boxes[1].fill, (MetaColor{0, 65535, 0}));
}

TEST(MatrixPlot, PutsRowsWithoutAClusterLastAndUnframed) {
  ExpectSamePlot(Plot(PlotParams(2), SparseInput(kFourRows, kLabels), {-1, 1, -1, 0}),
                 Described(FourRows({-1, 1, -1, 0}, {3, 1, 0, 2})));
}

TEST(MatrixPlot, FramesNoEmptyCluster) {
  Picture picture = FourRows({0, 0, 2, 2}, {0, 1, 2, 3});
  picture.nclusters = 3;
  ExpectSamePlot(Plot(PlotParams(3), SparseInput(kFourRows, kLabels), {0, 0, 2, 2}),
                 Described(picture));
}

TEST(MatrixPlot, FramesASingleRowOneCellHigh) {
  const Metafile plot = Plot(PlotParams(2), SparseInput(kFourRows), {0, 1, 0, 0});
  const double s = 20.0 / 3;
  ASSERT_EQ(plot.boxes.size(), 10U);
  EXPECT_NEAR(plot.boxes[9].opposite.y - plot.boxes[9].corner.y, s, 1e-4);
  EXPECT_NEAR(plot.boxes[8].opposite.y - plot.boxes[8].corner.y, 3 * s, 1e-4);
}

// Column 3 occurs once and leaves row 2 without entries.
TEST(MatrixPlot, LeavesOutWhatPreparationDrops) {
  const FloatRows rows = {{3, 4, 0, 0}, {4, 3, 0, 0}, {0, 0, 5, 0}, {0, 3, 0, 4}, {0, -4, 0, 3}};
  ExpectSamePlot(Plot(PlotParams(2), SparseInput(rows, {"first", "second", "gone", "third"}),
                      {0, 0, -1, 1, 1}),
                 Described(FourRows({0, 0, 1, 1}, {0, 1, 2, 3})));
}

// Node 4 joins 1 and 3, 5 joins 0 and 4, 6 joins 2 and 5. The first child is the
// one with the smaller number.
TEST(MatrixPlot, StandsInTheOrderOfItsTree) {
  RunParams params = PlotParams(2);
  params.noreorder = 1;
  Picture picture = FourRows({0, 0, 1, 0}, {2, 0, 1, 3});
  picture.row_tree = Pair(6, {2}, Pair(5, {0}, Pair(4, {1}, {3})));
  ExpectSamePlot(Plot(std::move(params), SparseInput(kFourRows, kLabels), {0, 0, 1, 0},
                      {5, 4, 6, 4, 5, 6, -1, -1}),
                 Described(picture));
}

// Row 2 drops out. Its tree has 9 nodes: leaves 0 to 4, of which 2 has no parent, and 5, 6, 7.
TEST(MatrixPlot, DrawsATreeWithoutTheRowsThatPreparationDrops) {
  const FloatRows rows = {{3, 4, 0, 0}, {4, 3, 0, 0}, {0, 0, 5, 0}, {0, 3, 0, 4}, {0, -4, 0, 3}};
  RunParams params = PlotParams(2);
  params.noreorder = 1;
  Picture picture = FourRows({0, 0, 1, 0}, {2, 0, 1, 3});
  picture.row_tree = Pair(6, {2}, Pair(5, {0}, Pair(4, {1}, {3})));
  ExpectSamePlot(Plot(std::move(params), SparseInput(rows, {"first", "second", "gone", "third"}),
                      {0, 0, -1, 1, 0}, {6, 5, -1, 7, 5, 6, 7, -1, -1, -1}),
                 Described(picture));
}

// Rows 1 and 2 are joined to 0 and 3, which resemble each other.
const FloatRows kCrossed = {{3, 4, 0}, {4, 0, 0}, {0, 0, 4}, {0, 4, 3}};
const Ints kCrossedTree = {4, 4, 5, 5, 6, 6, -1, -1};

TEST(MatrixPlot, PutsAlikeRowsNextToEachOther) {
  Picture picture = {UnitRows(kCrossed), false, kLabels, {0, 0, 1, 1}, 2, {1, 0, 3, 2}, {0, 1, 2}};
  picture.row_tree = Pair(6, Pair(4, {1}, {0}), Pair(5, {3}, {2}));
  ExpectSamePlot(Plot(PlotParams(2), SparseInput(kCrossed, kLabels), {0, 0, 1, 1}, kCrossedTree),
                 Described(picture));
}

TEST(MatrixPlot, KeepsTheOrderOfTheTreeWhenToldSo) {
  RunParams params = PlotParams(2);
  params.noreorder = 1;
  Picture picture = {UnitRows(kCrossed), false, kLabels, {0, 0, 1, 1}, 2, {0, 1, 2, 3}, {0, 1, 2}};
  picture.row_tree = Pair(6, Pair(4, {0}, {1}), Pair(5, {2}, {3}));
  ExpectSamePlot(
      Plot(std::move(params), SparseInput(kCrossed, kLabels), {0, 0, 1, 1}, kCrossedTree),
      Described(picture));
}

// Row 0 with row 1, then each further row with all before it.
Ints ChainTree(int nrows) {
  Ints ptree(2 * static_cast<std::size_t>(nrows), -1);
  for (int i = 0; i < nrows && nrows > 1; ++i) {
    ptree[static_cast<std::size_t>(i)] = std::max(nrows + i - 1, nrows);
  }
  for (int x = nrows; x < 2 * nrows - 2; ++x) ptree[static_cast<std::size_t>(x)] = x + 1;
  return ptree;
}

// Whether reordering changes the order of the rows under a chain.
bool IsReordered(int nrows) {
  const Matrix mat = DenseInput(RandomRows(9, static_cast<std::size_t>(nrows), 2));
  const Ints part(static_cast<std::size_t>(nrows), 0);
  RunParams params = DenseParams(1);
  params.noreorder = 1;
  const Metafile plain = Plot(std::move(params), mat, part, ChainTree(nrows));
  const Metafile plot = Plot(DenseParams(1), mat, part, ChainTree(nrows));
  return !std::equal(
      plot.lines.begin(), plot.lines.end(), plain.lines.begin(),
      [](const auto& a, const auto& b) { return a.from.y == b.from.y && a.to.y == b.to.y; });
}

TEST(MatrixPlot, KeepsTheOrderOfTheTreeOverMoreThan4999Rows) {
  EXPECT_TRUE(IsReordered(50));
  EXPECT_FALSE(IsReordered(5000));
}

// As unit vectors the columns are (1, 0), (0, 1) and (0.6, 0.8), of which the last two are joined.
const FloatRows kThreeColumns = {{4, 0, 3}, {0, 3, 4}};

TEST(MatrixPlot, ClustersColumns) {
  const FloatRows rows = {{4, 0, 3}, {0, 3, 4}, {4, 0, 3}, {0, 3, 4}};
  RunParams params = PlotParams(1);
  params.clustercolumns = 1;
  Picture picture = {UnitRows(rows), false, kLabels, Ints(4, 0), 1, {0, 1, 2, 3}, {0, 2, 1}};
  picture.column_tree = Pair(4, {0}, Pair(3, {2}, {1}));
  ExpectSamePlot(Plot(std::move(params), SparseInput(rows, kLabels), Ints(4, 0)),
                 Described(picture));
}

TEST(MatrixPlot, ClustersColumnsWithoutReordering) {
  RunParams params = DenseParams(1);
  params.clustercolumns = 1;
  params.noreorder = 1;
  Picture picture = {UnitRows(kThreeColumns), true, kLabels, {0, 0}, 1, {0, 1}, {0, 1, 2}};
  picture.column_tree = Pair(4, {0}, Pair(3, {1}, {2}));
  ExpectSamePlot(Plot(std::move(params), DenseInput(kThreeColumns, kLabels), {0, 0}),
                 Described(picture));
}

TEST(MatrixPlot, DrawsBothTreesOnBlack) {
  RunParams params = DenseParams(2);
  params.clustercolumns = 1;
  params.zeroblack = 1;
  Picture picture = {UnitRows(kThreeColumns), true, kLabels, {1, 0}, 2, {0, 1}, {0, 2, 1}, true};
  picture.row_tree = Pair(2, {0}, {1});
  picture.column_tree = Pair(4, {0}, Pair(3, {2}, {1}));
  ExpectSamePlot(
      Plot(std::move(params), DenseInput(kThreeColumns, kLabels), {1, 0}, {2, 2, -1, -1}),
      Described(picture));
}

// No row holds two columns, so no columns go together.
TEST(MatrixPlot, DrawsNoTreeOverColumnsThatGoWithNone) {
  const FloatRows rows = {{5, 0}, {5, 0}, {0, 5}, {0, 5}};
  RunParams params = PlotParams(2);
  params.clustercolumns = 1;
  const Metafile plot = Plot(std::move(params), SparseInput(rows), {0, 0, 1, 1});
  EXPECT_EQ(plot.order, "TTBBBBBTBT");
  ExpectInside(plot);
}

// Each cluster is described by its column of 4; columns 0 and 2 are not among the features.
TEST(MatrixPlot, ShowsTheFeaturesOfClusters) {
  RunParams params = PlotParams(2);
  params.nfeatures = 1;
  const FloatRows rows = {{3, 4, 0, 0}, {3, 4, 0, 0}, {0, 0, 3, 4}, {0, 0, 3, 4}};
  const Picture picture = {{{0.8, 0}, {0.8, 0}, {0, 0.8}, {0, 0.8}},
                           false,
                           {"c1", "c3"},
                           {0, 0, 1, 1},
                           2,
                           {0, 1, 2, 3},
                           {0, 1}};
  ExpectSamePlot(Plot(std::move(params), SparseInput(rows), {0, 0, 1, 1}), Described(picture));
}

TEST(MatrixPlot, ShowsAllColumnsOfDenseInput) {
  RunParams params = DenseParams(2);
  params.nfeatures = 0;
  Picture picture = FourRows({0, 0, 1, 1}, {0, 1, 2, 3});
  picture.dense = true;
  ExpectSamePlot(Plot(std::move(params), DenseInput(kFourRows, kLabels), {0, 0, 1, 1}),
                 Described(picture));
}

// Rows of the correlation coefficient have their mean taken out: (1, 2, 3) becomes (-1, 0, 1).
TEST(MatrixPlot, ShowsTheRowsAsTheyWereCompared) {
  RunParams params = DenseParams(1);
  params.simfun = 2;
  const double half = std::sqrt(0.5);
  const Picture picture = {
      {{-half, 0, half}, {half, 0, -half}}, true, kLabels, {0, 0}, 1, {0, 1}, {0, 1, 2}};
  ExpectSamePlot(Plot(std::move(params), DenseInput({{1, 2, 3}, {9, 7, 5}}, kLabels), {0, 0}),
                 Described(picture));
}

// "caf\u00e9" loses nothing but the form of its last letter; the control character is gone.
TEST(MatrixPlot, PrintsColumnLabelsAsTheyAre) {
  const Metafile plot =
      Plot(DenseParams(1), DenseInput({{1, 2, 3}}, {"a\\spb", "caf\xc3\xa9\t", ""}), {0});
  ASSERT_EQ(plot.labels.size(), 3U);
  EXPECT_EQ(plot.labels[0].text, "a\\spb");
  EXPECT_EQ(plot.labels[1].text, "caf\xe9");
  EXPECT_EQ(plot.labels[2].text, "cluster 0");
}

TEST(MatrixPlot, CutsColumnLabelsThatAreTooLongForThePage) {
  const Metafile plot =
      Plot(DenseParams(1), DenseInput({{3, 4}, {4, 3}}, {std::string(5000, 'X'), "b"}), {0, 0});
  const MetaLabel& label = plot.labels[0];
  const double end = 12 + 10 + 2;
  const double longest = 92 - 2 - end;
  const auto letters = static_cast<std::size_t>(longest / (4 * 20 / 33.0));
  EXPECT_EQ(label.text, std::string(letters, 'X'));
  EXPECT_NEAR(label.at.y, end + static_cast<double>(letters) * 4 * 20 / 33, 1e-4);
}

// The second row keeps its place beside the first, in which one cell is not drawn.
TEST(MatrixPlot, LeavesWhatIsNotANumberOut) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const int zeroblack : {0, 1}) {
    RunParams params = DenseParams(1);
    params.zeroblack = zeroblack;
    const Metafile plot = Plot(std::move(params), DenseInput({{3, 4}, {nan, 3}}), {0, 0});
    EXPECT_EQ(plot.order, zeroblack != 0 ? "TTBBBBBBBBT" : "TTBBBBT");
    for (std::size_t i = 0; i + 1 < plot.boxes.size(); ++i) {
      EXPECT_TRUE(plot.boxes[i].fill.has_value());
    }
  }
}

TEST(MatrixPlot, LiesInsideItsPage) {
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
                             {12, 9, 1}}) {
    const FloatRows rows = RandomRows(4, shape.rows, shape.columns);
    Ints part(shape.rows);
    for (std::size_t i = 0; i < part.size(); ++i) {
      part[i] = static_cast<int>(i) % shape.nclusters;
    }
    Texts labels(shape.columns, std::string(300, 'W'));
    labels[0] = "i";
    for (const int options : {0, 1, 2, 3}) {
      SCOPED_TRACE(std::to_string(shape.rows) + "x" + std::to_string(shape.columns) + " " +
                   std::to_string(options));
      RunParams params = DenseParams(shape.nclusters);
      params.clustercolumns = options & 1;
      const bool tree = (options & 2) != 0;
      const Metafile plot = Plot(std::move(params), DenseInput(rows, labels), part,
                                 tree ? ChainTree(static_cast<int>(shape.rows)) : Ints{});
      ExpectInside(plot);
      // Labels of columns end above all cells and lines.
      double top = 0;
      for (const MetaBox& box : plot.boxes) top = std::max(top, box.opposite.y);
      for (const auto& line : plot.lines) {
        if (line.from.x > plot.boxes[0].corner.x) top = std::max(top, line.from.y);
      }
      for (const MetaLabel& label : plot.labels) {
        if (label.angle > 0) continue;
        EXPECT_GT(label.at.y - TextWidth(label.text, label.font_size), top) << label.text;
      }
    }
  }
}

// What a plot that is not made prints, and whether there is a file.
std::string ErrorsWithoutPlot(RunParams params, const Matrix& mat, const Ints& part) {
  const TempFolder folder;
  const std::string path = folder.Path("plot");
  params.plotmatrixfile = molva::mystrdup(path.c_str());
  std::string errors = ErrorsOf([&] {
    mardle::PlotMatrix(params, mat, {}, {params.nclusters, part.data()});
  });
  EXPECT_FALSE(std::filesystem::exists(path));
  return errors.replace(errors.find(path), path.size(), "PATH");
}

TEST(MatrixPlot, IsNotMadeWithoutColumns) {
  RunParams params = PlotParams(2);
  params.nfeatures = 0;
  EXPECT_EQ(ErrorsWithoutPlot(std::move(params), SparseInput(kFourRows), {0, 0, 1, 1}),
            "No rows or no columns to plot: PATH is not written\n");
}

TEST(MatrixPlot, IsNotMadeWithoutRows) {
  EXPECT_EQ(ErrorsWithoutPlot(PlotParams(1), SparseInput({{1, 0}, {0, 2}}), {-1, -1}),
            "No rows or no columns to plot: PATH is not written\n");
}

TEST(MatrixPlot, LeavesTheCallersMatrixAlone) {
  const Matrix mat = SparseInput(kFourRows);
  RunParams params = PlotParams(2);
  params.nfeatures = 1;
  params.clustercolumns = 1;
  Plot(std::move(params), mat, {0, 0, 1, 1}, kCrossedTree);
  const Matrix fresh = SparseInput(kFourRows);
  EXPECT_TRUE(std::equal(fresh.rowptr.begin(), fresh.rowptr.end(), mat.rowptr.begin()));
  EXPECT_TRUE(std::equal(fresh.rowind.begin(), fresh.rowind.end(), mat.rowind.begin()));
  EXPECT_TRUE(std::equal(fresh.rowval.begin(), fresh.rowval.end(), mat.rowval.begin()));
}

TEST(MatrixPlot, EndsTheRunWhenItsFileCannotBeOpened) {
  EXPECT_FATAL(
      {
        RunParams params = DenseParams(1);
        params.plotmatrixfile = molva::mystrdup("/no/such/folder/plot");
        mardle::PlotMatrix(params, DenseInput({{1, 2}}), {}, {1, Ints{0}.data()});
      },
      "PlotFullTree: fpout: " + std::string(std::strerror(ENOENT)) + "\nFailed on RVfopen\n");
}

Texts NamesOfBlocks(bool dense) {
  const Matrix mat = dense ? DenseInput(kFourRows) : SparseInput(kFourRows);
  RunParams params = dense ? DenseParams(1) : PlotParams(1);
  params.clustercolumns = 1;
  const TempFolder folder;
  params.plotmatrixfile = molva::mystrdup(folder.Path("plot").c_str());
  return testing_support::NamesOfBlocks([&] {
    mardle::PlotMatrix(params, mat, kCrossedTree, {1, Ints(4, 0).data()});
  });
}

TEST(MatrixPlot, NamesTheBlocksThatCannotBeHad) {
  const Texts names = NamesOfBlocks(false);
  for (const char* block : {"tsize", "rxnode", "rynode", "part", "ptree", "cmarker", "colptr",
                            "colind", "colval", "cpart", "cptree", "ctsims"}) {
    const std::string name = "PlotSparseTreeMatrix: " + std::string(block);
    EXPECT_GT(std::count(names.begin(), names.end(), name), 0) << name;
  }
}

TEST(MatrixPlot, NamesTheBlocksOfDenseInput) {
  const Texts names = NamesOfBlocks(true);
  for (const char* block : {"tsize", "rxnode", "rynode", "cxnode", "cynode", "part", "ptree",
                            "colptr", "colind", "colval", "cpart", "cptree", "ctsims"}) {
    const std::string name = "PlotDenseTreeMatrix: " + std::string(block);
    EXPECT_GT(std::count(names.begin(), names.end(), name), 0) << name;
  }
}

}  // namespace
