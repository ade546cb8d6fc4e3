// SPDX-License-Identifier: MIT
#include "programs/files/same_access.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <string>

#include "tests/testing/files.h"

namespace {

using testing_support::TempFolder;

constexpr char kAccessList[] = "system.posix_acl_access";

// An open file.
class OpenFile {
 public:
  explicit OpenFile(const std::string& path) : descriptor_(open(path.c_str(), O_WRONLY)) {}
  ~OpenFile() { close(descriptor_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  int get() const { return descriptor_; }

  struct stat Status() const {
    struct stat status {};
    EXPECT_EQ(fstat(descriptor_, &status), 0);
    return status;
  }

  // The access list as bytes; "" without one.
  std::string List() const {
    std::array<char, 1000> list;
    const ssize_t size = fgetxattr(descriptor_, kAccessList, list.data(), list.size());
    return size < 0 ? "" : std::string(list.data(), static_cast<std::size_t>(size));
  }

 private:
  int descriptor_;
};

class SameAccess : public ::testing::Test {
 protected:
  TempFolder folder_;
  OpenFile old_{folder_.Write("old", "")};
  OpenFile newcomer_{folder_.Write("newcomer", "")};
};

TEST_F(SameAccess, HasThePermissions) {
  ASSERT_EQ(fchmod(old_.get(), 0624), 0);
  EXPECT_TRUE(mardle::GiveSameAccess(old_.get(), newcomer_.get()));
  EXPECT_EQ(newcomer_.Status().st_mode & 07777U, 0624U);
}

// Only the superuser can set this up; to others their own files are given.
TEST_F(SameAccess, HasTheOwnerAndTheGroup) {
  const bool is_superuser = geteuid() == 0;
  ASSERT_EQ(fchown(old_.get(), is_superuser ? 65534 : geteuid(), is_superuser ? 12 : getegid()), 0);
  EXPECT_TRUE(mardle::GiveSameAccess(old_.get(), newcomer_.get()));
  EXPECT_EQ(newcomer_.Status().st_uid, old_.Status().st_uid);
  EXPECT_EQ(newcomer_.Status().st_gid, old_.Status().st_gid);
}

// The entry of an access list: whom it is for, what it allows, and the number of a user or group.
struct Entry {
  std::uint16_t tag, permissions;
  std::uint32_t id;
};
struct List {
  std::uint32_t version;
  std::array<Entry, 5> entries;
};
constexpr std::uint32_t kNobody = 0xffffffff;
// User 1 may read and write, the group nothing; its place in the permissions is the mask's.
constexpr List kUserList = {
    2, {{{1, 6, kNobody}, {2, 6, 1}, {4, 0, kNobody}, {16, 6, kNobody}, {32, 0, kNobody}}}};

// Where a file system knows no lists, neither file has one.
TEST_F(SameAccess, HasTheAccessList) {
  static_cast<void>(fsetxattr(old_.get(), kAccessList, &kUserList, sizeof kUserList, 0));
  EXPECT_TRUE(mardle::GiveSameAccess(old_.get(), newcomer_.get()));
  EXPECT_EQ(newcomer_.List(), old_.List());
  EXPECT_EQ(newcomer_.Status().st_mode, old_.Status().st_mode);
}

TEST_F(SameAccess, HasNoAccessListWhereTheOldFileHasNone) {
  static_cast<void>(fsetxattr(newcomer_.get(), kAccessList, &kUserList, sizeof kUserList, 0));
  EXPECT_TRUE(mardle::GiveSameAccess(old_.get(), newcomer_.get()));
  EXPECT_EQ(newcomer_.List(), "");
  EXPECT_EQ(newcomer_.Status().st_mode, old_.Status().st_mode);
}

TEST_F(SameAccess, IsNotGivenToWhatIsNoFile) {
  EXPECT_FALSE(mardle::GiveSameAccess(old_.get(), -1));
  EXPECT_FALSE(mardle::GiveSameAccess(-1, newcomer_.get()));
}

}  // namespace
