// SPDX-License-Identifier: MIT
//
// Small inputs cut short at every byte, and with every byte replaced by others that mean something
// to a reader. Each run must come to its own end: with a message, or with a whole clustering.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "lib/support/alloc.h"
#include "tests/reliability/runs.h"

namespace reliability {
namespace {

const Scenario kSparse = {"sparse",
                          {"@m", "2", "-showfeatures", "-showtree", "-labeltree", "-fulltree"},
                          {{"m", "5 4 10\n1 1 2 2\n1 2 2 .5\n2 1 3 1\n3 3 4 -1\n3 2 4 1e0\n"},
                           {"m.clabel", "a\nb b\n\tc\nd\n"},
                           {"m.rlabel", "r\ns\nt\nu\nv\n"},
                           {"m.rclass", "x\ny\nx\ny\nz\n"}}};
const Scenario kDense = {
    "dense",
    {"@m", "2", "-denseinput", "-showfeatures", "-showtree", "-zscores"},
    {{"m", "4 3\n1 2 3\n3 2.5 -1\n0 1e1 4\n5 5 5\n"}, {"m.rclass", "x\ny\nx\ny\n"}}};

class DamagedInput : public ::testing::TestWithParam<Scenario> {
 protected:
  // Runs with another text in the place of one input.
  void RunWith(const std::string& name, const std::string& text) {
    const std::size_t bytes = molva::BytesInUse();
    stage_.Replace(name, text);
    const Outcome outcome = stage_.Run();
    EXPECT_EQ(molva::BytesInUse(), bytes);
    if (outcome.error.empty()) {
      ++completed_;
      ExpectAClusterForEveryRow(outcome);
    } else {
      ++refused_;
      EXPECT_FALSE(outcome.files.contains("m.clustering.2")) << outcome.error;
    }
  }

  // Whatever the damage, a completed run has as many clustered rows as the matrix tells.
  static void ExpectAClusterForEveryRow(const Outcome& outcome) {
    EXPECT_EQ(outcome.status, 84);
    ASSERT_TRUE(outcome.files.contains("m.clustering.2"));
    const std::string& clustering = outcome.files.at("m.clustering.2");
    EXPECT_EQ(std::count(clustering.begin(), clustering.end(), '\n'),
              std::strtol(outcome.files.at("m").c_str(), nullptr, 10));
  }

  template <typename Damage>
  void ForEachByteOfEachInput(Damage damage) {
    for (const auto& [name, text] : GetParam().inputs) {
      for (std::size_t at = 0; at < text.size(); ++at) {
        SCOPED_TRACE(name + ", byte " + std::to_string(at));
        damage(name, text, at);
        if (HasFatalFailure()) return;
      }
      stage_.Replace(name, text);
    }
    RecordProperty("completed", std::to_string(completed_));
    RecordProperty("refused", std::to_string(refused_));
  }

  Stage stage_{GetParam()};
  int completed_ = 0;
  int refused_ = 0;
};

TEST_P(DamagedInput, EndsByItselfWhenItIsCutShort) {
  ForEachByteOfEachInput([this](const std::string& name, const std::string& text, std::size_t at) {
    RunWith(name, text.substr(0, at));
  });
  // All but the last line is needed, and its newline is not.
  EXPECT_GT(refused_, 0);
  EXPECT_GE(completed_, static_cast<int>(GetParam().inputs.size()));
}

TEST_P(DamagedInput, EndsByItselfWhenAByteIsAnother) {
  constexpr char kHostile[] = {'\0', '\n', ' ', '-', '9', '\xff'};
  ForEachByteOfEachInput([&](const std::string& name, const std::string& text, std::size_t at) {
    for (const char byte : kHostile) {
      std::string damaged = text;
      damaged[at] = byte;
      RunWith(name, damaged);
    }
  });
  EXPECT_GT(refused_, 0);
  EXPECT_GT(completed_, 0);
}

INSTANTIATE_TEST_SUITE_P(Formats, DamagedInput, ::testing::Values(kSparse, kDense),
                         [](const auto& scenario) { return scenario.param.name; });

}  // namespace
}  // namespace reliability
