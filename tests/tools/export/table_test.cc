// SPDX-License-Identifier: MIT
#include "tools/export/table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

namespace {

using mardle::exporting::Clustering;
using mardle::exporting::NamedRows;

molva::Strings Table(const std::vector<const char*>& texts) {
  molva::Strings strings(static_cast<std::int64_t>(texts.size()), "texts");
  for (std::size_t i = 0; i < texts.size(); ++i) strings.Set(i, texts[i]);
  return strings;
}

NamedRows ThreeRows() {
  NamedRows rows;
  rows.nrows = 3;
  rows.rlabels = Table({"one", "t\two", "\"3\" caf\xe9"});
  return rows;
}

template <typename Write>
std::string Written(Write write, const NamedRows& rows, const Clustering& clustering) {
  std::ostringstream out;
  write(rows, clustering, out);
  return out.str();
}

const Clustering kPlain = {.part = {1, -1, 0}, .internal_z = {}, .external_z = {}, .nclusters = 2};
const Clustering kScored = {.part = {0, -1, 0},
                            .internal_z = {0.5, 0, -INFINITY},
                            .external_z = {-1.25, 0, -NAN},
                            .nclusters = 1};

TEST(WriteTsv, HasALinePerRow) {
  EXPECT_EQ(Written(mardle::exporting::WriteTsv, ThreeRows(), kPlain),
            "row\tlabel\tcluster\n"
            "0\tone\t1\n"
            "1\tt\\two\t-1\n"
            "2\t\"3\" caf\xe9\t0\n");
}

TEST(WriteTsv, HasClassesAndScoresWhereThereAreSome) {
  NamedRows rows = ThreeRows();
  rows.rclasses = Table({"A", "B", "A"});
  EXPECT_EQ(Written(mardle::exporting::WriteTsv, rows, kScored),
            "row\tlabel\tclass\tcluster\tinternal_z\texternal_z\n"
            "0\tone\tA\t0\t0.500000\t-1.250000\n"
            "1\tt\\two\tB\t-1\t0.000000\t0.000000\n"
            "2\t\"3\" caf\xe9\tA\t0\t-inf\tnan\n");
}

TEST(WriteJson, HasARecordPerRow) {
  EXPECT_EQ(Written(mardle::exporting::WriteJson, ThreeRows(), kPlain),
            "{\"nrows\":3,\"nclusters\":2,\"rows\":[\n"
            "{\"row\":0,\"label\":\"one\",\"cluster\":1},\n"
            "{\"row\":1,\"label\":\"t\\two\",\"cluster\":-1},\n"
            "{\"row\":2,\"label\":\"\\\"3\\\" caf\xef\xbf\xbd\",\"cluster\":0}\n"
            "]}\n");
}

TEST(WriteJson, HasNullForScoresThatAreNoNumbers) {
  NamedRows rows = ThreeRows();
  rows.rclasses = Table({"A", "B", "A"});
  EXPECT_EQ(Written(mardle::exporting::WriteJson, rows, kScored),
            "{\"nrows\":3,\"nclusters\":1,\"rows\":[\n"
            "{\"row\":0,\"label\":\"one\",\"class\":\"A\",\"cluster\":0,\"internal_z\":0.5,"
            "\"external_z\":-1.25},\n"
            "{\"row\":1,\"label\":\"t\\two\",\"class\":\"B\",\"cluster\":-1,\"internal_z\":0.0,"
            "\"external_z\":0.0},\n"
            "{\"row\":2,\"label\":\"\\\"3\\\" caf\xef\xbf\xbd\",\"class\":\"A\",\"cluster\":0,"
            "\"internal_z\":null,\"external_z\":null}\n"
            "]}\n");
}

}  // namespace
