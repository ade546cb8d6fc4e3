// SPDX-License-Identifier: MIT
//
// Folders that one process at a time changes.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace mardle::tools {

// While it lives, other locks of the folders wait. Where folders cannot be locked, on some network
// file systems, it does nothing.
class FolderLock {
 public:
  explicit FolderLock(std::span<const std::string> folders);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  std::vector<int> descriptors_;
};

}  // namespace mardle::tools
