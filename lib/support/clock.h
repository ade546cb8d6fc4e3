// SPDX-License-Identifier: MIT
#pragma once

namespace molva {

// Processor time used by the process so far, user plus system, in seconds.
double CPUSeconds();

}  // namespace molva
