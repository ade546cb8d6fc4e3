// SPDX-License-Identifier: MIT
#include "lib/support/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using testing_support::ReadText;
using testing_support::TempFolder;

// What the statement prints to standard error.
template <typename Statement>
std::string ErrorOutputOf(Statement statement) {
  testing::internal::CaptureStderr();
  statement();
  return testing::internal::GetCapturedStderr();
}

std::string FullDiskNotice(const std::string& name) {
  return "Writing " + name + " failed: " + std::strerror(ENOSPC) + "\n";
}

TEST(OpenFile, GivesAnEmptyHandleForAMissingFile) {
  const TempFolder folder;
  EXPECT_FALSE(molva::OpenFile(folder.Path("missing").c_str(), "r"));
}

TEST(OpenFile, KeepsTheNameItWasOpenedUnder) {
  const TempFolder folder;
  const std::string path = folder.Write("text", "abc");
  const molva::File file = molva::OpenFile(path.c_str(), "r");
  ASSERT_TRUE(file);
  EXPECT_EQ(file.path, path);
  EXPECT_EQ(std::fgetc(file.get()), 'a');
}

TEST(OpenFile, EmptiesAFileThatIsWritten) {
  const TempFolder folder;
  const std::string path = folder.Write("text", "a longer text of last week");
  {
    const molva::File file = molva::OpenFile(path.c_str(), "w");
    std::fputs("new", file.get());
  }
  EXPECT_EQ(ReadText(path), "new");
}

TEST(OpenFile, WritesThroughALink) {
  const TempFolder folder;
  const std::string target = folder.Write("target", "old");
  std::filesystem::create_symlink(target, folder.Path("link"));
  {
    const molva::File file = molva::OpenFile(folder.Path("link").c_str(), "w");
    std::fputs("new", file.get());
  }
  EXPECT_EQ(ReadText(target), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link")));
}

TEST(OpenFile, LeavesTheRightsToTheMaskOfTheProcess) {
  const TempFolder folder;
  const mode_t mask = umask(0022);
  { const molva::File file = molva::OpenFile(folder.Path("new").c_str(), "w"); }
  umask(mask);
  struct stat status {};
  ASSERT_EQ(stat(folder.Path("new").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0644U);
}

TEST(RVfopen, OpensAFile) {
  const TempFolder folder;
  const molva::File file = molva::RVfopen(folder.Write("text", "xyz").c_str(), "r", "Test: file");
  ASSERT_TRUE(file);
  EXPECT_EQ(std::fgetc(file.get()), 'x');
}

// The path and the mode are not told, only the name and the system's reason.
TEST(RVfopen, TellsTheNameAndTheReasonOfAFailureAndEndsTheRun) {
  const TempFolder folder;
  const std::string path = folder.Path("missing");
  EXPECT_FATAL(
      molva::RVfopen(path.c_str(), "r", "ReadMatrix: Matrix"),
      std::string("ReadMatrix: Matrix: ") + std::strerror(ENOENT) + "\nFailed on RVfopen\n");
}

TEST(CloseFile, IsSilentWhenAllWasWritten) {
  const TempFolder folder;
  molva::File file = molva::OpenFile(folder.Path("text").c_str(), "w");
  std::fputs("all of it", file.get());
  EXPECT_EQ(ErrorOutputOf([&file] { molva::CloseFile(file); }), "");
  EXPECT_FALSE(file);
  EXPECT_EQ(ReadText(folder.Path("text")), "all of it");
}

TEST(CloseFile, IsSilentForAnEmptyHandle) {
  molva::File file;
  EXPECT_EQ(ErrorOutputOf([&file] { molva::CloseFile(file); }), "");
}

TEST(CloseFile, TellsInOneLineThatTheDiskIsFull) {
  molva::File file = molva::OpenFile("/dev/full", "w");
  ASSERT_TRUE(file);
  std::fputs("a few bytes wait in the buffer", file.get());
  EXPECT_EQ(ErrorOutputOf([&file] { molva::CloseFile(file); }), FullDiskNotice("/dev/full"));
  EXPECT_FALSE(file);
}

TEST(CloseFile, TellsOfAWriteThatFailedEarlier) {
  molva::File file = molva::OpenFile("/dev/full", "w");
  ASSERT_TRUE(file);
  std::fputs("text", file.get());
  std::fflush(file.get());
  std::fputs("more text", file.get());
  EXPECT_EQ(ErrorOutputOf([&file] { molva::CloseFile(file); }), FullDiskNotice("/dev/full"));
}

TEST(File, IsClosedSilentlyAtScopeEnd) {
  EXPECT_EQ(ErrorOutputOf([] {
              const molva::File file = molva::OpenFile("/dev/full", "w");
              std::fputs("lost", file.get());
            }),
            "");
}

TEST(FlushStandardOutput, TellsThatTheDiskIsFullAndGoesOn) {
  EXPECT_EXIT(
      {
        std::FILE* out = std::freopen("/dev/full", "w", stdout);
        std::fputs("a report", out);
        molva::FlushStandardOutput();
        _exit(5);
      },
      ::testing::ExitedWithCode(5), ::testing::Eq(FullDiskNotice("standard output")));
}

TEST(FlushStandardOutput, IsSilentWhenAllWasWritten) {
  const TempFolder folder;
  const std::string path = folder.Path("out");
  EXPECT_EXIT(
      {
        std::FILE* out = std::freopen(path.c_str(), "w", stdout);
        std::fputs("a report", out);
        molva::FlushStandardOutput();
        _exit(5);
      },
      ::testing::ExitedWithCode(5), ::testing::Eq(""));
  EXPECT_EQ(ReadText(path), "a report");
}

TEST(FileExists, IsOneForAFileThatOpens) {
  const TempFolder folder;
  EXPECT_EQ(molva::FileExists(folder.Write("empty", "").c_str()), 1);
}

TEST(FileExists, IsZeroForAMissingFile) {
  const TempFolder folder;
  EXPECT_EQ(molva::FileExists(folder.Path("missing").c_str()), 0);
  EXPECT_EQ(molva::FileExists(folder.Path("no/such/folder").c_str()), 0);
  EXPECT_EQ(molva::FileExists(""), 0);
}

// A folder opens for reading, so the readers meet it as a file without lines.
TEST(FileExists, IsOneForAFolder) {
  const TempFolder folder;
  EXPECT_EQ(molva::FileExists(folder.Path("").c_str()), 1);
}

}  // namespace
