// SPDX-License-Identifier: MIT
#include "tools/text/file_exchange.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/testing/files.h"
#include "tools/text/file_error.h"

namespace {

namespace fs = std::filesystem;
using mardle::tools::FileError;
using mardle::tools::FileExchange;
using testing_support::ReadText;
using testing_support::TempFolder;

class Exchange : public testing::Test {
 protected:
  std::size_t Files() const {
    const fs::directory_iterator files(folder_.Path(""));
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }

  TempFolder folder_;
  const std::string old_ = folder_.Write("old", "old");
  const std::string leftover_ = folder_.Write("leftover", "leftover");
  const std::string newcomer_ = folder_.Write("newcomer", "new");
};

TEST_F(Exchange, HoldsWhenItIsKept) {
  {
    FileExchange exchange;
    exchange.Remove(leftover_);
    exchange.Replace(old_, newcomer_);
    exchange.Keep();
  }
  EXPECT_EQ(ReadText(old_), "new");
  EXPECT_EQ(Files(), 1U);
}

TEST_F(Exchange, IsUndoneWhenItIsNot) {
  const std::string fresh = folder_.Path("fresh");
  {
    FileExchange exchange;
    exchange.Remove(leftover_);
    exchange.Replace(old_, newcomer_);
    exchange.Replace(fresh, folder_.Write("another", "new"));
    EXPECT_EQ(ReadText(fresh), "new");
    EXPECT_FALSE(fs::exists(leftover_));
  }
  EXPECT_EQ(ReadText(leftover_), "leftover");
  EXPECT_EQ(ReadText(old_), "old");
  EXPECT_FALSE(fs::exists(fresh));
  EXPECT_EQ(Files(), 2U);
}

TEST_F(Exchange, IsUndoneWhenARenameFails) {
  EXPECT_THROW(
      {
        FileExchange exchange;
        exchange.Replace(old_, newcomer_);
        exchange.Replace(leftover_, folder_.Path("missing"));
      },
      FileError);
  EXPECT_EQ(ReadText(leftover_), "leftover");
  EXPECT_EQ(ReadText(old_), "old");
  EXPECT_EQ(Files(), 2U);
}

TEST_F(Exchange, RemovesNoFolder) {
  fs::create_directory(folder_.Path("folder"));
  FileExchange exchange;
  EXPECT_THROW(exchange.Remove(folder_.Path("folder")), FileError);
}

TEST_F(Exchange, TakesALinkForTheFileThatIsRemoved) {
  fs::create_symlink("old", folder_.Path("link"));
  FileExchange exchange;
  exchange.Remove(folder_.Path("link"));
  exchange.Keep();
  EXPECT_FALSE(fs::is_symlink(folder_.Path("link")));
  EXPECT_EQ(ReadText(old_), "old");
}

}  // namespace
