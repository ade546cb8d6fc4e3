// SPDX-License-Identifier: MIT
//
// What ends a tool: a file that cannot be read, understood or written, and where.
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
class FileError : public std::runtime_error {
 public:
  FileError(const Place& place, const std::string& message);
};

// The error of a system call that has just failed on the file: "FILE: No such file or directory".
FileError SystemError(const std::string& path);

}  // namespace mardle::tools
