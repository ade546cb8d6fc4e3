// SPDX-License-Identifier: MIT
//
// Results in a folder that gets its name when they are all there.
#pragma once

#include <string>
#include <vector>

namespace mardle::tools {

// A folder under a name of its own beside the one that it is to become; removed with all that is in
// it at scope end, unless it was kept. Failures throw FileError with the name that was asked for.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::string& name);
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::string& path() const { return path_; }      // absolute
  const std::string& target() const { return target_; }  // the folder it becomes, absolute

  // Gives the folder its name; where there is a folder of that name already, its files move there:
  // all or none, and `leftovers` that are in it go.
  void Keep(const std::vector<std::string>& leftovers);

 private:
  std::string name_;
  std::string target_;
  std::string path_;
};

}  // namespace mardle::tools
