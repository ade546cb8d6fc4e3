// SPDX-License-Identifier: MIT
//
// compare_wide COUNT [SEED]: the operations of soft wide numbers on COUNT pairs, bit for bit
// against `long double` where that has the same significands; status 1 on a difference. The digest
// of all results is the same on every processor.
#include <cstdio>
#include <cstdlib>

#include "lib/support/wide.h"
#include "tests/testing/wide_operands.h"

int main(int argc, char** argv) {
  const long count = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 1000000;
  testing_support::WidePairs pairs(argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1);
  std::uint64_t digest = 0;
  for (long i = 0; i < count; ++i) {
    const testing_support::WidePair pair = pairs.Next();
    digest = testing_support::Digest(digest, testing_support::ResultsOf(pair));
#if LDBL_MANT_DIG == 64
    const std::string difference = testing_support::DifferenceFromExtended(pair);
    if (difference.empty()) continue;
    std::printf("pair %ld: %s\n", i, difference.c_str());
    return 1;
#endif
  }
  std::printf("%ld pairs, %s: digest %016llx\n", count,
              molva::kHasExtended ? "all as in extended precision" : "not compared",
              static_cast<unsigned long long>(digest));
}
