// SPDX-License-Identifier: MIT
#include "tests/testing/files.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace testing_support {

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "mardle_test_XXXXXX").string();
  EXPECT_NE(mkdtemp(pattern.data()), nullptr);
  path_ = pattern;
}

TempFolder::~TempFolder() { std::filesystem::remove_all(path_); }

std::string TempFolder::Write(const std::string& name, const std::string& text) const {
  std::ofstream(Path(name), std::ios::binary) << text;
  return Path(name);
}

std::string ReadText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace testing_support
