// SPDX-License-Identifier: MIT
#include "tools/export/features.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/tools/export/measures/matrices.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using mardle::exporting::DescribedClusters;
using testing_support::SparseMatrixOf;

// The unit sums are (0.6, 0.8) and (0, 1): the squares of the first are 0.36 and 0.64, those of the
// difference 0.36 and 0.04.
Matrix FourRows() { return SparseMatrixOf({{3, 4}, {3, 4}, {0, 1}, {0, 1}}, {"a\tb", "c"}); }

DescribedClusters Described(const Matrix& mat) {
  RunParams params;
  params.colmodel = MOLVA_COL_NONE;
  params.nfeatures = 2;
  return {params, mat, {0, 0, 1, 1}, 2};
}

TEST(Features, AreLinesWithTheirSharesAndLevels) {
  const Matrix mat = FourRows();
  std::ostringstream out;
  WriteFeaturesTsv(mat, Described(mat), out);
  EXPECT_EQ(out.str(),
            "cluster\tsize\tkind\trank\tcolumn\tlabel\tshare\tinside\telsewhere\tweaker\n"
            "0\t2\tdescriptive\t1\t1\tc\t0.64\t1\t1\tno\n"
            "0\t2\tdescriptive\t2\t0\ta\\tb\t0.36\t1\t0\tno\n"
            "0\t2\tdiscriminating\t1\t0\ta\\tb\t0.9\t1\t0\tno\n"
            "0\t2\tdiscriminating\t2\t1\tc\t0.1\t1\t1\tyes\n"
            "1\t2\tdescriptive\t1\t1\tc\t1\t1\t1\tno\n"
            "1\t2\tdescriptive\t2\t0\ta\\tb\t0\t0\t1\tno\n"
            "1\t2\tdiscriminating\t1\t0\ta\\tb\t0.9\t0\t1\tyes\n"
            "1\t2\tdiscriminating\t2\t1\tc\t0.1\t1\t1\tno\n");
}

TEST(Features, AreJson) {
  const Matrix mat = FourRows();
  std::ostringstream out;
  WriteFeaturesJson(mat, Described(mat), out);
  const nlohmann::json json = nlohmann::json::parse(out.str());
  EXPECT_EQ(json["nclusters"], 2);
  EXPECT_EQ(json["levels"], "shares");
  const nlohmann::json& first = json["clusters"][0];
  EXPECT_EQ(first["size"], 2);
  EXPECT_EQ(first["name"], nlohmann::json({"a\tb", "c"}));
  EXPECT_EQ(first["descriptive"][0]["label"], "c");
  EXPECT_NEAR(first["descriptive"][0]["share"], 0.64, 1e-6);
  EXPECT_FALSE(first["descriptive"][0].contains("weaker"));
  EXPECT_EQ(first["discriminating"][0]["column"], 0);
  EXPECT_EQ(first["discriminating"][0]["inside"], 1);
  EXPECT_EQ(first["discriminating"][0]["elsewhere"], 0);
  EXPECT_EQ(first["discriminating"][0]["weaker"], false);
  EXPECT_EQ(json["clusters"][1]["discriminating"][0]["weaker"], true);
}

}  // namespace
