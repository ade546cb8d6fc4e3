// SPDX-License-Identifier: MIT
#include "programs/io/result_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

#include "tests/testing/files.h"

namespace {

using mardle::ResultFile;
using testing_support::ReadText;

constexpr uid_t kNobody = 65534;

void Write(const std::string& name, const char* text) {
  ResultFile file(name);
  ASSERT_TRUE(file);
  std::fputs(text, file.get());
  file.Complete();
}

struct stat StatusOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
  return status;
}

class ResultFileTest : public ::testing::Test {
 protected:
  ~ResultFileTest() override {
    if (const std::string folder = folder_.Path(""); access(folder.c_str(), W_OK) != 0) {
      chmod(folder.c_str(), 0700);
    }
  }

  std::size_t Files() const {
    const std::filesystem::directory_iterator files(folder_.Path(""));
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }

  testing_support::TempFolder folder_;
  std::string name_ = folder_.Path("result");
};

TEST_F(ResultFileTest, AppearsWhenItIsComplete) {
  ResultFile file(name_);
  std::fputs("new", file.get());
  EXPECT_FALSE(std::filesystem::exists(name_));
  EXPECT_TRUE(file.Complete());
  EXPECT_EQ(ReadText(name_), "new");
  EXPECT_EQ(Files(), 1U);
}

TEST_F(ResultFileTest, LeavesWhatStoodThereUntilItIsComplete) {
  folder_.Write("result", "old");
  ResultFile file(name_);
  std::fputs("new", file.get());
  std::fflush(file.get());
  EXPECT_EQ(ReadText(name_), "old");
  file.Complete();
  EXPECT_EQ(ReadText(name_), "new");
  EXPECT_EQ(Files(), 1U);
}

TEST_F(ResultFileTest, LeavesNothingWhenItIsNeverComplete) {
  folder_.Write("result", "old");
  std::fputs("new", ResultFile(name_).get());
  EXPECT_EQ(ReadText(name_), "old");
  EXPECT_EQ(Files(), 1U);
}

TEST_F(ResultFileTest, HasThePermissionsThatTheMaskLeavesToANewFile) {
  const mode_t mask = umask(0027);
  Write(name_, "new");
  umask(mask);
  EXPECT_EQ(StatusOf(name_).st_mode & 07777U, 0640U);
}

TEST_F(ResultFileTest, HasTheAccessOfTheFileThatItReplaces) {
  folder_.Write("result", "old");
  ASSERT_EQ(chmod(name_.c_str(), 0606), 0);
  const bool is_superuser = geteuid() == 0;
  ASSERT_EQ(chown(name_.c_str(), is_superuser ? kNobody : geteuid(), getegid()), 0);
  const struct stat before = StatusOf(name_);
  Write(name_, "new");
  const struct stat after = StatusOf(name_);
  EXPECT_NE(after.st_ino, before.st_ino);
  EXPECT_EQ(after.st_mode, before.st_mode);
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(after.st_gid, before.st_gid);
}

TEST_F(ResultFileTest, IsWrittenThroughALink) {
  const std::string target = folder_.Write("target", "old");
  const struct stat before = StatusOf(target);
  std::filesystem::create_symlink("target", name_);
  Write(name_, "new");
  EXPECT_TRUE(std::filesystem::is_symlink(name_));
  EXPECT_EQ(ReadText(target), "new");
  EXPECT_EQ(StatusOf(target).st_ino, before.st_ino);
}

TEST_F(ResultFileTest, IsMadeWhereALinkLeadsToNoFile) {
  std::filesystem::create_symlink("target", name_);
  Write(name_, "new");
  EXPECT_TRUE(std::filesystem::is_symlink(name_));
  EXPECT_EQ(ReadText(folder_.Path("target")), "new");
}

TEST_F(ResultFileTest, IsWrittenIntoAPipe) {
  ASSERT_EQ(mkfifo(name_.c_str(), 0600), 0);
  std::string read;
  std::thread reader([&] { read = ReadText(name_); });
  Write(name_, "new");
  reader.join();
  EXPECT_EQ(read, "new");
  EXPECT_TRUE(S_ISFIFO(StatusOf(name_).st_mode));
}

