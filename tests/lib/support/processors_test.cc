// SPDX-License-Identifier: MIT
#include "lib/support/processors.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>

#include "tests/testing/files.h"

namespace molva {
namespace {

using testing_support::TempFolder;

// The groups of a process, and the folders where their quotas stand.
class Quotas : public testing::Test {
 protected:
  int Of(const std::string& groups) {
    return QuotaProcessors(folder_.Write("groups", groups), folder_.Path("root"));
  }
  void Say(const std::string& group, const std::string& file, const std::string& text) {
    std::filesystem::create_directories(folder_.Path("root" + group));
    folder_.Write("root" + group + "/" + file, text);
  }
  TempFolder folder_;
};

TEST_F(Quotas, AreNoneWhereNothingIsSaid) {
  EXPECT_EQ(Of(""), INT_MAX);
  EXPECT_EQ(Of("0::/\n"), INT_MAX);
  EXPECT_EQ(Of("nothing\n1:\n2:cpu\n3:cpu:relative\n"), INT_MAX);
  EXPECT_EQ(QuotaProcessors(folder_.Path("nosuch"), folder_.Path("root")), INT_MAX);
  Say("/a", "cpu.max", "max 100000\n");
  EXPECT_EQ(Of("0::/a\n"), INT_MAX);
}

TEST_F(Quotas, AreRoundedUp) {
  Say("/a", "cpu.max", "150000 100000\n");
  EXPECT_EQ(Of("0::/a\n"), 2);
  Say("/a", "cpu.max", "10000 100000\n");
  EXPECT_EQ(Of("0::/a\n"), 1);
}

TEST_F(Quotas, OfTheGroupsAboveCountAsWell) {
  Say("/a", "cpu.max", "300000 100000\n");
  Say("/a/b/c", "cpu.max", "500000 100000\n");
  EXPECT_EQ(Of("0::/a/b/c\n"), 3);
}

TEST_F(Quotas, OfTheOlderKindCountForProcessorTimeAlone) {
  Say("/cpu/a", "cpu.cfs_quota_us", "400000\n");
  Say("/cpu/a", "cpu.cfs_period_us", "100000\n");
  EXPECT_EQ(Of("3:cpuset:/a\n2:cpuacct:/a\n"), INT_MAX);
  EXPECT_EQ(Of("4:cpuacct,cpu:/a\n"), 4);
  Say("/cpu/a", "cpu.cfs_quota_us", "-1\n");
  EXPECT_EQ(Of("1:cpu:/a\n"), INT_MAX);
}

}  // namespace
}  // namespace molva
