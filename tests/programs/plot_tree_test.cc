// SPDX-License-Identifier: MIT
#include "programs/plot_tree.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/testing/plots.h"

namespace {

using mardle::PlotPage;
using mardle::PlotTree;
using mardle::Point;
using testing_support::DrawHorizontally;
using testing_support::DrawVertically;
using testing_support::ExpectedPlot;
using testing_support::ExpectSamePlot;
using testing_support::Metafile;
using testing_support::MetaPoint;
using testing_support::NestedTree;
using Children = std::vector<std::pair<int, int>>;  // of the internal nodes, lowest first
using Draw = void (*)(PlotPage&, PlotTree&, Point, double, double, int);

PlotTree TreeOf(const Children& children, const std::vector<float>& leaf_sizes) {
  PlotTree tree;
  const auto n = static_cast<std::int64_t>(leaf_sizes.size());
  tree.n = static_cast<int>(n);
  tree.ftree = molva::AllocIntsSet(4 * n, -1, "ftree");
  tree.tsize = molva::AllocFloatsSet(2 * n, 0, "tsize");
  tree.xnode = molva::AllocFloatsSet(2 * n, 0, "xnode");
  tree.ynode = molva::AllocFloatsSet(2 * n, 0, "ynode");
  std::vector<int> ptree(2 * leaf_sizes.size(), -1);
  std::copy(leaf_sizes.begin(), leaf_sizes.end(), tree.tsize.begin());
  for (std::size_t i = 0; i < children.size(); ++i) {
    const int x = tree.n + static_cast<int>(i);
    tree.children().first(x) = children[i].first;
    tree.children().second(x) = children[i].second;
    ptree[static_cast<std::size_t>(children[i].first)] = x;
    ptree[static_cast<std::size_t>(children[i].second)] = x;
  }
  mardle::SumSizes(ptree, tree);
  return tree;
}

NestedTree Nested(const PlotTree& tree, int x) {
  NestedTree nested = {x, static_cast<double>(tree.tsize[x]), {}};
  if (x < tree.n) return nested;
  const int first = tree.ftree[2 * x];
  const int second = tree.ftree[2 * x + 1];
  nested.children = {Nested(tree, first), Nested(tree, second)};
  return nested;
}

// The tree drawn on a page of 100 x 100 units in letters of size 3.
Metafile Drawn(Draw draw, PlotTree& tree, Point at, double xstep, double ystep,
               int labels = mardle::kNoLabels) {
  return testing_support::PlotOf([&](const std::string& path) {
    PlotPage page(path.c_str(), "test", "meta", 100, 100);
    page.SetFontSize(3);
    draw(page, tree, at, xstep, ystep, labels);
    page.Close();
  });
}

// "x,y x,y" of every line.
std::string Number(double value) {
  std::string text = std::to_string(value);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}
std::vector<std::string> LinesOf(const Metafile& plot) {
  std::vector<std::string> lines;
  for (const testing_support::MetaLine& line : plot.lines) {
    lines.push_back(Number(line.from.x) + "," + Number(line.from.y) + " " + Number(line.to.x) +
                    "," + Number(line.to.y));
  }
  return lines;
}
// "x,y angle how text" of every label.
std::vector<std::string> LabelsOf(const Metafile& plot) {
  std::vector<std::string> labels;
  for (const testing_support::MetaLabel& label : plot.labels) {
    labels.push_back(Number(label.at.x) + "," + Number(label.at.y) + " " + Number(label.angle) +
                     " " + label.along + label.across + " " + label.text);
  }
  return labels;
}
using Lines = std::vector<std::string>;

// "x,y" of every node.
Lines NodesOf(const PlotTree& tree) {
  Lines nodes;
  for (int x = 0; x < 2 * tree.n - 1; ++x) {
    nodes.push_back(Number(static_cast<double>(tree.xnode[x])) + "," +
                    Number(static_cast<double>(tree.ynode[x])));
  }
  return nodes;
}

TEST(TreeSizes, GrowToThoseOfSubtrees) {
  const PlotTree tree = TreeOf({{0, 2}, {3, 1}}, {1, 2.5, 4});
  EXPECT_EQ(std::vector<float>(tree.tsize.begin(), tree.tsize.begin() + 5),
            (std::vector<float>{1, 2.5, 4, 5, 7.5}));
}

TEST(HorizontalTree, OfTwoLeaves) {
  PlotTree tree = TreeOf({{0, 1}}, {1, 1});
  EXPECT_EQ(LinesOf(Drawn(mardle::DrawTreeHorizontally, tree, {10, 20}, 2, 4)),
            (Lines{"10,20 10,24", "9,22 10,22", "10,20 12,20", "10,24 12,24"}));
  EXPECT_EQ(NodesOf(tree), (Lines{"12,20", "12,24", "10,22"}));
}

TEST(HorizontalTree, StartsWithTheFirstChild) {
  PlotTree tree = TreeOf({{1, 0}}, {1, 1});
  Drawn(mardle::DrawTreeHorizontally, tree, {10, 20}, 2, 4);
  EXPECT_EQ(NodesOf(tree), (Lines{"12,24", "12,20", "10,22"}));
}

// The root 4 stands one step before node 3, and two before every leaf. Node 3 lies between the
// leaves 0 and 1, the root between 1, the last below its first child, and 2.
TEST(HorizontalTree, OfThreeLeavesDrawsSubtreesFirst) {
  PlotTree tree = TreeOf({{0, 1}, {3, 2}}, {1, 1, 1});
  EXPECT_EQ(LinesOf(Drawn(mardle::DrawTreeHorizontally, tree, {10, 20}, 2, 4)),
            (Lines{"12,20 12,24", "11,22 12,22", "12,20 14,20", "12,24 14,24",  //
                   "10,22 10,28", "9,26 10,26", "10,22 12,22", "10,28 14,28"}));
  EXPECT_EQ(NodesOf(tree), (Lines{"14,20", "14,24", "14,28", "12,22", "10,26"}));
}

// Leaves take 3, 1 and 2 steps and stand in the middle of their room; the root stands half a step
// below where its second child begins, whose room is the upper 2 + 1.
TEST(HorizontalTree, GivesLeavesTheRoomTheyTake) {
  PlotTree tree = TreeOf({{2, 1}, {0, 3}}, {3, 1, 2});
  EXPECT_EQ(LinesOf(Drawn(mardle::DrawTreeHorizontally, tree, {10, 20}, 2, 4)),
            (Lines{"12,34 12,40", "11,38 12,38", "12,34 14,34", "12,40 14,40",  //
                   "10,24 10,38", "9,30 10,30", "10,24 14,24", "10,38 12,38"}));
  EXPECT_EQ(NodesOf(tree), (Lines{"14,24", "14,40", "14,34", "12,38", "10,30"}));
}

TEST(HorizontalTree, GrowsDownwardsAndLeftwardsForNegativeSteps) {
  PlotTree tree = TreeOf({{0, 1}}, {1, 1});
  EXPECT_EQ(LinesOf(Drawn(mardle::DrawTreeHorizontally, tree, {10, 20}, -2, -4)),
            (Lines{"10,20 10,16", "11,18 10,18", "10,20 8,20", "10,16 8,16"}));
}

TEST(HorizontalTree, OfOneLeafIsNothing) {
  PlotTree tree = TreeOf({}, {1});
  const Metafile plot = Drawn(mardle::DrawTreeHorizontally, tree, {10, 20}, 2, 4);
  EXPECT_EQ(plot.order, "");
  EXPECT_EQ(NodesOf(tree), Lines{"10,20"});
}

// A node's label comes before those below it, and before its lines.
TEST(HorizontalTree, LabelsNodesAndLeaves) {
  PlotTree tree = TreeOf({{0, 1}, {3, 2}}, {1, 1, 1});
  const Metafile plot = Drawn(mardle::DrawTreeHorizontally, tree, {10, 20}, 2, 4,
                              mardle::kLeafLabels | mardle::kNodeLabels);
  EXPECT_EQ(plot.order, "TTTTLLLLTLLLL");
  EXPECT_EQ(LabelsOf(plot), (Lines{"10,26 90 ct 4  ", "12,22 90 ct 3  ", "15,20 0 lc 0  ",
                                   "15,24 0 lc 1  ", "15,28 0 lc 2  "}));
}

// Labels of leaves stand where the leaf's room begins.
TEST(HorizontalTree, LabelsLeavesAlone) {
  PlotTree tree = TreeOf({{0, 1}}, {3, 1});
  EXPECT_EQ(
      LabelsOf(Drawn(mardle::DrawTreeHorizontally, tree, {10, 20}, 2, 4, mardle::kLeafLabels)),
      (Lines{"13,20 0 lc 0  ", "13,32 0 lc 1  "}));
}

TEST(HorizontalTree, LabelsNodesAlone) {
  PlotTree tree = TreeOf({{0, 1}}, {1, 1});
  EXPECT_EQ(
      LabelsOf(Drawn(mardle::DrawTreeHorizontally, tree, {10, 20}, 2, 4, mardle::kNodeLabels)),
      Lines{"10,22 90 ct 2  "});
}

TEST(VerticalTree, OfTwoLeaves) {
  PlotTree tree = TreeOf({{0, 1}}, {1, 1});
  EXPECT_EQ(LinesOf(Drawn(mardle::DrawTreeVertically, tree, {10, 50}, 2, 4)),
            (Lines{"10,50 12,50", "11,52 11,50", "10,50 10,46", "12,50 12,46"}));
  EXPECT_EQ(NodesOf(tree), (Lines{"10,46", "12,46", "11,50"}));
}

TEST(VerticalTree, StartsWithTheFirstChild) {
  PlotTree tree = TreeOf({{1, 0}}, {1, 1});
  Drawn(mardle::DrawTreeVertically, tree, {10, 50}, 2, 4);
  EXPECT_EQ(NodesOf(tree), (Lines{"12,46", "10,46", "11,50"}));
}

TEST(VerticalTree, OfThreeLeavesDrawsSubtreesFirst) {
  PlotTree tree = TreeOf({{0, 1}, {3, 2}}, {1, 1, 1});
  EXPECT_EQ(LinesOf(Drawn(mardle::DrawTreeVertically, tree, {10, 50}, 2, 4)),
            (Lines{"10,46 12,46", "11,48 11,46", "10,46 10,42", "12,46 12,42",  //
                   "11,50 14,50", "13,52 13,50", "11,50 11,46", "14,50 14,42"}));
  EXPECT_EQ(NodesOf(tree), (Lines{"10,42", "12,42", "14,42", "11,46", "13,50"}));
}

// Leaves stand where their room begins.
TEST(VerticalTree, GivesLeavesTheRoomTheyTake) {
  PlotTree tree = TreeOf({{2, 1}, {0, 3}}, {3, 1, 2});
  EXPECT_EQ(LinesOf(Drawn(mardle::DrawTreeVertically, tree, {10, 50}, 2, 4)),
            (Lines{"16,46 20,46", "19,48 19,46", "16,46 16,42", "20,46 20,42",  //
                   "10,50 19,50", "15,52 15,50", "10,50 10,42", "19,50 19,46"}));
  EXPECT_EQ(NodesOf(tree), (Lines{"10,42", "20,42", "16,42", "19,46", "15,50"}));
}

TEST(VerticalTree, GrowsUpwardsForANegativeStep) {
  PlotTree tree = TreeOf({{0, 1}}, {1, 1});
  EXPECT_EQ(LinesOf(Drawn(mardle::DrawTreeVertically, tree, {10, 50}, 2, -4)),
            (Lines{"10,50 12,50", "11,48 11,50", "10,50 10,54", "12,50 12,54"}));
}

TEST(VerticalTree, OfOneLeafIsNothing) {
  PlotTree tree = TreeOf({}, {1});
  const Metafile plot = Drawn(mardle::DrawTreeVertically, tree, {10, 50}, 2, 4);
  EXPECT_EQ(plot.order, "");
  EXPECT_EQ(NodesOf(tree), Lines{"10,50"});
}

TEST(VerticalTree, LabelsNodesAndLeaves) {
  PlotTree tree = TreeOf({{0, 1}, {3, 2}}, {1, 1, 1});
  const Metafile plot = Drawn(mardle::DrawTreeVertically, tree, {10, 50}, 2, 4,
                              mardle::kLeafLabels | mardle::kNodeLabels);
  EXPECT_EQ(plot.order, "TTTTLLLLTLLLL");
  EXPECT_EQ(LabelsOf(plot), (Lines{"13,50 0 ct 4  ", "11,46 0 ct 3  ", "10,40 90 lc 0  ",
                                   "12,40 90 lc 1  ", "14,40 90 lc 2  "}));
}

TEST(VerticalTree, LabelsLeavesAlone) {
  PlotTree tree = TreeOf({{0, 1}}, {3, 1});
  EXPECT_EQ(LabelsOf(Drawn(mardle::DrawTreeVertically, tree, {10, 50}, 2, 4, mardle::kLeafLabels)),
            (Lines{"10,44 90 lc 0  ", "16,44 90 lc 1  "}));
}

TEST(VerticalTree, LabelsNodesAlone) {
  PlotTree tree = TreeOf({{0, 1}}, {1, 1});
  EXPECT_EQ(LabelsOf(Drawn(mardle::DrawTreeVertically, tree, {10, 50}, 2, 4, mardle::kNodeLabels)),
            Lines{"11,50 0 ct 2  "});
}

// A tree that merges two random nodes at a time, in random order, over leaves of random sizes.
PlotTree RandomTree(std::mt19937& random, int n) {
  std::vector<int> open(static_cast<std::size_t>(n));
  std::iota(open.begin(), open.end(), 0);
  const auto take = [&] {
    const std::size_t at = random() % open.size();
    const int node = open[at];
    open.erase(open.begin() + static_cast<std::ptrdiff_t>(at));
    return node;
  };
  Children children;
  for (int x = n; x < 2 * n - 1; ++x) {
    const int first = take();
    children.emplace_back(first, take());
    open.push_back(x);
  }
  std::vector<float> sizes;
  for (int leaf = 0; leaf < n; ++leaf) sizes.push_back(static_cast<float>(1 + random() % 8) / 2);
  return TreeOf(children, sizes);
}

TEST(Trees, AreDrawnAsTheRecursionDrawsThem) {
  std::mt19937 random(7);
  for (int n = 2; n <= 24; ++n) {
    SCOPED_TRACE(n);
    PlotTree tree = RandomTree(random, n);
    const NestedTree root = Nested(tree, tree.root());
    ExpectedPlot horizontal(100, 100);
    DrawHorizontally(horizontal, root, n, {3, 4}, 2, 0.5);
    ExpectSamePlot(Drawn(mardle::DrawTreeHorizontally, tree, {3, 4}, 2, 0.5), horizontal.plot());
    ExpectedPlot vertical(100, 100);
    DrawVertically(vertical, root, n, {3, 90}, 0.5, 2);
    ExpectSamePlot(Drawn(mardle::DrawTreeVertically, tree, {3, 90}, 0.5, 2), vertical.plot());
  }
}

// Node n joins the leaves 0 and 1, each further node the one before and the next leaf.
PlotTree Chain(int n) {
  Children children = {{0, 1}};
  for (int leaf = 2; leaf < n; ++leaf) children.emplace_back(n + leaf - 2, leaf);
  return TreeOf(children, std::vector<float>(static_cast<std::size_t>(n), 1));
}

constexpr int kLongChain = 60000;

TEST(HorizontalTree, OfAnyDepthNeedsNoStack) {
  PlotTree tree = Chain(kLongChain);
  const Metafile plot = Drawn(mardle::DrawTreeHorizontally, tree, {0, 0}, 1, 1);
  EXPECT_EQ(plot.lines.size(), 4U * (kLongChain - 1));
  EXPECT_EQ(tree.xnode[0], kLongChain - 1);
  EXPECT_EQ(tree.ynode[0], 0);
  EXPECT_EQ(tree.ynode[kLongChain - 1], kLongChain - 1);
  EXPECT_EQ(tree.ynode[tree.root()], kLongChain - 1.5F);
}

TEST(VerticalTree, OfAnyDepthNeedsNoStack) {
  PlotTree tree = Chain(kLongChain);
  const Metafile plot = Drawn(mardle::DrawTreeVertically, tree, {0, 0}, 1, -1);
  EXPECT_EQ(plot.lines.size(), 4U * (kLongChain - 1));
  EXPECT_EQ(tree.ynode[0], kLongChain - 1);
  EXPECT_EQ(tree.xnode[kLongChain - 1], kLongChain - 1);
  EXPECT_EQ(tree.xnode[tree.root()], kLongChain - 1.5F);
}

TEST(Trees, DrawFromAChainThatLeansTheOtherWay) {
  const int n = 1000;
  Children children = {{1, 0}};
  for (int leaf = 2; leaf < n; ++leaf) children.emplace_back(leaf, n + leaf - 2);
  PlotTree tree = TreeOf(children, std::vector<float>(n, 1));
  Drawn(mardle::DrawTreeHorizontally, tree, {0, 0}, 1, 1);
  EXPECT_EQ(tree.ynode[n - 1], 0);
  EXPECT_EQ(tree.ynode[0], n - 1);
  EXPECT_EQ(tree.ynode[tree.root()], 0.5F);
}

}  // namespace
