// SPDX-License-Identifier: MIT
//
// The record that is sorted and queued.
#pragma once

namespace molva {

struct KeyValue {
  float key;
  int value;
};
static_assert(sizeof(KeyValue) == 8);

}  // namespace molva
