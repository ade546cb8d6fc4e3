// SPDX-License-Identifier: MIT
#include "lib/support/printed.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

namespace {

constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

std::string Text(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%f", value);
  return text;
}

class Printed : public testing::Test {
 protected:
  ~Printed() override { molva::DataBringNotANumber(false); }
};

TEST_F(Printed, LeavesNumbersAndInfinitiesAsTheyAre) {
  for (const bool bring : {false, true}) {
    molva::DataBringNotANumber(bring);
    EXPECT_EQ(molva::Printed(-0.1F), static_cast<double>(-0.1F));
    EXPECT_TRUE(std::signbit(molva::Printed(-0.0F)));
    EXPECT_EQ(molva::Printed(-INFINITY), -INFINITY);
    EXPECT_EQ(molva::Printed(0.25F, kNotANumber), 0.25);
  }
}

TEST_F(Printed, SpellsWhatNumbersMadeWithASignAndWhatTheDataBroughtWithout) {
  for (const float computed : {kNotANumber, -kNotANumber}) {
    molva::DataBringNotANumber(false);
    EXPECT_EQ(Text(molva::Printed(computed)), "-nan");
    molva::DataBringNotANumber(true);
    EXPECT_EQ(Text(molva::Printed(computed)), "nan");
  }
}

TEST_F(Printed, HoldsTheDataToNoAccountForWhatStemsFromANumber) {
  for (const float computed : {kNotANumber, -kNotANumber}) {
    molva::DataBringNotANumber(true);
    EXPECT_EQ(Text(molva::Printed(computed, 1)), "-nan");
    EXPECT_EQ(Text(molva::Printed(computed, INFINITY)), "-nan");
    EXPECT_EQ(Text(molva::Printed(computed, -kNotANumber)), "nan");
    molva::DataBringNotANumber(false);
    EXPECT_EQ(Text(molva::Printed(computed, kNotANumber)), "-nan");
  }
}

}  // namespace
