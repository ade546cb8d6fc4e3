// SPDX-License-Identifier: MIT
//
// Makes trials one after another, several at a time where there are threads for them.
//
// All trials draw from one sequence of random numbers, so where one starts is known for certain
// only when the one before has ended. Most end after all the passes that they may have. So the next
// ones are made meanwhile as if that were so, and made again where it was not.
#pragma once

#include <atomic>

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/rough/row_records.h"
#include "lib/support/alloc.h"
#include "lib/support/random.h"
#include "lib/support/span.h"

namespace molva {

class TrialsAhead {
 public:
  // The blocks carry the given name.
  TrialsAhead(const Control& control, const PreparedMatrix& mat, int nparts, BlockName name);
  ~TrialsAhead();
  TrialsAhead(const TrialsAhead&) = delete;
  TrialsAhead& operator=(const TrialsAhead&) = delete;

  struct Outcome {
    Span<const int> part;  // until the next is asked for
    float quality;
  };
  // The next trial, one of `left` that will be asked for.
  Outcome Next(int left);

 private:
  struct Trial {
    Trial(const RowRecords& measured, BlockName name)
        : rows(measured), part(AllocInts(measured.count(), name)) {}
    RowRecords rows;
    Array<int> part;
    float quality = 0;
    RandomState start = 0, expected_end = 0, end = 0;
    std::atomic<bool> is_unwanted = false;
  };

  Trial& At(int t) { return *trials_[t]; }
  void AddTrial(const RowRecords& measured);
  int Width(int left) const;
  void MakeRound(int width);
  void Make(int t, int width);
  void Unwant(int first, int width);

  const Control& control_;
  int nparts_;
  BlockName name_;
  Array<Trial*> trials_;  // of a round, owned
  int count_ = 0;         // how many there are room for by now
  int made_ = 0;          // how many of them started where they should
  int taken_ = 0;
  bool is_guessing_;
};

}  // namespace molva
