// SPDX-License-Identifier: MIT
//
// A sweep from its request to the table, the answer and the files.
#pragma once

#include "tools/sweep/request.h"

namespace mardle::tools {

// Returns the exit status. Throws std::runtime_error when the sweep fails; then no file is written.
int RunSweep(const SweepRequest& request);

}  // namespace mardle::tools
