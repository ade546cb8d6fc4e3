// SPDX-License-Identifier: MIT
#include "programs/files/own_name.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(FolderOf, IsWhatStandsBeforeTheLastSlash) {
  EXPECT_EQ(mardle::FolderOf("a"), ".");
  EXPECT_EQ(mardle::FolderOf("a/b"), "a");
  EXPECT_EQ(mardle::FolderOf("./b"), ".");
  EXPECT_EQ(mardle::FolderOf("/a/b.c"), "/a");
  EXPECT_EQ(mardle::FolderOf("/a"), "/");
}

TEST(OwnName, LiesInTheFolderAndTellsWhoseItIs) {
  const std::string name = mardle::OwnName("a/b");
  EXPECT_TRUE(name.starts_with("a/b/.mardle-")) << name;
  EXPECT_TRUE(name.ends_with(".partial")) << name;
}

TEST(OwnName, IsAnotherEachTime) {
  std::set<std::string> names;
  for (int i = 0; i < 1000; ++i) names.insert(mardle::OwnName("."));
  EXPECT_EQ(names.size(), 1000U);
}

}  // namespace
