// SPDX-License-Identifier: MIT
//
// The threads of a call, and loops whose pieces they share out among themselves.
//
// What a piece does must not depend on which thread takes it, nor on what other pieces have done:
// it fills places of its own and reads what nothing writes meanwhile. So results are the same, bit
// for bit, for every number of threads.
#pragma once

#include <cstdint>
#include <memory>

namespace molva {

// How many threads the calls of the current thread may use, 1 at first; 0 asks for as many as there
// are processors for the process. Numbers below 0 and above kMostThreads end the run.
constexpr int kMostThreads = 1024;
void SetThreadCount(int count);
int ThreadCount();

class Team;

// Stands in an entry point: loops under it are shared out. Threads are started when a loop needs
// them and have ended when the scope ends, so none is there between calls, when a process forks or
// unloads the library. A scope within another has no effect.
class TeamScope {
 public:
  TeamScope();
  ~TeamScope();
  TeamScope(const TeamScope&) = delete;
  TeamScope& operator=(const TeamScope&) = delete;

 private:
  std::unique_ptr<Team> team_;
};

// How many may take part in a loop here; they are called by the numbers 0 to TeamSize() - 1.
int TeamSize();

// A piece of a loop, first to last - 1, as the given member takes it.
using PieceFunction = void (*)(const void* work, std::int64_t first, std::int64_t last, int member);

void ShareOutPieces(std::int64_t count, std::int64_t piece, PieceFunction function,
                    const void* work);

// Calls work(first, last, member) for pieces of at most `piece` that make up 0 to count - 1, each
// once, and returns when all are done. Without a team, or when there is one piece only, it is one
// call. A piece may end the run: that happens in the calling thread, after the others have stopped.
// Only the calling thread may report progress; a piece holds no loop that is shared out again.
template <typename Work>
void ShareOut(std::int64_t count, std::int64_t piece, const Work& work) {
  ShareOutPieces(
      count, piece,
      [](const void* of, std::int64_t first, std::int64_t last, int member) {
        (*static_cast<const Work*>(of))(first, last, member);
      },
      &work);
}

// The same for places that are each much work: calls work(i) for each.
template <typename Work>
void ShareOutOne(std::int64_t count, const Work& work) {
  ShareOut(count, 1, [&work](std::int64_t first, std::int64_t last, int) {
    for (std::int64_t i = first; i < last; ++i) work(i);
  });
}

}  // namespace molva
