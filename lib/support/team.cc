// SPDX-License-Identifier: MIT
//
// A team of our own: what compilers and libraries bring along keeps its threads for the life of the
// process, busy for a while after each loop, and does not survive a fork.
#include "lib/support/team.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "lib/support/fatal.h"
#include "lib/support/processors.h"

namespace molva {
namespace {

thread_local int thread_count = 1;
thread_local Team* current_team = nullptr;

// A thread that waits for very little looks again before it sleeps: about 20 microseconds long.
constexpr int kLooks = 500;

inline void Pause() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#endif
}

// Signals are for the threads of the program.
class NoSignals {
 public:
  NoSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~NoSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  NoSignals(const NoSignals&) = delete;
  NoSignals& operator=(const NoSignals&) = delete;

 private:
  sigset_t before_;
};

}  // namespace

// Helpers join a loop while it is open. The caller closes it when no piece is left and waits for
// those that have joined; who wakes too late has missed nothing.
class Team {
 public:
  explicit Team(int size) : size_(size), may_look_(size <= ProcessorCount()) {}
  ~Team() {
    state_.fetch_or(kEnded);
    Wake();
    for (std::thread& helper : helpers_) helper.join();
  }
  Team(const Team&) = delete;
  Team& operator=(const Team&) = delete;

  int size() const { return size_; }

  void Run(std::int64_t count, std::int64_t piece, PieceFunction function, const void* work) {
    StartHelpers();
    count_ = count;
    piece_ = piece;
    function_ = function;
    work_ = work;
    next_.store(0, std::memory_order_relaxed);
    state_.store(((state_.load() & kLoop) + kOneLoop) | kOpen);
    Wake();
    current_team = nullptr;
    TakePieces(0);
    current_team = this;
    state_.fetch_and(~kOpen);
    WaitForJoined();
    RethrowError();
  }

 private:
  // How many helpers are in a loop, whether it may be joined, whether all is over, and the number
  // of the loop, which may wrap around: a helper that slept so long would miss one loop.
  using State = std::uint32_t;
  static constexpr State kJoined = (1 << 11) - 1;
  static_assert(kMostThreads <= kJoined);
  static constexpr State kOpen = 1 << 11;
  static constexpr State kEnded = 1 << 12;
  static constexpr State kOneLoop = 1 << 13;
  static constexpr State kLoop = ~(kOneLoop - 1);

  // As many as can be had.
  void StartHelpers() {
    if (started_) return;
    started_ = true;
    const NoSignals no_signals;
    helpers_.reserve(static_cast<std::size_t>(size_ - 1));
    try {
      for (int member = 1; member < size_; ++member)
        helpers_.emplace_back(&Team::Help, this, member);
    } catch (const std::system_error&) {
    }
  }

  void Help(int member) {
    State done = 0;
    for (int looks = 0;;) {
      State state = state_.load();
      if ((state & kEnded) != 0) return;
      if ((state & kOpen) == 0 || (state & kLoop) == done) {
        WaitWhile(state, looks++);
      } else if (state_.compare_exchange_strong(state, state + 1)) {
        done = state & kLoop;
        TakePieces(member);
        // The caller may be waiting for the last one.
        if (state_.fetch_sub(1) == (done | 1)) Wake();
        looks = 0;
      }
    }
  }

  void WaitForJoined() {
    int looks = 0;
    for (State state; ((state = state_.load()) & kJoined) != 0;) WaitWhile(state, looks++);
  }

  void WaitWhile(State state, int looks) {
    if (may_look_ && looks < kLooks) return Pause();
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return state_.load() != state; });
  }

  // After a change of the state. Who is about to sleep holds the mutex or sees the change.
  void Wake() {
    { const std::lock_guard<std::mutex> guard(mutex_); }
    changed_.notify_all();
  }

  void TakePieces(int member) {
    const CatchableErrors throws;
    try {
      for (std::int64_t first; (first = next_.fetch_add(piece_)) < count_;) {
        function_(work_, first, std::min(first + piece_, count_), member);
      }
    } catch (...) {
      const std::lock_guard<std::mutex> guard(mutex_);
      if (!error_) error_ = std::current_exception();
      next_.store(count_);
    }
  }

  // An error of a piece becomes the caller's own.
  void RethrowError() {
    const std::exception_ptr error = std::exchange(error_, nullptr);
    if (!error) return;
    try {
      std::rethrow_exception(error);
    } catch (const ThrownError& thrown) {
      FatalError("%s", thrown.what());
    }
  }

  int size_;
  bool may_look_;
  bool started_ = false;
  std::vector<std::thread> helpers_;
  std::atomic<State> state_{0};
  std::mutex mutex_;
  std::condition_variable changed_;

  std::atomic<std::int64_t> next_{0};  // where the next piece begins
  std::int64_t count_ = 0;
  std::int64_t piece_ = 0;
  PieceFunction function_ = nullptr;
  const void* work_ = nullptr;

  std::exception_ptr error_;
};

void SetThreadCount(int count) {
  if (count < 0 || count > kMostThreads) {
    FatalError("The number of threads must be between 0 and %d! NumThreads=%d\n", kMostThreads,
               count);
  }
  thread_count = count > 0 ? count : std::min(ProcessorCount(), kMostThreads);
}

int ThreadCount() { return thread_count; }

TeamScope::TeamScope() {
  if (current_team != nullptr || thread_count == 1) return;
  team_ = std::make_unique<Team>(thread_count);
  current_team = team_.get();
}

TeamScope::~TeamScope() {
  if (team_) current_team = nullptr;
}

int TeamSize() { return current_team != nullptr ? current_team->size() : 1; }

void ShareOutPieces(std::int64_t count, std::int64_t piece, PieceFunction function,
                    const void* work) {
  if (count <= 0) return;
  if (current_team == nullptr || count <= piece) return function(work, 0, count, 0);
  current_team->Run(count, piece, function, work);
}

}  // namespace molva
