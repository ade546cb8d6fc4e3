// SPDX-License-Identifier: MIT
#include "tools/text/fields.h"

#include <gtest/gtest.h>

namespace {

using namespace mardle::tools;
using Texts = std::vector<std::string_view>;

TEST(Fields, FieldsStandBetweenBlanksAndTabs) {
  EXPECT_EQ(FieldsOf(" a\t b  c "), (Texts{"a", "b", "c"}));
  EXPECT_EQ(FieldsOf(" \t"), Texts{});
}

TEST(Fields, TrimsBothEnds) {
  EXPECT_EQ(Trimmed("\t a b "), "a b");
  EXPECT_EQ(Trimmed("  "), "");
}

TEST(Fields, LongTextsAreCutInMessages) {
  EXPECT_EQ(Quoted(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
  EXPECT_EQ(Quoted(std::string(41, 'x')), "'" + std::string(40, 'x') + "...'");
}

TEST(Fields, ACarriageReturnIsABlankOnRequest) {
  EXPECT_EQ(FieldsOf("a b\r"), (Texts{"a", "b\r"}));
  EXPECT_EQ(FieldsOf("a b\r", kBlanksAndReturns), (Texts{"a", "b"}));
}

TEST(Fields, EveryDelimiterEndsAField) {
  EXPECT_EQ(FieldsBetween("a,,b ", ','), (Texts{"a", "", "b "}));
  EXPECT_EQ(FieldsBetween("", ','), Texts{""});
  EXPECT_EQ(FieldsBetween(",", ','), (Texts{"", ""}));
}

}  // namespace