TEST_F(ResultFileTest, IsWrittenInPlaceWhereStandardOutputGoes) {
  folder_.Write("result", "old");
  const struct stat before = StatusOf(name_);
  const int output = dup(STDOUT_FILENO);
  ASSERT_NE(std::freopen(name_.c_str(), "a", stdout), nullptr);
  Write(name_, "new");
  dup2(output, STDOUT_FILENO);
  close(output);
  EXPECT_EQ(StatusOf(name_).st_ino, before.st_ino);
  EXPECT_EQ(ReadText(name_), "new");
}

// Ends the process, which gives up what a superuser may, with status 0 when the text was written.
[[noreturn]] void WriteAsNobody(const std::string& name) {
  if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) std::exit(1);
  ResultFile file(name);
  if (!file) std::exit(2);
  std::fputs("new", file.get());
  file.Complete();
  std::exit(0);
}

TEST_F(ResultFileTest, IsWrittenInPlaceInAFolderThatTakesNoNewFile) {
  folder_.Write("result", "old");
  ASSERT_EQ(chmod(name_.c_str(), 0666), 0);
  ASSERT_EQ(chmod(folder_.Path("").c_str(), 0555), 0);
  const struct stat before = StatusOf(name_);
  EXPECT_EXIT(WriteAsNobody(name_), ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(ReadText(name_), "new");
  EXPECT_EQ(StatusOf(name_).st_ino, before.st_ino);
}

// Nobody but a superuser can give a file away.
TEST_F(ResultFileTest, LeavesAFileToItsOwner) {
  folder_.Write("result", "old");
  ASSERT_EQ(chmod(name_.c_str(), 0666), 0);
  ASSERT_EQ(chmod(folder_.Path("").c_str(), 0777), 0);
  const struct stat before = StatusOf(name_);
  EXPECT_EXIT(WriteAsNobody(name_), ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(ReadText(name_), "new");
  EXPECT_EQ(StatusOf(name_).st_uid, before.st_uid);
  EXPECT_EQ(StatusOf(name_).st_gid, before.st_gid);
  EXPECT_EQ(Files(), 1U);
}

TEST_F(ResultFileTest, CannotBeOpenedWithoutPermission) {
  folder_.Write("result", "old");
  ASSERT_EQ(chmod(name_.c_str(), 0444), 0);
  ASSERT_EQ(chmod(folder_.Path("").c_str(), 0777), 0);
  EXPECT_EXIT(WriteAsNobody(name_), ::testing::ExitedWithCode(2), "");
  EXPECT_EQ(ReadText(name_), "old");
  EXPECT_EQ(Files(), 1U);
}

TEST_F(ResultFileTest, CannotBeOpenedWhereNoFileCanBe) {
  std::filesystem::create_directory(name_);
  for (const std::string& name :
       {name_, folder_.Path("new/"), folder_.Path("missing/result"), std::string(),
        folder_.Path(std::string(300, 'x')), folder_.Path(".")}) {
    EXPECT_FALSE(ResultFile(name)) << name;
  }
  EXPECT_EQ(Files(), 1U);
}

TEST_F(ResultFileTest, OnAFullDiskIsToldUnderItsName) {
  testing::internal::CaptureStderr();
  Write("/dev/full", "new");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            std::string("Writing /dev/full failed: ") + std::strerror(ENOSPC) + "\n");
}

TEST_F(ResultFileTest, WhoseFolderIsGoneIsToldUnderItsName) {
  std::filesystem::create_directory(folder_.Path("folder"));
  const std::string name = folder_.Path("folder/result");
  ResultFile file(name);
  std::filesystem::remove_all(folder_.Path("folder"));
  testing::internal::CaptureStderr();
  EXPECT_FALSE(file.Complete());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Writing " + name + " failed: " + std::strerror(ENOENT) + "\n");
}

}  // namespace
