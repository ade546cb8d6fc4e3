// SPDX-License-Identifier: MIT
#include "tools/import/table_matrix.h"

#include <gtest/gtest.h>

#include "tests/tools/import/imported.h"

namespace {

using mardle::tools::DelimiterOf;
using mardle::tools::Missing;
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

constexpr char kMixed[] = "name,x,,y\nann,1,tall,NA\nbob,3,small,4\n";

TEST(TableMatrix, AllColumnsThatAreNoNumbersAreNamedAtOnce) {
  EXPECT_EQ(Fails(kMixed),
            "t.csv:2: column 1 (name) is no number: 'ann'; nor are others: 3; "
            "--class-column, --label-column, --text-column and --skip-column take them, "
            "--numbers-only leaves all of them out");
}

TEST(TableMatrix, ColumnsThatAreNoNumbersAreLeftOutOnRequest) {
  Imported imported("t.csv", kMixed);
  imported.options.table.numbers_only = true;
  imported.options.preparation.missing = Missing::kZero;
  const auto result = Import(imported.options);
  EXPECT_EQ(imported.Read(""), "2 2\n1 0\n3 4\n");
  EXPECT_EQ(imported.Read(".clabel"), "x\ny\n");
  EXPECT_EQ(result.notes.at(0), "left out, as they are no numbers: name, 3");
}

// Any row decides, and places are those of the rows.
TEST(TableMatrix, OneTextMakesAColumnOfTexts) {
  Imported imported("t.csv", "name,x,y\nNA,1,1\nbob,small,2\n");
  imported.options.table.numbers_only = true;
  EXPECT_EQ(imported.Run(), "2 1\n1\n2\n");
  EXPECT_EQ(imported.Read(".clabel"), "y\n");
  Imported short_row("t.csv", "x,y\n1,2\n3\n");
  short_row.options.table.numbers_only = true;
  EXPECT_EQ(short_row.Failure(), "t.csv:3: the row has 1 fields instead of 2");
  Imported gap("t.csv", "x,y\n1,2\n3,1e999\n");
  gap.options.table.numbers_only = true;
  EXPECT_TRUE(gap.Failure().starts_with("t.csv:3: ")) << gap.Failure();
}

TEST(TableMatrix, WithoutAHeaderTheFirstRecordIsARow) {
  Imported imported("t.csv", "1,2\n3,4\n");
  imported.options.table.no_header = true;
  EXPECT_EQ(imported.Run(), "2 2\n1 2\n3 4\n");
  EXPECT_EQ(imported.Read(".clabel"), "");
}

TEST(TableMatrix, SparseLeavesZerosOut) {
  Imported imported("t.csv", "a;b;c\n0;2;0\n0;0;0\n");
  imported.options.preparation.sparse = true;
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

TEST(TableMatrix, AColumnThatIsNotThereIsNamedWithThoseThatAre) {
  const auto failure_for = [](const std::string& text, const std::string& name) {
    Imported imported("t.csv", text);
    imported.options.table.no_header = text[0] == '1';
    imported.options.table.class_column = name;
    return imported.Failure();
  };
  EXPECT_EQ(failure_for("a,b\n1,2\n", "z"),
            "t.csv:1: there is no column 'z'; the columns are a, b");
  EXPECT_EQ(failure_for("a,b\n1,2\n", "0"),
            "t.csv:1: there is no column '0'; the columns are a, b");
  EXPECT_EQ(
      failure_for("species,petal\n1,2\n", "Specie"),
      "t.csv:1: there is no column 'Specie'; did you mean 'species'? The columns are species, "
      "petal");
  EXPECT_EQ(failure_for("1,2\n3,4\n", "3"),
            "t.csv:1: there is no column '3'; there are 2, without headings");
  std::string wide = "c1";
  for (int i = 2; i <= 30; ++i) wide += ",c" + std::to_string(i);
  EXPECT_TRUE(failure_for(wide + "\n", "nosuch").ends_with(", c19, c20, ... (30 in all)"));
}

TEST(TableMatrix, ATextIsToldToBeCounted) {
  EXPECT_EQ(Fails("a,my review\n1,\"Good, and cheap\"\n"),
            "t.csv:2: column 2 (my review) is no number: 'Good, and cheap'; --text-column "
            "'my review' counts its words");
}

TEST(TableMatrix, NamesWithoutAHeadingAreToldToBeLabels) {
  EXPECT_EQ(Fails(",x\nfirst,1\n"),
            "t.csv:2: column 1 is no number: 'first'; --label-column 1 makes labels of a column "
            "without a heading");
  EXPECT_EQ(Fails("x,y\nfirst,1,2\n"),
            "t.csv:2: the row has 3 fields instead of 2; if rows begin with a name that has no "
            "heading, put a comma or a heading for it in front of the headings");
}

// What an import says behind the first line of its summary, but for the command.
std::string NotesOn(const std::string& text) {
  Imported imported("t.csv", text);
  std::string summary = Summary(imported.options, Import(imported.options));
  summary.erase(0, summary.find('\n') + 1);
  return summary.erase(summary.find("Cluster with"));
}

TEST(TableMatrix, HeadingsThatAreAllNumbersAreTold) {
  EXPECT_EQ(NotesOn("5.1,3.5,1.4\n4.9,3,1.4\n"),
            "the first record was taken for headings, and all are numbers: '5.1', '3.5', ...; "
            "--no-header makes a row of it\n");
  EXPECT_EQ(NotesOn("5.1,b\n4.9,3\n"), "");
}

TEST(TableMatrix, ANumberingWithoutAHeadingIsTold) {
  EXPECT_EQ(NotesOn(",x\n0,5\n1,7\n2,4\n"),
            "column 1 has no heading and numbers the rows, and is a column of the matrix; "
            "--label-column 1 makes labels of it, --skip-column 1 leaves it out\n");
  EXPECT_EQ(NotesOn(",x\n0,5\n1,7\n3,4\n"), "");
  EXPECT_EQ(NotesOn("n,x\n0,5\n1,7\n"), "");
}

TEST(TableMatrix, DecimalCommasAreReadOnRequest) {
  EXPECT_EQ(Fails("a;b\n1,5;2\n"),
            "t.csv:2: column 1 (a) is no number: '1,5'; --decimal-comma reads it");
  Imported imported("t.csv", "a;b\n1,5;2\n-0,25;1.5\n");
  imported.options.table.decimal_comma = true;
  EXPECT_EQ(imported.Run(), "2 2\n1.5 2\n-0.25 1.5\n");
  Imported thousands("t.csv", "a;b\n1.234,5;2\n");
  thousands.options.table.decimal_comma = true;
  EXPECT_TRUE(thousands.Failure().starts_with("t.csv:2: column 1 (a) is no number: '1.234,5'"));
}

// Three values are missing: one in b, two in c.
constexpr char kGaps[] = "a,b,c\n1,2,NA\n2,,?\n3,8,6\n4,5,0\n";

TEST(MissingValues, AreCountedByColumn) {
  EXPECT_EQ(
      Fails(kGaps),
      "t.csv:2: column 3 (c) has no value; 3 values are missing in 2 rows: 1 in column 2 (b), "
      "2 in column 3 (c); --missing drop leaves these rows out, --missing mean, median or zero "
      "fills in");
}

TEST(MissingValues, OfManyColumnsEightAreNamed) {
  std::string headings, cells;
  for (int i = 1; i <= 11; ++i) {
    headings += (i > 1 ? ",c" : "c") + std::to_string(i);
    cells += i > 1 ? "," : "";
  }
  EXPECT_NE(Fails(headings + "\n" + cells + "\n").find("1 in column 8 (c8), 3 in others; "),
            std::string::npos);
}

TEST(MissingValues, AreTextsOfSixKindsOrNone) {
  for (const char* text : {"", " ", "NA", "n/a", "NaN", "NULL", "None", "?"}) {
    EXPECT_NE(Fails("a,b\n1," + std::string(text) + "\n").find("has no value"), std::string::npos)
        << text;
  }
}

std::string Filled(Missing missing, const char* text = kGaps) {
  Imported imported("t.csv", text);
  imported.options.preparation.missing = missing;
  return imported.Run();
}

TEST(MissingValues, AreLeftOutWithTheirRowsOrFilledIn) {
  EXPECT_EQ(Filled(Missing::kDrop), "2 3\n3 8 6\n4 5 0\n");
  EXPECT_EQ(Filled(Missing::kZero), "4 3\n1 2 0\n2 0 0\n3 8 6\n4 5 0\n");
  // Of 2, 8, 5 both mean and median are 5; of 6, 0 both are 3.
  EXPECT_EQ(Filled(Missing::kMean), "4 3\n1 2 3\n2 5 3\n3 8 6\n4 5 0\n");
  EXPECT_EQ(Filled(Missing::kMedian), "4 3\n1 2 3\n2 5 3\n3 8 6\n4 5 0\n");
  EXPECT_EQ(Filled(Missing::kMean, "a\n1\n?\n9\n2\n"), "4 1\n1\n4\n9\n2\n");
  EXPECT_EQ(Filled(Missing::kMedian, "a\n1\n?\n9\n2\n"), "4 1\n1\n2\n9\n2\n");
}

TEST(MissingValues, WhatWasDoneIsTold) {
  const auto notes_with = [](Missing missing) {
    Imported imported("t.csv", kGaps);
    imported.options.preparation.missing = missing;
    return Import(imported.options).notes;
  };
  const std::string where = ": 1 in column 2 (b), 2 in column 3 (c)";
  using Notes = std::vector<std::string>;
  EXPECT_EQ(notes_with(Missing::kDrop), Notes{"2 rows with missing values left out" + where});
  EXPECT_EQ(notes_with(Missing::kZero), Notes{"3 missing values filled with 0" + where});
  EXPECT_EQ(notes_with(Missing::kMean),
            Notes{"3 missing values filled with the mean of their columns" + where});
  EXPECT_EQ(notes_with(Missing::kMedian),
            Notes{"3 missing values filled with the median of their columns" + where});
}

TEST(MissingValues, AColumnWithoutAnyCannotBeFilled) {
  Imported imported("t.csv", "a,b\n1,\n2,\n");
  imported.options.preparation.missing = Missing::kMean;
  EXPECT_EQ(imported.Failure(),
            "t.csv: column 2 (b) has no value at all, so nothing can be filled in");
}

// The mean of 1 and 3 is 2, and both are 1 away from it; those of -3, 1, 5, 1: 1, and the root of
// (16 + 0 + 16 + 0) / 4.
TEST(Standardizing, BringsColumnsToMeanZeroAndDeviationOne) {
  Imported imported("t.csv", "n,a,b\nr,1,10\ns,3,30\n");
  imported.options.table.label_column = "n";
  imported.options.preparation.standardize = true;
  EXPECT_EQ(imported.Run(), "2 2\n-1 -1\n1 1\n");
  EXPECT_EQ(imported.Read(".rlabel"), "r\ns\n");
  Imported longer("t.csv", "a\n-3\n1\n5\n1\n");
  longer.options.preparation.standardize = true;
  const std::string root = "1.414213562373095";  // 4 over the root of 8
  const std::string matrix = longer.Run();
  EXPECT_EQ(matrix.substr(0, 4 + root.size() + 1), "4 1\n-" + root);
}

TEST(Standardizing, ComesAfterFillingIn) {
  Imported imported("t.csv", "a\n1\n?\n3\n");
  imported.options.preparation = {.missing = Missing::kMean, .standardize = true};
  const std::string matrix = imported.Run();
  EXPECT_NE(matrix.find("\n0\n"), std::string::npos) << matrix;
}

TEST(Standardizing, ColumnsThatAreTheSameInAllRowsBecomeZero) {
  Imported imported("t.csv", "a,b,c\n0.1,1,7\n0.1,3,7\n0.1,1,7\n0.1,3,7\n");
  imported.options.preparation.standardize = true;
  const auto result = Import(imported.options);
  EXPECT_EQ(imported.Read(""), "4 3\n0 -1 0\n0 1 0\n0 -1 0\n0 1 0\n");
  EXPECT_EQ(result.notes,
            std::vector<std::string>{"2 columns are the same in all rows, and so 0 when "
                                     "standardized, the first: column 1 (a)"});
}

}  // namespace
