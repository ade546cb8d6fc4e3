// SPDX-License-Identifier: MIT
//
// Files through one target, without a fuzzer and without a test library: fuzz_run TARGET FILE...
// For sanitizers whose findings need every library to be built with them, and for debuggers.
#include <cstdio>
#include <cstring>

#include "lib/support/files.h"
#include "tests/fuzz/harness.h"

namespace {

std::vector<std::uint8_t> BytesOf(const char* path) {
  const molva::File file = molva::RVfopen(path, "rb", "fuzz_run");
  std::vector<std::uint8_t> bytes;
  for (int byte = std::fgetc(file.get()); byte != EOF; byte = std::fgetc(file.get())) {
    bytes.push_back(static_cast<std::uint8_t>(byte));
  }
  return bytes;
}

// A promise that is not kept, as a sanitizer's report, ends the run with the file that was told
// last.
void Run(const fuzzing::Target& target, const char* path) {
  std::printf("%s\n", path);
  std::fflush(stdout);
  target.run(BytesOf(path));
}

}  // namespace

int main(int argc, char** argv) {
  for (const fuzzing::Target& target : fuzzing::Targets()) {
    if (argc < 3 || std::strcmp(argv[1], target.name) != 0) continue;
    for (int i = 2; i < argc; ++i) Run(target, argv[i]);
    return 0;
  }
  std::fprintf(stderr, "Usage: fuzz_run TARGET FILE...\n");
  return 1;
}
