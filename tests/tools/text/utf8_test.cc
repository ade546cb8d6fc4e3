// SPDX-License-Identifier: MIT
#include "tools/text/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace mardle::tools;

TEST(CharacterLength, IsThatOfTheWellFormedCharacterInFront) {
  EXPECT_EQ(CharacterLength("ab"), 1U);
  EXPECT_EQ(CharacterLength(std::string_view("\0", 1)), 1U);
  EXPECT_EQ(CharacterLength("\xc3\xa9x"), 2U);
  EXPECT_EQ(CharacterLength("\xe2\x82\xac"), 3U);
  EXPECT_EQ(CharacterLength("\xf0\x9f\x98\x80"), 4U);
}

TEST(CharacterLength, IsNoneForWhatIsNotWellFormed) {
  for (const char* text : {"\x80", "\xc3", "\xc3x", "\xe2\x82", "\xff", "\xc0\xaf", "\xe0\x80\xaf",
                           "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80"}) {
    EXPECT_EQ(CharacterLength(text), 0U) << testing::PrintToString(text);
  }
}

TEST(CutToBytes, LeavesWhatFits) {
  EXPECT_EQ(CutToBytes("abc", 3), "abc");
  EXPECT_EQ(CutToBytes("abc", 2), "ab");
  EXPECT_EQ(CutToBytes("abc", 0), "");
}

TEST(CutToBytes, CutsNoCharacterInTwo) {
  const std::string text = "x\xf0\x9f\x98\x80y";
  for (std::size_t most = 1; most < 5; ++most) EXPECT_EQ(CutToBytes(text, most), "x") << most;
  EXPECT_EQ(CutToBytes(text, 5), "x\xf0\x9f\x98\x80");
}

TEST(CutToBytes, BytesThatAreNoCharacterAreCutAnywhere) {
  EXPECT_EQ(CutToBytes(std::string(9, '\x80'), 5), std::string(5, '\x80'));
}

}  // namespace
