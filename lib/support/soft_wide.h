// SPDX-License-Identifier: MIT
//
// Floating numbers of 64-bit significands, 15-bit exponents and a sign, in integers alone, for
// processors that have none: what the x87 calls extended precision. Every operation rounds its true
// result once, to nearest, ties to even, so that it leaves the bits that the x87 leaves, those of
// subnormals and not-a-numbers among them.
#pragma once

#include <algorithm>
#include <bit>
#include <compare>
#include <concepts>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

namespace molva {

__extension__ using Uint128 = unsigned __int128;

// (-1)^negative significand 2^(exponent - kBias - 63). The top bit of the significand is set except
// in zero and in subnormal numbers, whose exponent is 0 and counts as 1. Exponent kEndless marks
// what is not finite: infinity has no other bit in its significand.
class SoftWide {
 public:
  static constexpr int kBias = 0x3fff;
  static constexpr int kEndless = 0x7fff;

  // A block of zero bytes holds zeros.
  SoftWide() = default;
  constexpr SoftWide(float value) : SoftWide(FromBinary<std::uint32_t, 23>(value)) {}
  constexpr SoftWide(double value) : SoftWide(FromBinary<std::uint64_t, 52>(value)) {}
  template <std::integral Integer>
  constexpr SoftWide(Integer value) : SoftWide(FromInteger(value)) {}

  // From its parts, which make a number as told above.
  static constexpr SoftWide Of(bool negative, int exponent, std::uint64_t significand) {
    SoftWide number{};
    number.significand_ = significand;
    number.exponent_ = exponent;
    number.negative_ = negative;
    return number;
  }
  constexpr bool negative() const { return negative_; }
  constexpr int exponent() const { return exponent_; }
  constexpr std::uint64_t significand() const { return significand_; }

  explicit constexpr operator float() const { return ToBinary<float, std::uint32_t, 23>(); }
  explicit constexpr operator double() const { return ToBinary<double, std::uint64_t, 52>(); }
  // Towards zero; the least integer where the type has no such number.
  template <std::integral Integer>
  explicit constexpr operator Integer() const {
    return ToInteger<Integer>();
  }

  constexpr SoftWide operator-() const { return Of(!negative_, exponent_, significand_); }
  constexpr SoftWide operator+() const { return *this; }

  // Loops of sums spend their time here, so it is put into them.
  [[gnu::always_inline]] friend constexpr SoftWide operator+(SoftWide a, SoftWide b) {
    if (a.exponent_ == kEndless || b.exponent_ == kEndless) return EndlessSum(a, b);
    return a.negative_ == b.negative_ ? SumOfMagnitudes(a, b) : Difference(a, b);
  }
  friend constexpr SoftWide operator-(SoftWide a, SoftWide b) {
    return b.IsNan() ? a + b : a + -b;  // not-a-number keeps its sign
  }

  [[gnu::always_inline]] friend constexpr SoftWide operator*(SoftWide a, SoftWide b) {
    const bool negative = a.negative_ != b.negative_;
    if (a.exponent_ == kEndless || b.exponent_ == kEndless) return EndlessProduct(a, b);
    if ((a.significand_ & b.significand_ & kTop) == 0) {
      if (a.significand_ == 0 || b.significand_ == 0) return Of(negative, 0, 0);
      a = a.Normal();
      b = b.Normal();
    }
    const Uint128 product = Uint128{a.significand_} * b.significand_;
    const int exponent = a.exponent_ + b.exponent_ - kBias + 1;
    if (exponent < 2) [[unlikely]]
      return Rounded(negative, exponent, product);
    const int up = product >> 127 != 0 ? 0 : 1;
    return RoundedWords(negative, exponent - up, static_cast<std::uint64_t>(product << up >> 64),
                        static_cast<std::uint64_t>(product) << up);
  }

