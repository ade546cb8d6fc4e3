// SPDX-License-Identifier: MIT
#include "tools/import/markup.h"

#include <gtest/gtest.h>

#include "tests/tools/import/imported.h"

namespace {

using namespace mardle::tools;
using testing_support::Imported;

TEST(Tags, AreToldByTheBeginningOrAnEndTag) {
  EXPECT_TRUE(HasTags("\n<!DOCTYPE html><p>x"));
  EXPECT_TRUE(HasTags("<?xml version=\"1.0\"?>"));
  EXPECT_TRUE(HasTags("one<br>two"));
  EXPECT_TRUE(HasTags("one<BR />two"));
  EXPECT_TRUE(HasTags("a <em>fine</em> day"));
  for (const char* text :
       {"", "a < b", "x </ y", "a <b c", "if (i<n) j</2", "</b", "i <3 you <bro"}) {
    EXPECT_FALSE(HasTags(text)) << text;
  }
}

TEST(Tags, LeaveABlank) {
  EXPECT_EQ(WithoutTags("one<br/>two <b class=\"x y\">three</b>."), "one two  three .");
  EXPECT_EQ(WithoutTags("a<!-- <b>no</b> -->b<![CDATA[c]]>"), "a b c]]>");
}

TEST(Tags, WhatOnlyBeginsLikeOneStays) {
  EXPECT_EQ(WithoutTags("a < b <c <i>d</i> <"), "a < b <c  d  <");
}

TEST(Tags, ScriptsAndStylesAreNoText) {
  EXPECT_EQ(WithoutTags("a<script src='x'>if (a<b) c();</SCRIPT >d<style>p{}</style>e"), "a d e");
  EXPECT_EQ(WithoutTags("a<script src='x'/>b<script>c"), "a b ");
}

// A million tags that never end, in a moment.
TEST(Tags, LongTextsTakeTheirLengthInTime) {
  std::string text;
  for (int i = 0; i < 1000000; ++i) text += "<a =\"<b";
  EXPECT_FALSE(HasTags(text));
  EXPECT_EQ(WithoutTags(text).size(), text.size());
}

TEST(ManualPage, IsToldByARequestAndATitle) {
  EXPECT_TRUE(IsManualPage(".\\\" comment\n.TH LS 1\n"));
  EXPECT_TRUE(IsManualPage("\n'\\\" t\n.Dd May 1\n"));
  EXPECT_FALSE(IsManualPage(".TH\n"));
  EXPECT_TRUE(IsManualPage(".so man1/ls.1\n"));
  EXPECT_FALSE(IsManualPage("...and then\nthe .TH LS 1\n"));
  EXPECT_FALSE(IsManualPage("A text\n.TH LS 1\n"));
  EXPECT_FALSE(IsManualPage(""));
}

TEST(ManualPage, IsReadWithoutRequestsAndEscapes) {
  EXPECT_EQ(WithoutRequests(".\\\" Copyright\n"
                            ".TH LS 1 \"May 2001\" \"GNU\"\n"
                            ".SH NAME\n"
                            "ls \\- list \\fIall\\fR files\\(em\\s-1here\\s0\n"
                            ".TP 4\n"
                            ".BI \\-w \" columns\"\n"
                            ".sp 2\n"
                            "the \\*(lqend\\*(rq\\&.\\\" of it\n"),
            "NAME \nls - list all files here\n-w columns \nthe end.\n");
}

TEST(ManualPage, DefinitionsAndTheFormatsOfTablesAreNoText) {
  EXPECT_EQ(WithoutRequests(".TH X 1\n.de Sp\n.if t .sp\nwords\n..\none\n"
                            ".TS\ntab(;);\nl l.\na;b\n.TE\ntwo\n"),
            "one\na;b\ntwo\n");
}

TEST(ManualPage, MacrosThatCallOthersLeaveTheirText) {
  EXPECT_EQ(WithoutRequests(".Dd May 1\n.Dt CAT 1\n.Sh NAME\n.Nm cat\n.Nd print files\n"
                            ".Op Fl belnu Ar file ...\n"),
            "NAME \ncat \nprint files \nbelnu file ... \n");
  EXPECT_EQ(WithoutRequests(".TH X 1\n.B Fl Ar\n"), "Fl Ar \n");
}

TEST(Markup, TextsWithMarksAreCountedAndCalledByTheirText) {
  Imported imported("t.csv", "text\n<p>red &lt;wine</p>\nred wine\n\"a <i>wine</i>\"\n");
  imported.options.table.text_columns = {"text"};
  const auto result = Import(imported.options);
  EXPECT_EQ(imported.Read(".clabel"), "red\nwine\n");
  EXPECT_EQ(imported.Read(".rlabel"), "red <wine\nred wine\na wine\n");
  EXPECT_EQ(result.notes, (std::vector<std::string>{"2 texts hold marks of formatting (HTML, XML, "
                                                    "roff), which are left out"}));
}

}  // namespace
