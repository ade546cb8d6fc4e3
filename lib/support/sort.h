// SPDX-License-Identifier: MIT
//
// In-place sorts of (key, value) records by key. Neither is stable, but both are deterministic:
// the order among equal keys is part of what a run reproduces. Not-a-number keys compare false
// with everything; the sorts then end in some order and stay inside the array.
#pragma once

#include "lib/support/key_value.h"
#include "lib/support/span.h"

namespace molva {

// Nearly sorted input (fewer than 0.05 n adjacent descents) is sorted by insertion alone.
void SortKeyValuesIncreasing(Span<KeyValue> pairs);
void SortKeyValuesDecreasing(Span<KeyValue> pairs);

}  // namespace molva
