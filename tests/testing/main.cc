// SPDX-License-Identifier: MIT
//
// Runs the tests. An unexpected fatal error would end the process with status 0 and pass for
// success, so an end before the last test is turned into a failure here. Children of death tests
// are other processes and end as they like.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

const pid_t kTestProcess = getpid();
bool finished = false;

void FailUnlessFinished() {
  if (finished || getpid() != kTestProcess) return;
  std::fprintf(stderr, "The tests ended before they were done.\n");
  _exit(1);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  std::atexit(FailUnlessFinished);
  const int status = RUN_ALL_TESTS();
  finished = true;
  return status;
}
