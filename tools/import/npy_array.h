// SPDX-License-Identifier: MIT
//
// Arrays as NumPy writes them: a header that tells type, order and shape, and the bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/text/file_error.h"

namespace mardle::tools {

class NpyArray {
 public:
  // Takes the bytes of a .npy file. Throws FileError, which names the place, when they are none,
  // when values are missing, and for types other than numbers, truth values and texts.
  NpyArray(std::string bytes, const Place& place);

  const std::vector<std::int64_t>& shape() const { return shape_; }
  std::size_t size() const { return size_; }  // the product of the shape

  bool IsNumeric() const { return kind_ != 'S' && kind_ != 'U'; }
  bool IsWhole() const { return kind_ == 'i' || kind_ == 'u'; }
  // The value at a position in the order of the bytes; of a numeric array.
  double Number(std::size_t position) const;
  // The same of whole numbers; those that no int64 holds are the largest.
  std::int64_t Integer(std::size_t position) const;
  // Of an array of two dimensions, whichever way it is stored.
  double At(std::int64_t row, std::int64_t column) const;
  // A text without dimensions; its characters beyond ASCII become "?".
  std::string Text() const;

 private:
  void ReadHeader(std::string_view header);
  void ReadType(std::string_view descr);
  std::uint64_t Bits(std::size_t position) const;

  Place place_;
  std::string bytes_;
  std::size_t start_ = 0;  // of the values
  char kind_ = 0;          // f, i, u, b, S, U
  bool big_endian_ = false;
  std::size_t item_ = 0;  // bytes of a value
  bool column_by_column_ = false;
  std::vector<std::int64_t> shape_;
  std::size_t size_ = 0;
};

}  // namespace mardle::tools
