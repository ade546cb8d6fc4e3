// SPDX-License-Identifier: MIT
//
// Every number has the bits that strtol and strtod give it.
#include "programs/io/number_text.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace {

using mardle::Parsed;
using mardle::ParseDouble;
using mardle::ParseLong;

// What may stand behind a field: nothing, or another one.
constexpr std::array<const char*, 4> kBehind = {"", " ", " 7", "\t7"};

bool IsReadAsAnInteger(const std::string& field) {
  const long expected = std::strtol(field.c_str(), nullptr, 10);
  for (const std::string behind : kBehind) {
    const std::string text = field + behind;
    const Parsed<long> parsed = ParseLong(text.c_str());
    if (parsed.value != expected || parsed.end != text.c_str() + field.size()) return false;
  }
  return true;
}

bool IsReadAsANumber(const std::string& field) {
  const double expected = std::strtod(field.c_str(), nullptr);
  for (const std::string behind : kBehind) {
    const std::string text = field + behind;
    const Parsed<double> parsed = ParseDouble(text.c_str());
    if (std::bit_cast<std::uint64_t>(parsed.value) != std::bit_cast<std::uint64_t>(expected) ||
        parsed.end != text.c_str() + field.size()) {
      return false;
    }
  }
  return true;
}

class RandomTexts {
 public:
  std::uint64_t Below(std::uint64_t n) { return random_() % n; }

  std::string Digits(std::size_t count) {
    std::string digits;
    while (digits.size() < count) digits += static_cast<char>('0' + Below(10));
    return digits;
  }

  std::string Of(const std::string& characters, std::size_t count) {
    std::string text;
    while (text.size() < count) text += characters[Below(characters.size())];
    return text;
  }

  // Any double that is neither infinite nor no number.
  double Double() {
    for (;;) {
      const auto value = std::bit_cast<double>(random_());
      if (std::isfinite(value)) return value;
    }
  }

 private:
  std::mt19937_64 random_{1};
};

template <typename Number>
std::string Spelled(const char* format, int precision, Number value) {
  std::array<char, 2000> text;
  std::snprintf(text.data(), text.size(), format, precision, value);
  return text.data();
}

TEST(ParseLong, TakesDecimalDigits) {
  EXPECT_EQ(ParseLong("0").value, 0);
  EXPECT_EQ(ParseLong("17 5").value, 17);
  EXPECT_EQ(ParseLong("007\t5").value, 7);
}

TEST(ParseLong, EndsWithTheField) {
  const char* const text = "17x 5";
  EXPECT_EQ(ParseLong(text).end, text + 3);
}

TEST(ParseLong, StaysInTheRangeOfALong) {
  EXPECT_EQ(ParseLong("9223372036854775807").value, std::numeric_limits<long>::max());
  EXPECT_EQ(ParseLong("9223372036854775808").value, std::numeric_limits<long>::max());
  EXPECT_EQ(ParseLong("-9223372036854775809").value, std::numeric_limits<long>::min());
  EXPECT_EQ(ParseLong("18446744073709551617").value, std::numeric_limits<long>::max());
}

TEST(ParseLong, GivesZeroForAFieldThatIsNoNumber) {
  for (const char* field : {"x", "-", "+", "--1", ".5", "\r", "\r\r 5", "\v 5", "- 5"}) {
    EXPECT_EQ(ParseLong(field).value, 0) << field;
  }
}

TEST(ParseLong, AgreesWithTheStandardConversion) {
  for (const char* field : {"+5", "-5", "5.9", "0x10", "1e3", "\r5", "\v\f5", "12\r", "5,6"}) {
    EXPECT_TRUE(IsReadAsAnInteger(field)) << field;
  }
  RandomTexts random;
  for (std::size_t digits = 1; digits <= 40; ++digits) {
    for (int round = 0; round < 200; ++round) {
      const std::string number = random.Digits(digits);
      for (const char* sign : {"", "-", "+", "0", "00000000000000000000"}) {
        ASSERT_TRUE(IsReadAsAnInteger(sign + number)) << sign + number;
      }
    }
  }
  for (int round = 0; round < 20000; ++round) {
    const std::string field = random.Of("0123456789+-.x\r\v", 1 + random.Below(6));
    ASSERT_TRUE(IsReadAsAnInteger(field)) << field;
  }
}

