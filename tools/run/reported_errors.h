// SPDX-License-Identifier: MIT
//
// What another program says on standard error, passed on and looked at.
#pragma once

#include <string>
#include <string_view>

namespace mardle::tools {

// A pipe that takes the place of the program's standard error.
class ReportedErrors {
 public:
  ReportedErrors();
  ~ReportedErrors();
  ReportedErrors(const ReportedErrors&) = delete;
  ReportedErrors& operator=(const ReportedErrors&) = delete;

  bool is_open() const { return write_end_ >= 0; }
  // Where it can be read; -1 when the program has closed its end.
  int read_end() const { return read_end_; }
  int write_end() const { return write_end_; }
  // To be called once the program has its end.
  void CloseWriteEnd();
  // Passes on to this process's standard error what can be read without waiting.
  void PassOn();
  // Whether a line was mardle's report of a failed write.
  bool has_failed_write() const { return has_failed_write_; }

 private:
  void Look(std::string_view text);

  int read_end_ = -1;
  int write_end_ = -1;
  std::string line_;  // that has not ended yet
  bool has_failed_write_ = false;
};

}  // namespace mardle::tools
