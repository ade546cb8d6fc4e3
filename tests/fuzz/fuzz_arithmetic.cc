// SPDX-License-Identifier: MIT
//
// A clustering drawn from the bytes, decided with the rough looks and by the full arithmetic alone:
// all that the two hand out must be the same bits.
#include "tests/fuzz/harness.h"
#include "tests/testing/both_arithmetics.h"

namespace fuzzing {

void FuzzArithmetic(Bytes bytes) {
  constexpr int kByteValues = 256;
  Input input(bytes);
  const auto below = [&input](int n) {
    const int high = n > kByteValues ? input.Byte() : 0;
    return (high * kByteValues + input.Byte()) % n;
  };
  const testing_support::ClusteringRun run = testing_support::DrawRun(below);
  Require(testing_support::ArithmeticsAgree(run), "both arithmetics agree: " + run.Options());
}

}  // namespace fuzzing