  friend constexpr SoftWide operator/(SoftWide a, SoftWide b) {
    const bool negative = a.negative_ != b.negative_;
    if (a.exponent_ == kEndless || b.exponent_ == kEndless) return EndlessQuotient(a, b);
    if (b.significand_ == 0) return a.significand_ == 0 ? Indefinite() : Infinity(negative);
    if (a.significand_ == 0) return Of(negative, 0, 0);
    a = a.Normal();
    b = b.Normal();
    const bool fits = a.significand_ < b.significand_;
    const Uint128 dividend = Uint128{a.significand_} << (fits ? 64 : 63);
    const auto quotient = static_cast<std::uint64_t>(dividend / b.significand_);
    const Uint128 remainder = dividend - Uint128{quotient} * b.significand_;
    const Uint128 twice = 2 * remainder;
    const std::uint64_t below = twice > b.significand_    ? kTop + 1
                                : twice == b.significand_ ? kTop
                                                          : std::uint64_t{remainder != 0};
    return Rounded(negative, a.exponent_ - b.exponent_ + kBias - (fits ? 1 : 0),
                   Uint128{quotient} << 64 | below);
  }

  constexpr SoftWide& operator+=(SoftWide other) { return *this = *this + other; }
  constexpr SoftWide& operator-=(SoftWide other) { return *this = *this - other; }
  constexpr SoftWide& operator*=(SoftWide other) { return *this = *this * other; }
  constexpr SoftWide& operator/=(SoftWide other) { return *this = *this / other; }

  friend constexpr bool operator==(SoftWide a, SoftWide b) {
    if (a.IsNan() || b.IsNan()) return false;
    if ((a.significand_ | b.significand_) == 0) return true;
    return a.negative_ == b.negative_ && a.exponent_ == b.exponent_ &&
           a.significand_ == b.significand_;
  }
  friend constexpr std::partial_ordering operator<=>(SoftWide a, SoftWide b) {
    if (a.IsNan() || b.IsNan()) return std::partial_ordering::unordered;
    if ((a.significand_ | b.significand_) == 0) return std::partial_ordering::equivalent;
    if (a.negative_ != b.negative_) {
      return a.negative_ ? std::partial_ordering::less : std::partial_ordering::greater;
    }
    if (a.negative_) std::swap(a, b);
    return a.exponent_ != b.exponent_ ? a.exponent_ <=> b.exponent_
                                      : a.significand_ <=> b.significand_;
  }

  constexpr bool IsNan() const { return exponent_ == kEndless && significand_ != kTop; }
  constexpr bool IsFinite() const { return exponent_ != kEndless; }

  // Rounds a number other than zero, (-1)^negative value 2^(exponent - kBias - 127), in which bits
  // below the last stand for all that is less.
  [[gnu::always_inline]] static constexpr SoftWide Rounded(bool negative, int exponent,
                                                           Uint128 value) {
    const int shift = LeadingZeros(value);
    value <<= shift;
    exponent -= shift;
    if (exponent < 1) [[unlikely]] {
      value = ShiftedRight(value, 1 - exponent);
      exponent = 1;
    }
    return RoundedWords(negative, exponent, static_cast<std::uint64_t>(value >> 64),
                        static_cast<std::uint64_t>(value));
  }
  static constexpr SoftWide Infinity(bool negative) { return Of(negative, kEndless, kTop); }
  // What operations without a result leave.
  static constexpr SoftWide Indefinite() { return Of(true, kEndless, kTop | kQuiet); }

  // The same number with the top bit set, the exponent as low as that needs; it is not zero.
  constexpr SoftWide Normal() const {
    const int shift = std::countl_zero(significand_);
    return Of(negative_, std::max(exponent_, 1) - shift, significand_ << shift);
  }

 private:
  static constexpr std::uint64_t kTop = std::uint64_t{1} << 63;
  static constexpr std::uint64_t kQuiet = std::uint64_t{1} << 62;

