// SPDX-License-Identifier: MIT
#include "lib/support/team.h"

#include <gtest/gtest.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "lib/support/fatal.h"
#include "lib/support/processors.h"
#include "tests/testing/fatal.h"

namespace molva {
namespace {

// Gives back the one thread that all tests start with.
class Teams : public testing::Test {
 protected:
  ~Teams() override { SetThreadCount(1); }
};

int ThreadsOfProcess() {
  int count = 0;
  for ([[maybe_unused]] const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    ++count;
  }
  return count;
}

TEST_F(Teams, AreOfOneAtFirst) {
  EXPECT_EQ(ThreadCount(), 1);
  const TeamScope team;
  EXPECT_EQ(TeamSize(), 1);
}

TEST_F(Teams, AreOfAsManyAsTheThreadAsksFor) {
  SetThreadCount(3);
  EXPECT_EQ(ThreadCount(), 3);
  EXPECT_EQ(TeamSize(), 1);
  int elsewhere = 0;
  std::thread([&] { elsewhere = ThreadCount(); }).join();
  EXPECT_EQ(elsewhere, 1);
  const TeamScope team;
  const TeamScope inner;
  EXPECT_EQ(TeamSize(), 3);
}

TEST_F(Teams, AreOfAllProcessorsWhenAskedForNone) {
  SetThreadCount(0);
  EXPECT_EQ(ThreadCount(), ProcessorCount());
  EXPECT_GE(ThreadCount(), 1);
}

TEST_F(Teams, RefuseNumbersThatAreNone) {
  EXPECT_FATAL(SetThreadCount(-1),
               "The number of threads must be between 0 and 1024! NumThreads=-1\n");
  EXPECT_FATAL(SetThreadCount(1025),
               "The number of threads must be between 0 and 1024! NumThreads=1025\n");
  EXPECT_EQ(ThreadCount(), 1);
}

TEST_F(Teams, TakeEveryPieceOnce) {
  for (const int threads : {1, 2, 3, 8, 16}) {
    SetThreadCount(threads);
    const TeamScope team;
    for (const std::int64_t count : {0, 1, 2, 99, 100, 1000}) {
      for (const std::int64_t piece : {1, 7, 100}) {
        std::vector<int> taken(static_cast<std::size_t>(count));
        ShareOut(count, piece, [&](std::int64_t first, std::int64_t last, int member) {
          EXPECT_LT(first, last);
          EXPECT_TRUE(0 <= member && member < threads);
          for (std::int64_t i = first; i < last; ++i) ++taken[static_cast<std::size_t>(i)];
        });
        EXPECT_EQ(taken, std::vector<int>(static_cast<std::size_t>(count), 1));
      }
    }
  }
}

TEST_F(Teams, HandOutManyLoopsOneAfterAnother) {
  constexpr int kLoops = 3000;
  SetThreadCount(3);
  const TeamScope team;
  std::int64_t sum = 0;
  std::vector<std::int64_t> places(5);
  for (int loop = 0; loop < kLoops; ++loop) {
    ShareOut(5, 1, [&](std::int64_t i, std::int64_t, int) {
      places[static_cast<std::size_t>(i)] = loop * i;
    });
    for (const std::int64_t place : places) sum += place;
  }
  EXPECT_EQ(sum, std::int64_t{10} * kLoops * (kLoops - 1) / 2);
}

// Each of two pieces waits until the other has begun, which one thread alone could not do.
TEST_F(Teams, WorkAtTheSameTime) {
  SetThreadCount(2);
  const TeamScope team;
  std::mutex mutex;
  std::condition_variable changed;
  int begun = 0;
  ShareOut(2, 1, [&](std::int64_t, std::int64_t, int) {
    std::unique_lock<std::mutex> lock(mutex);
    ++begun;
    changed.notify_all();
    changed.wait(lock, [&] { return begun == 2; });
  });
  EXPECT_EQ(begun, 2);
}

TEST_F(Teams, EndTheRunInTheCallingThread) {
  SetThreadCount(4);
  const TeamScope team;
  for (int round = 0; round < 10; ++round) {
    EXPECT_FATAL(ShareOut(100, 1,
                          [&](std::int64_t i, std::int64_t, int) {
                            if (i == 57) FatalError("Piece %d cannot be had.", static_cast<int>(i));
                          }),
                 "Piece 57 cannot be had.");
  }
  std::atomic<int> pieces = 0;
  ShareOut(100, 1, [&](std::int64_t, std::int64_t, int) { ++pieces; });
  EXPECT_EQ(pieces, 100);
}

TEST_F(Teams, HandOnWhatElseIsThrown) {
  SetThreadCount(2);
  const TeamScope team;
  EXPECT_THROW(ShareOut(10, 1, [](std::int64_t, std::int64_t, int) { throw std::bad_alloc(); }),
               std::bad_alloc);
}

TEST_F(Teams, HaveNoThreadsBeforeALoopNorAfterTheScope) {
  const int before = ThreadsOfProcess();
  SetThreadCount(5);
  {
    const TeamScope team;
    ShareOut(1, 1, [](std::int64_t, std::int64_t, int) {});
    EXPECT_EQ(ThreadsOfProcess(), before);
    ShareOut(2, 1, [](std::int64_t, std::int64_t, int) {});
    EXPECT_EQ(ThreadsOfProcess(), before + 4);
  }
  EXPECT_EQ(ThreadsOfProcess(), before);
}

TEST_F(Teams, WorkInAChildProcess) {
  SetThreadCount(3);
  const auto sum_of_loop = [] {
    const TeamScope team;
    std::atomic<int> sum = 0;
    ShareOut(100, 1, [&](std::int64_t i, std::int64_t, int) { sum += static_cast<int>(i); });
    return sum.load();
  };
  EXPECT_EQ(sum_of_loop(), 4950);
  const pid_t child = fork();
  if (child == 0) _exit(sum_of_loop() == 4950 ? 0 : 1);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(Teams, OfSeveralThreadsOfTheHostDoNotMix) {
  std::vector<std::thread> hosts;
  std::vector<std::int64_t> sums(4);
  for (std::size_t h = 0; h < sums.size(); ++h) {
    hosts.emplace_back([&sums, h] {
      SetThreadCount(3);
      const TeamScope team;
      std::vector<std::int64_t> places(64);
      for (int loop = 0; loop < 200; ++loop) {
        ShareOut(64, 1, [&](std::int64_t i, std::int64_t, int) {
          places[static_cast<std::size_t>(i)] += i * static_cast<std::int64_t>(h);
        });
      }
      for (const std::int64_t place : places) sums[h] += place;
    });
  }
  for (std::thread& host : hosts) host.join();
  for (std::size_t h = 0; h < sums.size(); ++h) {
    EXPECT_EQ(sums[h], static_cast<std::int64_t>(h) * 200 * 2016);
  }
}

}  // namespace
}  // namespace molva
