// SPDX-License-Identifier: MIT
//
// Runs drawn at random under both arithmetics, as many as are asked for:
//   compare_arithmetics FIRST COUNT
// Prints the seeds of those that differ and how many they are; status 1 when there is one.
#include <cstdio>
#include <cstdlib>

#include "tests/testing/both_arithmetics.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "Usage: %s FIRST COUNT\n", argv[0]);
    return 2;
  }
  const auto first = static_cast<std::uint32_t>(std::strtoul(argv[1], nullptr, 10));
  const auto count = static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 10));
  std::uint32_t differing = 0;
  for (std::uint32_t seed = first; seed < first + count; ++seed) {
    const testing_support::ClusteringRun run = testing_support::DrawRun(seed);
    if (testing_support::ArithmeticsAgree(run)) continue;
    ++differing;
    std::printf("seed %u differs: %s\n", seed, run.Options().c_str());
  }
  std::printf("%u runs, %u differ\n", count, differing);
  return differing == 0 ? 0 : 1;
}
