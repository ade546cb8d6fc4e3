// SPDX-License-Identifier: MIT
#include "tools/text/output_target.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "programs/files/file_identity.h"
#include "tools/text/file_error.h"

namespace mardle::tools {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;
constexpr mode_t kPermissions = 0777;

// Links that lead to no file yet are followed by hand, as the file is to be made where they lead.
std::string BehindLinks(const std::string& name) {
  fs::path path = name;
  std::error_code error;
  for (int i = 0; i < kMostLinks && fs::is_symlink(path, error); ++i) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return path.string();
}

OutputTarget TargetOfExisting(const std::string& name, const struct stat& file) {
  const bool replaceable = S_ISREG(file.st_mode) && !IsStandardStream(name);
  std::error_code error;
  const fs::path path = fs::canonical(name, error);
  // A file without a name of its own, reached through a descriptor, cannot be replaced either.
  if (!replaceable || RegularFileAt(path.string()) != RegularFileAt(name)) {
    return {name, true, std::nullopt};
  }
  if (access(name.c_str(), W_OK) != 0) throw SystemError(name);
  return {path.string(), false, file.st_mode & kPermissions};
}

}  // namespace

OutputTarget TargetOf(const std::string& name) {
  struct stat file;
  if (stat(name.c_str(), &file) == 0) return TargetOfExisting(name, file);
  if (errno != ENOENT) throw SystemError(name);
  return {BehindLinks(name), false, std::nullopt};
}

}  // namespace mardle::tools