  // Rounds a significand whose top bit is set, or whose exponent is 1, by what is below it.
  [[gnu::always_inline]] static constexpr SoftWide RoundedWords(bool negative, int exponent,
                                                                std::uint64_t significand,
                                                                std::uint64_t below) {
    // Half of all results are rounded up, so this is no branch.
    const std::uint64_t up = below > kTop - (significand & 1) ? 1 : 0;
    significand += up;
    if (significand < up) [[unlikely]] {
      significand = kTop;
      ++exponent;
    }
    if (significand < kTop) exponent = 0;
    return exponent < kEndless ? Of(negative, exponent, significand) : Infinity(negative);
  }

  static constexpr int LeadingZeros(Uint128 value) {
    const auto high = static_cast<std::uint64_t>(value >> 64);
    return high != 0 ? std::countl_zero(high)
                     : 64 + std::countl_zero(static_cast<std::uint64_t>(value));
  }

  // What is shifted out leaves the last bit set, if it is not nothing.
  static constexpr Uint128 ShiftedRight(Uint128 value, int shift) {
    if (shift > 127) return Uint128{value != 0};
    const Uint128 shifted = value >> shift;
    return shifted | Uint128{shifted << shift != value};
  }

  constexpr SoftWide Quieted() const { return Of(negative_, exponent_, significand_ | kQuiet); }

  // Of two, that of the larger significand, and the positive one of two alike.
  static constexpr SoftWide NanOf(SoftWide a, SoftWide b) {
    if (!a.IsNan()) return b.Quieted();
    if (!b.IsNan()) return a.Quieted();
    const bool is_b =
        a.significand_ != b.significand_ ? b.significand_ > a.significand_ : a.negative_;
    return is_b ? b.Quieted() : a.Quieted();
  }

  static constexpr SoftWide EndlessSum(SoftWide a, SoftWide b) {
    if (a.IsNan() || b.IsNan()) return NanOf(a, b);
    if (a.exponent_ != b.exponent_) return a.exponent_ == kEndless ? a : b;
    return a.negative_ == b.negative_ ? a : Indefinite();
  }
  static constexpr SoftWide EndlessProduct(SoftWide a, SoftWide b) {
    if (a.IsNan() || b.IsNan()) return NanOf(a, b);
    if (a.significand_ == 0 || b.significand_ == 0) return Indefinite();
    return Infinity(a.negative_ != b.negative_);
  }
  static constexpr SoftWide EndlessQuotient(SoftWide a, SoftWide b) {
    if (a.IsNan() || b.IsNan()) return NanOf(a, b);
    const bool negative = a.negative_ != b.negative_;
    if (a.exponent_ == kEndless) {
      return b.exponent_ == kEndless ? Indefinite() : Infinity(negative);
    }
    return Of(negative, 0, 0);
  }

  // Two magnitudes on one scale: the larger exponent's top bit stands second, the other is shifted.
  struct Aligned {
    int exponent;
    Uint128 a, b;
  };
  [[gnu::always_inline]] static constexpr Aligned Align(SoftWide a, SoftWide b) {
    const int exponent_a = std::max(a.exponent_, 1);
    const int exponent_b = std::max(b.exponent_, 1);
    const Uint128 value_a = Uint128{a.significand_} << 63;
    const Uint128 value_b = Uint128{b.significand_} << 63;
    return exponent_a >= exponent_b
               ? Aligned{exponent_a + 1, value_a, ShiftedFar(value_b, exponent_a - exponent_b)}
               : Aligned{exponent_b + 1, ShiftedFar(value_a, exponent_b - exponent_a), value_b};
  }
  static constexpr Uint128 ShiftedFar(Uint128 value, int shift) {
    return shift <= 63 ? value >> shift : ShiftedRight(value, shift);
  }

  // Nearly all sums are of numbers whose significands overlap: two words of 64 bits hold all of
  // them. The first number is the larger.
  static constexpr bool Overlap(SoftWide a, SoftWide b) {
    return b.exponent_ != 0 && a.exponent_ - b.exponent_ <= 63;
  }
  // What is below the first word of b on the scale of a.
  static constexpr std::uint64_t Below(SoftWide b, int shift) {
    return b.significand_ << 1 << (63 - shift);
  }

