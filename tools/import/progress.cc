// SPDX-License-Identifier: MIT
#include "tools/import/progress.h"

#include <unistd.h>

#include <cstdio>

namespace mardle::tools {
namespace {

constexpr std::int64_t kCountsBetweenLooks = 256;
constexpr std::chrono::milliseconds kInterval{200};
constexpr char kEraseLine[] = "\r\033[K";

}  // namespace

Progress::Progress(bool quiet)
    : shown_(!quiet && isatty(STDERR_FILENO) == 1), last_(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
  if (shown_) std::fputs(kEraseLine, stderr);
}

void Progress::Step() {
  if (++count_ % kCountsBetweenLooks != 0 || !shown_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - last_ < kInterval) return;
  last_ = now;
  std::fprintf(stderr, "%s%lld read", kEraseLine, static_cast<long long>(count_));
}

}  // namespace mardle::tools
