// SPDX-License-Identifier: MIT
#include "lib/support/strings.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"

namespace {

using molva::StripTrailing;

// The set that the readers use.
constexpr char kBlanks[] = " \n\t";

std::string Stripped(std::string text, const char* set = kBlanks) {
  return StripTrailing(text.data(), set);
}

TEST(Mystrdup, CopiesTheText) {
  std::string text = "matrix";
  const molva::String copy = molva::mystrdup(text.c_str());
  text[0] = 'X';
  EXPECT_STREQ(copy.get(), "matrix");
  EXPECT_EQ(copy.size(), 7U);
}

TEST(Mystrdup, TellsAnEmptyTextFromAnAbsentOne) {
  const molva::String copy = molva::mystrdup("");
  ASSERT_TRUE(copy);
  EXPECT_STREQ(copy.get(), "");
  EXPECT_FALSE(molva::String());
}

TEST(Mystrdup, NamesItsBlockWhenItCannotBeHad) {
  EXPECT_FATAL(
      {
        const testing_support::FailingAllocations failing(0);
        molva::mystrdup("four");
      },
      "***Memory allocation failed for mystrdup: str. Requested size: 5 bytes");
}

TEST(StripTrailing, RemovesEveryCharacterOfTheSetFromTheEnd) {
  EXPECT_EQ(Stripped("abc \t\n"), "abc");
  EXPECT_EQ(Stripped("abc \n \t  "), "abc");
}

TEST(StripTrailing, KeepsLeadingAndInnerBlanks) { EXPECT_EQ(Stripped(" \ta b\n"), " \ta b"); }

TEST(StripTrailing, EmptiesATextOfBlanks) { EXPECT_EQ(Stripped(" \t \n"), ""); }

TEST(StripTrailing, LeavesAnEmptyTextAlone) { EXPECT_EQ(Stripped(""), ""); }

TEST(StripTrailing, StopsAtTheFirstCharacterOutsideTheSet) {
  EXPECT_EQ(Stripped("abc \r\n"), "abc \r");
  EXPECT_EQ(Stripped("abc"), "abc");
}

TEST(StripTrailing, RemovesNothingForAnEmptySet) { EXPECT_EQ(Stripped("abc ", ""), "abc "); }

TEST(StripTrailing, ReturnsTheTextItWorkedOn) {
  std::string text = "ab ";
  EXPECT_EQ(StripTrailing(text.data(), " "), text.data());
}

TEST(Strings, AreAbsentAtFirst) {
  const molva::Strings strings(2, "strings");
  ASSERT_EQ(strings.size(), 2U);
  EXPECT_EQ(strings[0], nullptr);
  EXPECT_EQ(strings[1], nullptr);
}

TEST(Strings, HoldCopies) {
  std::string text = "row";
  molva::Strings strings(2, "strings");
  strings.Set(1, text.c_str());
  text = "xxx";
  EXPECT_STREQ(strings[1], "row");
  EXPECT_EQ(strings[0], nullptr);
}

TEST(Strings, OfNoneAreAbsentAsAWhole) {
  EXPECT_FALSE(molva::Strings());
  EXPECT_FALSE(molva::Strings(0, "strings"));
  EXPECT_FALSE(molva::Strings(-1, "strings"));
  EXPECT_TRUE(molva::Strings(1, "strings"));
}

TEST(Strings, MoveWithTheirTexts) {
  molva::Strings from(1, "from");
  from.Set(0, "text");
  molva::Strings to(3, "to");
  to.Set(0, "gone");
  to = std::move(from);
  ASSERT_EQ(to.size(), 1U);
  EXPECT_STREQ(to[0], "text");
}

TEST(Strings, NameTheirTableWhenItCannotBeHad) {
  EXPECT_FATAL(
      {
        const testing_support::FailingAllocations failing(0);
        molva::Strings(3, "ReadMat: clabel");
      },
      "***Memory allocation failed for ReadMat: clabel. Requested size: " +
          std::to_string(3 * sizeof(char*)) + " bytes");
}

}  // namespace
