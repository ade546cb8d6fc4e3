// SPDX-License-Identifier: MIT
//
// The targets where mardle is built alone.
#include "tests/fuzz/harness.h"

namespace fuzzing {

std::span<const Target> Targets() { return kProgramTargets; }

}  // namespace fuzzing
