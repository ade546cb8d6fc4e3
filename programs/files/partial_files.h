// SPDX-License-Identifier: MIT
//
// The files that a process is writing, so that neither its end nor an interrupt leaves one behind.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace mardle {

// A file under a name of its own, removed at scope end or by an interrupt; of more than eight at a
// time interrupts do not remove the last.
class PartialFile {
 public:
  PartialFile() = default;
  ~PartialFile();
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

  // Makes a new file in the folder, with the permissions of the file that it is to replace, if
  // there is one. Returns a descriptor for reading and writing, or -1 with the reason in errno.
  int Create(const std::string& folder, std::optional<mode_t> mode);
  const std::string& name() const { return name_; }
  // It has another name now and stays.
  void Forget();
  // It goes before its scope ends.
  void Remove();

 private:
  std::string name_;  // empty: there is none
};

// Removes these files; for the end of a process that does not leave its scopes.
void RemovePartialFiles();

// From now on SIGINT, SIGTERM and SIGHUP, unless they are ignored, remove these files before
// they end the process.
void RemovePartialFilesWhenInterrupted();

}  // namespace mardle
