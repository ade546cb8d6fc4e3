// SPDX-License-Identifier: MIT
//
// Measures what the library does beside its plain form, the same arithmetic written out literally,
// in the same run and by turns, so that whatever else the machine does weighs on both.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "lib/support/clock.h"

namespace bench {

// The processor time of one call.
template <typename Work>
double SecondsOf(Work work) {
  const double start = molva::CPUSeconds();
  work();
  return molva::CPUSeconds() - start;
}

inline double Median(std::vector<double> seconds) {
  const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
  std::nth_element(seconds.begin(), middle, seconds.end());
  return *middle;
}

// `now` and `plain` do the work once, from the same start, and return their answers, which must be
// the same. Reports the time of `now`, entries per second, and as plain/now how many times as long
// the plain form takes. That one is slow, so it is not repeated beyond a second.
template <typename Now, typename Plain, typename Same>
void RunPaired(benchmark::State& state, std::int64_t entries, Now now, Plain plain, Same same) {
  std::vector<double> now_seconds, plain_seconds;
  double plain_total = 0;
  for (auto _ : state) {
    decltype(now()) answer;
    now_seconds.push_back(SecondsOf([&] { answer = now(); }));
    state.SetIterationTime(now_seconds.back());
    if (plain_total > 1) continue;
    decltype(plain()) plain_answer;
    plain_seconds.push_back(SecondsOf([&] { plain_answer = plain(); }));
    plain_total += plain_seconds.back();
    if (!same(answer, plain_answer)) {
      state.SkipWithError("the plain form gives another answer");
      return;
    }
  }
  state.SetItemsProcessed(state.iterations() * entries);
  state.counters["plain/now"] = Median(plain_seconds) / Median(now_seconds);
}

}  // namespace bench
