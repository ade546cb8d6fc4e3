// SPDX-License-Identifier: MIT
//
// The only place that calls malloc and free.
#include "lib/support/alloc.h"

#include <cstdlib>

#include "lib/support/fatal.h"

namespace molva {
namespace {

AllocateFunction current_allocate = std::malloc;

template <typename T>
Array<T> FilledArray(std::int64_t n, T value, BlockName name) {
  Array<T> array(n, name);
  array.Fill(value);
  return array;
}

template <typename T>
Rows<T> FilledRows(std::int64_t nrows, std::int64_t ncols, T value, BlockName name) {
  Rows<T> rows(nrows, ncols, name, name);
  rows.Fill(value);
  return rows;
}

}  // namespace

void* RVmalloc(std::size_t nbytes, BlockName name) {
  if (nbytes == 0) return nullptr;
  void* block = current_allocate(nbytes);
  if (block == nullptr) {
    FatalError("***Memory allocation failed for %s%s. Requested size: %zu bytes", name.routine,
               name.array, nbytes);
  }
  return block;
}

void RVfree(void* block) { std::free(block); }

AllocateFunction SetAllocateFunction(AllocateFunction function) {
  return std::exchange(current_allocate, function != nullptr ? function : std::malloc);
}

Array<int> AllocInts(std::int64_t n, BlockName name) { return Array<int>(n, name); }

Array<int> AllocIntsSet(std::int64_t n, int value, BlockName name) {
  return FilledArray(n, value, name);
}

Array<float> AllocFloats(std::int64_t n, BlockName name) { return Array<float>(n, name); }

Array<float> AllocFloatsSet(std::int64_t n, float value, BlockName name) {
  return FilledArray(n, value, name);
}

Array<double> AllocDoubles(std::int64_t n, BlockName name) { return Array<double>(n, name); }

Array<double> AllocDoublesSet(std::int64_t n, double value, BlockName name) {
  return FilledArray(n, value, name);
}

Array<KeyValue> AllocKeyValues(std::int64_t n, BlockName name) { return Array<KeyValue>(n, name); }

Rows<int> AllocIntMatrix(std::int64_t nrows, std::int64_t ncols, int value, BlockName name) {
  return FilledRows(nrows, ncols, value, name);
}

Rows<float> AllocFloatMatrix(std::int64_t nrows, std::int64_t ncols, float value, BlockName name) {
  return FilledRows(nrows, ncols, value, name);
}

Rows<char> AllocByteMatrix(std::int64_t nrows, std::int64_t ncols, char value, BlockName name) {
  return FilledRows(nrows, ncols, value, name);
}

}  // namespace molva
