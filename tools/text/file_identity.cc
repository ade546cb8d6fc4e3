// SPDX-License-Identifier: MIT
#include "tools/text/file_identity.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "tools/text/file_error.h"

namespace mardle::tools {
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

void RefuseInputsAsOutputs(std::span<const std::string> inputs,
                           std::span<const std::string> outputs) {
  for (const std::string& output : outputs) {
    const std::optional<FileIdentity> file = RegularFileAt(output);
    if (!file) continue;
    const auto input = std::find_if(inputs.begin(), inputs.end(), [&file](const std::string& name) {
      return RegularFileAt(name) == file;
    });
    if (input != inputs.end()) {
      throw FileError({output, 0}, "would be written over the input " + *input);
    }
  }
}

}  // namespace mardle::tools
