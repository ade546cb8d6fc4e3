// SPDX-License-Identifier: MIT
//
// Random permutations from the platform's 48-bit generator. The sequence of draws is fixed: the
// same seed gives the same permutations and hence the same clustering.
#pragma once

#include <span>

namespace molva {

// Seeds the classic generator and the 48-bit one.
void SeedGenerators(int seed);

enum class Start { kAsGiven, kIdentity };

// p.size() rounds; each draws u, then v, as trunc(drand48() n) and swaps p[u] and p[v].
void RandomPermute(std::span<int> p, Start start);

// A cheaper partial shuffle: n/16 rounds, each swapping the four elements from u on with the four
// from v on, u and v drawn as trunc(drand48() (n - 8)).
void FastRandomPermute(std::span<int> p, Start start);

}  // namespace molva
