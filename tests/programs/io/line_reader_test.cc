// SPDX-License-Identifier: MIT
#include "programs/io/line_reader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "lib/support/files.h"
#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using mardle::LineReader;
using mardle::NextToken;

constexpr std::size_t kLongest = 131071;

std::vector<std::string> LinesOf(const std::string& text, char* (LineReader::*next)()) {
  const testing_support::TempFolder folder;
  const molva::File file = molva::OpenFile(folder.Write("text", text).c_str(), "r");
  LineReader reader(file.get());
  std::vector<std::string> lines;
  while (const char* line = (reader.*next)()) lines.emplace_back(line);
  return lines;
}

std::vector<std::string> Lines(const std::string& text) { return LinesOf(text, &LineReader::Next); }

std::vector<std::string> StrippedLines(const std::string& text) {
  return LinesOf(text, &LineReader::NextStripped);
}

std::vector<std::string> Tokens(std::string text) {
  std::vector<std::string> tokens;
  char* rest = text.data();
  while (const char* token = NextToken(rest)) tokens.emplace_back(token);
  return tokens;
}

using Texts = std::vector<std::string>;

TEST(LineReader, GivesEachLineWithItsNewline) {
  EXPECT_EQ(Lines("a b\n\nc\n"), (Texts{"a b\n", "\n", "c\n"}));
}

TEST(LineReader, GivesALastLineThatHasNoNewline) { EXPECT_EQ(Lines("a\nb"), (Texts{"a\n", "b"})); }

TEST(LineReader, GivesNullForAnEmptyFile) { EXPECT_EQ(Lines(""), Texts{}); }

TEST(LineReader, GivesNullAgainAfterTheEnd) {
  const testing_support::TempFolder folder;
  const molva::File file = molva::OpenFile(folder.Write("text", "a\n").c_str(), "r");
  LineReader reader(file.get());
  EXPECT_STREQ(reader.NextStripped(), "a");
  EXPECT_EQ(reader.NextStripped(), nullptr);
  EXPECT_EQ(reader.Next(), nullptr);
}

TEST(LineReader, GivesNullForAFolder) {
  const testing_support::TempFolder folder;
  const molva::File file = molva::OpenFile(folder.Path("").c_str(), "r");
  ASSERT_TRUE(file);
  LineReader reader(file.get());
  EXPECT_EQ(reader.Next(), nullptr);
}

TEST(LineReader, KeepsALineThatFitsWithItsNewlineWhole) {
  const std::string line(kLongest - 1, 'x');
  EXPECT_EQ(Lines(line + "\ny\n"), (Texts{line + "\n", "y\n"}));
}

// The newline no longer fits and comes as a line of its own.
TEST(LineReader, SplitsTheNewlineOffALineThatFillsTheBuffer) {
  const std::string line(kLongest, 'x');
  EXPECT_EQ(Lines(line + "\ny\n"), (Texts{line, "\n", "y\n"}));
}

TEST(LineReader, SplitsALongLineAfterItsFirst131071Characters) {
  const std::string line(kLongest, 'x');
  EXPECT_EQ(Lines(line + "z\n"), (Texts{line, "z\n"}));
  EXPECT_EQ(Lines(line + "zz\ny"), (Texts{line, "zz\n", "y"}));
  EXPECT_EQ(Lines(line + line + "z\n"), (Texts{line, line, "z\n"}));
}

TEST(LineReader, EndsTheTextOfALineAtANulByte) {
  const std::string nul(1, '\0');
  EXPECT_EQ(Lines("a" + nul + "b\nc\n"), (Texts{"a", "c\n"}));
  EXPECT_EQ(StrippedLines(nul + "b\nc \n"), (Texts{"", "c"}));
}

TEST(LineReader, NamesItsBufferWhenItCannotBeHad) {
  EXPECT_FATAL(
      {
        const testing_support::FailingAllocations failing(0);
        LineReader reader(stdin);
      },
      "***Memory allocation failed for LineReader: buffer. Requested size: 131072 bytes");
}

TEST(StrippedLines, LoseTrailingBlanksTabsAndNewlines) {
  EXPECT_EQ(StrippedLines(" a b \t\n\t\n"), (Texts{" a b", ""}));
}

// Files with carriage returns keep them, so labels read from such files end with one.
TEST(StrippedLines, KeepACarriageReturn) {
  EXPECT_EQ(StrippedLines("a\r\n\r\n"), (Texts{"a\r", "\r"}));
}

TEST(NextToken, SplitsAtBlanksAndTabs) {
  EXPECT_EQ(Tokens("1 2\t3 \t 4"), (Texts{"1", "2", "3", "4"}));
}

TEST(NextToken, SkipsLeadingAndTrailingBlanks) { EXPECT_EQ(Tokens(" \t1  "), Texts{"1"}); }

TEST(NextToken, FindsNoneInATextOfBlanks) {
  EXPECT_EQ(Tokens(""), Texts{});
  EXPECT_EQ(Tokens(" \t "), Texts{});
}

TEST(NextToken, TakesEveryOtherCharacterIntoTheToken) {
  EXPECT_EQ(Tokens("1,5 a\rb\n"), (Texts{"1,5", "a\rb\n"}));
}

}  // namespace