TEST(ParseDouble, TakesTheCommonForms) {
  EXPECT_EQ(ParseDouble("3").value, 3.0);
  EXPECT_EQ(ParseDouble("-0.25 5").value, -0.25);
  EXPECT_EQ(ParseDouble(".5").value, 0.5);
  EXPECT_EQ(ParseDouble("5.\t7").value, 5.0);
  EXPECT_EQ(ParseDouble("1.5e3").value, 1500.0);
  EXPECT_EQ(ParseDouble("25E-2").value, 0.25);
}

TEST(ParseDouble, GivesZeroForAFieldThatIsNoNumber) {
  for (const char* field : {"x", "-", "+", "--1", ".", "-.", ".e5", "e5", "\r", "\r 5", "- 5"}) {
    EXPECT_EQ(ParseDouble(field).value, 0.0) << field;
  }
}

TEST(ParseDouble, KeepsTheSignOfZero) {
  EXPECT_FALSE(std::signbit(ParseDouble("0").value));
  EXPECT_TRUE(std::signbit(ParseDouble("-0").value));
  EXPECT_TRUE(std::signbit(ParseDouble("-0.000e5").value));
}

TEST(ParseDouble, TakesOddSpellingsAsTheStandardConversionDoes) {
  for (const char* field : {"+5",
                            "+.5e+1",
                            "1,5",
                            "2abc",
                            "1.2.3",
                            "1e",
                            "1e+",
                            "1e-",
                            "1ex",
                            "1e5x",
                            "1e5.5",
                            "1e400",
                            "-1e400",
                            "1e-400",
                            "-1e-400",
                            "0e999999",
                            "1e99999",
                            "1e-99999",
                            "0x10",
                            "-0x1.8p1",
                            "0x",
                            "0xg",
                            "0x.8",
                            "0x1p-1074",
                            "00x10",
                            "inf",
                            "-inf",
                            "INF",
                            "infx",
                            "infinity",
                            "nan",
                            "-nan",
                            "NaN",
                            "nan(7)",
                            "nan(",
                            "nan(7",
                            "nan()",
                            "nan(!)",
                            "1\r",
                            "\r1",
                            "\v\f-1",
                            "1e5\r",
                            "e",
                            "E5",
                            "1E5",
                            "1e00005",
                            "1e000000000000000005",
                            "1e18446744073709551617",
                            "1d5",
                            "1_000",
                            "-.5",
                            "-5.",
                            "1.e2",
                            "1.5e0",
                            "\xff",
                            "1\xff"}) {
    EXPECT_TRUE(IsReadAsANumber(field)) << field;
  }
}

TEST(ParseDouble, AgreesForEveryNumberOfDigits) {
  RandomTexts random;
  for (std::size_t digits = 1; digits <= 30; ++digits) {
    for (std::size_t point = 0; point <= digits; ++point) {
      for (int round = 0; round < 200; ++round) {
        std::string field = random.Digits(digits);
        if (random.Below(8) != 0) field.insert(point, 1, '.');
        if (random.Below(2) == 0) field.insert(0, 1, '-');
        ASSERT_TRUE(IsReadAsANumber(field)) << field;
      }
    }
  }
}

TEST(ParseDouble, AgreesForEveryExponent) {
  RandomTexts random;
  for (int exponent = -400; exponent <= 400; ++exponent) {
    const std::string power = std::to_string(exponent);
    for (int round = 0; round < 100; ++round) {
      const std::string fraction = random.Digits(random.Below(20));
      const std::string field = random.Digits(1) + "." + fraction + "e" + power;
      ASSERT_TRUE(IsReadAsANumber(field)) << field;
    }
  }
}

TEST(ParseDouble, AgreesWithZerosInFrontAndBehind) {
  RandomTexts random;
  for (std::size_t zeros = 0; zeros <= 40; ++zeros) {
    const std::string many(zeros, '0');
    ASSERT_TRUE(IsReadAsANumber("0" + many)) << zeros;
    ASSERT_TRUE(IsReadAsANumber("-." + many + "0e-5")) << zeros;
    for (std::size_t digits = 1; digits <= 21; ++digits) {
      const std::string number = random.Digits(digits);
      for (const std::string& field :
           {many + number, many + "." + number, "0." + many + number, number + many,
            number + "." + many, many + number + "." + many + number,
            "0." + many + number + "e" + std::to_string(zeros)}) {
        ASSERT_TRUE(IsReadAsANumber(field)) << field;
      }
    }
  }
}

