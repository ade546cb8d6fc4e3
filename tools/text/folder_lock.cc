// SPDX-License-Identifier: MIT
#include "tools/text/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <utility>

namespace mardle::tools {

// A folder may be given by several names, and locking it twice would never end. The order is the
// same in every process, so that two that lock several folders never wait for each other.
FolderLock::FolderLock(std::span<const std::string> folders) {
  std::map<std::pair<dev_t, ino_t>, int> opened;
  for (const std::string& folder : folders) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    struct stat status;
    if (descriptor < 0) continue;
    const bool known = fstat(descriptor, &status) != 0 ||
                       !opened.try_emplace({status.st_dev, status.st_ino}, descriptor).second;
    if (known) close(descriptor);
  }
  for (const auto& [folder, descriptor] : opened) {
    static_cast<void>(flock(descriptor, LOCK_EX));
    descriptors_.push_back(descriptor);
  }
}

FolderLock::~FolderLock() {
  for (const int descriptor : descriptors_) close(descriptor);
}

}  // namespace mardle::tools
