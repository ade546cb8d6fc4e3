// SPDX-License-Identifier: MIT
#include "lib/support/progress.h"

#include "lib/molva.h"
#include "lib/support/fatal.h"

namespace molva {
namespace {

struct Hook {
  MOLVA_ProgressHook call = nullptr;
  void* data = nullptr;
};

thread_local Hook hook;

void Report(MOLVA_Event event, int done, int total) {
  if (hook.call == nullptr) return;
  if (hook.call(event, done, total, hook.data) != 0) FatalError("The run was interrupted.");
}

}  // namespace

void ReportBisection(int done, int total) { Report(MOLVA_EVENT_BISECTION, done, total); }
void ReportTrial(int done, int total) { Report(MOLVA_EVENT_TRIAL, done, total); }
void Poll() { Report(MOLVA_EVENT_POLL, 0, 0); }

}  // namespace molva

void MOLVA_SetProgressHook(MOLVA_ProgressHook hook, void* data) { molva::hook = {hook, data}; }
