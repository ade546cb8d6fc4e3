// SPDX-License-Identifier: MIT
#include "lib/support/log2.h"

#include <bit>
#include <cmath>

#include "lib/support/wide.h"

namespace molva {

int Log2Int(int n) { return n < 2 ? 0 : std::bit_width(static_cast<unsigned>(n)) - 1; }

int IsPowerOf2(int n) { return n > 0 && std::has_single_bit(static_cast<unsigned>(n)) ? 1 : 0; }

float Log2Float(float x) {
  return static_cast<float>(Log(static_cast<Wide>(x)) / Log(static_cast<Wide>(2)));
}

}  // namespace molva
