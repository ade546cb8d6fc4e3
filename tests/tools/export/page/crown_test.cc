// SPDX-License-Identifier: MIT
#include "tools/export/page/crown.h"

#include <gmock/gmock.h>

#include "tests/testing/files.h"

namespace {

using mardle::exporting::Crown;
using mardle::exporting::CrownOf;
using mardle::exporting::LeafCounts;
using mardle::exporting::ReadTree;
using mardle::exporting::Tree;
using testing::ElementsAre;
using testing_support::TempFolder;

// ((0, 1), ((2, 5), (3, 4))) with 6 = (0, 1), 7 = (3, 4), 8 = (2, 5), 9 = (7, 8) and 10.
Tree SixLeaves() {
  const TempFolder folder;
  return ReadTree(folder.Write("t", "6 0\n6 0\n8 0\n7 0\n7 0\n8 0\n10 0\n9 0\n9 0\n10 0\n-1 0\n"));
}

TEST(Crown, HasEndsThatAreRowsAndEndsThatAreBranches) {
  const Tree tree = SixLeaves();
  const Crown crown = CrownOf(tree, LeafCounts(tree), 9, 3);
  // 9 is opened, and of its branches the one with the higher number.
  EXPECT_EQ(crown.ends(), 3);
  EXPECT_THAT(crown.part, ElementsAre(-1, -1, 0, 2, 2, 1));
  EXPECT_THAT(crown.first_rows, ElementsAre(2, 5, 3));
  EXPECT_THAT(std::vector<int>(crown.ptree.begin(), crown.ptree.end()),
              ElementsAre(3, 3, 4, 4, -1, -1));
}

TEST(Crown, IsTheWholeBranchWhereThereIsRoom) {
  const Tree tree = SixLeaves();
  const Crown crown = CrownOf(tree, LeafCounts(tree), 10, 60);
  EXPECT_EQ(crown.ends(), 6);
  for (int x = 0; x < 6; ++x)
    EXPECT_EQ(crown.first_rows[std::size_t(crown.part[std::size_t(x)])], x);
}

TEST(Crown, OfALeafIsThatRow) {
  const Tree tree = SixLeaves();
  const Crown crown = CrownOf(tree, LeafCounts(tree), 4, 60);
  EXPECT_THAT(crown.part, ElementsAre(-1, -1, -1, -1, 0, -1));
  EXPECT_THAT(crown.first_rows, ElementsAre(4));
}

}  // namespace
