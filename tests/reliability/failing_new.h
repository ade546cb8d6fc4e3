// SPDX-License-Identifier: MIT
//
// The standard library's allocations, counted, and failing on purpose. A program that links
// failing_new.cc has its operator new replaced.
#pragma once

namespace testing_support {

// Blocks from operator new that are not yet released.
long LiveNewBlocks();

// While it lives, the n-th request to operator new, counted from 1, fails; 0 stands for none.
class FailingNew {
 public:
  explicit FailingNew(long n);
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;

  // The requests made since.
  long requests() const;
};

}  // namespace testing_support
