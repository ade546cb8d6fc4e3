// SPDX-License-Identifier: MIT
//
// Files told apart by what they are, since one file may have many names.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace mardle {

struct FileIdentity {
  dev_t device;
  ino_t file;
  bool operator==(const FileIdentity&) const = default;
};

// The regular file that a name or a descriptor leads to; nothing for pipes, devices and folders,
// which many may share, and where there is no file.
std::optional<FileIdentity> RegularFileAt(const std::string& path);
std::optional<FileIdentity> RegularFileBehind(int descriptor);

// Whether the name leads to the regular file that standard output or standard error goes to.
bool IsStandardStream(const std::string& path);

}  // namespace mardle
