// SPDX-License-Identifier: MIT
//
// The one name for "accumulated in higher precision".
#pragma once

#include <limits>

namespace molva {

// Sums that decide results are carried in this type and brought to single precision by a written
// cast. Single operations on two floats give the same float in either type, so those stay plain.
using Wide = long double;
static_assert(std::numeric_limits<Wide>::digits == 64,
              "results are defined by 64-bit significands");

}  // namespace molva
