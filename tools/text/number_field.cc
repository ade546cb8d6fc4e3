// SPDX-License-Identifier: MIT
#include "tools/text/number_field.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace mardle::tools {
namespace {

constexpr std::string_view kBlanks = " \t";

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

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

std::vector<std::string_view> FieldsOf(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t end = 0;
  for (;;) {
    const std::size_t begin = line.find_first_not_of(kBlanks, end);
    if (begin == std::string_view::npos) return fields;
    end = std::min(line.find_first_of(kBlanks, begin), line.size());
    fields.push_back(line.substr(begin, end - begin));
  }
}

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

double MatrixValue(std::string_view text, const Place& place, const std::string& what) {
  const std::optional<double> value = ParseNumber(text);
  if (!value) throw InputError(place, what + " is no number: " + Quoted(text));
  if (std::isnan(*value))
    throw InputError(place, what + " is not a finite number: " + Quoted(text));
  if (!std::isfinite(static_cast<float>(*value))) {
    throw InputError(place, what + " is too large for single precision: " + Quoted(text));
  }
  return *value;
}

void AppendNumber(std::string& line, double value) { AppendText(line, value); }
void AppendNumber(std::string& line, long long value) { AppendText(line, value); }

std::string Quoted(std::string_view text) {
  constexpr std::size_t kLongest = 40;
  std::string quoted("'");
  quoted += text.substr(0, kLongest);
  quoted += text.size() > kLongest ? "...'" : "'";
  return quoted;
}

}  // namespace mardle::tools
