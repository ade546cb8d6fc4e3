// SPDX-License-Identifier: MIT
#include "programs/tree_canvas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/testing/allocation.h"

namespace {

using molva::ChildTable;
using Texts = std::vector<std::string>;

// The lines of the drawing of a tree, each up to its NUL.
Texts Drawn(const std::vector<int>& ptree, bool fill_lines = false) {
  molva::Array<int> ftree = molva::MakeChildTable(ptree, "ftree");
  const mardle::TreeDrawing drawing =
      mardle::DrawTree(static_cast<int>(ptree.size() / 2), ChildTable(ftree), fill_lines);
  Texts lines;
  for (int y = 0; y < drawing.lines; ++y) lines.emplace_back(drawing.canvas[y].data());
  return lines;
}

// The parents of a chain: leaves 0 and 1 are joined, then leaf 2, and so on.
std::vector<int> Chain(int n) {
  std::vector<int> ptree(2 * static_cast<std::size_t>(n), -1);
  for (int x = 0; x < n; ++x) ptree[static_cast<std::size_t>(x)] = n + (x > 0 ? x - 1 : 0);
  for (int x = n; x < 2 * n - 2; ++x) ptree[static_cast<std::size_t>(x)] = x + 1;
  return ptree;
}

TEST(TreeCanvas, DrawsTwoLeavesUnderTheirRoot) {
  EXPECT_EQ(Drawn({2, 2, -1, -1}), (Texts{"       ", "2  ", "|---0  ", "|---1  "}));
}

TEST(TreeCanvas, DrawsALoneLeafAtTheEdge) { EXPECT_EQ(Drawn({-1, -1}), (Texts{"   ", "0  "})); }

// Leaves 0 and 2 are joined first. Their node hangs below leaf 1, at the second free slot.
TEST(TreeCanvas, DrawsTheFirstChildAboveTheSecond) {
  EXPECT_EQ(Drawn({3, 4, 3, 4, -1, -1}), (Texts{"         ",  //
                                                "4  ",        //
                                                "|-----1  ",  //
                                                "|-3  ",      //
                                                "  |---0  ",  //
                                                "  |---2  "}));
}

TEST(TreeCanvas, DrawsTheSecondChildBelowTheSubtreeOfTheFirst) {
  // Node 4 joins 0 and 1, node 5 joins 2 and 3, node 6 both.
  EXPECT_EQ(Drawn({4, 4, 5, 5, 6, 6, -1, -1}), (Texts{"           ",  //
                                                      "6  ",          //
                                                      "|---4  ",      //
                                                      "|   |---0  ",  //
                                                      "|   |---1  ",  //
                                                      "|-5  ",        //
                                                      "  |-----2  ",  //
                                                      "  |-----3  "}));
}

TEST(TreeCanvas, FillsEveryLineOnRequest) {
  EXPECT_EQ(Drawn({3, 4, 3, 4, -1, -1}, true), (Texts{"         ",  //
                                                      "4        ",  //
                                                      "|-----1  ",  //
                                                      "|-3      ",  //
                                                      "  |---0  ",  //
                                                      "  |---2  "}));
}

TEST(TreeCanvas, TellsThePlaceOfEachNode) {
  molva::Array<int> ftree = molva::MakeChildTable(std::vector<int>{3, 4, 3, 4, -1, -1}, "ftree");
  const mardle::TreeDrawing drawing = mardle::DrawTree(3, ChildTable(ftree), false);
  EXPECT_EQ(drawing.lines, 6);
  EXPECT_EQ(drawing.width, 9);
  EXPECT_EQ(std::vector<int>(drawing.ynode.begin(), drawing.ynode.begin() + 5),
            (std::vector<int>{4, 2, 5, 3, 1}));
  EXPECT_EQ(std::vector<int>(drawing.xnode.begin(), drawing.xnode.begin() + 5),
            (std::vector<int>{9, 9, 9, 5, 3}));
}

// Cluster 1 of three is empty: node 3 is the root, and there is no node 4.
TEST(TreeCanvas, LeavesOutLeavesThatStandForNothing) {
  EXPECT_EQ(Drawn({3, -1, 3, -1, -1, -1}), (Texts{"         ", "3  ", "|-----0  ", "|-----2  "}));
}

TEST(TreeCanvas, DrawsTheChildrenInTheOrderGiven) {
  std::vector<int> slots = {-1, -1, -1, -1, 1, 0, -1, -1};
  const mardle::TreeDrawing drawing = mardle::DrawTree(2, ChildTable(slots), false);
  EXPECT_STREQ(drawing.canvas[2].data(), "|---1  ");
  EXPECT_STREQ(drawing.canvas[3].data(), "|---0  ");
}

// In a chain of 501 leaves the root is node 1000, and node 999 its second child, on the line behind
// the last leaf.
TEST(TreeCanvas, GivesNumbersOfFourDigitsTheirWidth) {
  const Texts lines = Drawn(Chain(501));
  EXPECT_EQ(lines[1], "1000");
  EXPECT_EQ(lines[2], "|" + std::string(1001, '-') + "500");
  EXPECT_EQ(lines[3], "|-999");
}

// Leaf 1000 of 1001 is one character wider than its neighbours, and with it the canvas.
TEST(TreeCanvas, IsAsWideAsItsWidestLine) {
  const Texts lines = Drawn(Chain(1001), true);
  EXPECT_EQ(lines[0], std::string(2002 + 4, ' '));
  EXPECT_EQ(lines[2], "|" + std::string(2001, '-') + "1000");
  EXPECT_TRUE(lines.back().ends_with("1   ")) << lines.back();
}

TEST(TreeCanvas, DrawsADeepTree) {
  const Texts lines = Drawn(Chain(3000));
  EXPECT_EQ(lines.size(), 6000U);
}

TEST(TreeCanvas, NamesItsBlocks) {
  std::vector<int> slots = {-1, -1, -1, -1};
  const std::string canvas = "ShowHACTree: canvas";
  EXPECT_EQ(testing_support::BlockNames([&] { mardle::DrawTree(1, ChildTable(slots), false); }),
            (Texts{"ShowHACTree: xnode", "ShowHACTree: ynode", "ShowHACTree: tsize", canvas, canvas,
                   canvas}));
}

}  // namespace
