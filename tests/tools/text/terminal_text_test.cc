// SPDX-License-Identifier: MIT
#include "tools/text/terminal_text.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using mardle::tools::ShownOn;
using mardle::tools::WithoutControls;

TEST(WithoutControls, ShowsControlCharactersByTheirBytes) {
  EXPECT_EQ(WithoutControls("a\x1b[31mb\x07\r\x7f"), "a\\x1b[31mb\\x07\\x0d\\x7f");
  EXPECT_EQ(WithoutControls(std::string_view("\0", 1)), "\\x00");
  // U+009B begins an escape sequence by itself; so does its byte on terminals of one byte.
  EXPECT_EQ(WithoutControls("\xc2\x9b"
                            "1m \x9b"),
            "\\xc2\\x9b1m \\x9b");
}

TEST(WithoutControls, LeavesTextsOfAnyLanguageTheirLinesAndTabs) {
  const std::string text = "na\u00efve\t\u00a0\u6587\u5b57 \U0001f600\n";
  EXPECT_EQ(WithoutControls(text), text);
  EXPECT_EQ(WithoutControls("\xe6\x96"), "\\xe6\\x96");
}

TEST(ShownOn, LeavesFilesAndPipesEveryByte) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  EXPECT_EQ(ShownOn(ends[1], "\x1b\xff"), "\x1b\xff");
  close(ends[0]);
  close(ends[1]);
}

}  // namespace