TEST(ParseDouble, AgreesForDoublesOfAllSizes) {
  RandomTexts random;
  for (int round = 0; round < 100000; ++round) {
    const double value = random.Double();
    for (const int precision : {5, 16, 17, 18}) {
      const std::string field = Spelled("%.*e", precision, value);
      ASSERT_TRUE(IsReadAsANumber(field)) << field;
    }
  }
}

TEST(ParseDouble, AgreesForTheSmallestAndTheLargestDoubles) {
  using Limits = std::numeric_limits<double>;
  for (const double edge : {Limits::denorm_min(), Limits::min(), Limits::max()}) {
    double value = edge;
    for (int step = 0; step < 100; ++step) {
      for (const int precision : {3, 15, 16, 17, 18, 800}) {
        const std::string field = Spelled("%.*e", precision, value);
        ASSERT_TRUE(IsReadAsANumber(field)) << field;
      }
      value = std::nextafter(value, 1.0);
    }
  }
}

// Midway between two doubles, written out, and as close above and below as the digits allow.
TEST(ParseDouble, AgreesMidwayBetweenDoubles) {
  RandomTexts random;
  for (int round = 0; round < 20000; ++round) {
    const double value = std::ldexp(static_cast<double>((1ULL << 52) + random.Below(1ULL << 52)),
                                    static_cast<int>(random.Below(160)) - 130);
    const auto next = static_cast<long double>(std::nextafter(value, INFINITY));
    const long double midway = (static_cast<long double>(value) + next) / 2;
    std::string exact = Spelled("%.*Lf", 140, midway);
    ASSERT_TRUE(IsReadAsANumber(exact)) << exact;
    ASSERT_TRUE(IsReadAsANumber(exact + "1")) << exact;
    for (const int precision : {15, 16, 17, 18, 19, 25}) {
      std::string field = Spelled("%.*Le", precision, midway);
      ASSERT_TRUE(IsReadAsANumber(field)) << field;
      char& last_digit = field[static_cast<std::size_t>(precision) + 1];
      last_digit = last_digit == '9' ? '8' : static_cast<char>(last_digit + 1);
      ASSERT_TRUE(IsReadAsANumber(field)) << field;
    }
  }
}

// Integers of 54 bits and more, odd where a double has no bit left.
TEST(ParseDouble, AgreesForIntegersMidwayBetweenDoubles) {
  RandomTexts random;
  for (int round = 0; round < 100000; ++round) {
    const int shift = static_cast<int>(random.Below(10));
    const std::uint64_t odd = (1ULL << 53) + 2 * random.Below(1ULL << 52) + 1;
    const std::string field = std::to_string((odd << shift) + random.Below(3) - 1);
    ASSERT_TRUE(IsReadAsANumber(field)) << field;
    ASSERT_TRUE(IsReadAsANumber(field + "000")) << field;
    ASSERT_TRUE(IsReadAsANumber(field + "e-3")) << field;
  }
}

// Nineteen digits over a power of ten: about one quotient in 2,048 looks midway at 64 bits, and
// lies above or below.
TEST(ParseDouble, AgreesWhereSixtyFourBitsLookMidway) {
  RandomTexts random;
  for (const char* exponent : {"e-28", "e-27", "e-23", "e-22", "e22", "e23", "e27", "e28"}) {
    for (int round = 0; round < 50000; ++round) {
      const std::string field = random.Digits(19) + exponent;
      ASSERT_TRUE(IsReadAsANumber(field)) << field;
    }
  }
}

TEST(ParseDouble, AgreesForAnyCharacters) {
  RandomTexts random;
  for (int round = 0; round < 300000; ++round) {
    const std::string field = random.Of("0123456789.e-+xinfa(),\r", 1 + random.Below(9));
    ASSERT_TRUE(IsReadAsANumber(field)) << field;
  }
}

}  // namespace
