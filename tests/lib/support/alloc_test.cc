// SPDX-License-Identifier: MIT
#include "lib/support/alloc.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/sysinfo.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"

// Address sanitizer ends the process on a request that no machine can meet; malloc gives null.
// The runtime looks it up by name.
extern "C" [[gnu::visibility("default")]] const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }

namespace {

using molva::SetAllocateFunction;
using testing_support::FailingAllocations;
using testing_support::FatalMessage;

std::string Failure(const std::string& name, const std::string& nbytes) {
  return "***Memory allocation failed for " + name + ". Requested size: " + nbytes + " bytes";
}

// The failure message of an allocation made after `successes` others.
template <typename Allocation>
std::string FailureAfter(int successes, Allocation allocation) {
  const FailingAllocations failing(successes);
  return FatalMessage(allocation);
}

std::size_t HeapInUse() {
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

TEST(Allocation, OfZeroElementsIsNullAndAsksForNothing) {
  const FailingAllocations failing(0);
  EXPECT_EQ(molva::RVmalloc(0, "none"), nullptr);
  EXPECT_EQ(molva::AllocInts(0, "none").get(), nullptr);
  EXPECT_EQ(molva::AllocIntsSet(0, 7, "none").get(), nullptr);
  EXPECT_EQ(molva::AllocFloats(0, "none").get(), nullptr);
  EXPECT_EQ(molva::AllocFloatsSet(0, 7, "none").get(), nullptr);
  EXPECT_EQ(molva::AllocDoubles(0, "none").get(), nullptr);
  EXPECT_EQ(molva::AllocDoublesSet(0, 7, "none").get(), nullptr);
  EXPECT_EQ(molva::AllocKeyValues(0, "none").get(), nullptr);
  EXPECT_FALSE(molva::AllocIntMatrix(0, 5, 7, "none"));
  EXPECT_FALSE(molva::AllocFloatMatrix(0, 5, 7, "none"));
  EXPECT_FALSE(molva::AllocByteMatrix(0, 5, 7, "none"));
  EXPECT_FALSE(molva::RVAllocMatrix<double>(0, 5));
}

TEST(Allocation, OfANegativeCountIsNullAndAsksForNothing) {
  const FailingAllocations failing(0);
  const molva::Array<int> array = molva::AllocIntsSet(-3, 7, "none");
  EXPECT_EQ(array.get(), nullptr);
  EXPECT_EQ(array.size(), 0U);
  EXPECT_FALSE(molva::AllocDoubles(-1, "none"));
  EXPECT_EQ(molva::AllocFloatMatrix(-2, 4, 0, "none").size(), 0U);
}

TEST(Allocation, LeavesTheRowsOfATableWithoutColumnsNull) {
  for (const std::int64_t ncols : {0, -4}) {
    molva::Rows<int> rows = molva::AllocIntMatrix(3, ncols, 7, "rows");
    ASSERT_EQ(rows.size(), 3U);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(rows[i].data(), nullptr);
      EXPECT_TRUE(rows[i].empty());
    }
  }
}

TEST(Allocation, SetsEveryElement) {
  const molva::Array<int> ints = molva::AllocIntsSet(3, -7, "ints");
  EXPECT_EQ(std::vector<int>(ints.begin(), ints.end()), (std::vector<int>{-7, -7, -7}));
  const molva::Array<float> floats = molva::AllocFloatsSet(2, 0.5F, "floats");
  EXPECT_EQ(std::vector<float>(floats.begin(), floats.end()), (std::vector<float>{0.5F, 0.5F}));
  const molva::Array<double> doubles = molva::AllocDoublesSet(2, 0.1, "doubles");
  EXPECT_EQ(std::vector<double>(doubles.begin(), doubles.end()), (std::vector<double>{0.1, 0.1}));
}

template <typename T>
void ExpectTable(const molva::Rows<T>& rows, std::size_t nrows, std::size_t ncols, T value) {
  ASSERT_EQ(rows.size(), nrows);
  for (std::size_t i = 0; i < nrows; ++i) {
    ASSERT_EQ(rows[i].size(), ncols);
    EXPECT_TRUE(std::all_of(rows[i].begin(), rows[i].end(), [value](T v) { return v == value; }));
  }
}

TEST(Allocation, SetsEveryElementOfATable) {
  ExpectTable<int>(molva::AllocIntMatrix(2, 3, -1, "ints"), 2, 3, -1);
  ExpectTable<float>(molva::AllocFloatMatrix(3, 2, 1.5F, "floats"), 3, 2, 1.5F);
  ExpectTable<char>(molva::AllocByteMatrix(2, 5, 'x', "bytes"), 2, 5, 'x');
}

TEST(Allocation, GivesEveryRowOfATableItsOwnBlock) {
  molva::Rows<int> rows = molva::AllocIntMatrix(2, 2, 0, "rows");
  rows[0][1] = 5;
  EXPECT_EQ(rows[1][0], 0);
  EXPECT_EQ(rows[1][1], 0);
}

TEST(Allocation, OfAnyElementTypeGivesATableOfRows) {
  molva::Rows<double> rows = molva::RVAllocMatrix<double>(2, 3);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].size(), 3U);
  rows[1][2] = 0.25;
  EXPECT_EQ(rows[1][2], 0.25);
}

