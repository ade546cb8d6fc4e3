// SPDX-License-Identifier: MIT
//
// A host program that speaks German gets the numbers of one that speaks C.
#include <gtest/gtest.h>

#include <bit>
#include <cctype>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "lib/matrix/control.h"
#include "lib/molva.h"
#include "lib/tree/build_tree.h"
#include "tests/testing/files.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::OutputOf;
using testing_support::RandomDocuments;
using testing_support::SparseMatrix;
using Ints = std::vector<int>;
using Floats = std::vector<float>;

// While it lives, the process speaks German, or, where that can neither be found nor made, what a
// plain installation speaks besides C.
class GermanHost {
 public:
  GermanHost() {
    setenv("LOCPATH", folder_.Path("").c_str(), 1);
    const std::string make =
        "localedef -i de_DE -f UTF-8 " + folder_.Path("de_DE.UTF-8") + " > /dev/null 2>&1";
    const bool made = std::system(make.c_str()) == 0;
    if (!made) unsetenv("LOCPATH");
    for (const char* name : {"de_DE.UTF-8", "C.UTF-8"}) {
      if (std::setlocale(LC_ALL, name) != nullptr) return;
    }
  }
  ~GermanHost() {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
  }
  GermanHost(const GermanHost&) = delete;
  GermanHost& operator=(const GermanHost&) = delete;

 private:
  testing_support::TempFolder folder_;
};

Ints Bits(const Floats& values) {
  Ints bits;
  for (const float value : values) bits.push_back(std::bit_cast<std::int32_t>(value));
  return bits;
}

// A clustering, its measures, its features and its tree, one after the other, and what was printed.
struct Found {
  std::vector<Ints> results;
  std::string printed;
};

Found Clustered() {
  const SparseMatrix m = RandomDocuments(5, 120, 60, 4, 8);
  constexpr int kParts = 6;
  constexpr std::size_t kSize = 6;
  const auto nrows = static_cast<std::size_t>(m.nrows);
  Ints part(nrows), pwgts(kSize), internalids(3 * kSize), externalids(3 * kSize), ptree(2 * kSize);
  Floats isim(kSize), isdev(kSize), izscores(nrows), esim(kSize), esdev(kSize), ezscores(nrows),
      internalwgts(3 * kSize), externalwgts(3 * kSize), tsims(2 * kSize), quality(1);
  Found found;
  found.printed = OutputOf([&] {
    MOLVA_VP_ClusterRB(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                       MOLVA_SIM_COSINE, 2, MOLVA_ROW_LOG, MOLVA_COL_IDF, 1.0F, 3, 5, 1, 1, 3,
                       kParts, part.data());
    MOLVA_V_BuildTree(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                      MOLVA_SIM_COSINE, 2, MOLVA_ROW_LOG, MOLVA_COL_IDF, 1.0F, MOLVA_TREE_CLUSTERS,
                      5, kParts, part.data(), ptree.data(), tsims.data());
  });
  quality[0] = MOLVA_V_GetSolutionQuality(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(),
                                          m.rowval.data(), MOLVA_SIM_COSINE, 2, MOLVA_ROW_LOG,
                                          MOLVA_COL_IDF, 1.0F, kParts, part.data());
  MOLVA_V_GetClusterStats(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                          MOLVA_SIM_COSINE, MOLVA_ROW_LOG, MOLVA_COL_IDF, 1.0F, kParts, part.data(),
                          pwgts.data(), isim.data(), isdev.data(), izscores.data(), esim.data(),
                          esdev.data(), ezscores.data());
  MOLVA_V_GetClusterFeatures(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                             MOLVA_SIM_COSINE, MOLVA_ROW_LOG, MOLVA_COL_IDF, 1.0F, kParts,
                             part.data(), 3, internalids.data(), internalwgts.data(),
                             externalids.data(), externalwgts.data());
  found.results = {
      part,          pwgts,          internalids,        externalids,        ptree,
      Bits(quality), Bits(isim),     Bits(isdev),        Bits(izscores),     Bits(esim),
      Bits(esdev),   Bits(ezscores), Bits(internalwgts), Bits(externalwgts), Bits(tsims)};
  return found;
}

TEST(Locale, ChangesNoResult) {
  const Found plain = Clustered();
  const GermanHost host;
  EXPECT_EQ(Clustered().results, plain.results);
}

// Progress is printed for the host's users, with their sign between the digits.
TEST(Locale, GivesProgressLinesItsDecimalSign) {
  const Found plain = Clustered();
  const GermanHost host;
  const std::string sign = std::localeconv()->decimal_point;
  std::string expected;
  for (std::size_t i = 0; i < plain.printed.size(); ++i) {
    const auto is_digit = [&](std::size_t at) {
      return at < plain.printed.size() && std::isdigit(plain.printed[at]) != 0;
    };
    const bool is_sign = plain.printed[i] == '.' && i > 0 && is_digit(i - 1) && is_digit(i + 1);
    expected += is_sign ? sign : plain.printed.substr(i, 1);
  }
  EXPECT_EQ(Clustered().printed, expected);
}

}  // namespace
}  // namespace molva
