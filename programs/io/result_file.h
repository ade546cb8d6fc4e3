// SPDX-License-Identifier: MIT
//
// Results that appear under their names when they are whole.
#pragma once

#include <cstdio>
#include <string>

#include "lib/support/files.h"
#include "programs/files/partial_files.h"

namespace mardle {

// A result under way. It is written beside the file that it is to become, and has its name once it
// is complete: whatever ends the run before leaves what stood there. Pipes, devices, links and the
// file that is standard output are written as they are, and so is a file that cannot be replaced by
// one of the same owner, group and permissions.
class ResultFile {
 public:
  // Opens the file; false below, with nothing changed, when it cannot be written.
  explicit ResultFile(const std::string& name);
  explicit operator bool() const { return static_cast<bool>(file_); }
  std::FILE* get() const { return file_.get(); }

  // Closes the file and gives it its name. Data that could not be written is reported in one line
  // on standard error, and the run goes on; false then.
  bool Complete();

 private:
  void OpenInPlace();
  void OpenNew();
  void OpenToReplace();
  void OpenBeside(int newcomer);

  molva::File file_;  // under the name of the result
  PartialFile partial_;
};

}  // namespace mardle
