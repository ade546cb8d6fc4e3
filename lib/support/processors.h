// SPDX-License-Identifier: MIT
//
// How many processors there are for the process.
#pragma once

namespace molva {

// As many as it may run on, or as its control group's share of processor time comes to, rounded up,
// if that is less; at least 1.
int ProcessorCount();

}  // namespace molva
