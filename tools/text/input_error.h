// SPDX-License-Identifier: MIT
//
// Where something stands in the input, and the error that names it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace mardle::tools {

// A line of a file, counted from 1; line 0 is the file as a whole.
struct Place {
  std::string path;
  std::int64_t line = 0;
};

// "FILE:LINE: message", or "FILE: message" for the whole file.
class InputError : public std::runtime_error {
 public:
  InputError(const Place& place, const std::string& message);
};

}  // namespace mardle::tools
