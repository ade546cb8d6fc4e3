// SPDX-License-Identifier: MIT
#include "programs/files/partial_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/testing/files.h"

namespace {

using mardle::PartialFile;
using testing_support::TempFolder;

std::size_t FilesIn(const TempFolder& folder) {
  const std::filesystem::directory_iterator files(folder.Path(""));
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

void Create(PartialFile& file, const TempFolder& folder) {
  const int descriptor = file.Create(folder.Path(""), std::nullopt);
  ASSERT_GE(descriptor, 0);
  close(descriptor);
}

TEST(PartialFile, GoesWithItsScope) {
  const TempFolder folder;
  {
    PartialFile file;
    Create(file, folder);
    EXPECT_EQ(FilesIn(folder), 1U);
  }
  EXPECT_EQ(FilesIn(folder), 0U);
}

TEST(PartialFile, GoesWhenItIsRemoved) {
  const TempFolder folder;
  PartialFile file;
  Create(file, folder);
  file.Remove();
  EXPECT_EQ(FilesIn(folder), 0U);
  EXPECT_EQ(file.name(), "");
}

TEST(PartialFile, StaysWhenItIsForgotten) {
  const TempFolder folder;
  {
    PartialFile file;
    Create(file, folder);
    file.Forget();
  }
  EXPECT_EQ(FilesIn(folder), 1U);
}

TEST(PartialFile, HasThePermissionsAskedForWhateverTheMask) {
  const TempFolder folder;
  const mode_t mask = umask(0077);
  PartialFile file;
  close(file.Create(folder.Path(""), 0646));
  umask(mask);
  struct stat status {};
  ASSERT_EQ(stat(file.name().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0646U);
}

TEST(PartialFile, CannotBeMadeInAFolderThatIsNotThere) {
  const TempFolder folder;
  PartialFile file;
  EXPECT_EQ(file.Create(folder.Path("missing"), std::nullopt), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(file.name(), "");
}

// A process that ends in the middle of things.
[[noreturn]] void EndWith(const TempFolder& folder, void (*end)()) {
  PartialFile file;
  Create(file, folder);
  end();
  std::abort();
}

TEST(PartialFile, GoesAtAnExitThatLeavesNoScope) {
  const TempFolder folder;
  EXPECT_EXIT(EndWith(folder,
                      [] {
                        std::atexit(mardle::RemovePartialFiles);
                        std::exit(3);
                      }),
              ::testing::ExitedWithCode(3), "");
  EXPECT_EQ(FilesIn(folder), 0U);
}

TEST(PartialFile, GoesWithAnInterrupt) {
  const TempFolder folder;
  EXPECT_EXIT(EndWith(folder,
                      [] {
                        mardle::RemovePartialFilesWhenInterrupted();
                        std::raise(SIGTERM);
                      }),
              ::testing::KilledBySignal(SIGTERM), "");
  EXPECT_EQ(FilesIn(folder), 0U);
}

}  // namespace
