// SPDX-License-Identifier: MIT
//
// Interrupts of long work, after which nothing is left behind.
#pragma once

#include <signal.h>

#include <string>
#include <thread>

namespace mardle::tools {

// While it lives, an interrupt (INT, TERM, HUP, unless it is ignored) removes the folder and ends
// the process as the signal would. A thread of its own waits for it, so that it may do what
// handlers must not. To be made before other threads, which inherit that they do not take the
// signals.
class InterruptWatch {
 public:
  explicit InterruptWatch(const std::string& folder);
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

 private:
  void Watch(const std::stop_token& stop, const std::string& folder) const;

  sigset_t watched_;
  sigset_t before_;
  std::jthread thread_;
};

}  // namespace mardle::tools
