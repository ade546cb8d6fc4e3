// SPDX-License-Identifier: MIT
//
// The one switch over all that is decided by rough arithmetic with a bound: the screen of moves and
// its memory, the look at growing clusters, squared lengths, merging without a queue. Off, every
// result is formed by the full arithmetic alone, which the tests compare with.
#pragma once

namespace molva {

// On unless a test has turned it off.
bool RoughLooksAreUsed();
void UseRoughLooks(bool used);

}  // namespace molva
