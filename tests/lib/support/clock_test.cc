// SPDX-License-Identifier: MIT
#include "lib/support/clock.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

rusage Usage() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage;
}

double UserAndSystemSeconds() {
  const rusage usage = Usage();
  return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
}

// Asking the system again and again takes both kinds of time.
void UseUserAndSystemTime() {
  while (Seconds(Usage().ru_utime) == 0 || Seconds(Usage().ru_stime) == 0) {
  }
}

// The two readings around it are rounded in another order, hence the nanosecond.
TEST(CPUSeconds, IsTheUserAndSystemTimeOfTheProcess) {
  UseUserAndSystemTime();
  const double before = UserAndSystemSeconds();
  const double now = molva::CPUSeconds();
  const double after = UserAndSystemSeconds();
  EXPECT_GT(now, 0);
  EXPECT_GE(now, before - 1e-9);
  EXPECT_LE(now, after + 1e-9);
}

TEST(CPUSeconds, NeverRunsBackwards) {
  double last = molva::CPUSeconds();
  for (int reading = 0; reading < 1000; ++reading) {
    const double now = molva::CPUSeconds();
    ASSERT_GE(now, last);
    last = now;
  }
}

}  // namespace
