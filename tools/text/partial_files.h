// SPDX-License-Identifier: MIT
//
// The files that a process is writing, so that an interrupt leaves none of them behind.
#pragma once

namespace mardle::tools {

// While it lives, an interrupt removes the file of this name, if there is one; of more than eight
// names at a time the last are not remembered. The text is the caller's and stays in place.
class PartialFile {
 public:
  explicit PartialFile(const char* name);
  ~PartialFile();
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

 private:
  const char* name_;
};

// From now on SIGINT, SIGTERM and SIGHUP, unless they are ignored, remove these files before
// they end the process.
void RemovePartialFilesWhenInterrupted();

}  // namespace mardle::tools
