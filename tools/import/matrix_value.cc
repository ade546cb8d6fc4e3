// SPDX-License-Identifier: MIT
#include "tools/import/matrix_value.h"

#include <cmath>
#include <optional>

#include "tools/text/fields.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

void Require(double value, const Place& place, const std::string& what, const std::string& text) {
  if (std::isnan(value)) throw FileError(place, what + " is not a finite number: " + text);
  if (!std::isfinite(static_cast<float>(value))) {
    throw FileError(place, what + " is too large for single precision: " + text);
  }
}

}  // namespace

double MatrixValue(std::string_view text, const Place& place, const std::string& what) {
  const std::optional<double> value = ParseNumber(text);
  if (!value) throw FileError(place, what + " is no number: " + Quoted(text));
  Require(*value, place, what, Quoted(text));
  return *value;
}

double CheckedValue(double value, const Place& place, const std::string& what) {
  std::string text;
  AppendNumber(text, value);
  Require(value, place, what, text);
  return value;
}

}  // namespace mardle::tools
