// SPDX-License-Identifier: MIT
#include "programs/thread_count.h"

#include <charconv>
#include <cstdlib>
#include <string_view>

#include "lib/molva.h"
#include "lib/support/fatal.h"
#include "lib/support/team.h"

namespace mardle {

void UseThreadsOfEnvironment() {
  const char* const text = std::getenv("MOLVA_NUM_THREADS");
  if (text == nullptr || *text == '\0') return;
  const std::string_view digits(text);
  int count = -1;
  const auto [end, error] = std::from_chars(digits.begin(), digits.end(), count);
  if (error != std::errc() || end != digits.end() || count < 0 || count > molva::kMostThreads) {
    molva::FatalError(
        "MOLVA_NUM_THREADS is \"%s\", which is no number of threads: 1 to %d, or 0 for "
        "all processors.",
        text, molva::kMostThreads);
  }
  MOLVA_SetNumThreads(count);
}

}  // namespace mardle
