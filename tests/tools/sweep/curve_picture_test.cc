// SPDX-License-Identifier: MIT
#include "tools/sweep/curve_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using mardle::tools::CurvePicture;
using mardle::tools::RoundTicks;
using mardle::tools::Sweep;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<testing::Matcher<double>> Near(const std::vector<double>& values) {
  std::vector<testing::Matcher<double>> matchers;
  for (const double value : values) matchers.emplace_back(DoubleNear(value, 1e-9));
  return matchers;
}

Sweep Rising() {
  Sweep sweep{.crfun = 2, .rows = {}, .recommendation = {}};
  for (int k = 2; k <= 4; ++k) {
    sweep.rows.push_back({k, 10.0 * k, 10, 0.9, 0.5, 1, 2, 3, std::nullopt});
  }
  return sweep;
}

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST(RoundTicks, AreFiveOrFewerSteps) {
  EXPECT_THAT(RoundTicks(0, 1), testing::ElementsAreArray(Near({0, 0.2, 0.4, 0.6, 0.8, 1})));
  EXPECT_THAT(RoundTicks(13, 26), testing::ElementsAreArray(Near({15, 20, 25})));
  EXPECT_THAT(RoundTicks(-3, 4), testing::ElementsAreArray(Near({-2, 0, 2, 4})));
  EXPECT_THAT(RoundTicks(1000, 1600), testing::ElementsAreArray(Near({1000, 1200, 1400, 1600})));
}

TEST(RoundTicks, AreNoneWithoutARange) {
  EXPECT_THAT(RoundTicks(3, 3), IsEmpty());
  EXPECT_THAT(RoundTicks(0, INFINITY), IsEmpty());
  EXPECT_THAT(RoundTicks(NAN, 1), IsEmpty());
}

TEST(CurvePicture, MarksEveryValue) {
  const std::string picture = CurvePicture(Rising());
  EXPECT_THAT(picture, HasSubstr("<title id=\"title\">2 to 4 clusters. No recommendation</title>"));
  EXPECT_THAT(picture, HasSubstr("3 clusters: I2 30</title>"));
  // Three curves of three marks: the value, the stability and its least.
  EXPECT_EQ(Count(picture, "<circle"), 9U);
  EXPECT_THAT(picture, Not(HasSubstr("<path class=\"chosen\"")));
  EXPECT_THAT(picture, Not(HasSubstr("NMI")));
}

TEST(CurvePicture, StandsInItsFrame) {
  // From 102 to 682 across; the value from the foot, 216, to the head, 52.
  EXPECT_THAT(CurvePicture(Rising()),
              HasSubstr("<path class=\"line value\" d=\"M102.0 216.0L392.0 134.0L682.0 52.0\"/>"));
}

TEST(CurvePicture, ShowsWhatIsRecommended) {
  Sweep sweep = Rising();
  sweep.recommendation.nclusters = 3;
  const std::string picture = CurvePicture(sweep);
  EXPECT_THAT(picture, HasSubstr("Recommended: 3 clusters</text>"));
  EXPECT_EQ(Count(picture, "<path class=\"chosen\" d=\"M392.0"), 2U);
}

TEST(CurvePicture, ShowsTheAgreementWithClasses) {
  Sweep sweep = Rising();
  for (auto& row : sweep.rows) row.classes = {0.75, 0.5};
  const std::string picture = CurvePicture(sweep);
  EXPECT_EQ(Count(picture, "<circle"), 15U);
  EXPECT_THAT(picture, HasSubstr(">NMI</text>"));
}

TEST(CurvePicture, BreaksItsLinesWhereThereIsNoValue) {
  Sweep sweep = Rising();
  sweep.rows[1].value = NAN;
  const std::string picture = CurvePicture(sweep);
  EXPECT_THAT(picture, HasSubstr("<path class=\"line value\" d=\"M102.0 216.0M682.0 52.0\"/>"));
  EXPECT_THAT(picture, Not(HasSubstr("nan")));
}

TEST(CurvePicture, MayHaveASingleNumber) {
  Sweep sweep = Rising();
  sweep.rows.resize(1);
  EXPECT_THAT(CurvePicture(sweep), HasSubstr("cx=\"392.0\" cy=\"134.0\""));
}

}  // namespace
