// SPDX-License-Identifier: MIT
#include "tools/cluster/scratch_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/testing/files.h"
#include "tools/text/file_error.h"

namespace {

using mardle::tools::ScratchFolder;
using testing_support::ReadText;
using testing_support::TempFolder;
namespace fs = std::filesystem;

void Write(const std::string& path, const std::string& text) { std::ofstream(path) << text; }

std::size_t CountIn(const std::string& folder) {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(ScratchFolder, GetsItsNameWhenItIsKept) {
  const TempFolder folder;
  {
    ScratchFolder scratch(folder.Path("r/"));
    Write(scratch.path() + "/a", "1");
    EXPECT_EQ(scratch.target(), folder.Path("r"));
    EXPECT_FALSE(fs::exists(folder.Path("r")));
    scratch.Keep({});
  }
  EXPECT_EQ(ReadText(folder.Path("r/a")), "1");
  EXPECT_EQ(CountIn(folder.Path("")), 1U);
}

TEST(ScratchFolder, GoesWhenItIsNotKept) {
  const TempFolder folder;
  {
    const ScratchFolder scratch(folder.Path("r"));
    Write(scratch.path() + "/a", "1");
  }
  EXPECT_EQ(CountIn(folder.Path("")), 0U);
}

TEST(ScratchFolder, MovesIntoAFolderThatIsThere) {
  const TempFolder folder;
  fs::create_directory(folder.Path("r"));
  for (const char* name : {"a", "old", "mine"}) Write(folder.Path("r/" + std::string(name)), "0");
  {
    ScratchFolder scratch(folder.Path("r"));
    Write(scratch.path() + "/a", "1");
    Write(scratch.path() + "/b", "2");
    scratch.Keep({"a", "old", "nosuch"});
  }
  EXPECT_EQ(ReadText(folder.Path("r/a")), "1");
  EXPECT_EQ(ReadText(folder.Path("r/b")), "2");
  EXPECT_EQ(ReadText(folder.Path("r/mine")), "0");
  EXPECT_EQ(CountIn(folder.Path("r")), 3U);
  EXPECT_EQ(CountIn(folder.Path("")), 1U);
}

TEST(ScratchFolder, AnotherThingOfTheNameIsAnError) {
  const TempFolder folder;
  folder.Write("r", "mine");
  {
    ScratchFolder scratch(folder.Path("r"));
    EXPECT_THROW(scratch.Keep({}), mardle::tools::FileError);
  }
  EXPECT_EQ(ReadText(folder.Path("r")), "mine");
  EXPECT_THROW(ScratchFolder(folder.Path("no/such/r")), mardle::tools::FileError);
}

}  // namespace
