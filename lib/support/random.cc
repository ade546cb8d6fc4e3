// SPDX-License-Identifier: MIT
#include "lib/support/random.h"

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>

namespace molva {
namespace {

// The platform's 48-bit generator, drand48, with a state of our own: a host program's draws neither
// change ours nor are changed, and every thread draws for itself.
class Drand48 {
 public:
  explicit Drand48(std::uint64_t seed) : state_(((seed << 16) + 0x330E) & kMask) {}

  // A double in [0, 1).
  double Draw() {
    state_ = (state_ * 0x5DEECE66D + 0xB) & kMask;
    return static_cast<double>(state_) * 0x1p-48;
  }

  // The product is formed in double, the generator's own type.
  std::size_t DrawIndex(std::size_t n) {
    return static_cast<std::size_t>(Draw() * static_cast<double>(n));
  }

 private:
  static constexpr std::uint64_t kMask = (std::uint64_t{1} << 48) - 1;
  std::uint64_t state_;
};

thread_local Drand48 generator(0);

void SetStart(Span<int> p, Start start) {
  if (start == Start::kIdentity) std::iota(p.begin(), p.end(), 0);
}

}  // namespace

void SeedGenerator(int seed) { generator = Drand48(static_cast<std::uint32_t>(seed)); }

double DrawUnit() { return generator.Draw(); }

void RandomPermute(Span<int> p, Start start) {
  SetStart(p, start);
  Drand48 draws = generator;
  for (std::size_t round = 0; round < p.size(); ++round) {
    const std::size_t u = draws.DrawIndex(p.size());
    const std::size_t v = draws.DrawIndex(p.size());
    std::swap(p[u], p[v]);
  }
  generator = draws;
}

void FastRandomPermute(Span<int> p, Start start) {
  SetStart(p, start);
  Drand48 draws = generator;
  for (std::size_t round = 0; round < p.size() / 16; ++round) {
    const std::size_t u = draws.DrawIndex(p.size() - 8);
    const std::size_t v = draws.DrawIndex(p.size() - 8);
    for (std::size_t k = 0; k < 4; ++k) std::swap(p[u + k], p[v + k]);
  }
  generator = draws;
}

}  // namespace molva
