// SPDX-License-Identifier: MIT
#include "tools/export/written_numbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace mardle::exporting {
namespace {

// What printf makes of a number, and of the numbers before it.
template <typename... Numbers>
std::string Printed(const char* format, Numbers... values) {
  std::array<char, 400> text;
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

}  // namespace

std::string Decimals(double value, int decimals) {
  return std::isfinite(value) ? Printed("%.*f", decimals, value) : "n/a";
}

std::string FourDigits(double value) {
  if (!std::isfinite(value)) return "n/a";
  const bool is_whole = std::fabs(value) >= 999.5 && std::fabs(value) < 1e15;
  return is_whole ? Grouped(std::llround(value)) : Printed("%.4g", value);
}

std::string Shortest(double value) { return Printed("%g", value); }

std::string Grouped(std::int64_t count) {
  const std::string digits = std::to_string(count);
  const std::size_t sign = count < 0 ? 1 : 0;
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > sign && (digits.size() - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

std::string Percent(double share) {
  const double shown = std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0;
  return Decimals(100 * shown, 2) + "%";
}

std::string PercentText(double share) {
  return std::isfinite(share) ? Decimals(100 * share, 1) + "\u00a0%" : "n/a";
}

std::string Counted(std::int64_t count, const std::string& one, const std::string& many) {
  return Grouped(count) + " " + (count == 1 ? one : many);
}

std::string Capital(std::string word) {
  if (!word.empty() && word[0] >= 'a' && word[0] <= 'z') word[0] = static_cast<char>(word[0] - 32);
  return word;
}

std::string ThreeDigits(double value) {
  return std::isfinite(value) ? Printed("%.3g", value) : "n/a";
}

}  // namespace mardle::exporting
