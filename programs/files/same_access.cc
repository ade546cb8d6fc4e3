// SPDX-License-Identifier: MIT
#include "programs/files/same_access.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace mardle {
namespace {

constexpr mode_t kPermissions = 0777;
constexpr char kAccessList[] = "system.posix_acl_access";

// Most files have none, and a newcomer may have one that its folder gave it.
bool HasNoList(int descriptor) {
  return fremovexattr(descriptor, kAccessList) == 0 || errno == ENODATA || errno == ENOTSUP;
}

bool GiveSameList(int old, int newcomer) {
  std::array<char, 4096> list;
  const ssize_t size = fgetxattr(old, kAccessList, list.data(), list.size());
  if (size < 0) return (errno == ENODATA || errno == ENOTSUP) && HasNoList(newcomer);
  return fsetxattr(newcomer, kAccessList, list.data(), static_cast<std::size_t>(size), 0) == 0;
}

}  // namespace

bool GiveSameAccess(int old, int newcomer) {
  struct stat before;
  struct stat now;
  if (fstat(old, &before) != 0 || fstat(newcomer, &now) != 0) return false;
  const bool same_owner = before.st_uid == now.st_uid && before.st_gid == now.st_gid;
  if (!same_owner && fchown(newcomer, before.st_uid, before.st_gid) != 0) return false;
  return GiveSameList(old, newcomer) && fchmod(newcomer, before.st_mode & kPermissions) == 0;
}

}  // namespace mardle