  [[gnu::always_inline]] static constexpr SoftWide SumOfMagnitudes(SoftWide a, SoftWide b) {
    if (a.exponent_ < b.exponent_) std::swap(a, b);
    if (!Overlap(a, b)) [[unlikely]]
      return AlignedSum(a, b);
    const int shift = a.exponent_ - b.exponent_;
    const std::uint64_t sum = a.significand_ + (b.significand_ >> shift);
    const std::uint64_t below = Below(b, shift);
    if (sum >= a.significand_) return RoundedWords(a.negative_, a.exponent_, sum, below);
    return RoundedWords(a.negative_, a.exponent_ + 1, sum >> 1 | kTop,
                        sum << 63 | below >> 1 | (below & 1));
  }
  [[gnu::always_inline]] static constexpr SoftWide Difference(SoftWide a, SoftWide b) {
    if (a.exponent_ < b.exponent_) std::swap(a, b);
    if (!Overlap(a, b)) [[unlikely]]
      return AlignedDifference(a, b);
    const int shift = a.exponent_ - b.exponent_;
    const std::uint64_t below_b = Below(b, shift);
    const std::uint64_t whole = a.significand_ - (b.significand_ >> shift) - (below_b != 0 ? 1 : 0);
    const std::uint64_t below = ~below_b + 1;
    // Where they are that near, either may be the larger, or the result subnormal.
    if (a.significand_ <= b.significand_ >> shift || whole == 0) return AlignedDifference(a, b);
    const int up = std::countl_zero(whole);
    if (a.exponent_ <= up) [[unlikely]]
      return AlignedDifference(a, b);
    return RoundedWords(a.negative_, a.exponent_ - up, whole << up | below >> 1 >> (63 - up),
                        below << up);
  }

  static constexpr SoftWide AlignedSum(SoftWide a, SoftWide b) {
    const Aligned aligned = Align(a, b);
    const Uint128 sum = aligned.a + aligned.b;
    return sum == 0 ? a : Rounded(a.negative_, aligned.exponent, sum);
  }
  static constexpr SoftWide AlignedDifference(SoftWide a, SoftWide b) {
    const Aligned aligned = Align(a, b);
    if (aligned.a == aligned.b) return Of(false, 0, 0);
    return aligned.a > aligned.b ? Rounded(a.negative_, aligned.exponent, aligned.a - aligned.b)
                                 : Rounded(b.negative_, aligned.exponent, aligned.b - aligned.a);
  }

  template <std::integral Integer>
  static constexpr SoftWide FromInteger(Integer value) {
    const bool negative = value < 0;
    const auto bits = static_cast<std::uint64_t>(value);
    const std::uint64_t magnitude = negative ? ~bits + 1 : bits;
    if (magnitude == 0) return Of(false, 0, 0);
    return Of(negative, kBias + 63, magnitude).Normal();
  }

  template <std::integral Integer>
  constexpr Integer ToInteger() const {
    using Limits = std::numeric_limits<Integer>;
    const int bits = exponent_ - kBias + 1;  // before the point
    if (bits < 1) return 0;
    if (bits > 64) return Limits::min();
    const std::uint64_t magnitude = significand_ >> (64 - bits);
    if (magnitude > static_cast<std::uint64_t>(Limits::max()) || (negative_ && !Limits::is_signed))
      return Limits::min();
    return static_cast<Integer>(negative_ ? ~magnitude + 1 : magnitude);
  }

  // A format of IEEE 754 whose fraction has so many bits.
  template <typename Bits, int kFraction, typename Number>
  static constexpr SoftWide FromBinary(Number value) {
    constexpr int kExponentBits = static_cast<int>(sizeof(Bits)) * 8 - 1 - kFraction;
    constexpr int kMostExponent = (1 << kExponentBits) - 1;
    const auto bits = std::bit_cast<Bits>(value);
    const bool negative = bits >> (kFraction + kExponentBits) != 0;
    const int exponent = static_cast<int>(bits >> kFraction) & kMostExponent;
    const std::uint64_t fraction = static_cast<std::uint64_t>(bits) << (63 - kFraction) & ~kTop;
    if (exponent == kMostExponent) {
      return fraction == 0 ? Infinity(negative) : Of(negative, kEndless, fraction | kTop | kQuiet);
    }
    if (exponent != 0) return Of(negative, exponent - kMostExponent / 2 + kBias, fraction | kTop);
    if (fraction == 0) return Of(negative, 0, 0);
    return Of(negative, 1 - kMostExponent / 2 + kBias, fraction).Normal();
  }

