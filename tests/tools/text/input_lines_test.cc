// SPDX-License-Identifier: MIT
#include "tools/text/input_lines.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/testing/files.h"

namespace {

using mardle::tools::FileError;
using mardle::tools::InputLines;
using testing_support::TempFolder;

std::vector<std::string> LinesOf(const std::string& text) {
  const TempFolder folder;
  InputLines input(folder.Write("file", text));
  std::vector<std::string> lines;
  std::string_view line;
  while (input.Next(line)) lines.emplace_back(line);
  return lines;
}

using Texts = std::vector<std::string>;

TEST(InputLines, EndWithOrWithoutCarriageReturnAndNewline) {
  EXPECT_EQ(LinesOf("a\r\n\nb\nc"), (Texts{"a", "", "b", "c"}));
  EXPECT_EQ(LinesOf("a\n"), Texts{"a"});
  EXPECT_EQ(LinesOf(""), Texts{});
}

TEST(InputLines, AByteOrderMarkIsNoText) { EXPECT_EQ(LinesOf("\xef\xbb\xbfx\n"), Texts{"x"}); }

TEST(InputLines, LinesAreAsLongAsTheyLike) {
  const std::string line(1 << 18, 'x');
  EXPECT_EQ(LinesOf("a\n" + line + "\nb\n"), (Texts{"a", line, "b"}));
}

TEST(InputLines, TheBeginningIsReadAgainAsLines) {
  const TempFolder folder;
  InputLines input(folder.Write("file", "one\ntwo\n"));
  EXPECT_EQ(input.Beginning(), "one\ntwo\n");
  std::string_view line;
  ASSERT_TRUE(input.Next(line));
  EXPECT_EQ(line, "one");
}

TEST(InputLines, AFailureNamesFileAndLine) {
  const TempFolder folder;
  const std::string path = folder.Write("file", "one\ntwo\n");
  InputLines input(path);
  std::string_view line;
  input.Next(line);
  input.Next(line);
  try {
    input.Fail("bad");
  } catch (const FileError& error) {
    EXPECT_EQ(error.what(), path + ":2: bad");
  }
}

TEST(InputLines, AMissingFileAndAFolderAreRefused) {
  EXPECT_THROW(InputLines("/nosuch/file"), FileError);
  const TempFolder folder;
  InputLines input(folder.Path(""));
  EXPECT_THROW(input.Beginning(), FileError);
}

}  // namespace
