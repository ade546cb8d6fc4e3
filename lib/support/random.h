// SPDX-License-Identifier: MIT
//
// Random permutations from the numbers of the platform's 48-bit generator, drand48. The sequence of
// draws is fixed: the same seed gives the same permutations and hence the same clustering. The
// state is the library's own, one for each thread, so a host program's sequence of drand48 or rand
// goes on as if nothing had been drawn.
#pragma once

#include <cstdint>

#include "lib/support/span.h"

namespace molva {

// Where the current thread's sequence stands.
using RandomState = std::uint64_t;
RandomState CurrentRandomState();
void SetRandomState(RandomState state);

// Starts the sequence that srand48(seed) starts.
void SeedGenerator(int seed);

// The next number of the sequence, in [0, 1).
double DrawUnit();

enum class Start { kAsGiven, kIdentity };

// p.size() rounds; each draws u, then v, as trunc(drand48() n) and swaps p[u] and p[v].
void RandomPermute(Span<int> p, Start start);

// Where a sequence stands after `count` such permutations of n elements, without drawing them.
RandomState AfterPermutations(RandomState state, int n, std::int64_t count);

// A cheaper partial shuffle: n/16 rounds, each swapping the four elements from u on with the four
// from v on, u and v drawn as trunc(drand48() (n - 8)).
void FastRandomPermute(Span<int> p, Start start);

}  // namespace molva
