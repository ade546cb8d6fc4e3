// SPDX-License-Identifier: MIT
#include "tools/import/label_text.h"

#include <gtest/gtest.h>

namespace {

using mardle::tools::kLongestLine;
using mardle::tools::LabelText;

TEST(LabelText, LineEndsAndNulBytesBecomeBlanks) {
  EXPECT_EQ(LabelText(std::string_view("a\nb\rc\0d", 7)), "a b c d");
}

TEST(LabelText, BlanksAtTheEndGo) {
  EXPECT_EQ(LabelText(" a \t\n"), " a");
  EXPECT_EQ(LabelText(" "), "");
}

TEST(LabelText, TheLongestLineStays) {
  const std::string longest(kLongestLine, 'x');
  EXPECT_EQ(LabelText(longest), longest);
  EXPECT_EQ(LabelText(longest + "y"), longest);
}

TEST(LabelText, NoCharacterIsCutInTwo) {
  const std::string room(kLongestLine - 1, 'x');
  EXPECT_EQ(LabelText(room + "\xc3\xa9"), room);
}

}  // namespace
