// SPDX-License-Identifier: MIT
//
// A file that appears under its name only when it is complete.
#pragma once

#include <string>
#include <string_view>

#include "lib/support/files.h"
#include "tools/text/partial_files.h"

namespace mardle::tools {

// Written under NAME.partial, and renamed when kept; removed at scope end, or by an interrupt, when
// not. Failures throw InputError with the name.
class OutputFile {
 public:
  explicit OutputFile(const std::string& name);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Write(std::string_view text);
  // Writes over what the file begins with.
  void WriteFirst(std::string_view text);
  // Closes the file; it is complete, but still under its partial name.
  void Close();
  // Gives the closed file its name.
  void Keep();

 private:
  [[noreturn]] void Fail() const;

  std::string name_;
  std::string partial_;
  PartialFile until_kept_;
  molva::File file_;
  bool kept_ = false;
};

}  // namespace mardle::tools
