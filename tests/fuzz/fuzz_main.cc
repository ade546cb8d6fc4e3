// SPDX-License-Identifier: MIT
//
// One fuzzer: FUZZ_TARGET is one of the functions of harness.h.
#include <cstdio>
#include <cstdlib>

#include "tests/fuzz/harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    fuzzing::FUZZ_TARGET({data, size});
  } catch (const fuzzing::Broken& broken) {
    std::fprintf(stderr, "Broken promise: %s\n", broken.what());
    std::abort();
  }
  return 0;
}
