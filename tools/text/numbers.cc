// SPDX-License-Identifier: MIT
#include "tools/text/numbers.h"

#include <array>
#include <charconv>
#include <cstdlib>

namespace mardle::tools {
namespace {

// The standard conversion takes a minus sign only.
std::string_view WithoutPlus(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

template <typename Number>
void AppendText(std::string& line, Number value) {
  std::array<char, 32> text;
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
  line.append(text.data(), result.ptr);
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  text = WithoutPlus(text);
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ptr != text.data() + text.size()) return std::nullopt;
  // Beyond the range of a number only the other conversion tells the two ends apart.
  if (result.ec == std::errc::result_out_of_range) {
    return std::strtod(std::string(text).c_str(), nullptr);
  }
  if (result.ec != std::errc()) return std::nullopt;
  return value;
}

std::optional<long long> ParseInteger(std::string_view text) {
  text = WithoutPlus(text);
  long long value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

void AppendNumber(std::string& line, double value) { AppendText(line, value); }
void AppendNumber(std::string& line, long long value) { AppendText(line, value); }

}  // namespace mardle::tools
