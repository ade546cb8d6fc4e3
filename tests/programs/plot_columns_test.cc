// SPDX-License-Identifier: MIT
#include "programs/plot_columns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"
#include "tests/testing/plots.h"

namespace {

using mardle::OrderedTree;
using mardle::PlottedMatrix;
using mardle::RunParams;
using testing_support::FloatRows;
using testing_support::PlotParams;
using testing_support::SparseInput;
using Ints = std::vector<int>;
using Floats = std::vector<float>;

// A matrix ready to be plotted that holds exactly these rows.
PlottedMatrix PlottedOf(const FloatRows& rows, const Ints& part) {
  const mardle::Matrix mat = SparseInput(rows);
  const auto copy = [](const auto& array) {
    using T = std::remove_cvref_t<decltype(array[0])>;
    auto* block = static_cast<T*>(molva::RVmalloc(array.size() * sizeof(T), "copy"));
    std::copy(array.begin(), array.end(), block);
    return block;
  };
  PlottedMatrix plotted;
  plotted.nrows = mat.nrows;
  plotted.ncols = mat.ncols;
  plotted.rowptr.reset(copy(mat.rowptr));
  plotted.rowind.reset(copy(mat.rowind));
  plotted.rowval.reset(copy(mat.rowval));
  plotted.rperm = molva::AllocInts(mat.nrows, "rperm");
  plotted.cperm = molva::AllocInts(mat.ncols, "cperm");
  for (int i = 0; i < mat.nrows; ++i) plotted.rperm[i] = i;
  for (int j = 0; j < mat.ncols; ++j) plotted.cperm[j] = j;
  plotted.part = molva::AllocInts(mat.nrows, "part");
  std::copy(part.begin(), part.end(), plotted.part.begin());
  plotted.nclusters = *std::max_element(part.begin(), part.end()) + 1;
  return plotted;
}

// The input columns that are left.
Ints ColumnsOf(const PlottedMatrix& plotted) {
  return {plotted.cperm.begin(), plotted.cperm.begin() + plotted.ncols};
}

template <typename T>
std::vector<T> VectorOf(std::span<const T> values) {
  return {values.begin(), values.end()};
}

struct Compacted {
  Ints rowptr, rowind;
  Floats rowval;
  Ints map;
  int ncols;
};

// Rows 0: (1, 2, 3, 4), 1: none, 2: column 3 before column 1.
Compacted Compact(const Ints& keep) {
  Compacted c{{0, 4, 4, 6}, {0, 1, 2, 3, 3, 1}, {1, 2, 3, 4, 5, 6}, {10, 20, 30, 40}, 0};
  c.ncols =
      mardle::CompactMatrix(3, 4, c.rowptr.data(), c.rowind.data(), c.rowval.data(), c.map, keep);
  return c;
}

constexpr mardle::NodeBlocks kBlocks{"Test", ": xnode", ": ynode"};

TEST(CompactMatrix, RemovesColumnsAndNumbersTheOthers) {
  const Compacted c = Compact({0, 1, 0, 1});
  EXPECT_EQ(c.ncols, 2);
  EXPECT_EQ(c.rowptr, (Ints{0, 2, 2, 4}));
  EXPECT_EQ(Ints(c.rowind.begin(), c.rowind.begin() + 4), (Ints{0, 1, 1, 0}));
  EXPECT_EQ(Floats(c.rowval.begin(), c.rowval.begin() + 4), (Floats{2, 4, 5, 6}));
  EXPECT_EQ(c.map[0], 20);
  EXPECT_EQ(c.map[1], 40);
}

TEST(CompactMatrix, LeavesAMatrixOfKeptColumnsAlone) {
  const Compacted c = Compact({1, 1, 1, 1});
  EXPECT_EQ(c.ncols, 4);
  EXPECT_EQ(c.rowptr, (Ints{0, 4, 4, 6}));
  EXPECT_EQ(c.rowind, (Ints{0, 1, 2, 3, 3, 1}));
  EXPECT_EQ(c.rowval, (Floats{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(c.map, (Ints{10, 20, 30, 40}));
}

TEST(CompactMatrix, MayRemoveEverything) {
  const Compacted c = Compact({0, 0, 0, 0});
  EXPECT_EQ(c.ncols, 0);
  EXPECT_EQ(c.rowptr, (Ints{0, 0, 0, 0}));
}

TEST(CompactMatrix, KeepsWhateverFlagIsNotZero) { EXPECT_EQ(Compact({-1, 0, 2, 0}).ncols, 2); }

TEST(CompactMatrix, EmptiesRowsWithoutDroppingThem) {
  const Compacted c = Compact({1, 0, 0, 0});
  EXPECT_EQ(c.rowptr, (Ints{0, 1, 1, 1}));
  EXPECT_EQ(c.map[0], 10);
}

TEST(CompactMatrix, NamesTheMapThatCannotBeHad) {
  EXPECT_FATAL(
      {
        molva::SetAllocateFunction([](std::size_t) -> void* { return nullptr; });
        Compact({1, 1, 1, 1});
      },
      "***Memory allocation failed for CompactMatrix: cmap. Requested size: 16 bytes");
}

// Column 3 occurs once, and row 2 has nothing else.
TEST(PrepareForPlot, MapsWhatIsLeftBackToTheInput) {
  const mardle::Matrix mat = SparseInput({{0, 3, 4, 0}, {0, 4, 3, 0}, {0, 0, 0, 5}, {0, 0, 2, 0}});
  const Ints part = {1, 0, -1, 1};
  const PlottedMatrix plotted =
      mardle::PrepareForPlot(PlotParams(2), mat, {2, part.data()}, "Test");
  ASSERT_EQ(plotted.nrows, 3);
  ASSERT_EQ(plotted.ncols, 2);
  EXPECT_EQ(Ints(plotted.rperm.begin(), plotted.rperm.begin() + 3), (Ints{0, 1, 3}));
  EXPECT_EQ(ColumnsOf(plotted), (Ints{1, 2}));
  EXPECT_EQ(Ints(plotted.part.begin(), plotted.part.end()), (Ints{1, 0, 1}));
  EXPECT_EQ(VectorOf(plotted.RowColumns(0)), (Ints{0, 1}));
  EXPECT_FLOAT_EQ(plotted.RowValues(0)[0], 0.6F);
  EXPECT_FLOAT_EQ(plotted.RowValues(0)[1], 0.8F);
  EXPECT_EQ(VectorOf(plotted.RowColumns(2)), Ints{1});
  EXPECT_FLOAT_EQ(plotted.RowValues(2)[0], 1);
  EXPECT_EQ(plotted.values().size(), 5U);
}

// Under the run's own settings: MAXTF makes (0, 4) of (-4, 4).
TEST(PrepareForPlot, FollowsTheRun) {
  const mardle::Matrix mat = testing_support::DenseInput({{-4, 4}, {4, -4}});
  RunParams params = PlotParams(1);
  params.denseinput = 1;
  params.rowmodel = 2;
  const PlottedMatrix plotted = mardle::PrepareForPlot(params, mat, {2, Ints{0, 0}.data()}, "Test");
  EXPECT_EQ(VectorOf(plotted.RowValues(0)), (Floats{0, 1}));
  EXPECT_EQ(VectorOf(plotted.RowValues(1)), (Floats{1, 0}));
}

// Of its two columns each cluster is described by the one with 4, and told apart by it.
TEST(ColumnSelection, KeepsTheBestColumnsOfEachCluster) {
  PlottedMatrix plotted =
      PlottedOf({{3, 4, 0, 0}, {3, 4, 0, 0}, {0, 0, 3, 4}, {0, 0, 3, 4}}, {0, 0, 1, 1});
  RunParams params = PlotParams(2);
  params.nfeatures = 1;
  mardle::SelectColumns(params, plotted, "Test");
  EXPECT_EQ(ColumnsOf(plotted), (Ints{1, 3}));
  EXPECT_EQ(VectorOf(plotted.RowColumns(0)), Ints{0});
  EXPECT_EQ(VectorOf(plotted.RowValues(0)), Floats{4});
  EXPECT_EQ(VectorOf(plotted.RowColumns(3)), Ints{1});
}

// Both clusters are described by column 0, which tells them apart by nothing; columns 1 and 2 do.
TEST(ColumnSelection, TakesWhatDescribesAndWhatDiscriminates) {
  PlottedMatrix plotted =
      PlottedOf({{4, 3, 0, 0.1F}, {4, 3, 0, 0.1F}, {4, 0, 3, 0.1F}, {4, 0, 3, 0.1F}}, {0, 0, 1, 1});
  RunParams params = PlotParams(2);
  params.nfeatures = 1;
  mardle::SelectColumns(params, plotted, "Test");
  const Ints columns = ColumnsOf(plotted);
  EXPECT_EQ(columns.front(), 0);
  EXPECT_TRUE(std::count(columns.begin(), columns.end(), 1) == 1 ||
              std::count(columns.begin(), columns.end(), 2) == 1);
  EXPECT_EQ(std::count(columns.begin(), columns.end(), 3), 0);
}

// Under MAXTF -4 would become 0 and weigh less than 3; under IDF columns of all rows would weigh
// nothing; pruned to a tenth only the heaviest column would be left.
TEST(ColumnSelection, HasSettingsOfItsOwn) {
  RunParams params = PlotParams(2);
  params.nfeatures = 1;
  params.rowmodel = 2;
  params.colmodel = 2;
  params.prune = 0.1F;
  PlottedMatrix plotted =
      PlottedOf({{-4, 3, 0, 0}, {-4, 3, 0, 0}, {0, 0, 3, -4}, {0, 0, 3, -4}}, {0, 0, 1, 1});
  mardle::SelectColumns(params, plotted, "Test");
  EXPECT_EQ(ColumnsOf(plotted), (Ints{0, 3}));
}

TEST(ColumnSelection, KeepsAtMostTheListsOfAllClusters) {
  const testing_support::SparseMatrix documents =
      testing_support::RandomDocuments(5, 200, 300, 3, 12);
  mardle::Matrix mat;
  mat.nrows = documents.nrows;
  mat.ncols = documents.ncols;
  mat.rowptr = molva::AllocInts(mat.nrows + 1, "rowptr");
  mat.rowind = molva::AllocInts(static_cast<std::int64_t>(documents.rowind.size()), "rowind");
  mat.rowval = molva::AllocFloats(static_cast<std::int64_t>(documents.rowval.size()), "rowval");
  std::copy(documents.rowptr.begin(), documents.rowptr.end(), mat.rowptr.begin());
  std::copy(documents.rowind.begin(), documents.rowind.end(), mat.rowind.begin());
  std::copy(documents.rowval.begin(), documents.rowval.end(), mat.rowval.begin());
  const Ints part = testing_support::RandomPart(6, 200, 3);
  RunParams params = PlotParams(3);
  for (const int nfeatures : {1, 5}) {
    SCOPED_TRACE(nfeatures);
    params.nfeatures = nfeatures;
    PlottedMatrix plotted = mardle::PrepareForPlot(params, mat, {2, part.data()}, "Test");
    mardle::SelectColumns(params, plotted, "Test");
    EXPECT_GE(plotted.ncols, nfeatures);
    EXPECT_LE(plotted.ncols, 3 * 2 * nfeatures);
    const Ints columns = ColumnsOf(plotted);
    EXPECT_TRUE(std::is_sorted(columns.begin(), columns.end()));
    EXPECT_EQ(std::set<int>(columns.begin(), columns.end()).size(), columns.size());
  }
}

// The centre of a cluster by the definition: the columns with the largest squared sums.
TEST(ColumnSelection, HoldsTheHeaviestColumnsOfEveryCluster) {
  std::mt19937 random(11);
  FloatRows rows(40, Floats(12));
  for (Floats& row : rows) {
    for (float& v : row) v = static_cast<float>(random() % 3);
    row[0] = 1;
  }
  Ints part(40);
  for (int& k : part) k = static_cast<int>(random() % 2);
  PlottedMatrix plotted =
      mardle::PrepareForPlot(PlotParams(2), SparseInput(rows), {2, part.data()}, "Test");
  const auto units = testing_support::UnitRows(rows);
  std::set<int> heaviest;
  for (int k = 0; k < 2; ++k) {
    std::vector<double> sums(12);
    for (std::size_t i = 0; i < 40; ++i) {
      for (std::size_t j = 0; part[i] == k && j < 12; ++j) sums[j] += units[i][j];
    }
    const auto best = std::max_element(sums.begin(), sums.end());
    heaviest.insert(static_cast<int>(best - sums.begin()));
  }
  RunParams params = PlotParams(2);
  params.nfeatures = 1;
  mardle::SelectColumns(params, plotted, "Test");
  const Ints columns = ColumnsOf(plotted);
  for (const int column : heaviest) {
    EXPECT_EQ(std::count(columns.begin(), columns.end(), column), 1) << column;
  }
}

TEST(ColumnSelection, KeepsAllColumnsForLongLists) {
  PlottedMatrix plotted =
      PlottedOf({{3, 4, 0, 0}, {3, 4, 0, 0}, {0, 0, 3, 4}, {0, 0, 3, 4}}, {0, 0, 1, 1});
  mardle::SelectColumns(PlotParams(2), plotted, "Test");
  EXPECT_EQ(ColumnsOf(plotted), (Ints{0, 1, 2, 3}));
}

TEST(ColumnSelection, KeepsNoColumnForEmptyLists) {
  for (const int nfeatures : {0, -1}) {
    PlottedMatrix plotted = PlottedOf({{3, 4, 0}, {3, 0, 4}, {3, 4, 4}}, {0, 0, 1});
    RunParams params = PlotParams(2);
    params.nfeatures = nfeatures;
    mardle::SelectColumns(params, plotted, "Test");
    EXPECT_EQ(plotted.ncols, 0);
    EXPECT_EQ(plotted.values().size(), 0U);
  }
}

TEST(ColumnSelection, LeavesDenseInputAlone) {
  for (const int nfeatures : {1, 0}) {
    PlottedMatrix plotted =
        PlottedOf({{3, 4, 0, 0}, {3, 4, 0, 0}, {0, 0, 3, 4}, {0, 0, 3, 4}}, {0, 0, 1, 1});
    RunParams params = PlotParams(2);
    params.denseinput = 1;
    params.nfeatures = nfeatures;
    mardle::SelectColumns(params, plotted, "Test");
    EXPECT_EQ(ColumnsOf(plotted), (Ints{0, 1, 2, 3}));
  }
}

// The children of all nodes as pairs.
Ints ChildrenOf(const OrderedTree& tree) {
  return {tree.tree.ftree.begin(), tree.tree.ftree.end()};
}
Floats SizesOf(const OrderedTree& tree) {
  const std::size_t nodes = 2 * static_cast<std::size_t>(tree.tree.n);
  return Floats(tree.tree.tsize.begin(), tree.tree.tsize.begin() + (nodes > 0 ? nodes - 1 : 0));
}

// Items 1 and 2 are joined first, then 0.
TEST(PresentLeaves, OfACompleteTreeAreAll) {
  const OrderedTree ordered = mardle::KeepPresentLeaves(
      Ints{4, 3, 3, 4, -1, -1}, Ints{-1, -1, -1, -1, -1, -1, 2, 1, 0, 3, -1, -1}, 3, kBlocks);
  EXPECT_EQ(ordered.tree.n, 3);
  EXPECT_EQ(ordered.leaf_of, (Ints{0, 1, 2}));
  EXPECT_EQ(ordered.order, (Ints{0, 2, 1}));
  EXPECT_EQ(ChildrenOf(ordered), (Ints{-1, -1, -1, -1, -1, -1, 2, 1, 0, 3, -1, -1}));
  EXPECT_EQ(SizesOf(ordered), (Floats{1, 1, 1, 2, 3}));
}

// Of the items 0 to 4, 1 and 3 stand for nothing: 5 joins 2 and 4, 6 joins 5 and 0.
TEST(PresentLeaves, AreNumberedWithoutTheAbsentOnes) {
  const Ints ptree = {6, -1, 5, -1, 5, 6, -1, -1, -1, -1};
  Ints ftree(20, -1);
  ftree[10] = 4;
  ftree[11] = 2;
  ftree[12] = 5;
  ftree[13] = 0;
  const OrderedTree ordered = mardle::KeepPresentLeaves(ptree, ftree, 5, kBlocks);
  EXPECT_EQ(ordered.tree.n, 3);
  EXPECT_EQ(ordered.leaf_of, (Ints{0, 2, 4}));
  EXPECT_EQ(ordered.order, (Ints{4, 2, 0, 1, 3}));
  EXPECT_EQ(ChildrenOf(ordered), (Ints{-1, -1, -1, -1, -1, -1, 2, 1, 3, 0, -1, -1}));
  EXPECT_EQ(SizesOf(ordered), (Floats{1, 1, 1, 2, 3}));
}

TEST(PresentLeaves, OfASingleItemIsThatItem) {
  const OrderedTree ordered = mardle::KeepPresentLeaves(Ints{-1, -1}, Ints(4, -1), 1, kBlocks);
  EXPECT_EQ(ordered.tree.n, 1);
  EXPECT_EQ(ordered.order, Ints{0});
  EXPECT_EQ(SizesOf(ordered), Floats{1});
}

TEST(PresentLeaves, MayBeNone) {
  const OrderedTree ordered = mardle::KeepPresentLeaves(Ints(6, -1), Ints(12, -1), 3, kBlocks);
  EXPECT_EQ(ordered.tree.n, 0);
  EXPECT_EQ(ordered.order, (Ints{0, 1, 2}));
}

// The columns are, made to unit length, (1, 0), (0, 1) and (0.6, 0.8): 1 and 2 are closest and are
// joined first. Next to column 0 the similar column 2 is placed.
const FloatRows kThreeColumns = {{4, 0, 3}, {0, 3, 4}};

TEST(ColumnTree, JoinsTheMostSimilarColumns) {
  RunParams params = PlotParams(1);
  params.noreorder = 1;
  const OrderedTree ordered =
      mardle::ClusterColumns(params, PlottedOf(kThreeColumns, {0, 0}), "Test");
  EXPECT_EQ(ordered.tree.n, 3);
  EXPECT_EQ(ChildrenOf(ordered), (Ints{-1, -1, -1, -1, -1, -1, 1, 2, 0, 3, -1, -1}));
  EXPECT_EQ(ordered.order, (Ints{0, 1, 2}));
}

TEST(ColumnTree, IsReordered) {
  const OrderedTree ordered =
      mardle::ClusterColumns(PlotParams(1), PlottedOf(kThreeColumns, {0, 0}), "Test");
  EXPECT_EQ(ChildrenOf(ordered), (Ints{-1, -1, -1, -1, -1, -1, 2, 1, 0, 3, -1, -1}));
  EXPECT_EQ(ordered.order, (Ints{0, 2, 1}));
}

// The children of the internal nodes when always the two nodes are joined whose sums D lose least
// of their lengths, |D_a + D_b| - |D_a| - |D_b|.
Ints GreedyTree(const FloatRows& rows) {
  const std::size_t n = rows[0].size();
  std::vector<std::vector<double>> sums(n, std::vector<double>(rows.size()));
  const auto length = [](const std::vector<double>& a, const std::vector<double>& b) {
    double squares = 0;
    for (std::size_t i = 0; i < a.size(); ++i) squares += (a[i] + b[i]) * (a[i] + b[i]);
    return std::sqrt(squares);
  };
  const std::vector<double> zero(rows.size());
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < rows.size(); ++i) sums[j][i] = static_cast<double>(rows[i][j]);
    const double scale = 1 / length(sums[j], zero);
    for (double& v : sums[j]) v *= scale;
  }
  Ints open(n);
  std::iota(open.begin(), open.end(), 0);
  Ints children(2 * n, -1);
  for (std::size_t x = n; x < 2 * n - 1; ++x) {
    double best = -1e30;
    std::pair<std::size_t, std::size_t> pair;
    for (std::size_t a = 0; a < open.size(); ++a) {
      for (std::size_t b = a + 1; b < open.size(); ++b) {
        const auto& da = sums[static_cast<std::size_t>(open[a])];
        const auto& db = sums[static_cast<std::size_t>(open[b])];
        const double gain = length(da, db) - length(da, zero) - length(db, zero);
        if (gain <= best) continue;
        best = gain;
        pair = {a, b};
      }
    }
    const int first = open[pair.first];
    const int second = open[pair.second];
    std::vector<double> sum = sums[static_cast<std::size_t>(first)];
    for (std::size_t i = 0; i < sum.size(); ++i) {
      sum[i] += sums[static_cast<std::size_t>(second)][i];
    }
    sums.push_back(sum);
    children.push_back(std::min(first, second));
    children.push_back(std::max(first, second));
    std::erase(open, first);
    std::erase(open, second);
    open.push_back(static_cast<int>(x));
  }
  children.insert(children.end(), {-1, -1});
  return children;
}

TEST(ColumnTree, JoinsColumnsAsGreedyMergingDoes) {
  RunParams params = PlotParams(1);
  params.noreorder = 1;
  std::mt19937 random(17);
  for (std::size_t columns = 2; columns <= 20; ++columns) {
    SCOPED_TRACE(columns);
    FloatRows rows(5, Floats(columns));
    for (Floats& row : rows) {
      for (float& v : row) v = static_cast<float>(static_cast<int>(random() % 2001) - 1000) + 0.5F;
    }
    EXPECT_EQ(ChildrenOf(mardle::ClusterColumns(params, PlottedOf(rows, Ints(5, 0)), "Test")),
              GreedyTree(rows));
  }
}

TEST(ColumnTree, OfOneColumnIsALeaf) {
  const OrderedTree ordered =
      mardle::ClusterColumns(PlotParams(1), PlottedOf({{4}, {3}}, {0, 0}), "Test");
  EXPECT_EQ(ordered.tree.n, 1);
  EXPECT_EQ(ordered.order, Ints{0});
}

// Row 2 has a single entry and says nothing about how columns go together, so column 3, which has
// no other, stands outside the tree.
TEST(ColumnTree, LeavesOutColumnsThatGoWithNone) {
  const OrderedTree ordered = mardle::ClusterColumns(
      PlotParams(1), PlottedOf({{4, 0, 3, 0}, {0, 3, 4, 0}, {0, 0, 0, 5}}, {0, 0, 0}), "Test");
  EXPECT_EQ(ordered.tree.n, 3);
  EXPECT_EQ(ordered.leaf_of, (Ints{0, 1, 2}));
  ASSERT_EQ(ordered.order.size(), 4U);
  EXPECT_EQ(ordered.order.back(), 3);
}

// Every row has one entry, so no two columns go together.
TEST(ColumnTree, MayLeaveOutAllColumns) {
  const OrderedTree ordered = mardle::ClusterColumns(
      PlotParams(1), PlottedOf({{4, 0}, {4, 0}, {0, 3}, {0, 3}}, {0, 0, 1, 1}), "Test");
  EXPECT_EQ(ordered.tree.n, 0);
  EXPECT_EQ(ordered.order, (Ints{0, 1}));
}

}  // namespace
