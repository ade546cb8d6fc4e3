// SPDX-License-Identifier: MIT
#include "tools/export/tree.h"

#include <gmock/gmock.h>

#include "tests/testing/files.h"
#include "tests/tools/export/failures.h"
#include "tests/tools/export/trees.h"

namespace {

using mardle::exporting::HeightsFrom;
using mardle::exporting::Tree;
using testing::ElementsAre;
using testing_support::FailureMessage;
using testing_support::TempFolder;

Tree Read(const std::string& text) {
  const TempFolder folder;
  return mardle::exporting::ReadTree(folder.Write("t", text));
}

// What the reader says of a text, behind the name of the file.
std::string Complaint(const std::string& text) {
  const TempFolder folder;
  const std::string path = folder.Write("t", text);
  const std::string message = FailureMessage([&] { mardle::exporting::ReadTree(path); });
  EXPECT_EQ(message.substr(0, path.size()), path);
  return message.substr(std::min(path.size(), message.size()));
}

TEST(ReadTree, FindsLeavesChildrenAndRoot) {
  const Tree tree = Read(kFiveLeaves);
  EXPECT_EQ(tree.nleaves, 5);
  EXPECT_EQ(tree.root, 8);
  EXPECT_THAT(tree.ChildrenOf(4), ElementsAre(-1, -1));
  EXPECT_THAT(tree.ChildrenOf(5), ElementsAre(1, 3));
  EXPECT_THAT(tree.ChildrenOf(7), ElementsAre(2, 5));
  EXPECT_THAT(tree.ChildrenOf(8), ElementsAre(6, 7));
  EXPECT_THAT(tree.Leaves(), ElementsAre(0, 1, 2, 3, 4));
}

TEST(ReadTree, LeavesOutWhatPreparationDropped) {
  const Tree tree = Read(kFiveLeavesOneDropped);
  EXPECT_EQ(tree.root, 7);
  EXPECT_THAT(tree.Leaves(), ElementsAre(0, 1, 3, 4));
}

TEST(ReadTree, TakesASingleLeaf) {
  const Tree tree = Read("-1 0.000000\n");
  EXPECT_EQ(tree.root, 0);
  EXPECT_THAT(tree.Leaves(), ElementsAre(0));
}

TEST(ReadTree, WantsAnExistingFile) {
  EXPECT_EQ(FailureMessage([] { mardle::exporting::ReadTree("/no/such/file"); }),
            "/no/such/file: No such file or directory");
}

TEST(ReadTree, NamesTheLineThatIsNoNode) {
  EXPECT_EQ(Complaint("2 0\n2\n-1 0\n"),
            ":2: a parent and a similarity are wanted; fields found: 1");
  EXPECT_EQ(Complaint("2 0\nx 0\n-1 0\n"), ":2: 'x' is not a whole number");
  EXPECT_EQ(Complaint("2 0\n2 y\n-1 0\n"), ":2: 'y' is not a number");
}

TEST(ReadTree, WantsAnOddNumberOfLines) {
  const std::string wanted =
      "the file ends here; a tree of n leaves has 2n - 1 lines, an odd number";
  EXPECT_EQ(Complaint("2 0\n2 0\n"), ":2: " + wanted);
  EXPECT_EQ(Complaint(""), ":1: " + wanted);
}

TEST(ReadTree, WantsParentsAboveTheirChildren) {
  // Three leaves: the internal nodes are 3 and 4.
  const std::string wanted = "; they are 3 to 4";
  EXPECT_EQ(Complaint("3 0\n2 0\n4 0\n4 0\n-1 0\n"),
            ":2: parent 2 is no internal node above node 1" + wanted);
  EXPECT_EQ(Complaint("3 0\n5 0\n4 0\n4 0\n-1 0\n"),
            ":2: parent 5 is no internal node above node 1" + wanted);
  EXPECT_EQ(Complaint("3 0\n3 0\n4 0\n3 0\n-1 0\n"),
            ":4: parent 3 is no internal node above node 3" + wanted);
  EXPECT_EQ(Complaint("3 0\n-2 0\n4 0\n4 0\n-1 0\n"),
            ":2: parent -2 is no internal node above node 1" + wanted);
}

TEST(ReadTree, WantsTwoChildrenPerNode) {
  EXPECT_EQ(Complaint("3 0\n3 0\n3 0\n4 0\n-1 0\n"), ":3: node 3 has a third child");
  EXPECT_EQ(Complaint("3 0\n-1 0\n4 0\n4 0\n-1 0\n"), ":4: node 3 has fewer than two children");
  EXPECT_EQ(Complaint("4 0\n4 0\n-1 0\n-1 0\n-1 0\n"), ":4: node 3 has fewer than two children");
}

TEST(ReadTree, WantsOneRoot) {
  EXPECT_EQ(Complaint("4 0\n4 0\n5 0\n5 0\n-1 0\n-1 0\n-1 0\n"), ":5: node 4 is a second root");
}

TEST(ReadTree, WantsATree) {
  EXPECT_EQ(Complaint("-1 0\n-1 0\n-1 0\n"), ": no node has a parent, so there is no tree");
}

TEST(Heights, CountTheMergesInTheirOrder) {
  EXPECT_THAT(mardle::exporting::Heights(Read(kFiveLeaves), HeightsFrom::kOrder),
              ElementsAre(0, 0, 0, 0, 0, 1, 2, 3, 4));
}

TEST(Heights, AreNoLessThanThoseOfTheChildren) {
  // Node 7 is more similar than node 5 below it.
  EXPECT_THAT(mardle::exporting::Heights(Read(kFiveLeaves), HeightsFrom::kSimilarity),
              ElementsAre(0, 0, 0, 0, 0, testing::DoubleEq(1 - 0.9), testing::DoubleEq(1 - 0.8),
                          testing::DoubleEq(1 - 0.9), testing::DoubleEq(1 - 0.25)));
}

TEST(Heights, StayWithTheChildrenWhereTheSimilarityIsNoNumber) {
  EXPECT_THAT(mardle::exporting::Heights(Read("2 0\n2 0\n-1 nan\n"), HeightsFrom::kSimilarity),
              ElementsAre(0, 0, 0));
}

TEST(LeafCounts, AddUp) {
  EXPECT_THAT(mardle::exporting::LeafCounts(Read(kFiveLeaves)),
              ElementsAre(1, 1, 1, 1, 1, 2, 2, 3, 5));
}

TEST(HeightText, IsShort) {
  EXPECT_EQ(mardle::exporting::HeightText(131070), "131070");
  EXPECT_EQ(mardle::exporting::HeightText(0.3 - 0.1), "0.2");
}

}  // namespace