TEST(FailedAllocation, NamesTheArrayAndItsBytesAndEndsWithStatusZero) {
  EXPECT_FATAL(
      {
        const FailingAllocations failing(0);
        molva::AllocInts(1000, "ReadMat: rowind");
      },
      "***Memory allocation failed for ReadMat: rowind. Requested size: 4000 bytes");
}

TEST(FailedAllocation, PrintsBothHalvesOfAName) {
  EXPECT_EQ(FailureAfter(0,
                         [] {
                           molva::AllocInts(2, {"Cluster", ": part"});
                         }),
            Failure("Cluster: part", "8"));
}

TEST(FailedAllocation, TellsTheBytesOfEveryElementType) {
  EXPECT_EQ(FailureAfter(0, [] { molva::RVmalloc(11, "raw"); }), Failure("raw", "11"));
  EXPECT_EQ(FailureAfter(0, [] { molva::AllocIntsSet(10, 1, "x"); }), Failure("x", "40"));
  EXPECT_EQ(FailureAfter(0, [] { molva::AllocFloats(10, "x"); }), Failure("x", "40"));
  EXPECT_EQ(FailureAfter(0, [] { molva::AllocFloatsSet(10, 1, "x"); }), Failure("x", "40"));
  EXPECT_EQ(FailureAfter(0, [] { molva::AllocDoubles(10, "x"); }), Failure("x", "80"));
  EXPECT_EQ(FailureAfter(0, [] { molva::AllocDoublesSet(10, 1, "x"); }), Failure("x", "80"));
  EXPECT_EQ(FailureAfter(0, [] { molva::AllocKeyValues(10, "x"); }), Failure("x", "80"));
}

// 3000000000 ints are more bytes than 32 bits can tell.
TEST(FailedAllocation, TellsTheTrueSizeOfAHugeArray) {
  EXPECT_EQ(FailureAfter(0, [] { molva::AllocInts(3000000000, "huge"); }),
            Failure("huge", "12000000000"));
}

// The sanitizer adds a warning of its own before the message, so only the end is compared.
// 2^62 ints would be 2^64 bytes, which is 0 in a size_t.
TEST(FailedAllocation, OfMoreBytesThanCanBeCountedEndsTheRun) {
  constexpr std::int64_t kElements = std::int64_t{1} << 62;
  const std::string failure = Failure("vast", "18446744073709551615");
  EXPECT_EQ(FatalMessage([] { molva::AllocInts(kElements, "vast"); }), failure);
  EXPECT_EQ(FatalMessage([] { molva::AllocFloatsSet(kElements, 0, "vast"); }), failure);
  EXPECT_EQ(FatalMessage([] { molva::AllocIntMatrix(1, kElements, 1, "vast"); }), failure);
}

TEST(FailedAllocation, OfMoreThanTheMachineHasEndsTheRun) {
  EXPECT_EXIT(molva::RVmalloc(std::size_t{1} << 62, "Huge: block"), ::testing::ExitedWithCode(0),
              "[*][*][*]Memory allocation failed for Huge: block[.] "
              "Requested size: 4611686018427387904 bytes\n$");
}

TEST(FailedAllocation, OfATableTellsTheSizeOfItsRowPointers) {
  EXPECT_EQ(FailureAfter(0, [] { molva::AllocIntMatrix(5, 3, 0, "table"); }),
            Failure("table", std::to_string(5 * sizeof(int*))));
}

TEST(FailedAllocation, OfARowTellsTheSizeOfTheRow) {
  EXPECT_EQ(FailureAfter(1, [] { molva::AllocIntMatrix(5, 3, 0, "ints"); }), Failure("ints", "12"));
  EXPECT_EQ(FailureAfter(5, [] { molva::AllocFloatMatrix(5, 3, 0, "floats"); }),
            Failure("floats", "12"));
  EXPECT_EQ(FailureAfter(2, [] { molva::AllocByteMatrix(5, 3, 0, "bytes"); }),
            Failure("bytes", "3"));
}

TEST(FailedAllocation, OfAnUnnamedTableTellsTheTableFromItsRows) {
  const auto allocate = [] { molva::RVAllocMatrix<double>(3, 5); };
  EXPECT_EQ(FailureAfter(0, allocate),
            Failure("RVAllocMatrix: matrix", std::to_string(3 * sizeof(double*))));
  EXPECT_EQ(FailureAfter(1, allocate), Failure("RVAllocMatrix: matrix[i]", "40"));
  EXPECT_EQ(FailureAfter(3, allocate), Failure("RVAllocMatrix: matrix[i]", "40"));
}

// The fourth row cannot be had. Each of the three before it takes a megabyte, which would stay in
// use if the handler's exception left it behind.
TEST(FailedAllocation, OfARowReleasesTheRowsBeforeIt) {
  const std::size_t before = HeapInUse();
  FailureAfter(4, [] { molva::AllocByteMatrix(10, 1 << 20, 0, "rows"); });
  EXPECT_LT(HeapInUse(), before + (1 << 20));
}

