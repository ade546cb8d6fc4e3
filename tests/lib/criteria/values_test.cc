// SPDX-License-Identifier: MIT
#include "lib/criteria/values.h"

#include <gtest/gtest.h>

#include <array>

namespace molva {
namespace {

// Terms of 1 and three times 2^-25, which is a quarter of what the last bit of 1 stands for.
constexpr std::array<int, 4> kSizes = {1, 1, 1, 1};
constexpr std::array<float, 4> kLengths = {1, 0x1p-25F, 0x1p-25F, 0x1p-25F};
constexpr ClusterMeasures Clusters() { return {kSizes, kLengths, kLengths}; }

// Each of the small terms is lost by itself; together they would have been rounded up.
TEST(RoundedSum, IsRoundedAfterEveryTerm) { EXPECT_EQ(RoundedSum<I1Term>::Of(Clusters()), 1.0F); }

TEST(WideSum, IsNotRounded) { EXPECT_EQ(WideSum<I1Term>::Of(Clusters()), 1 + 3 * Wide{0x1p-25}); }

}  // namespace
}  // namespace molva
