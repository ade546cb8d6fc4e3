// SPDX-License-Identifier: MIT
#include "tools/text/output_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "tests/testing/files.h"
#include "tools/text/file_error.h"

namespace {

namespace fs = std::filesystem;
using namespace mardle::tools;
using testing_support::ReadText;
using testing_support::TempFolder;

void WriteAndPublish(const std::string& name, const std::string& text) {
  OutputFile file(name);
  file.Write(text);
  file.Complete();
  OutputFile* const files[] = {&file};
  Publish(files);
}

std::string MessageOf(const std::string& name) {
  try {
    WriteAndPublish(name, "x");
  } catch (const FileError& error) {
    return error.what();
  }
  return "none";
}

TEST(OutputFile, AppearsWhenItIsPublished) {
  const TempFolder folder;
  const std::string name = folder.Write("f", "old");
  OutputFile file(name);
  file.Write("new text");
  file.WriteFirst("NEW");
  file.Complete();
  EXPECT_EQ(ReadText(name), "old");
  OutputFile* const files[] = {&file};
  Publish(files);
  EXPECT_EQ(ReadText(name), "NEW text");
}

TEST(OutputFile, LeavesNothingWhenItIsNot) {
  const TempFolder folder;
  {
    OutputFile file(folder.Path("f"));
    file.Write("text");
    file.Complete();
    EXPECT_FALSE(fs::is_empty(folder.Path("")));
  }
  EXPECT_TRUE(fs::is_empty(folder.Path("")));
}

TEST(OutputFile, IsMadeWhereALinkLeads) {
  const TempFolder folder;
  fs::create_directory(folder.Path("there"));
  fs::create_symlink("there/f", folder.Path("link"));
  fs::create_symlink("link", folder.Path("second"));
  WriteAndPublish(folder.Path("second"), "new");
  EXPECT_EQ(ReadText(folder.Path("there/f")), "new");
  EXPECT_TRUE(fs::is_symlink(folder.Path("link")));
}

TEST(OutputFile, SeveralMayStandInOneFolderUnderSeveralNames) {
  const TempFolder folder;
  fs::create_directory_symlink(folder.Path(""), folder.Path("again"));
  OutputFile a(folder.Path("a"));
  OutputFile b(folder.Path("again/b"));
  a.Complete();
  b.Complete();
  OutputFile* const files[] = {&a, &b};
  Publish(files);
  EXPECT_TRUE(fs::exists(folder.Path("a")));
  EXPECT_TRUE(fs::exists(folder.Path("b")));
}

TEST(OutputFile, NothingIsPublishedWhenTheCheckFails) {
  const TempFolder folder;
  const std::string leftover = folder.Write("leftover", "");
  OutputFile file(folder.Path("f"));
  file.Complete();
  OutputFile* const files[] = {&file};
  const auto refuse = [] { throw FileError({"f", 0}, "no"); };
  EXPECT_THROW(Publish(files, {&leftover, 1}, refuse), FileError);
  EXPECT_FALSE(fs::exists(folder.Path("f")));
  EXPECT_TRUE(fs::exists(leftover));
}

TEST(OutputFile, FailuresNameTheFile) {
  EXPECT_EQ(MessageOf("/dev/full"), "/dev/full: No space left on device");
  EXPECT_EQ(MessageOf("/no/f"), "/no/f: No such file or directory");
  EXPECT_EQ(MessageOf("/tmp"), "/tmp: Is a directory");
  const TempFolder folder;
  fs::create_symlink("loop", folder.Path("loop"));
  EXPECT_EQ(MessageOf(folder.Path("loop")),
            folder.Path("loop") + ": Too many levels of symbolic links");
}

// The descriptor under which this process has a file of the folder open, or -1.
int DescriptorIn(const std::string& folder) {
  for (const fs::directory_entry& open : fs::directory_iterator("/proc/self/fd")) {
    std::error_code gone;  // that of the listing itself
    const std::string file = fs::read_symlink(open.path(), gone).string();
    if (file.starts_with(folder + "/")) return std::stoi(open.path().filename().string());
  }
  return -1;
}

// There is nothing to flush, so that closing alone can tell.
TEST(OutputFile, ACloseThatFailsIsTold) {
  const TempFolder folder;
  const std::string name = folder.Path("f");
  OutputFile file(name);
  ASSERT_EQ(close(DescriptorIn(fs::canonical(folder.Path(".")).string())), 0);
  try {
    file.Complete();
    FAIL();
  } catch (const FileError& error) {
    EXPECT_EQ(error.what(), name + ": Bad file descriptor");
  }
}

}  // namespace
