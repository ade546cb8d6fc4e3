// SPDX-License-Identifier: MIT
//
// Reports to a host program how far a clustering is, and lets it stop one. Without a hook each call
// is one comparison.
#pragma once

#include <atomic>

#include "lib/molva_codes.h"

namespace molva {

// The hook of the current thread; null removes it.
void SetProgressHook(MOLVA_ProgressHook hook, void* data);

// About how many rows or merges pass between two polls.
constexpr int kPollInterval = 1024;

// Each calls the hook of the current thread, if there is one, and ends the run when that asks for
// it: after `done` of `total` bisections, after `done` of `total` trials, and in between.
void ReportBisection(int done, int total);
void ReportTrial(int done, int total);
void Poll();

// While one lives, polls of its thread throw Abandoned once the flag is set: what the thread does
// is no longer wanted.
struct Abandoned {};
class Abandonable {
 public:
  explicit Abandonable(const std::atomic<bool>& flag);
  ~Abandonable();
  Abandonable(const Abandonable&) = delete;
  Abandonable& operator=(const Abandonable&) = delete;

 private:
  const std::atomic<bool>* before_;
};

}  // namespace molva
