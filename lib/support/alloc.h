// SPDX-License-Identifier: MIT
//
// Named allocation. Every block carries a name, and a block that cannot be had ends the run with
// that name and the size asked for. All memory is owned by handles that release it at scope end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "lib/support/key_value.h"
#include "lib/support/span.h"

namespace molva {

// The name of a block, printed only when it cannot be had: "Routine: array". A frame shared by
// several routines passes the routine's name and ": array" as the two halves.
struct BlockName {
  // NOLINTNEXTLINE(google-explicit-constructor): most names are one literal.
  BlockName(const char* whole) : routine(whole), array("") {}
  BlockName(const char* routine_name, const char* array_name)
      : routine(routine_name), array(array_name) {}
  const char* routine;
  const char* array;
};

// Gives nbytes of uninitialised memory, null for 0. Failure is fatal:
// "***Memory allocation failed for NAME. Requested size: N bytes". So is a block that would bring
// all blocks together above the memory and swap space of the machine: the system would hand it out,
// and end the process when it is used.
void* RVmalloc(std::size_t nbytes, BlockName name);
// The same, filled with zeros; large blocks cost nothing until they are used.
void* RVcalloc(std::size_t nbytes, BlockName name);
// The same as RVmalloc for what a run can do without: null when it cannot be had.
void* RVmallocOrNull(std::size_t nbytes);
void RVfree(void* block);

// What all blocks that are not yet released take.
std::size_t BytesInUse();

// The function under both. Tests replace it (null stands for malloc and calloc) to make allocations
// fail; the one replaced is returned.
using AllocateFunction = void* (*)(std::size_t);
AllocateFunction SetAllocateFunction(AllocateFunction function);

// The bytes of n elements; the most there can be, which no machine has, when they are still more.
template <typename T>
std::size_t BytesOf(std::size_t n) {
  return n > SIZE_MAX / sizeof(T) ? SIZE_MAX : n * sizeof(T);
}

// Owns a block of n elements; null when n <= 0.
template <typename T>
class Array {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  Array() = default;
  Array(std::int64_t n, BlockName name) : size_(n > 0 ? static_cast<std::size_t>(n) : 0) {
    data_.reset(static_cast<T*>(RVmalloc(BytesOf<T>(size_), name)));
  }
  static Array Zeroed(std::int64_t n, BlockName name) {
    Array array;
    array.size_ = n > 0 ? static_cast<std::size_t>(n) : 0;
    array.data_.reset(static_cast<T*>(RVcalloc(BytesOf<T>(array.size_), name)));
    return array;
  }
  // An aid that a run can do without: empty when the block cannot be had.
  static Array OrNone(std::int64_t n) {
    Array array;
    array.size_ = n > 0 ? static_cast<std::size_t>(n) : 0;
    array.data_.reset(static_cast<T*>(RVmallocOrNull(BytesOf<T>(array.size_))));
    if (!array.data_) array.size_ = 0;
    return array;
  }
  Array(Array&& other) noexcept
      : data_(std::move(other.data_)), size_(std::exchange(other.size_, 0)) {}
  Array& operator=(Array&& other) noexcept {
    data_ = std::move(other.data_);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }

  T* get() { return data_.get(); }
  const T* get() const { return data_.get(); }
  T* data() { return data_.get(); }
  const T* data() const { return data_.get(); }
  std::size_t size() const { return size_; }
  T* begin() { return data(); }
  T* end() { return data() + size_; }
  const T* begin() const { return data(); }
  const T* end() const { return data() + size_; }
  template <typename Index>
  T& operator[](Index i) {
    return data()[i];
  }
  template <typename Index>
  const T& operator[](Index i) const {
    return data()[i];
  }
  explicit operator bool() const { return data_ != nullptr; }

  void Fill(T value) {
    for (T& element : *this) element = value;
  }
  void Reset() { *this = Array(); }
  // Hands the block over; the caller ends it with RVfree.
  T* Release() {
    size_ = 0;
    return data_.release();
  }

