// SPDX-License-Identifier: MIT
//
// The targets where the programs beside mardle are built as well.
#include <iterator>

#include "tests/fuzz/harness.h"

namespace fuzzing {

std::span<const Target> Targets() {
  static const std::vector<Target> targets = [] {
    std::vector<Target> all(std::begin(kProgramTargets), std::end(kProgramTargets));
    all.insert(all.end(), std::begin(kToolTargets), std::end(kToolTargets));
    return all;
  }();
  return targets;
}

}  // namespace fuzzing
