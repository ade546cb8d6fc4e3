// SPDX-License-Identifier: MIT
#include "tests/reliability/failing_new.h"

#include <cstdlib>
#include <new>

namespace {

long live_blocks = 0;
long requests_made = 0;
long failing_request = 0;  // 0 for none

}  // namespace

// The other forms of the standard library come down to these.
void* operator new(std::size_t size) {
  if (++requests_made == failing_request) throw std::bad_alloc();
  void* block = std::malloc(size > 0 ? size : 1);
  if (block == nullptr) throw std::bad_alloc();
  ++live_blocks;
  return block;
}

void operator delete(void* block) noexcept {
  if (block == nullptr) return;
  --live_blocks;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

namespace testing_support {

long LiveNewBlocks() { return live_blocks; }

FailingNew::FailingNew(long n) {
  requests_made = 0;
  failing_request = n;
}

FailingNew::~FailingNew() { failing_request = 0; }

long FailingNew::requests() const { return requests_made; }

}  // namespace testing_support
