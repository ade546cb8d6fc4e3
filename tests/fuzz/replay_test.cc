// SPDX-License-Identifier: MIT
//
// Every input of the corpora through every target, without a fuzzer, on every build. FUZZ_CORPUS is
// the folder into which the build unpacks them.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include "tests/fuzz/harness.h"

namespace fuzzing {

// How a test's name is told.
static void PrintTo(const Target& target, std::ostream* out) { *out << target.name; }

}  // namespace fuzzing

namespace {

using fuzzing::Target;

// The files of all corpora, for every target takes any bytes.
std::vector<std::filesystem::path> CorpusFiles() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(FUZZ_CORPUS)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<std::uint8_t> BytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class Replay : public testing::TestWithParam<Target> {};

// A sanitizer's report ends the process: the file that was told last is the one.
TEST_P(Replay, KeepsEveryPromiseOnEveryFile) {
  const auto files = CorpusFiles();
  ASSERT_FALSE(files.empty());
  for (const auto& path : files) {
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    try {
      GetParam().run(BytesOf(path));
    } catch (const fuzzing::Broken& broken) {
      ADD_FAILURE() << path << ": " << broken.what();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Fuzz, Replay,
                         testing::ValuesIn(fuzzing::Targets().begin(), fuzzing::Targets().end()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
