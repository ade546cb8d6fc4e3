// SPDX-License-Identifier: MIT
//
// Interrupts that wait for the end of a step.
#pragma once

#include <csignal>

namespace mardle {

// The signals that ask a tool to end, and after which it leaves no files behind.
inline constexpr int kInterrupts[] = {SIGINT, SIGTERM, SIGHUP};

// While it lives, interrupts wait.
class HeldSignals {
 public:
  HeldSignals() {
    sigset_t interrupts;
    sigemptyset(&interrupts);
    for (const int signal : kInterrupts) sigaddset(&interrupts, signal);
    pthread_sigmask(SIG_BLOCK, &interrupts, &before_);
  }
  ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

 private:
  sigset_t before_;
};

}  // namespace mardle
