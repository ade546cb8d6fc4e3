// SPDX-License-Identifier: MIT
//
// The one name for "accumulated in higher precision".
#pragma once

#include <cfloat>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "lib/support/soft_wide.h"

namespace molva {

// Whether `long double` has the 64-bit significands by which results are defined.
inline constexpr bool kHasExtended = LDBL_MANT_DIG == 64;

// Sums that decide results are carried in this type and brought to single precision by a written
// cast. Single operations on two floats give the same float in either type, so those stay plain.
// Where the processor has no such numbers, and where a build asks for it, they are formed in
// integers, to the same bits.
#ifdef MOLVA_SOFT_WIDE
inline constexpr bool kWideIsSoft = true;
#else
inline constexpr bool kWideIsSoft = !kHasExtended;
#endif
using Wide = std::conditional_t<kWideIsSoft, SoftWide, long double>;

#if LDBL_MANT_DIG == 64

// The same number of either type.
inline constexpr std::size_t kBytesOfSignificand = sizeof(std::uint64_t);
inline SoftWide SoftWideOf(long double x) {
  std::uint64_t significand = 0;
  std::uint16_t sign_and_exponent = 0;
  const auto* bytes = reinterpret_cast<const char*>(&x);
  std::memcpy(&significand, bytes, kBytesOfSignificand);
  std::memcpy(&sign_and_exponent, bytes + kBytesOfSignificand, sizeof sign_and_exponent);
  return SoftWide::Of(sign_and_exponent >> 15 != 0, sign_and_exponent & 0x7fff, significand);
}
inline long double ExtendedOf(SoftWide x) {
  const std::uint64_t significand = x.significand();
  const auto sign_and_exponent =
      static_cast<std::uint16_t>(x.exponent() | (x.negative() ? 0x8000 : 0));
  long double extended = 0;
  auto* bytes = reinterpret_cast<char*>(&extended);
  std::memcpy(bytes, &significand, kBytesOfSignificand);
  std::memcpy(bytes + kBytesOfSignificand, &sign_and_exponent, sizeof sign_and_exponent);
  return extended;
}

inline long double Sqrt(long double x) { return std::sqrt(x); }
// What the last bits of these are is nothing that single precision, to which they come, can show.
inline long double Log(long double x) { return std::log(x); }
inline long double Log2(long double x) { return std::log2(x); }
inline long double Fabs(long double x) { return std::fabs(x); }
inline bool IsNan(long double x) { return std::isnan(x); }

// x to the power 1/4, compared to its last bit, as the platform's mathematics has it.
inline long double QuarterPower(long double x) { return std::pow(x, 0.25L); }
inline SoftWide QuarterPower(SoftWide x) { return SoftWideOf(QuarterPower(ExtendedOf(x))); }

#else

// The nearest, where the platform has no power of such numbers.
inline SoftWide QuarterPower(SoftWide x) { return FourthRoot(x); }

#endif

// For templates over both kinds of arithmetic.
inline double Sqrt(double x) { return std::sqrt(x); }

}  // namespace molva
