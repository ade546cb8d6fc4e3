// SPDX-License-Identifier: MIT
//
// What a visit to a row needs to know, packed into half a cache line, and how large rows can be at
// the most. Rows do not change while they are clustered, so they are measured once for all trials.
#pragma once

#include <cstdint>

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Each size is rounded up. A row may store a column more than once; its length counts the entries
// of one column as one.
struct RowRecord {
  int begin = 0;                  // of its entries
  std::uint32_t size : 31 = 0;    // how many they are
  std::uint32_t repeats : 1 = 0;  // whether a column may occur twice
  float length = 0;               // |d|
  float square = 0;               // the sum of v^2: |d|^2 where all columns differ
  float whole = 0;                // d.G, the row against the composite of all rows, to the nearest
  int place = 0;                  // the cluster it stands in
  double settled_until = 0;       // no move of it is worth a look until the clock shows this
};
static_assert(sizeof(RowRecord) == 32);

// The most, and the least, over all rows.
struct RowExtremes {
  double longest = 0;  // |d|
  int most_entries = 0;
  bool are_full = true;  // every row stores every column, in order
  // d.G: 0 until the rows are measured against the whole.
  double least_whole = 0, most_whole = 0;
  double whole_error = 0;  // how far a record's d.G can be from the true one
};

class RowRecords {
 public:
  // Measures all rows; the block carries the given name.
  RowRecords(const PreparedMatrix& mat, BlockName name);
  // A copy, for another thread.
  RowRecords(const RowRecords& measured);
  RowRecords& operator=(const RowRecords&) = delete;

  // Fills in d.G. The composite of all rows is the same in every trial, so only the first call
  // measures.
  void MeasureAgainst(Span<const float> whole);

  const PreparedMatrix& matrix() const { return mat_; }
  int count() const { return mat_.nrows; }
  RowRecord& operator[](int i) { return first_[i]; }
  const RowRecord& operator[](int i) const { return first_[i]; }
  const RowExtremes& extremes() const { return extremes_; }

  RowView Entries(const RowRecord& row) const {
    return {{mat_.rowind.data() + row.begin, row.size}, {mat_.rowval.data() + row.begin, row.size}};
  }

  // How many entries are stored from the row's first on, those of the rows behind it as well.
  std::size_t RoomFrom(const RowRecord& row) const {
    return static_cast<std::size_t>(mat_.rowptr[mat_.nrows] - row.begin);
  }

  // Rows that are taken in a random order would be waited for, so records and entries of the rows
  // to come are fetched ahead: call with each position of the order. (A function that only fetches
  // has no effect that g++ can see, and is left out unless it is put in place.)
  [[gnu::always_inline]] void Prefetch(const int* order, int position) const {
    if (position + kRecordsAhead < count()) {
      __builtin_prefetch(first_ + order[position + kRecordsAhead]);
    }
    if (position + kEntriesAhead < count()) {
      PrefetchEntries(first_[order[position + kEntriesAhead]]);
    }
  }

 private:
  static constexpr int kRecordsAhead = 24;
  static constexpr int kEntriesAhead = 12;
  // The first and the last entry: of a longer row the processor fetches what lies between by
  // itself, and a loop over the lines would cost more than it brings.
  [[gnu::always_inline]] void PrefetchEntries(const RowRecord& row) const {
    const int* columns = mat_.rowind.data() + row.begin;
    const float* values = mat_.rowval.data() + row.begin;
    const std::uint32_t last = row.size > 0 ? row.size - 1 : 0;
    __builtin_prefetch(columns);
    __builtin_prefetch(values);
    __builtin_prefetch(columns + last);
    __builtin_prefetch(values + last);
  }

  const PreparedMatrix& mat_;
  BlockName name_;
  Array<RowRecord> block_;
  RowRecord* first_;  // in the block, so that none lies across two cache lines
  RowExtremes extremes_;
  bool is_measured_against_whole_ = false;
};

}  // namespace molva
