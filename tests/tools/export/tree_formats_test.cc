// SPDX-License-Identifier: MIT
//
// The three forms of a tree, on trees of five leaves worked out by hand.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/testing/files.h"
#include "tests/tools/export/trees.h"
#include "tools/export/dot.h"
#include "tools/export/linkage.h"
#include "tools/export/newick.h"

namespace {

using mardle::exporting::Heights;
using mardle::exporting::HeightsFrom;
using mardle::exporting::Tree;

const std::vector<std::string> kLabels = {"a", "b b", "c", "d'", "e"};

Tree Read(const std::string& text) {
  const testing_support::TempFolder folder;
  return mardle::exporting::ReadTree(folder.Write("t", text));
}

std::string Newick(const std::string& text, HeightsFrom source) {
  const Tree tree = Read(text);
  std::ostringstream out;
  mardle::exporting::WriteNewick(tree, kLabels, Heights(tree, source), out);
  return out.str();
}

std::string Linkage(const std::string& text, HeightsFrom source) {
  const Tree tree = Read(text);
  std::ostringstream out;
  mardle::exporting::WriteLinkage(tree, Heights(tree, source), out);
  return out.str();
}

std::string Dot(const std::string& text) {
  const Tree tree = Read(text);
  std::ostringstream out;
  mardle::exporting::WriteDot(tree, kLabels, Heights(tree, HeightsFrom::kOrder), out);
  return out.str();
}

TEST(WriteNewick, NestsTheBranches) {
  EXPECT_EQ(Newick(kFiveLeaves, HeightsFrom::kOrder),
            "((a:2,e:2):2,(c:3,('b b':1,'d''':1):2):1);\n");
}

TEST(WriteNewick, TakesLengthsFromSimilarities) {
  EXPECT_EQ(Newick(kFiveLeaves, HeightsFrom::kSimilarity),
            "((a:0.2,e:0.2):0.55,(c:0.1,('b b':0.1,'d''':0.1):0):0.65);\n");
}

TEST(WriteNewick, LeavesOutDroppedRows) {
  EXPECT_EQ(Newick(kFiveLeavesOneDropped, HeightsFrom::kOrder),
            "(('b b':1,'d''':1):2,(a:2,e:2):1);\n");
}

TEST(WriteNewick, WritesASingleLeaf) { EXPECT_EQ(Newick("-1 0\n", HeightsFrom::kOrder), "a;\n"); }

// A chain of n leaves: leaf 0 and 1 are joined first, then 2, then 3, ...
TEST(WriteNewick, NeedsNoStackForDeepTrees) {
  constexpr int kLeaves = 60000;
  std::ostringstream text;
  for (int x = 0; x < kLeaves; ++x) text << kLeaves + std::max(x - 1, 0) << " 0\n";
  for (int x = kLeaves; x < 2 * kLeaves - 2; ++x) text << x + 1 << " 0\n";
  text << "-1 0\n";
  const Tree tree = Read(text.str());
  std::ostringstream out;
  mardle::exporting::WriteNewick(tree, std::vector<std::string>(kLeaves, "x"),
                                 Heights(tree, HeightsFrom::kOrder), out);
  // The last merge takes the last leaf, which comes before the node with the larger number.
  EXPECT_EQ(out.str().substr(0, 30), "(x:59999,(x:59998,(x:59997,(x:");
  const std::string shown = out.str();
  EXPECT_EQ(shown.substr(shown.size() - 9), "):1):1);\n");
}

TEST(WriteLinkage, HasALinePerMerge) {
  EXPECT_EQ(Linkage(kFiveLeaves, HeightsFrom::kOrder),
            "1\t3\t1\t2\n"
            "0\t4\t2\t2\n"
            "2\t5\t3\t3\n"
            "6\t7\t4\t5\n");
}

TEST(WriteLinkage, TakesHeightsFromSimilarities) {
  EXPECT_EQ(Linkage(kFiveLeaves, HeightsFrom::kSimilarity),
            "1\t3\t0.1\t2\n"
            "0\t4\t0.2\t2\n"
            "2\t5\t0.1\t3\n"
            "6\t7\t0.75\t5\n");
}

TEST(WriteLinkage, NumbersTheLeavesWithoutGaps) {
  EXPECT_EQ(Linkage(kFiveLeavesOneDropped, HeightsFrom::kOrder),
            "1\t2\t1\t2\n"
            "0\t3\t2\t2\n"
            "4\t5\t3\t4\n");
}

TEST(WriteLinkage, IsEmptyForASingleLeaf) { EXPECT_EQ(Linkage("-1 0\n", HeightsFrom::kOrder), ""); }

TEST(WriteDot, HasTheKeptNodesAndTheirBranches) {
  EXPECT_EQ(Dot(kFiveLeavesOneDropped),
            "digraph tree {\n"
            "  rankdir=LR;\n"
            "  node [shape=box];\n"
            "  edge [arrowhead=none];\n"
            "  n0 [label=\"a\"];\n"
            "  n1 [label=\"b b\"];\n"
            "  n3 [label=\"d'\"];\n"
            "  n4 [label=\"e\"];\n"
            "  n5 [shape=point, tooltip=\"node 5, height 1\"];\n"
            "  n5 -> {n1 n3};\n"
            "  n6 [shape=point, tooltip=\"node 6, height 2\"];\n"
            "  n6 -> {n0 n4};\n"
            "  n7 [shape=point, tooltip=\"node 7, height 3\"];\n"
            "  n7 -> {n5 n6};\n"
            "}\n");
}

}  // namespace
