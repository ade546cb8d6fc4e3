// SPDX-License-Identifier: MIT
#include "lib/support/progress.h"

#include <utility>

#include "lib/support/fatal.h"

namespace molva {
namespace {

struct Hook {
  MOLVA_ProgressHook call = nullptr;
  void* data = nullptr;
};

thread_local Hook current_hook;
thread_local const std::atomic<bool>* current_flag = nullptr;

void Report(MOLVA_Event event, int done, int total) {
  const Hook& hook = current_hook;
  if (hook.call == nullptr) return;
  if (hook.call(event, done, total, hook.data) != 0) FatalError("The run was interrupted.");
}

}  // namespace

void SetProgressHook(MOLVA_ProgressHook hook, void* data) { current_hook = {hook, data}; }

void ReportBisection(int done, int total) { Report(MOLVA_EVENT_BISECTION, done, total); }
void ReportTrial(int done, int total) { Report(MOLVA_EVENT_TRIAL, done, total); }
void Poll() {
  if (current_flag != nullptr && current_flag->load(std::memory_order_relaxed)) throw Abandoned();
  Report(MOLVA_EVENT_POLL, 0, 0);
}

Abandonable::Abandonable(const std::atomic<bool>& flag)
    : before_(std::exchange(current_flag, &flag)) {}
Abandonable::~Abandonable() { current_flag = before_; }

}  // namespace molva
