// SPDX-License-Identifier: MIT
//
// Sums in 64-bit integers. Integers add up to the same sum in any order, so what blocks of rows are
// summed into does not depend on how the rows were cut into blocks or on who summed them first.
#pragma once

#include <cmath>
#include <cstdint>

#include "lib/support/fatal.h"
#include "lib/support/wide.h"

namespace molva {

// Of one unit; values of prepared rows are -1 to 1.
constexpr double kUnitsPerOne = 4294967296.0;

// The nearest number of units. What a float of such size loses is below its own last bit for all
// values above 2^-8, and 2^-33 at the most.
inline std::int64_t ToUnits(float value) {
  return std::llrint(static_cast<double>(value) * kUnitsPerOne);
}

inline Wide FromUnits(std::int64_t units) { return static_cast<Wide>(units) / kUnitsPerOne; }

// sum += units
inline void AddUnits(std::int64_t units, std::int64_t& sum) {
  if (__builtin_add_overflow(sum, units, &sum)) {
    FatalError("A sum of rows passes 64 bits: there are too many rows for one sum!\n");
  }
}

}  // namespace molva
