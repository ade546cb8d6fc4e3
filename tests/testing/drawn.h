// SPDX-License-Identifier: MIT
//
// How much a test tries. Under sanitizers, where each case takes ten times as long, it tries less.
#pragma once

#include <vector>

namespace testing_support {

// Of cases that are drawn, or of what grows: as many as it says, or an eighth.
constexpr int Drawn(int count) { return MARDLE_SANITIZED ? count / 8 : count; }

inline const std::vector<int> kNumbersOfThreads =
    MARDLE_SANITIZED ? std::vector{3, 16} : std::vector{2, 3, 8, 16};

}  // namespace testing_support
