// SPDX-License-Identifier: MIT
#include "lib/support/span.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <vector>

#include "lib/support/alloc.h"

namespace {

using molva::Span;

TEST(Span, IsIndexedByAnyIntegers) {
  std::vector<int> values = {5, 6, 7};
  const Span<int> span(values);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(span[i], 5 + i);
  EXPECT_EQ(span[std::size_t{1}], 6);
  EXPECT_EQ(span[std::int64_t{2}], 7);
  span[0] = 9;
  EXPECT_EQ(values[0], 9);
}

TEST(Span, IsMadeOfAPointerAndAnyCount) {
  const std::vector<float> values = {1, 2, 3};
  const int two = 2;
  const Span<const float> front(values.data(), two);
  EXPECT_EQ(front.size(), 2U);
  EXPECT_EQ(front[1], 2);
  EXPECT_EQ(Span<const float>(values.data(), values.size()).size(), 3U);
  EXPECT_TRUE(Span<int>().empty());
}

TEST(Span, ConvertsFromAndToTheStandardOne) {
  molva::Array<int> array = molva::AllocIntsSet(3, 4, "array");
  const Span<int> span = array;
  const std::span<const int> standard = span;
  const Span<const int> again = standard;
  EXPECT_EQ(again.data(), array.data());
  EXPECT_EQ(again.size(), 3U);
}

TEST(Span, CutsItsFirstElements) {
  std::vector<int> values = {1, 2, 3};
  const Span<int> first = Span<int>(values).first(2);
  EXPECT_EQ(first.size(), 2U);
  EXPECT_EQ(&first[0], values.data());
}

}  // namespace
