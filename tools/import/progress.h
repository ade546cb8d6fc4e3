// SPDX-License-Identifier: MIT
//
// A line on standard error that counts what is read: rows, documents or entries.
#pragma once

#include <chrono>
#include <cstdint>

namespace mardle::tools {

// Silent unless standard error is a terminal.
class Progress {
 public:
  explicit Progress(bool quiet);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // One more was read.
  void Step();

 private:
  bool shown_;
  std::int64_t count_ = 0;
  std::chrono::steady_clock::time_point last_;
};

}  // namespace mardle::tools
