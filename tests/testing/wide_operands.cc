// SPDX-License-Identifier: MIT
#include "tests/testing/wide_operands.h"

#include <bit>
#include <cmath>
#include <cstdio>

#include "lib/support/wide.h"

namespace testing_support {
namespace {

using molva::SoftWide;

constexpr std::uint64_t kTop = std::uint64_t{1} << 63;

// Bits are taken off the low end.
class Bits {
 public:
  explicit Bits(std::uint64_t bits) : bits_(bits) {}
  int Below(int n) {
    const auto taken = static_cast<int>(bits_ % static_cast<unsigned>(n));
    bits_ /= static_cast<unsigned>(n);
    return taken;
  }

 private:
  std::uint64_t bits_;
};

// Runs of zeros and of ones at the low end make halfway cases and carries.
std::uint64_t Shaped(std::uint64_t significand, Bits& choice) {
  const int length = choice.Below(64);
  switch (choice.Below(4)) {
    case 0:
      return significand & ~std::uint64_t{0} << length;
    case 1:
      return significand | ~(~std::uint64_t{0} << length);
    case 2:
      return std::uint64_t{1} << length;
    default:
      return significand;
  }
}

int ExponentFrom(Bits& choice) {
  switch (choice.Below(8)) {
    case 0:
      return choice.Below(SoftWide::kEndless);
    case 1:
      return choice.Below(140);
    case 2:
      return SoftWide::kEndless - 1 - choice.Below(70);
    case 3:
      return choice.Below(8) == 0 ? SoftWide::kEndless : 0;
    default:
      return SoftWide::kBias - 70 + choice.Below(140);
  }
}

SoftWide NumberFrom(std::uint64_t bits, std::uint64_t choices) {
  Bits choice(choices);
  const bool negative = choice.Below(2) != 0;
  const int exponent = ExponentFrom(choice);
  const std::uint64_t significand = Shaped(bits, choice);
  if (exponent == 0) return SoftWide::Of(negative, 0, significand & ~kTop);
  if (exponent == SoftWide::kEndless && choice.Below(2) == 0) return SoftWide::Infinity(negative);
  return SoftWide::Of(negative, exponent, significand | kTop);
}

// A number so close that the two cancel.
SoftWide NeighbourOf(SoftWide x, Bits& choice) {
  const int exponent = x.exponent() + choice.Below(3) - 1;
  if (exponent < 1 || exponent >= SoftWide::kEndless || x.exponent() == 0) return -x;
  const bool negative = choice.Below(2) != 0;
  const auto difference = static_cast<std::uint64_t>(choice.Below(4));
  return SoftWide::Of(negative, exponent, x.significand() ^ difference);
}

template <typename Number>
bool IsIn(SoftWide x) {
  const SoftWide least = std::numeric_limits<Number>::min();
  const SoftWide most = std::numeric_limits<Number>::max();
  return x > least - 1 && x < most + 1;
}

// Calls see(operation, result) with everything that numbers of the type make of the pair.
template <typename Number, typename From, typename See>
void ForEachResult(const WidePair& pair, From from, See see) {
  const Number a = from(pair.a);
  const Number b = from(pair.b);
  see("+", a + b);
  see("-", a - b);
  see("*", a * b);
  see("/", a / b);
  see("sum of doubles",
      molva::SumOf<Number>(static_cast<double>(pair.a), static_cast<double>(pair.b)));
  see("difference of doubles",
      molva::DifferenceOf<Number>(static_cast<double>(pair.a), static_cast<double>(pair.b)));
  see("negation", -a);
  see("square root", molva::Sqrt(a));
  see("float", Number(static_cast<float>(a)));
  see("double", Number(static_cast<double>(a)));
  see("comparisons",
      Number((a < b) + 2 * (a <= b) + 4 * (a > b) + 8 * (a >= b) + 16 * (a == b) + 32 * (a != b)));
  see("is no number", Number(molva::IsNan(a) ? 1 : 0));
  if (IsIn<std::int32_t>(pair.a)) see("to int", Number(static_cast<std::int32_t>(a)));
  if (IsIn<std::uint32_t>(pair.a)) see("to unsigned", Number(static_cast<std::uint32_t>(a)));
  if (IsIn<std::int64_t>(pair.a)) see("to long", Number(static_cast<std::int64_t>(a)));
  if (IsIn<std::uint64_t>(pair.a)) see("to unsigned long", Number(static_cast<std::uint64_t>(a)));
  see("from float", Number(std::bit_cast<float>(static_cast<std::uint32_t>(pair.bits))));
  see("from double", Number(std::bit_cast<double>(pair.bits)));
  see("from int", Number(static_cast<std::int32_t>(pair.bits)));
  see("from unsigned", Number(static_cast<std::uint32_t>(pair.bits)));
  see("from long", Number(static_cast<std::int64_t>(pair.bits)));
  see("from unsigned long", Number(pair.bits));
}

}  // namespace

WidePair PairFrom(const std::uint64_t (&bits)[4]) {
  Bits choice(bits[3]);
  const SoftWide a = NumberFrom(bits[0], bits[1]);
  const bool cancels = choice.Below(4) == 0;
  return {a, cancels ? NeighbourOf(a, choice) : NumberFrom(bits[2], bits[3] >> 2),
          bits[0] ^ bits[2]};
}

// The finaliser of a 64-bit hash over a counter.
std::uint64_t WidePairs::Draw() {
  state_ += 0x9e3779b97f4a7c15U;
  std::uint64_t x = state_;
  x = (x ^ x >> 30) * 0xbf58476d1ce4e5b9U;
  x = (x ^ x >> 27) * 0x94d049bb133111ebU;
  return x ^ x >> 31;
}

WidePair WidePairs::Next() {
  std::uint64_t bits[4];
  for (std::uint64_t& b : bits) b = Draw();
  return PairFrom(bits);
}

std::vector<WideResult> ResultsOf(const WidePair& pair) {
  std::vector<WideResult> results;
  ForEachResult<SoftWide>(
      pair, [](SoftWide x) { return x; },
      [&results](const char* operation, SoftWide value) {
        results.push_back({operation, value});
      });
  results.push_back({"fourth root", molva::FourthRoot(pair.a)});
  results.push_back({"logarithm", molva::Log(pair.a)});
  results.push_back({"binary logarithm", molva::Log2(pair.a)});
  return results;
}

#if LDBL_MANT_DIG == 64

std::string DifferenceFromExtended(const WidePair& pair) {
  const std::vector<WideResult> soft = ResultsOf(pair);
  std::string difference;
  std::size_t at = 0;
  ForEachResult<long double>(
      pair, [](SoftWide x) { return molva::ExtendedOf(x); },
      [&](const char* operation, long double wanted) {
        const SoftWide value = soft[at++].value;
        const SoftWide expected = molva::SoftWideOf(wanted);
        const bool is_same = value.significand() == expected.significand() &&
                             value.exponent() == expected.exponent() &&
                             value.negative() == expected.negative();
        if (is_same || !difference.empty()) return;
        char text[200];
        std::snprintf(text, sizeof text, "%s of %La and %La is %La, not %La", operation,
                      molva::ExtendedOf(pair.a), molva::ExtendedOf(pair.b), wanted,
                      molva::ExtendedOf(value));
        difference = text;
      });
  return difference;
}

#endif

std::uint64_t Digest(std::uint64_t digest, const std::vector<WideResult>& results) {
  for (const WideResult& result : results) {
    const auto rest = static_cast<std::uint64_t>(result.value.exponent()) << 1 |
                      (result.value.negative() ? 1U : 0U);
    for (const std::uint64_t part : {result.value.significand(), rest}) {
      digest = (digest ^ part) * 0x100000001b3U;
      digest ^= digest >> 29;
    }
  }
  return digest;
}

}  // namespace testing_support
