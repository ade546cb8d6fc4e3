// SPDX-License-Identifier: MIT
#include "tools/export/page/tree_top.h"

#include <gmock/gmock.h>

namespace {

using mardle::exporting::OpenNodes;
using testing::ElementsAre;
using testing::IsEmpty;

// ((0, 1), (2, (3, 4))) with inner nodes 5, 6 = (3, 4), 7 = (2, 6) and 8.
std::array<int, 2> Children(int x) {
  constexpr std::array<int, 2> kChildren[] = {{0, 1}, {3, 4}, {2, 6}, {5, 7}};
  return x < 5 ? std::array{-1, -1} : kChildren[x - 5];
}

int Weight(int x) {
  constexpr int kWeights[] = {10, 10, 1, 1, 1, 20, 2, 3, 23};
  return kWeights[x];
}

TEST(TreeTop, OpensTheHeaviestBranches) {
  EXPECT_THAT(OpenNodes(8, 3, Children, Weight), ElementsAre(5, 8));
  EXPECT_THAT(OpenNodes(8, 4, Children, Weight), ElementsAre(5, 7, 8));
}

TEST(TreeTop, OpensAllWhereThereIsRoom) {
  EXPECT_THAT(OpenNodes(8, 5, Children, Weight), ElementsAre(5, 6, 7, 8));
  EXPECT_THAT(OpenNodes(8, 99, Children, Weight), ElementsAre(5, 6, 7, 8));
}

TEST(TreeTop, OpensNothingWithoutRoomOrBelowALeaf) {
  EXPECT_THAT(OpenNodes(8, 1, Children, Weight), IsEmpty());
  EXPECT_THAT(OpenNodes(2, 9, Children, Weight), IsEmpty());
}

}  // namespace
