// SPDX-License-Identifier: MIT
//
// Files that change together or not at all.
#pragma once

#include <string>
#include <vector>

namespace mardle::tools {

// Until the exchange is kept, what stood under the names before is kept aside; at scope end an
// exchange that was not kept is undone, last step first. Steps throw FileError with the name.
class FileExchange {
 public:
  FileExchange() = default;
  ~FileExchange();
  FileExchange(const FileExchange&) = delete;
  FileExchange& operator=(const FileExchange&) = delete;

  // Gives the file `newcomer` the name.
  void Replace(const std::string& name, const std::string& newcomer);
  // Takes away the file of this name, if there is one.
  void Remove(const std::string& name);
  // The exchange holds; what was kept aside goes.
  void Keep();

 private:
  struct Step {
    std::string name;
    std::string aside;  // where the old file is; empty when there was none
    bool done = false;  // the newcomer has the name
  };
  void Undo(const Step& step);

  std::vector<Step> steps_;
};

}  // namespace mardle::tools
