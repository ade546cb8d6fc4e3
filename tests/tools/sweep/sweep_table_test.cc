// SPDX-License-Identifier: MIT
#include "tools/sweep/sweep_table.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using mardle::tools::CsvText;
using mardle::tools::SweepRow;
using mardle::tools::TableText;

const std::vector<SweepRow> kRows = {{3, 17.25, NAN, 1, 0.5, 2, 4.5, 11, std::nullopt},
                                     {12, 1234567, -0.125, 0.75, 0.25, 1, 2, 3, std::nullopt}};

TEST(SweepTable, HasColumnsAsWideAsTheirCells) {
  EXPECT_EQ(TableText(kRows),
            "clusters       value   added  stability  least  smallest  median  largest\n"
            "       3       17.25       -      1.000  0.500         2     4.5       11\n"
            "      12  1.2346e+06  -0.125      0.750  0.250         1       2        3\n");
}

TEST(SweepTable, HasTwoColumnsMoreWithClasses) {
  std::vector<SweepRow> rows = {kRows[0]};
  rows[0].classes = {0.9, 0.0625};
  EXPECT_EQ(TableText(rows),
            "clusters  value  added  stability  least  smallest  median  largest  purity    NMI\n"
            "       3  17.25      -      1.000  0.500         2     4.5       11   0.900  0.062\n");
}

TEST(SweepTable, HasAllDigitsAsCsv) {
  std::vector<SweepRow> rows = kRows;
  rows[0].classes = {0.1, 1.0 / 3};
  rows[1].classes = {1, 0};
  EXPECT_EQ(CsvText(rows),
            "n_clusters,value,added,stability,least_stability,smallest,median,largest,purity,nmi\n"
            "3,17.25,nan,1,0.5,2,4.5,11,0.1,0.3333333333333333\n"
            "12,1234567,-0.125,0.75,0.25,1,2,3,1,0\n");
  EXPECT_EQ(CsvText({kRows[1]}),
            "n_clusters,value,added,stability,least_stability,smallest,median,largest\n"
            "12,1234567,-0.125,0.75,0.25,1,2,3\n");
}

}  // namespace
