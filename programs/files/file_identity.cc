// SPDX-License-Identifier: MIT
#include "programs/files/file_identity.h"

#include <sys/stat.h>
#include <unistd.h>

namespace mardle {
namespace {

std::optional<FileIdentity> IdentityOf(const struct stat& file) {
  if (!S_ISREG(file.st_mode)) return std::nullopt;
  return FileIdentity{file.st_dev, file.st_ino};
}

}  // namespace

std::optional<FileIdentity> RegularFileAt(const std::string& path) {
  struct stat file;
  if (stat(path.c_str(), &file) != 0) return std::nullopt;
  return IdentityOf(file);
}

std::optional<FileIdentity> RegularFileBehind(int descriptor) {
  struct stat file;
  if (fstat(descriptor, &file) != 0) return std::nullopt;
  return IdentityOf(file);
}

bool IsStandardStream(const std::string& path) {
  const std::optional<FileIdentity> file = RegularFileAt(path);
  return file &&
         (file == RegularFileBehind(STDOUT_FILENO) || file == RegularFileBehind(STDERR_FILENO));
}

}  // namespace mardle
