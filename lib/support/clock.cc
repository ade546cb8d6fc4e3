// SPDX-License-Identifier: MIT
#include "lib/support/clock.h"

#include <sys/resource.h>

namespace molva {

double CPUSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = usage.ru_utime.tv_sec + usage.ru_stime.tv_sec;
  const auto microseconds = usage.ru_utime.tv_usec + usage.ru_stime.tv_usec;
  return static_cast<double>(seconds) + static_cast<double>(microseconds) * 1e-6;
}

}  // namespace molva
