// SPDX-License-Identifier: MIT
#include "tools/export/escape.h"

#include <gtest/gtest.h>

namespace {

using namespace mardle::exporting;

const std::string kReplacement = "\xef\xbf\xbd";

TEST(ValidUtf8, KeepsWellFormedCharactersOfEveryLength) {
  const std::string text = "a\tz\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80";
  EXPECT_EQ(ValidUtf8(text), text);
}

TEST(ValidUtf8, ReplacesEveryByteThatBelongsToNone) {
  EXPECT_EQ(ValidUtf8("caf\xe9"), "caf" + kReplacement);          // Latin-1
  EXPECT_EQ(ValidUtf8("\xe2\x82"), kReplacement + kReplacement);  // cut short
  EXPECT_EQ(ValidUtf8("\xc0\xaf"), kReplacement + kReplacement);  // overlong
  EXPECT_EQ(ValidUtf8("\xe0\x80\xaf"), kReplacement + kReplacement + kReplacement);
  EXPECT_EQ(ValidUtf8("\xed\xa0\x80"), kReplacement + kReplacement + kReplacement);  // surrogate
  EXPECT_EQ(ValidUtf8("\xf4\x90\x80\x80"),
            kReplacement + kReplacement + kReplacement + kReplacement);  // above U+10FFFF
  EXPECT_EQ(ValidUtf8("\x80z\xff"), kReplacement + "z" + kReplacement);
}

TEST(ValidUtf8, ReplacesControlCharacters) {
  EXPECT_EQ(ValidUtf8("a\x01\x7f\r"), "a" + kReplacement + kReplacement + kReplacement);
}

TEST(TsvField, KeepsFieldsApart) {
  EXPECT_EQ(TsvField("a\tb\\c\r"), "a\\tb\\\\c\\r");
  EXPECT_EQ(TsvField("No. 1, 'x'"), "No. 1, 'x'");
}

TEST(NewickLabel, StandsBareWhenItIsPlain) { EXPECT_EQ(NewickLabel("row-1.B"), "row-1.B"); }

TEST(NewickLabel, IsQuotedOtherwise) {
  EXPECT_EQ(NewickLabel(""), "''");
  EXPECT_EQ(NewickLabel("No. 1"), "'No. 1'");
  EXPECT_EQ(NewickLabel("a_b"), "'a_b'");
  EXPECT_EQ(NewickLabel("it's (a:b,c);[d]"), "'it''s (a:b,c);[d]'");
  EXPECT_EQ(NewickLabel("a\tb"), "'a b'");
  EXPECT_EQ(NewickLabel("\xc3\xa9"), "'\xc3\xa9'");
}

TEST(DotString, ShowsTheTextAsItStands) {
  EXPECT_EQ(DotString("a \"b\" \\N &amp; <c>"), R"("a \"b\" \\N &amp;amp; <c>")");
  EXPECT_EQ(DotString("\xe9"), "\"" + kReplacement + "\"");
}

TEST(Html, HasNoMarkup) {
  EXPECT_EQ(Html("<b a=\"1\" c='2'>&amp;</b>"),
            "&lt;b a=&quot;1&quot; c=&#39;2&#39;&gt;&amp;amp;&lt;/b&gt;");
}

}  // namespace
