// SPDX-License-Identifier: MIT
//
// What ends an export: an input that cannot be read or an output that cannot be written.
#pragma once

#include <stdexcept>
#include <string>

namespace mardle::exporting {

struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A failure at one line of a file, counted from 1: "FILE:LINE: WHY".
inline Failure FailureAt(const std::string& path, std::size_t line, const std::string& why) {
  return Failure(path + ":" + std::to_string(line) + ": " + why);
}

}  // namespace mardle::exporting
