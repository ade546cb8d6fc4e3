// SPDX-License-Identifier: MIT
#include "programs/io/line_reader.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "lib/support/files.h"
#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using mardle::LineReader;

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

std::vector<std::string> LinesOfFgets(const std::string& text) {
  const testing_support::TempFolder folder;
  const molva::File file = molva::OpenFile(folder.Write("text", text).c_str(), "r");
  std::vector<char> buffer(kLongest + 1);
  std::vector<std::string> lines;
  while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), file.get()) != nullptr) {
    std::string& line = lines.emplace_back(buffer.data());
    if (line.ends_with('\n')) line.pop_back();
  }
  return lines;
}

using Texts = std::vector<std::string>;

TEST(LineReader, GivesEachLineWithoutItsNewline) {
  EXPECT_EQ(Lines("a b\n\nc \n"), (Texts{"a b", "", "c "}));
}

TEST(LineReader, GivesALastLineThatHasNoNewline) { EXPECT_EQ(Lines("a\nb"), (Texts{"a", "b"})); }

TEST(LineReader, GivesNullForAnEmptyFile) { EXPECT_EQ(Lines(""), Texts{}); }

TEST(LineReader, GivesNullAgainAfterTheEnd) {
  const testing_support::TempFolder folder;
  const molva::File file = molva::OpenFile(folder.Write("text", "a\n").c_str(), "r");
  LineReader reader(file.get());
  EXPECT_STREQ(reader.NextStripped(), "a");
  EXPECT_EQ(reader.NextStripped(), nullptr);
  EXPECT_EQ(reader.Next(), nullptr);
}

TEST(LineReader, StaysAtTheEndOfAFileThatGrows) {
  const testing_support::TempFolder folder;
  const std::string path = folder.Write("text", "a");
  const molva::File file = molva::OpenFile(path.c_str(), "r");
  LineReader reader(file.get());
  EXPECT_STREQ(reader.Next(), "a");
  folder.Write("text", "a\nb\n");
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
  EXPECT_EQ(Lines(line + "\ny\n"), (Texts{line, "y"}));
}

// The newline no longer fits and ends an empty line of its own.
TEST(LineReader, SplitsTheNewlineOffALineThatFillsTheBuffer) {
  const std::string line(kLongest, 'x');
  EXPECT_EQ(Lines(line + "\ny\n"), (Texts{line, "", "y"}));
}

TEST(LineReader, SplitsALongLineAfterItsFirst131071Characters) {
  const std::string line(kLongest, 'x');
  EXPECT_EQ(Lines(line + "z\n"), (Texts{line, "z"}));
  EXPECT_EQ(Lines(line + "zz\ny"), (Texts{line, "zz", "y"}));
  EXPECT_EQ(Lines(line + line + "z\n"), (Texts{line, line, "z"}));
}

TEST(LineReader, EndsTheTextOfALineAtANulByte) {
  const std::string nul(1, '\0');
  EXPECT_EQ(Lines("a" + nul + "b\nc\n"), (Texts{"a", "c"}));
  EXPECT_EQ(StrippedLines(nul + "b\nc \n"), (Texts{"", "c"}));
}

// Texts longer than the buffer, so that lines of all lengths lie across its end.
TEST(LineReader, CutsLinesWhereFgetsCutsThem) {
  std::mt19937 random(1);
  for (const std::size_t longest : {3U, 100U, 5000U, 100000U, 300000U}) {
    for (int round = 0; round < 10; ++round) {
      std::string text;
      while (text.size() < 3 * kLongest) {
        text += std::string(random() % longest, 'x') + "\n";
        text[random() % text.size()] = random() % 2 == 0 ? '\0' : ' ';
      }
      if (round % 2 == 0) text.pop_back();
      ASSERT_EQ(Lines(text), LinesOfFgets(text)) << longest << ", round " << round;
    }
  }
}

// Whoever writes to a pipe may wait for what its first lines bring about.
TEST(LineReader, GivesALineBeforeThePipeHasMore) {
  std::array<int, 2> ends;
  ASSERT_EQ(pipe(ends.data()), 0);
  const auto write_text = [&ends](const std::string& text) {
    ASSERT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  };
  const molva::File file{std::unique_ptr<std::FILE, molva::CloseStream>(fdopen(ends[0], "r")), ""};
  LineReader reader(file.get());
  write_text("a\nb\nc");
  EXPECT_STREQ(reader.Next(), "a");
  EXPECT_STREQ(reader.Next(), "b");
  write_text("d");
  write_text("\n");
  EXPECT_STREQ(reader.Next(), "cd");
  write_text("e");
  close(ends[1]);
  EXPECT_STREQ(reader.Next(), "e");
  EXPECT_EQ(reader.Next(), nullptr);
}

// The memory of this process as a file, read up to a page that is not there.
TEST(LineReader, GivesNoLineThatAFailedReadCutsShort) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const block =
      mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(block, MAP_FAILED);
  char* const gap = static_cast<char*>(block) + page;
  const std::string text = "1 5\n2 7";
  text.copy(gap - text.size(), text.size());
  ASSERT_EQ(munmap(gap, page), 0);
  const molva::File file = molva::OpenFile("/proc/self/mem", "r");
  ASSERT_TRUE(file);
  const auto offset = static_cast<off_t>(reinterpret_cast<std::uintptr_t>(gap) - text.size());
  ASSERT_EQ(lseek(fileno(file.get()), offset, SEEK_SET), offset);
  LineReader reader(file.get());
  EXPECT_STREQ(reader.Next(), "1 5");
  EXPECT_EQ(reader.Next(), nullptr);
  EXPECT_EQ(munmap(block, page), 0);
}

// Every file that is read is opened under this name.
TEST(LineReader, NamesItsBufferAfterTheStream) {
  EXPECT_FATAL(
      {
        const testing_support::FailingAllocations failing(0);
        LineReader reader(stdin);
      },
      "***Memory allocation failed for ReadMatrix: Matrix. Requested size: 131072 bytes");
}

TEST(StrippedLines, LoseTrailingBlanksTabsAndNewlines) {
  EXPECT_EQ(StrippedLines(" a b \t\n\t\n"), (Texts{" a b", ""}));
}

// Files with carriage returns keep them, so labels read from such files end with one.
TEST(StrippedLines, KeepACarriageReturn) {
  EXPECT_EQ(StrippedLines("a\r\n\r\n"), (Texts{"a\r", "\r"}));
}

}  // namespace
