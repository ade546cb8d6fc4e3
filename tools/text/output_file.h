// SPDX-License-Identifier: MIT
//
// Files that appear under their names when they are complete, or not at all.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "lib/support/files.h"
#include "programs/files/partial_files.h"
#include "tools/text/output_target.h"

namespace mardle::tools {

// Written under a name of its own in the folder of the file that it is to become; removed at scope
// end, or by an interrupt, unless it was published. What goes to a pipe or a device is held until
// then. Failures throw FileError with the name.
class OutputFile {
 public:
  explicit OutputFile(const std::string& name);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Write(std::string_view text);
  // Writes over what the file begins with.
  void WriteFirst(std::string_view text);
  // Everything is written; from here on only publishing can fail.
  void Complete();

  const std::string& name() const { return name_; }
  const OutputTarget& target() const { return target_; }

 private:
  friend void Publish(std::span<OutputFile* const>, std::span<const std::string>,
                      const std::function<void()>&);

  void WriteThrough();

  std::string name_;
  OutputTarget target_;
  PartialFile partial_;
  molva::File file_;
};

// Gives complete files their names, and removes the leftovers, which belong to what the files
// replace: all of it, or nothing when it fails. Others who publish in these folders wait meanwhile,
// so that two sets of files are never mixed; `check`, which may throw, is called when they do.
void Publish(
    std::span<OutputFile* const> files, std::span<const std::string> leftovers = {},
    const std::function<void()>& check = [] {});

}  // namespace mardle::tools