  template <typename Number, typename Bits, int kFraction>
  constexpr Number ToBinary() const {
    constexpr int kExponentBits = static_cast<int>(sizeof(Bits)) * 8 - 1 - kFraction;
    constexpr int kMostExponent = (1 << kExponentBits) - 1;
    constexpr Bits kEndlessBits = static_cast<Bits>(kMostExponent) << kFraction;
    constexpr int kDropped = 63 - kFraction;
    const Bits sign = static_cast<Bits>(negative_) << (kFraction + kExponentBits);
    if (exponent_ == kEndless) {
      const std::uint64_t fraction = IsNan() ? (significand_ | kQuiet) & ~kTop : 0;
      return std::bit_cast<Number>(sign | kEndlessBits | static_cast<Bits>(fraction >> kDropped));
    }
    const int exponent = exponent_ - kBias + kMostExponent / 2;
    // In subnormal numbers more is dropped; a carry out of the fraction makes the exponent one
    // more.
    const int dropped = exponent < 1 ? std::min(kDropped + 1 - exponent, 127) : kDropped;
    const Uint128 value = (Uint128{significand_} << 64) >> dropped;
    const auto kept = static_cast<std::uint64_t>(value >> 64);
    const auto below = static_cast<std::uint64_t>(value);
    const bool up = below > kTop || (below == kTop && (kept & 1) != 0);
    const std::uint64_t scale = exponent < 1 ? 0 : static_cast<std::uint64_t>(exponent) - 1;
    const std::uint64_t magnitude = (scale << kFraction) + kept + (up ? 1 : 0);
    if (exponent >= kMostExponent || magnitude >= kEndlessBits) {
      return std::bit_cast<Number>(sign | kEndlessBits);
    }
    return std::bit_cast<Number>(sign | static_cast<Bits>(magnitude));
  }

  std::uint64_t significand_;
  std::int32_t exponent_;
  bool negative_;
};
static_assert(std::is_trivial_v<SoftWide>);

// a + b and a - b.
template <typename Number>
Number SumOf(double a, double b) {
  return static_cast<Number>(a) + static_cast<Number>(b);
}
template <typename Number>
Number DifferenceOf(double a, double b) {
  return static_cast<Number>(a) - static_cast<Number>(b);
}

// Nearly all are numbers of double precision. One that was rounded shows: less the operand of the
// larger magnitude, which is formed exactly, it is not the other operand.
template <>
inline SoftWide SumOf(double a, double b) {
  const double sum = a + b;
  if (sum - a == b && sum - b == a) return sum;
  return static_cast<SoftWide>(a) + static_cast<SoftWide>(b);
}
template <>
inline SoftWide DifferenceOf(double a, double b) {
  const double difference = a - b;
  if (a - difference == b && difference + b == a) return difference;
  return static_cast<SoftWide>(a) - static_cast<SoftWide>(b);
}

// The square root; not-a-number of a number below zero.
SoftWide Sqrt(SoftWide x);
// The fourth root of a number of zero or more.
SoftWide FourthRoot(SoftWide x);
// The logarithms to the base e and 2: the nearest number nearly always, else a neighbour of it.
SoftWide Log(SoftWide x);
SoftWide Log2(SoftWide x);
constexpr bool IsNan(SoftWide x) { return x.IsNan(); }
constexpr SoftWide Fabs(SoftWide x) { return SoftWide::Of(false, x.exponent(), x.significand()); }

}  // namespace molva
