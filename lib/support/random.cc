// SPDX-License-Identifier: MIT
#include "lib/support/random.h"

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>

namespace molva {
namespace {

// x becomes factor x + term, in 48 bits.
struct Step {
  std::uint64_t factor, term;
  constexpr std::uint64_t Of(std::uint64_t x) const {
    return (x * factor + term) & ((std::uint64_t{1} << 48) - 1);
  }
  // Two as one. What a factor has beyond 48 bits changes none of these.
  constexpr Step Twice() const { return {factor * factor, Of(term)}; }
};
constexpr Step kStep{0x5DEECE66D, 0xB};
constexpr Step kDoubleStep = kStep.Twice();

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
    return UnitOf(state_);
  }

  // Calls use(u, v) with two draws below n, `count` times. Each of the two goes on in double steps,
  // so that the next pair does not wait for two multiplications.
  template <typename Use>
  void DrawPairs(std::size_t n, std::size_t count, const Use& use) {
    RandomState first = kStep.Of(state_);
    for (std::size_t pair = 0; pair < count; ++pair) {
      state_ = kDoubleStep.Of(state_);
      use(IndexOf(first, n), IndexOf(state_, n));
      first = kDoubleStep.Of(first);
    }
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
  // (Signed numbers become doubles, and doubles signed numbers, in one instruction.)
  static double UnitOf(RandomState state) {
    return static_cast<double>(static_cast<std::int64_t>(state)) * 0x1p-48;
  }
  // The product is formed in double, the generator's own type.
  static std::size_t IndexOf(RandomState state, std::size_t n) {
    const double index = UnitOf(state) * static_cast<double>(n);
    return static_cast<std::size_t>(static_cast<std::int64_t>(index));
  }

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
  draws.DrawPairs(p.size(), p.size(), [p](std::size_t u, std::size_t v) { std::swap(p[u], p[v]); });
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
  draws.DrawPairs(p.size() - 8, p.size() / 16, [p](std::size_t u, std::size_t v) {
    for (std::size_t k = 0; k < 4; ++k) std::swap(p[u + k], p[v + k]);
  });
  generator = draws;
}

}  // namespace molva
