// SPDX-License-Identifier: MIT
//
// Allocations that fail on purpose.
#pragma once

#include <cstdlib>

#include "lib/support/alloc.h"

namespace testing_support {

// While it lives, the allocation after the next `allowed` ones and all later ones fail.
class FailingAllocations {
 public:
  explicit FailingAllocations(int allowed) {
    Left() = allowed;
    replaced_ = molva::SetAllocateFunction(
        [](std::size_t size) { return Left()-- > 0 ? std::malloc(size) : nullptr; });
  }
  ~FailingAllocations() { molva::SetAllocateFunction(replaced_); }
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

 private:
  static int& Left() {
    static int left;
    return left;
  }
  molva::AllocateFunction replaced_;
};

}  // namespace testing_support
