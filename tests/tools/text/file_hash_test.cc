// SPDX-License-Identifier: MIT
#include "tools/text/file_hash.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/testing/files.h"
#include "tools/text/file_error.h"

namespace {

using namespace mardle::tools;
using testing_support::TempFolder;

// The first two examples of FIPS 180-2, and the empty text.
constexpr char kEmpty[] = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";
constexpr char kAbc[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

TEST(FileHash, IsSha256) {
  const TempFolder folder;
  EXPECT_EQ(HashOfFile(folder.Write("empty", "")).sha256, kEmpty);
  const FileHash hash = HashOfFile(folder.Write("abc", "abc"));
  EXPECT_EQ(hash.sha256, kAbc);
  EXPECT_EQ(hash.size, 3);
  EXPECT_EQ(
      HashOfFile(folder.Write("longer", "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"))
          .sha256,
      "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  // A million times "a", which is many blocks.
  EXPECT_EQ(HashOfFile(folder.Write("a", std::string(1000000, 'a'))).sha256,
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
  EXPECT_THROW(HashOfFile(folder.Path("nosuch")), FileError);
}

TEST(FileHash, OfSeveralFilesIsThatOfTheLinesOfSha256sum) {
  const TempFolder folder;
  folder.Write("a", "abc");
  folder.Write("b", "");
  const std::string lines = std::string(kAbc) + "  a\n" + kEmpty + "  b\n";
  const FileHash all = HashOfFiles(folder.Path(""), {"a", "b"});
  EXPECT_EQ(all.sha256, HashOfFile(folder.Write("lines", lines)).sha256);
  EXPECT_EQ(all.size, 3);
}

}  // namespace
