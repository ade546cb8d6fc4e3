// SPDX-License-Identifier: MIT
#include "lib/support/random.h"

#include <cstddef>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace molva {
namespace {

// The product is formed in double, the generator's own type.
std::size_t RandomIndex(std::size_t n) {
  return static_cast<std::size_t>(drand48() * static_cast<double>(n));
}

void SetStart(std::span<int> p, Start start) {
  if (start == Start::kIdentity) std::iota(p.begin(), p.end(), 0);
}

}  // namespace

void SeedGenerators(int seed) {
  std::srand(static_cast<unsigned>(seed));
  srand48(seed);
}

void RandomPermute(std::span<int> p, Start start) {
  SetStart(p, start);
  for (std::size_t round = 0; round < p.size(); ++round) {
    const std::size_t u = RandomIndex(p.size());
    const std::size_t v = RandomIndex(p.size());
    std::swap(p[u], p[v]);
  }
}

void FastRandomPermute(std::span<int> p, Start start) {
  SetStart(p, start);
  for (std::size_t round = 0; round < p.size() / 16; ++round) {
    const std::size_t u = RandomIndex(p.size() - 8);
    const std::size_t v = RandomIndex(p.size() - 8);
    for (std::size_t k = 0; k < 4; ++k) std::swap(p[u + k], p[v + k]);
  }
}

}  // namespace molva
