// SPDX-License-Identifier: MIT
#include "tools/cluster/interrupt_watch.h"

#include <ctime>
#include <filesystem>

#include "programs/files/held_signals.h"
#include "tools/run/child_process.h"

namespace mardle::tools {
namespace {

constexpr timespec kBetweenLooks{0, 100000000};

bool IsIgnored(int signal) {
  struct sigaction action = {};
  sigaction(signal, nullptr, &action);
  return action.sa_handler == SIG_IGN;
}

// The work goes on meanwhile, and may put another file in.
void RemoveFolder(const std::string& folder) {
  constexpr int kMostTries = 10;
  std::error_code error;
  for (int i = 0; i < kMostTries && std::filesystem::exists(folder, error); ++i) {
    std::filesystem::remove_all(folder, error);
  }
}

}  // namespace

InterruptWatch::InterruptWatch(const std::string& folder) {
  sigemptyset(&watched_);
  for (const int signal : kInterrupts) {
    if (!IsIgnored(signal)) sigaddset(&watched_, signal);
  }
  pthread_sigmask(SIG_BLOCK, &watched_, &before_);
  thread_ = std::jthread([this, folder](const std::stop_token& stop) { Watch(stop, folder); });
}

// An interrupt that comes now finds its usual effect.
InterruptWatch::~InterruptWatch() {
  thread_.request_stop();
  thread_.join();
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void InterruptWatch::Watch(const std::stop_token& stop, const std::string& folder) const {
  while (!stop.stop_requested()) {
    const int signal = sigtimedwait(&watched_, nullptr, &kBetweenLooks);
    if (signal <= 0) continue;
    RemoveFolder(folder);
    EndBySignal(signal);
  }
}

}  // namespace mardle::tools
