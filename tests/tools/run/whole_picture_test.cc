// SPDX-License-Identifier: MIT
#include "tools/run/whole_picture.h"

#include <gtest/gtest.h>

#include "tests/testing/files.h"
#include "tools/text/file_error.h"

namespace {

using mardle::tools::HasEndOfPicture;
using testing_support::TempFolder;

bool IsWhole(const std::string& format, const std::string& text) {
  const TempFolder folder;
  return HasEndOfPicture(folder.Write("picture", text), format);
}

TEST(WholePicture, EndsAsItsFormatAsks) {
  EXPECT_TRUE(IsWhole("svg", "<svg>\n</svg>\n"));
  EXPECT_TRUE(IsWhole("SVG", "<svg>\n</svg>\n"));
  EXPECT_FALSE(IsWhole("svg", "<svg>\n</svg>"));
  EXPECT_FALSE(IsWhole("svg", "<"));
  EXPECT_FALSE(IsWhole("svg", "%!PS\n%%EOF\n"));
  EXPECT_TRUE(IsWhole("ps", "%!PS\n%%EOF\n"));
  EXPECT_TRUE(IsWhole("gif", std::string("GIF87a\0;", 8)));
  EXPECT_FALSE(IsWhole("gif", "GIF87a;"));
}

TEST(WholePicture, InFigHasAWholeLastObject) {
  const std::string line = "#FIG 3.2\n2 1 0 2 0 33 877 0 -1 1.000 1 1 0 0 0 2\n";
  EXPECT_TRUE(IsWhole("fig", line + "\t1882 8833 2184 8833\n"));
  EXPECT_TRUE(IsWhole("fig", line + "\t1882 8833\n\t2184 8833\n"));
  EXPECT_FALSE(IsWhole("fig", line + "\t1882 8833 2184 8833"));
  EXPECT_FALSE(IsWhole("fig", line + "\t1882 8833 2184\n"));
  EXPECT_FALSE(IsWhole("fig", line));
  EXPECT_TRUE(IsWhole("fig", "4 0 0 50 -1 0 12 0 4 135 300 1 1 label\\001\n"));
  EXPECT_FALSE(IsWhole("fig", "4 0 0 50 -1 0 12 0 4 135 300 1 1 lab\n"));
}

TEST(WholePicture, OfOtherFormatsCannotBeTold) { EXPECT_TRUE(IsWhole("tek", "anything")); }

TEST(WholePicture, MustBeReadable) {
  EXPECT_THROW(HasEndOfPicture("/no/picture", "ps"), mardle::tools::FileError);
}

}  // namespace
