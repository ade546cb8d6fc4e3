// SPDX-License-Identifier: MIT
#include "tools/export/page/dendrogram.h"

#include <gmock/gmock.h>

#include <limits>
#include <sstream>

namespace {

using mardle::exporting::Dendrogram;
using mardle::exporting::WriteDendrogram;
using testing::HasSubstr;
using testing::Not;

// (a, (b, c)): the inner branch at 0.25, the root at 0.01.
Dendrogram ThreeEnds() {
  Dendrogram dendrogram;
  dendrogram.id = "d";
  dendrogram.title = "Three";
  dendrogram.description = "a, b and c";
  dendrogram.nodes = {{{-1, -1}, 0, "a", "#a"},
                      {{-1, -1}, 0, "b", ""},
                      {{-1, -1}, 0, "c", ""},
                      {{1, 2}, 0.25, "bc", ""},
                      {{0, 3}, 0.01, "abc", ""}};
  dendrogram.root = 4;
  return dendrogram;
}

std::string Drawn(const Dendrogram& dendrogram) {
  std::ostringstream out;
  WriteDendrogram(dendrogram, out);
  return out.str();
}

TEST(Dendrogram, GivesEveryNodeALineBetweenThoseOfItsChildren) {
  // Lines are 19 high from 26 on, and texts stand 4 below their middles.
  const std::string drawn = Drawn(ThreeEnds());
  EXPECT_THAT(drawn, HasSubstr("y=\"39.5\">a</text>"));
  EXPECT_THAT(drawn, HasSubstr("y=\"58.5\">abc</text>"));
  EXPECT_THAT(drawn, HasSubstr("y=\"77.5\">b</text>"));
  EXPECT_THAT(drawn, HasSubstr("y=\"96.5\">bc</text>"));
  EXPECT_THAT(drawn, HasSubstr("y=\"115.5\">c</text>"));
}

TEST(Dendrogram, PutsNodesAtTheRootsOfTheirSimilarities) {
  // From 16 at 0 to 460 at 0.25, whose root is 0.5: 0.01 is a fifth of the way.
  const std::string drawn = Drawn(ThreeEnds());
  EXPECT_THAT(drawn, HasSubstr("<path d=\"M104.8 54.5V35.5H460.0M104.8 54.5V92.5H460.0"
                               "M460.0 92.5V73.5H463.0M460.0 92.5V111.5H463.0\"/>"));
}

TEST(Dendrogram, PutsNoNodeLeftOfItsParent) {
  Dendrogram dendrogram = ThreeEnds();
  dendrogram.nodes[3].similarity = 0.01;
  dendrogram.nodes[4].similarity = 0.25;
  EXPECT_THAT(Drawn(dendrogram), HasSubstr("V92.5H463.0"));
  dendrogram.nodes[3].similarity = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THAT(Drawn(dendrogram), HasSubstr("V92.5H463.0"));
}

TEST(Dendrogram, LinksItsEndsAndIsNamed) {
  const std::string drawn = Drawn(ThreeEnds());
  EXPECT_THAT(drawn, HasSubstr("<a href=\"#a\"><text x="));
  EXPECT_THAT(drawn, HasSubstr("role=\"group\" aria-labelledby=\"d-title d-desc\""));
  EXPECT_THAT(drawn, HasSubstr("<title id=\"d-title\">Three</title>"));
  EXPECT_THAT(drawn, HasSubstr("<desc id=\"d-desc\">a, b and c</desc>"));
}

TEST(Dendrogram, OfOneEndIsItsText) {
  Dendrogram dendrogram;
  dendrogram.nodes = {{{-1, -1}, 0, "alone", ""}};
  EXPECT_THAT(Drawn(dendrogram), HasSubstr(">alone</text>"));
  EXPECT_THAT(Drawn(dendrogram), Not(HasSubstr("nan")));
}

}  // namespace