 private:
  struct FreeBlock {
    void operator()(T* block) const { RVfree(block); }
  };
  std::unique_ptr<T[], FreeBlock> data_;
  std::size_t size_ = 0;
};

// Owns a table of nrows blocks of ncols elements each; a row is null when ncols <= 0.
template <typename T>
class Rows {
 public:
  Rows() = default;
  // Delegates first, so that a row that cannot be had releases the rows before it.
  Rows(std::int64_t nrows, std::int64_t ncols, BlockName table_name, BlockName row_name) : Rows() {
    ncols_ = ncols > 0 ? static_cast<std::size_t>(ncols) : 0;
    table_ = Array<T*>(nrows, table_name);
    table_.Fill(nullptr);
    for (T*& row : table_) row = static_cast<T*>(RVmalloc(BytesOf<T>(ncols_), row_name));
  }
  Rows(Rows&& other) noexcept = default;
  Rows& operator=(Rows&& other) noexcept {
    std::swap(table_, other.table_);
    std::swap(ncols_, other.ncols_);
    return *this;
  }
  ~Rows() { ReleaseRows(); }

  std::size_t size() const { return table_.size(); }
  template <typename Index>
  Span<T> operator[](Index i) {
    return {table_[i], ncols_};
  }
  template <typename Index>
  Span<const T> operator[](Index i) const {
    return {table_[i], ncols_};
  }
  explicit operator bool() const { return static_cast<bool>(table_); }

  void Fill(T value) {
    for (std::size_t i = 0; i < size(); ++i) {
      for (T& element : (*this)[i]) element = value;
    }
  }
  void Reset() {
    ReleaseRows();
    table_.Reset();
  }

 private:
  void ReleaseRows() {
    for (T* row : table_) RVfree(row);
  }
  Array<T*> table_;
  std::size_t ncols_ = 0;
};

Array<int> AllocInts(std::int64_t n, BlockName name);
Array<int> AllocIntsSet(std::int64_t n, int value, BlockName name);
Array<float> AllocFloats(std::int64_t n, BlockName name);
Array<float> AllocFloatsSet(std::int64_t n, float value, BlockName name);
Array<double> AllocDoubles(std::int64_t n, BlockName name);
Array<double> AllocDoublesSet(std::int64_t n, double value, BlockName name);
Array<KeyValue> AllocKeyValues(std::int64_t n, BlockName name);

// Tables with every element set. The table and each of its rows carry the same name.
Rows<int> AllocIntMatrix(std::int64_t nrows, std::int64_t ncols, int value, BlockName name);
Rows<float> AllocFloatMatrix(std::int64_t nrows, std::int64_t ncols, float value, BlockName name);
Rows<char> AllocByteMatrix(std::int64_t nrows, std::int64_t ncols, char value, BlockName name);

// A table of uninitialised rows of any element type.
template <typename T>
Rows<T> RVAllocMatrix(std::int64_t nrows, std::int64_t ncols) {
  return Rows<T>(nrows, ncols, "RVAllocMatrix: matrix", "RVAllocMatrix: matrix[i]");
}

// The first element that lies at a multiple of the alignment; the block needs as much room to
// spare.
template <typename T>
T* AlignedFirst(Array<T>& block, std::size_t alignment) {
  void* first = block.data();
  std::size_t space = block.size() * sizeof(T);
  return static_cast<T*>(std::align(alignment, space - alignment, first, space));
}

// Releases big blocks before the end of their scope; the handles are null afterwards.
template <typename... Handles>
void FreeAll(Handles&... handles) {
  (handles.Reset(), ...);
}
inline void FreeIntMatrix(Rows<int>& matrix) { FreeAll(matrix); }
inline void FreeFloatMatrix(Rows<float>& matrix) { FreeAll(matrix); }
inline void FreeByteMatrix(Rows<char>& matrix) { FreeAll(matrix); }

// Owns one record that lives in a named block.
template <typename Record>
struct DestroyRecord {
  void operator()(Record* record) const {
    record->~Record();
    RVfree(record);
  }
};
template <typename Record>
using Owned = std::unique_ptr<Record, DestroyRecord<Record>>;

template <typename Record, typename... Arguments>
Owned<Record> AllocRecord(BlockName name, Arguments&&... arguments) {
  void* const block = RVmalloc(sizeof(Record), name);
  try {
    return Owned<Record>(new (block) Record(std::forward<Arguments>(arguments)...));
  } catch (...) {
    RVfree(block);
    throw;
  }
}

}  // namespace molva
