// SPDX-License-Identifier: MIT
//
// Numbers as files spell them nearly always are converted here; every other spelling is left to the
// standard conversions, which are slow.
#include "programs/io/number_text.h"

#include <array>
#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <type_traits>

#include "lib/support/wide.h"

namespace mardle {
namespace {

using molva::Wide;

constexpr std::ptrdiff_t kDigitsOfALong = 18;         // fit a long whatever they are
constexpr std::ptrdiff_t kDigitsOfASignificand = 19;  // fit 64 bits without a sign

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool EndsField(char c) { return c == ' ' || c == '\t' || c == '\0'; }

const char* EndOfField(const char* text) {
  while (!EndsField(*text)) ++text;
  return text;
}

// Appends the digits at the text to the number, which wraps around when they are too many. Returns
// the character behind them.
const char* AppendDigits(const char* text, std::uint64_t& number) {
  for (; IsDigit(*text); ++text) number = 10 * number + static_cast<std::uint64_t>(*text - '0');
  return text;
}

// The standard conversions skip any white space in front, and in a field of nothing else they would
// go on into the next one.
template <typename Convert>
auto Standard(const char* field, Convert convert) {
  field += std::strspn(field, "\n\v\f\r");
  return convert(EndsField(*field) ? "" : field);
}

Parsed<long> ParseLongByStandard(const char* field) {
  const long value =
      Standard(field, [](const char* text) { return std::strtol(text, nullptr, 10); });
  return {value, EndOfField(field)};
}

Parsed<double> ParseDoubleByStandard(const char* field) {
  const double value = Standard(field, [](const char* text) { return std::strtod(text, nullptr); });
  return {value, EndOfField(field)};
}

// The last power of ten that the type holds exactly: 5^22 fits 53 bits, 5^27 fits 64.
template <typename Number>
constexpr int kLargestPower = std::is_same_v<Number, double> ? 22 : 27;

template <typename Number>
constexpr auto kPowersOfTen = [] {
  std::array<Number, kLargestPower<Number> + 1> powers{};
  Number power = 1;
  for (Number& p : powers) {
    p = power;
    power *= 10;
  }
  return powers;
}();

template <typename Number>
bool HoldsPower(std::ptrdiff_t exponent) {
  return exponent >= -kLargestPower<Number> && exponent <= kLargestPower<Number>;
}

// significand * 10^exponent. Both operands are exact, so the result is the true value rounded once.
template <typename Number>
Number Scaled(std::uint64_t significand, std::ptrdiff_t exponent) {
  const auto whole = static_cast<Number>(significand);
  return exponent < 0 ? whole / kPowersOfTen<Number>[static_cast<std::size_t>(-exponent)]
                      : whole * kPowersOfTen<Number>[static_cast<std::size_t>(exponent)];
}

// The same rounded to double, unless that cannot be told. To round the value of 64 bits again, to
// 53, gives what the true value gives, except midway between two doubles: there the first rounding
// may have hidden on which side the true value lies.
std::optional<double> ScaledToDouble(std::uint64_t significand, std::ptrdiff_t exponent) {
  constexpr std::uint64_t kLargestExactDouble = std::uint64_t{1} << 53;
  constexpr bool kDoublesRoundToDouble = FLT_EVAL_METHOD == 0;
  if (kDoublesRoundToDouble && significand <= kLargestExactDouble && HoldsPower<double>(exponent)) {
    return Scaled<double>(significand, exponent);
  }
  if (!HoldsPower<Wide>(exponent)) return std::nullopt;
  const Wide value = Scaled<Wide>(significand, exponent);
  const auto nearest = static_cast<double>(value);
  const Wide mirrored = value + (value - nearest);
  const bool is_midway = value != nearest && static_cast<double>(mirrored) == mirrored;
  if (is_midway) return std::nullopt;
  return nearest;
}

// The digits of a significand, not counting the zeros before the first other digit.
std::ptrdiff_t SignificantDigits(const char* significand, std::ptrdiff_t digits) {
  for (; *significand == '0' || *significand == '.'; ++significand) {
    if (*significand == '0') --digits;
  }
  return digits;
}

// Adds the exponent at the text ("e-5") to `exponent` and returns the character behind it; the text
// itself when none stands there or it has too many digits. One without digits adds nothing.
const char* AddExponent(const char* text, std::ptrdiff_t& exponent) {
  constexpr std::ptrdiff_t kMostDigits = 4;
  if (*text != 'e' && *text != 'E') return text;
  const bool negative = text[1] == '-';
  const char* const first = text + (negative || text[1] == '+' ? 2 : 1);
  std::uint64_t power = 0;
  const char* const end = AppendDigits(first, power);
  if (end - first > kMostDigits) return text;
  exponent += negative ? -static_cast<std::ptrdiff_t>(power) : static_cast<std::ptrdiff_t>(power);
  return end;
}

}  // namespace

Parsed<long> ParseLong(const char* field) {
  std::uint64_t number = 0;
  const char* const end = AppendDigits(field, number);
  if (end == field || end - field > kDigitsOfALong) return ParseLongByStandard(field);
  return {static_cast<long>(number), EndOfField(end)};
}

Parsed<double> ParseDouble(const char* field) {
  const bool negative = *field == '-';
  const char* const significand = field + (negative ? 1 : 0);
  std::uint64_t number = 0;
  const char* end = AppendDigits(significand, number);
  std::ptrdiff_t digits = end - significand;
  std::ptrdiff_t exponent = 0;
  if (*end == '.') {
    const char* const fraction = end + 1;
    end = AppendDigits(fraction, number);
    exponent = fraction - end;
    digits += end - fraction;
  }
  if (digits == 0) return ParseDoubleByStandard(field);
  if (digits > kDigitsOfASignificand) digits = SignificantDigits(significand, digits);
  end = AddExponent(end, exponent);
  if (digits > kDigitsOfASignificand || !EndsField(*end)) return ParseDoubleByStandard(field);
  const std::optional<double> magnitude = ScaledToDouble(number, exponent);
  if (!magnitude) return ParseDoubleByStandard(field);
  return {negative ? -*magnitude : *magnitude, end};
}

}  // namespace mardle
