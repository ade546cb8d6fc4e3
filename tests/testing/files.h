// SPDX-License-Identifier: MIT
//
// Temporary files and captured standard output.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace testing_support {

// A folder of its own, removed with everything in it at scope end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // The path of a file in the folder.
  std::string Path(const std::string& name) const { return path_ + "/" + name; }
  // Writes a file and returns its path.
  std::string Write(const std::string& name, const std::string& text) const;

 private:
  std::string path_;
};

std::string ReadText(const std::string& path);

// What the statement prints to standard output.
template <typename Statement>
std::string OutputOf(Statement statement) {
  testing::internal::CaptureStdout();
  statement();
  return testing::internal::GetCapturedStdout();
}

}  // namespace testing_support
