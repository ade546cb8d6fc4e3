// SPDX-License-Identifier: MIT
//
// The only place that calls malloc and free.
#include "lib/support/alloc.h"

#include <malloc.h>
#include <sys/sysinfo.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "lib/support/fatal.h"

namespace molva {
namespace {

AllocateFunction current_allocate = nullptr;  // null for malloc and calloc

std::atomic<std::size_t> bytes_in_use{0};

std::size_t MachineMemory() {
  struct sysinfo info {};
  if (sysinfo(&info) != 0) return SIZE_MAX;
  return (info.totalram + info.totalswap) * info.mem_unit;
}

// Whether the machine could hold the block beside all others.
bool FitsTheMachine(std::size_t nbytes) {
  static const std::size_t machine_memory = MachineMemory();
  const std::size_t used = bytes_in_use.load(std::memory_order_relaxed);
  return used <= machine_memory && nbytes <= machine_memory - used;
}

[[noreturn]] void Refuse(std::size_t nbytes, BlockName name) {
  FatalError("***Memory allocation failed for %s%s. Requested size: %zu bytes", name.routine,
             name.array, nbytes);
}

void* Counted(void* block) {
  bytes_in_use.fetch_add(malloc_usable_size(block), std::memory_order_relaxed);
  return block;
}

template <typename T>
Array<T> FilledArray(std::int64_t n, T value, BlockName name) {
  const T zero{};
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): the bits decide, so -0 is filled.
  if (std::memcmp(&value, &zero, sizeof(T)) == 0) return Array<T>::Zeroed(n, name);
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
  void* block = RVmallocOrNull(nbytes);
  if (block == nullptr) Refuse(nbytes, name);
  return block;
}

void* RVmallocOrNull(std::size_t nbytes) {
  if (nbytes == 0 || !FitsTheMachine(nbytes)) return nullptr;
  return Counted(current_allocate != nullptr ? current_allocate(nbytes) : std::malloc(nbytes));
}

void* RVcalloc(std::size_t nbytes, BlockName name) {
  if (nbytes == 0) return nullptr;
  if (current_allocate != nullptr) return std::memset(RVmalloc(nbytes, name), 0, nbytes);
  void* block = FitsTheMachine(nbytes) ? Counted(std::calloc(nbytes, 1)) : nullptr;
  if (block == nullptr) Refuse(nbytes, name);
  return block;
}

void RVfree(void* block) {
  bytes_in_use.fetch_sub(malloc_usable_size(block), std::memory_order_relaxed);
  std::free(block);
}

std::size_t BytesInUse() { return bytes_in_use.load(std::memory_order_relaxed); }

AllocateFunction SetAllocateFunction(AllocateFunction function) {
  return std::exchange(current_allocate, function);
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
