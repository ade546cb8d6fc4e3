// SPDX-License-Identifier: MIT
//
// In how many dimensions rows spread.
#pragma once

#include "programs/io/engine_calls.h"

namespace mardle::tools {

// The dimensions that the prepared rows spread in, on the safe side. The participation ratio of the
// variances of rows at even distances, a thousand at the most, is the number of dimensions of a
// box. Half of it is taken, as rows along a bent line fill a part of a second one, and rows of
// uneven density make a curve bend more than even ones.
double DimensionOf(const EngineInput& in);

}  // namespace mardle::tools
