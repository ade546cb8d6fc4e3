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
  explicit Drand48(RandomState state) : state_(state) {}
  static Drand48 Seeded(std::uint32_t seed) {
    return Drand48((std::uint64_t{seed} << 16) + 0x330E);
  }

  // A double in [0, 1).
  double Draw() {
    state_ = kStep.Of(state_);
    return static_cast<double>(state_) * 0x1p-48;
  }

  // The product is formed in double, the generator's own type.
  std::size_t DrawIndex(std::size_t n) {
    return static_cast<std::size_t>(Draw() * static_cast<double>(n));
  }

  // So many draws are one step as well: the steps of the powers of two that make them up.
  void Skip(std::uint64_t draws) {
    Step power = kStep;
    for (; draws != 0; draws >>= 1, power = power.Twice()) {
      if ((draws & 1) != 0) state_ = power.Of(state_);
    }
  }

  RandomState state() const { return state_; }

 private:
  // x becomes factor x + term, in 48 bits.
  struct Step {
    std::uint64_t factor, term;
    constexpr std::uint64_t Of(std::uint64_t x) const { return (x * factor + term) & kMask; }
    constexpr Step Twice() const { return {factor * factor & kMask, Of(term)}; }
  };
  static constexpr std::uint64_t kMask = (std::uint64_t{1} << 48) - 1;
  static constexpr Step kStep{0x5DEECE66D, 0xB};
  RandomState state_;
};

thread_local Drand48 generator = Drand48::Seeded(0);

constexpr std::uint64_t kDrawsPerRound = 2;

void SetStart(Span<int> p, Start start) {
  if (start == Start::kIdentity) std::iota(p.begin(), p.end(), 0);
}

}  // namespace

RandomState CurrentRandomState() { return generator.state(); }
void SetRandomState(RandomState state) { generator = Drand48(state); }

void SeedGenerator(int seed) { generator = Drand48::Seeded(static_cast<std::uint32_t>(seed)); }

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

RandomState AfterPermutations(RandomState state, int n, std::int64_t count) {
  Drand48 draws(state);
  draws.Skip(kDrawsPerRound * static_cast<std::uint64_t>(n) * static_cast<std::uint64_t>(count));
  return draws.state();
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