TEST(AllocateFunction, IsReplacedAndRestored) {
  const auto fail = [](std::size_t) -> void* { return nullptr; };
  const molva::AllocateFunction first = SetAllocateFunction(fail);
  EXPECT_EQ(first, nullptr);
  EXPECT_EQ(SetAllocateFunction(nullptr), static_cast<molva::AllocateFunction>(fail));
  EXPECT_TRUE(molva::AllocInts(1, "one"));
}

#if !defined(__SANITIZE_ADDRESS__)  // Which would fill memory of its own for such a block.
// Each block alone would fit; the system would hand out both, and end the process in the second.
TEST(FailedAllocation, OfMoreThanTheMachineHasInAllBlocksEndsTheRun) {
  struct sysinfo info {};
  ASSERT_EQ(sysinfo(&info), 0);
  const auto most =
      static_cast<std::int64_t>((info.totalram + info.totalswap) * info.mem_unit / 5 * 3);
  const molva::Array<char> first(most, "first");
  EXPECT_EQ(FatalMessage([&] { molva::Array<char>(most, "second"); }),
            Failure("second", std::to_string(most)));
}
#endif

TEST(Allocation, OfZerosIsZeroUnderAnyAllocateFunction) {
  const molva::AllocateFunction replaced = SetAllocateFunction(
      [](std::size_t nbytes) { return std::memset(std::malloc(nbytes), 7, nbytes); });
  const auto zeros = molva::Array<int>::Zeroed(3, "zeros");
  SetAllocateFunction(replaced);
  for (const int zero : zeros) EXPECT_EQ(zero, 0);
}

TEST(Array, IsNullAfterItsBlockMovedAway) {
  molva::Array<int> from = molva::AllocIntsSet(3, 4, "from");
  int* const block = from.get();
  molva::Array<int> to(std::move(from));
  EXPECT_EQ(to.get(), block);
  EXPECT_EQ(to.size(), 3U);
  EXPECT_FALSE(from);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(from.size(), 0U);
  molva::Array<int> last = molva::AllocInts(9, "last");
  last = std::move(to);
  EXPECT_EQ(last.get(), block);
  EXPECT_EQ(last.size(), 3U);
  EXPECT_EQ(to.size(), 0U);  // NOLINT(bugprone-use-after-move)
}

TEST(Array, HandsItsBlockOverOnRelease) {
  molva::Array<int> array = molva::AllocIntsSet(2, 6, "array");
  int* const block = array.Release();
  EXPECT_FALSE(array);
  EXPECT_EQ(array.size(), 0U);
  EXPECT_EQ(block[1], 6);
  molva::RVfree(block);
}

TEST(Rows, SwapTheirTablesOnAssignment) {
  molva::Rows<int> a = molva::AllocIntMatrix(1, 2, 1, "a");
  a = molva::AllocIntMatrix(3, 4, 5, "b");
  ExpectTable<int>(a, 3, 4, 5);
}

TEST(FreeAll, LeavesEveryHandleNull) {
  molva::Array<int> ints = molva::AllocInts(3, "ints");
  molva::Array<float> none;
  molva::Rows<float> rows = molva::AllocFloatMatrix(2, 2, 0, "rows");
  molva::FreeAll(ints, none, rows);
  EXPECT_EQ(ints.get(), nullptr);
  EXPECT_EQ(ints.size(), 0U);
  EXPECT_EQ(none.get(), nullptr);
  EXPECT_FALSE(rows);
  EXPECT_EQ(rows.size(), 0U);
}

TEST(FreeAll, TakesHandlesThatAreNullAlready) {
  molva::Rows<int> ints = molva::AllocIntMatrix(2, 2, 0, "ints");
  molva::Rows<float> floats = molva::AllocFloatMatrix(2, 2, 0, "floats");
  molva::Rows<char> bytes = molva::AllocByteMatrix(2, 2, 0, "bytes");
  for (int time = 0; time < 2; ++time) {
    molva::FreeIntMatrix(ints);
    molva::FreeFloatMatrix(floats);
    molva::FreeByteMatrix(bytes);
    EXPECT_FALSE(ints);
    EXPECT_FALSE(floats);
    EXPECT_FALSE(bytes);
  }
}

TEST(FreeAll, GivesTheMemoryBackBeforeTheEndOfTheScope) {
  const std::size_t before = HeapInUse();
  molva::Rows<char> rows = molva::AllocByteMatrix(3, 1 << 20, 0, "rows");
  molva::FreeAll(rows);
  EXPECT_LT(HeapInUse(), before + (1 << 20));
}

struct Record {
  int count = -1;
  molva::Array<int> array = molva::AllocInts(4, "array");
};

TEST(AllocRecord, GivesADefaultRecordInANamedBlock) {
  const molva::Owned<Record> record = molva::AllocRecord<Record>("record");
  EXPECT_EQ(record->count, -1);
  EXPECT_TRUE(record->array);
  EXPECT_EQ(FailureAfter(0, [] { molva::AllocRecord<Record>("record"); }),
            Failure("record", std::to_string(sizeof(Record))));
}

}  // namespace
