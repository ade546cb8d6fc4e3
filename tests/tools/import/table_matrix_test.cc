// SPDX-License-Identifier: MIT
#include "tools/import/table_matrix.h"

#include <gtest/gtest.h>

#include "tests/tools/import/imported.h"

namespace {

using mardle::tools::DelimiterOf;
using testing_support::Imported;

std::string Fails(const std::string& text) { return Imported("t.csv", text).Failure(); }

TEST(TableMatrix, HeadingsNameTheColumnsOfADenseMatrix) {
  Imported imported("t.csv", "a,\"b \"\"c\"\"\"\r\n1,2.5\r\n\r\n 0 ,-1\r\n");
  EXPECT_EQ(imported.Run(), "2 2\n1 2.5\n0 -1\n");
  EXPECT_EQ(imported.Read(".clabel"), "a\nb \"c\"\n");
}

TEST(TableMatrix, LabelClassAndSkippedColumnsAreNoValues) {
  Imported imported("t.tsv", "id\tx\tkind\tnote\ty\nr1\t1\tred\tq\t2\nr2\t3\tblue\tq\t4\n");
  imported.options.table.label_column = "id";
  imported.options.table.class_column = "3";
  imported.options.table.skipped_columns = {"note"};
  EXPECT_EQ(imported.Run(), "2 2\n1 2\n3 4\n");
  EXPECT_EQ(imported.Read(".rlabel"), "r1\nr2\n");
  EXPECT_EQ(imported.Read(".rclass"), "red\nblue\n");
  EXPECT_EQ(imported.Read(".clabel"), "x\ny\n");
}

TEST(TableMatrix, AHeadingThatIsANumberGoesBeforeTheNumber) {
  Imported imported("t.csv", "2,1\n5,6\n");
  imported.options.table.label_column = "1";
  EXPECT_EQ(imported.Run(), "1 1\n5\n");
}

TEST(TableMatrix, WithoutAHeaderTheFirstRecordIsARow) {
  Imported imported("t.csv", "1,2\n3,4\n");
  imported.options.table.no_header = true;
  EXPECT_EQ(imported.Run(), "2 2\n1 2\n3 4\n");
  EXPECT_EQ(imported.Read(".clabel"), "");
}

TEST(TableMatrix, SparseLeavesZerosOut) {
  Imported imported("t.csv", "a;b;c\n0;2;0\n0;0;0\n");
  imported.options.sparse = true;
  EXPECT_EQ(imported.Run(), "2 3 1\n2 2\n\n");
}

TEST(TableMatrix, QuotedFieldsHoldDelimitersAndLineEnds) {
  Imported imported("t.csv", "name,x\n\"a, b\nc\",1\n");
  imported.options.table.label_column = "name";
  EXPECT_EQ(imported.Run(".rlabel"), "a, b c\n");
}

TEST(TableMatrix, ADelimiterMayBeGiven) {
  Imported imported("t.csv", "a|b\n1|2\n");
  imported.options.table.delimiter = '|';
  EXPECT_EQ(imported.Run(), "1 2\n1 2\n");
}

TEST(TableMatrix, TheMostFrequentDelimiterOutsideQuotesIsTaken) {
  EXPECT_EQ(DelimiterOf("a;b;\"c,d,e,f\""), ';');
  EXPECT_EQ(DelimiterOf("a\tb"), '\t');
  EXPECT_EQ(DelimiterOf("a"), ',');
}

TEST(TableMatrix, ErrorsNameFileAndLine) {
  EXPECT_EQ(Fails(""), "t.csv: the table is empty");
  EXPECT_EQ(Fails("a,b\n1,2\n3\n"), "t.csv:3: the row has 1 fields instead of 2");
  EXPECT_EQ(Fails("a,b\n1,\n"), "t.csv:2: column 2 (b) is empty");
  EXPECT_EQ(Fails("a,b\n1,x\n"),
            "t.csv:2: column 2 (b) is no number: 'x'; --class-column, --label-column and "
            "--skip-column take columns that are no numbers");
  EXPECT_EQ(Fails("a,b\n1,1e99\n"),
            "t.csv:2: column 2 (b) is too large for single precision: '1e99'");
  EXPECT_EQ(Fails("a,b\n1,\"2\n3,4\n"), "t.csv:2: a quote is not closed");
  EXPECT_EQ(Fails("a,b\n1,\"2\"3\n"), "t.csv:2: text behind a closing quote");
}

TEST(TableMatrix, ARowIsNamedByTheLineOnWhichItBegins) {
  Imported imported("t.csv", "n,x\n\"a\nb\",1\n\"c\nd\",y\n");
  imported.options.table.label_column = "n";
  EXPECT_EQ(imported.Failure().substr(0, 32), "t.csv:4: column 2 (x) is no numb");
}

TEST(TableMatrix, AMissingColumnIsNamed) {
  for (const char* name : {"z", "0", "3"}) {
    Imported imported("t.csv", "a,b\n1,2\n");
    imported.options.table.class_column = name;
    EXPECT_EQ(imported.Failure(), std::string("t.csv:1: there is no column '") + name + "'");
  }
}

}  // namespace
