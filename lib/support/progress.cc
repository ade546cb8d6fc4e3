// SPDX-License-Identifier: MIT
#include "lib/support/progress.h"

#include "lib/support/fatal.h"

namespace molva {
namespace {

struct Hook {
  MOLVA_ProgressHook call = nullptr;
  void* data = nullptr;
};

thread_local Hook current_hook;

void Report(MOLVA_Event event, int done, int total) {
  const Hook& hook = current_hook;
  if (hook.call == nullptr) return;
  if (hook.call(event, done, total, hook.data) != 0) FatalError("The run was interrupted.");
}

}  // namespace

void SetProgressHook(MOLVA_ProgressHook hook, void* data) { current_hook = {hook, data}; }

void ReportBisection(int done, int total) { Report(MOLVA_EVENT_BISECTION, done, total); }
void ReportTrial(int done, int total) { Report(MOLVA_EVENT_TRIAL, done, total); }
void Poll() { Report(MOLVA_EVENT_POLL, 0, 0); }

}  // namespace molva
