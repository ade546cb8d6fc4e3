// SPDX-License-Identifier: MIT
//
// Two wide numbers, from 32 bytes: soft ones leave the bits of extended precision under every
// operation, where there is such precision, and sums and products do not depend on their order.
#include <array>

#include "lib/support/wide.h"
#include "tests/fuzz/harness.h"
#include "tests/testing/wide_operands.h"

namespace fuzzing {
namespace {

bool AreSame(molva::SoftWide a, molva::SoftWide b) {
  return a.significand() == b.significand() && a.exponent() == b.exponent() &&
         a.negative() == b.negative();
}

}  // namespace

void FuzzWide(Bytes bytes) {
  Input input(bytes);
  std::uint64_t bits[4] = {};
  for (std::uint64_t& b : bits) {
    for (int i = 0; i < 8; ++i) b = b << 8 | input.Byte();
  }
  const testing_support::WidePair pair = testing_support::PairFrom(bits);
  Require(AreSame(pair.a + pair.b, pair.b + pair.a), "a sum does not depend on its order");
  Require(AreSame(pair.a * pair.b, pair.b * pair.a), "nor does a product");
#if LDBL_MANT_DIG == 64
  const std::string difference = testing_support::DifferenceFromExtended(pair);
  Require(difference.empty(), difference);
#endif
}

}  // namespace fuzzing
