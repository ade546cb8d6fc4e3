// SPDX-License-Identifier: MIT
//
// How many threads a run uses.
#pragma once

namespace mardle {

// As many as the environment variable MOLVA_NUM_THREADS says, 0 for all processors; one where it is
// not set or empty. What is not such a number ends the run.
void UseThreadsOfEnvironment();

}  // namespace mardle
