// SPDX-License-Identifier: MIT
#include "tools/import/npy_array.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include "tools/text/fields.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

using namespace std::literals;

constexpr std::string_view kMagic = "\x93NUMPY"sv;
constexpr std::size_t kUtf32Unit = 4;
constexpr unsigned char kLastAscii = 0x7f;

std::size_t LittleEndian(std::string_view bytes) {
  std::size_t number = 0;
  for (std::size_t i = bytes.size(); i > 0; --i) {
    number = number << 8U | static_cast<unsigned char>(bytes[i - 1]);
  }
  return number;
}

// What stands behind "'key':" in the header, blanks aside; empty when the key is not there.
std::string_view ValueOf(std::string_view header, std::string_view key) {
  const std::string quoted = "'" + std::string(key) + "':";
  const std::size_t at = header.find(quoted);
  return at == std::string_view::npos ? "" : Trimmed(header.substr(at + quoted.size()));
}

// Half precision: a sign, five bits of exponent, ten of fraction.
double HalfNumber(std::uint64_t bits) {
  const int exponent = static_cast<int>(bits >> 10U & 0x1fU);
  const auto fraction = static_cast<double>(bits & 0x3ffU);
  const double sign = (bits >> 15U & 1U) != 0 ? -1 : 1;
  if (exponent == 0x1f) {
    return fraction == 0 ? sign * std::numeric_limits<double>::infinity() : std::nan("");
  }
  return sign *
         (exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(fraction + 1024, exponent - 25));
}

std::int64_t SignedNumber(std::uint64_t bits, std::size_t size) {
  const auto unused = static_cast<unsigned>(64 - 8 * size);
  return static_cast<std::int64_t>(bits << unused) >> unused;
}

// Nothing when the numbers are none, or none that a count may be.
std::optional<std::vector<std::int64_t>> ShapeIn(std::string_view text) {
  const std::size_t end = text.find(')');
  if (!text.starts_with('(') || end == std::string_view::npos) return std::nullopt;
  std::vector<std::int64_t> shape;
  for (std::string_view field : FieldsBetween(text.substr(1, end - 1), ',')) {
    field = Trimmed(field);
    if (field.empty()) continue;
    const auto number = ParseInteger(field);
    if (!number || *number < 0) return std::nullopt;
    shape.push_back(*number);
  }
  return shape;
}

bool IsSupported(char kind, std::size_t size) {
  switch (kind) {
    case 'f':
      return size == 2 || size == 4 || size == 8;
    case 'i':
    case 'u':
      return size == 1 || size == 2 || size == 4 || size == 8;
    case 'b':
      return size == 1;
    case 'S':
      return true;
    case 'U':
      return size <= INT_MAX;
    default:
      return false;
  }
}

}  // namespace

NpyArray::NpyArray(std::string bytes, const Place& place)
    : place_(place), bytes_(std::move(bytes)) {
  constexpr std::size_t kVersionEnd = 8;
  const std::string_view all = bytes_;
  if (!all.starts_with(kMagic)) throw FileError(place_, "no array of NumPy");
  // Version 1 has two bytes for the length of the header, later ones four.
  if (all.size() < kVersionEnd) throw FileError(place_, "the header ends too early");
  const std::size_t length_size = all[kMagic.size()] == 1 ? 2 : 4;
  const std::size_t begin = kVersionEnd + length_size;
  const std::size_t length = LittleEndian(all.substr(kVersionEnd, length_size));
  if (all.size() < begin || all.size() - begin < length) {
    throw FileError(place_, "the header ends too early");
  }
  start_ = begin + length;
  ReadHeader(all.substr(begin, length));
}

void NpyArray::ReadHeader(std::string_view header) {
  ReadType(ValueOf(header, "descr"));
  column_by_column_ = ValueOf(header, "fortran_order").starts_with("True");
  const auto shape = ShapeIn(ValueOf(header, "shape"));
  if (!shape) throw FileError(place_, "the header has no shape");
  shape_ = *shape;
  const std::size_t there = item_ == 0 ? 0 : (bytes_.size() - start_) / item_;
  size_ = 1;
  for (const std::int64_t length : shape_) {
    const auto extent = static_cast<std::size_t>(length);
    if (extent > 0 && size_ > there / extent) throw FileError(place_, "the array ends too early");
    size_ *= extent;
  }
  if (size_ > there) throw FileError(place_, "the array ends too early");
}

void NpyArray::ReadType(std::string_view descr) {
  constexpr std::string_view kOrders = "<>|=";
  const std::size_t end = descr.find('\'', 1);
  const std::string_view type =
      descr.starts_with('\'') && end != std::string_view::npos ? descr.substr(1, end - 1) : "";
  const long long size = type.size() > 2 ? ParseInteger(type.substr(2)).value_or(-1) : -1;
  if (type.empty() || kOrders.find(type[0]) == std::string_view::npos || size < 0 ||
      size > INT_MAX || !IsSupported(type[1], static_cast<std::size_t>(size))) {
    throw FileError(place_, "values of the type " +
                                Quoted(type.empty() ? descr.substr(0, descr.find('\n')) : type) +
                                " are not supported; numbers are");
  }
  big_endian_ = type[0] == '>';
  kind_ = type[1];
  item_ = static_cast<std::size_t>(size) * (kind_ == 'U' ? kUtf32Unit : 1);
}

std::uint64_t NpyArray::Bits(std::size_t position) const {
  std::string bytes = bytes_.substr(start_ + position * item_, item_);
  if (big_endian_) std::reverse(bytes.begin(), bytes.end());
  return LittleEndian(bytes);
}

double NpyArray::Number(std::size_t position) const {
  const std::uint64_t bits = Bits(position);
  if (kind_ == 'i') return static_cast<double>(SignedNumber(bits, item_));
  if (kind_ == 'u') return static_cast<double>(bits);
  if (kind_ == 'b') return bits == 0 ? 0 : 1;
  if (item_ == 2) return HalfNumber(bits);
  if (item_ == 4) return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
  return std::bit_cast<double>(bits);
}

std::int64_t NpyArray::Integer(std::size_t position) const {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
  const std::uint64_t bits = Bits(position);
  return kind_ == 'i' ? SignedNumber(bits, item_)
                      : static_cast<std::int64_t>(std::min(bits, kLargest));
}

double NpyArray::At(std::int64_t row, std::int64_t column) const {
  return Number(static_cast<std::size_t>(column_by_column_ ? column * shape_[0] + row
                                                           : row * shape_[1] + column));
}

std::string NpyArray::Text() const {
  const std::size_t unit = kind_ == 'U' ? kUtf32Unit : 1;
  std::string text;
  for (std::size_t at = 0; size_ > 0 && at < item_; at += unit) {
    const auto byte = static_cast<unsigned char>(bytes_[start_ + at]);
    if (byte == 0) break;
    text += byte > kLastAscii ? '?' : static_cast<char>(byte);
  }
  return text;
}

}  // namespace mardle::tools
