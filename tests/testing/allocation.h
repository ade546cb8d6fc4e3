// SPDX-License-Identifier: MIT
//
// Allocations that fail on purpose.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "lib/support/alloc.h"
#include "tests/testing/fatal.h"

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

// Runs the statement again and again, failing its first allocation, then its second, and so on
// until it succeeds; returns the names that the failures told, in the order of the requests.
template <typename Statement>
std::vector<std::string> BlockNames(Statement statement) {
  const std::string prefix = "***Memory allocation failed for ";
  const FatalThrows throws;
  std::vector<std::string> names;
  for (int allowed = 0;; ++allowed) {
    std::string message;
    try {
      const FailingAllocations failing(allowed);
      statement();
    } catch (const Fatal& error) {
      message = error.what();
    }
    if (message.empty()) return names;
    if (!message.starts_with(prefix)) {
      ADD_FAILURE() << message;
      return names;
    }
    names.push_back(message.substr(prefix.size(), message.find(". Requested") - prefix.size()));
  }
}

// The names from the first that begins with `prefix` on.
inline std::vector<std::string> From(const std::string& prefix, std::vector<std::string> names) {
  auto first = names.begin();
  while (first != names.end() && !first->starts_with(prefix)) ++first;
  return {first, names.end()};
}

}  // namespace testing_support
