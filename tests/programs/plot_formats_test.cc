// SPDX-License-Identifier: MIT
//
// Plots as they come out of whole runs, in every format that the help offers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "programs/run.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/metafile.h"

namespace {

using testing::EndsWith;
using testing::StartsWith;
using testing_support::ReadText;
using testing_support::TempFolder;
using Words = std::vector<std::string>;

struct RunResult {
  int status = 0;
  std::string output;
  std::string errors;
};

RunResult RunWords(Words words) {
  words.insert(words.begin(), "mardle");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  RunResult result;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  try {
    result.status = mardle::Run(static_cast<int>(words.size()), argv.data());
  } catch (const testing_support::Fatal& error) {
    result.status = -1;
  }
  result.output = testing::internal::GetCapturedStdout();
  result.errors = testing::internal::GetCapturedStderr();
  return result;
}

int CountOf(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

// Two pairs of rows over three columns: eight cells and two frames in the matrix plot; in the
// cluster plot four cells, two frames, and the four lines of the tree over two clusters.
class PlotFormats : public ::testing::Test {
 protected:
  PlotFormats() {
    folder_.Write("m", "4 3 8\n1 3 2 4\n1 4 2 3\n2 1 3 4\n2 1 3 5\n");
    folder_.Write("m.clabel", "alpha\nbeta\ngamma\n");
  }

  std::string Path(const std::string& name) const { return folder_.Path(name); }

  Words Command(const std::string& format, const Words& options = {}) const {
    Words words = {Path("m"),
                   "2",
                   "-nooutput",
                   "-colmodel=1",
                   "-plotformat=" + format,
                   "-plotmatrix=" + Path("matrix"),
                   "-plotclusters=" + Path("clusters")};
    words.insert(words.end(), options.begin(), options.end());
    return words;
  }

  // Makes both plots and returns their files, the matrix plot first.
  std::array<std::string, 2> Plots(const std::string& format, const std::string& errors = "",
                                   const Words& options = {}) const {
    const RunResult run = RunWords(Command(format, options));
    EXPECT_EQ(run.status, 84);
    EXPECT_EQ(run.errors, errors);
    return {ReadText(Path("matrix")), ReadText(Path("clusters"))};
  }

  TempFolder folder_;
};

TEST_F(PlotFormats, AreTheDefaultPostscript) {
  Words words = Command("");
  std::erase(words, "-plotformat=");
  const RunResult run = RunWords(words);
  EXPECT_EQ(run.errors, "");
  EXPECT_THAT(ReadText(Path("matrix")), StartsWith("%!PS-Adobe-3.0 EPSF-3.0\n"));
}

TEST_F(PlotFormats, Postscript) {
  const auto [matrix, clusters] = Plots("ps");
  for (const std::string& plot : {matrix, clusters}) {
    EXPECT_THAT(plot, StartsWith("%!PS-Adobe-3.0 EPSF-3.0\n"));
    EXPECT_THAT(plot, EndsWith("\n%%EOF\n"));
  }
  EXPECT_EQ(CountOf(matrix, "\nBegin %I Rect"), 8 + 2);
  EXPECT_EQ(CountOf(matrix, "\nBegin %I Text"), 3 + 2);
  EXPECT_EQ(CountOf(clusters, "\nBegin %I Text"), 2 * 2 + 3);
}

constexpr char kFontWarning[] =
    "libplot: cannot retrieve font \"Helvetica\", using default \"HersheySerif\"\n";

TEST_F(PlotFormats, Fig) {
  const auto [matrix, clusters] = Plots("fig", std::string(kFontWarning) + kFontWarning);
  for (const std::string& plot : {matrix, clusters}) {
    EXPECT_THAT(plot, StartsWith("#FIG 3.2\n"));
    EXPECT_THAT(plot, EndsWith("\n"));
  }
  EXPECT_EQ(CountOf(matrix, "\n#POLYLINE [BOX]\n"), 8 + 2);
}

TEST_F(PlotFormats, Illustrator) {
  for (const std::string& plot : Plots("ai")) {
    EXPECT_THAT(plot, StartsWith("%!PS-Adobe-3.0\n"));
    EXPECT_THAT(plot, EndsWith("\n%%EOF\n"));
  }
}

// The background is one more box.
TEST_F(PlotFormats, Svg) {
  const auto [matrix, clusters] = Plots("svg");
  for (const std::string& plot : {matrix, clusters}) {
    EXPECT_THAT(plot, StartsWith("<?xml version=\"1.0\""));
    EXPECT_THAT(plot, EndsWith("\n</g>\n</svg>\n"));
  }
  EXPECT_EQ(CountOf(matrix, "<rect "), 1 + 8 + 2);
  EXPECT_EQ(CountOf(matrix, "<text "), 3 + 2);
  EXPECT_EQ(CountOf(matrix, ">alpha</text>"), 1);
  EXPECT_EQ(CountOf(matrix, ">cluster 1</text>"), 1);
  EXPECT_EQ(CountOf(clusters, "<line "), 4);
  EXPECT_EQ(CountOf(clusters, "<text "), 2 * 2 + 3);
  EXPECT_EQ(CountOf(clusters, ">(2)</text>"), 2);
}

// From the element that begins a metafile to the one that ends it.
TEST_F(PlotFormats, Cgm) {
  const auto [matrix, clusters] = Plots("cgm");
  for (const std::string& plot : {matrix, clusters}) {
    EXPECT_THAT(plot, StartsWith(std::string("\0\x29\x08"
                                             "CGM plot",
                                             11)));
    EXPECT_THAT(plot, EndsWith(std::string("\0\xa0\0\x40", 4)));
  }
  EXPECT_EQ(CountOf(matrix, "cluster "), 2);
}

// Enters the plotter language and leaves it.
TEST_F(PlotFormats, Pcl) {
  const auto [matrix, clusters] = Plots("pcl");
  for (const std::string& plot : {matrix, clusters}) {
    EXPECT_THAT(plot, StartsWith("\x1b%0B\nBP;IN;"));
    EXPECT_THAT(plot, EndsWith("PG0;\n\x1b%0A"));
  }
  EXPECT_EQ(CountOf(matrix, "LB"), 3 + 2);
  EXPECT_EQ(CountOf(clusters, "LB"), 2 * 2 + 3);
}

TEST_F(PlotFormats, Gif) {
  for (const std::string& plot : Plots("gif")) {
    EXPECT_THAT(plot, StartsWith("GIF8"));
    EXPECT_THAT(plot, EndsWith(";"));
    EXPECT_GT(plot.size(), 1000U);
  }
}

TEST_F(PlotFormats, MayBeNamedInCapitals) { EXPECT_THAT(Plots("SVG")[0], StartsWith("<?xml")); }

TEST_F(PlotFormats, EndTheRunWhenUnknown) {
  for (const std::string format : {"", "jpeg"}) {
    EXPECT_FATAL(
        {
          if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
          Words words = Command(format);
          words.insert(words.begin(), "mardle");
          std::vector<char*> argv;
          for (std::string& word : words) argv.push_back(word.data());
          argv.push_back(nullptr);
          mardle::Run(static_cast<int>(words.size()), argv.data());
        },
        "libplot: ignoring request to create plotter of unknown type\nUnknown plot format: " +
            format + "\n");
  }
}

// What is longer than any name of a format is cut, and unknown all the same.
TEST_F(PlotFormats, MayHaveNamesOfAnyLength) {
  const testing_support::FatalThrows throws;
  EXPECT_EQ(RunWords(Command(std::string(100000, 'x'))).status, -1);
}

TEST_F(PlotFormats, RepeatExactly) {
  for (const std::string format : {"fig", "svg", "cgm", "pcl", "gif", "meta"}) {
    const std::string errors = format == "fig" ? std::string(kFontWarning) + kFontWarning : "";
    EXPECT_EQ(Plots(format, errors), Plots(format, errors)) << format;
  }
}

bool HasTrees(const std::string& path) {
  return testing_support::ReadMetafile(path).order.starts_with("L");
}

TEST_F(PlotFormats, ShowTheTreeOverRowsOfTheRun) {
  Plots("meta");
  EXPECT_FALSE(HasTrees(Path("matrix")));
  Plots("meta", "", {"-fulltree"});
  EXPECT_TRUE(HasTrees(Path("matrix")));
}

TEST_F(PlotFormats, ShowTheTreeOverColumnsThatWasAskedFor) {
  Plots("meta", "", {"-clustercolumns"});
  EXPECT_TRUE(HasTrees(Path("matrix")));
}

TEST_F(PlotFormats, AreBlackWhenAskedFor) {
  Plots("meta", "", {"-zeroblack"});
  EXPECT_EQ(testing_support::ReadMetafile(Path("matrix")).boxes.size(), 4U * 3 + 8 + 2);
}

TEST_F(PlotFormats, ChangeNothingInTheReport) {
  const auto report = [](const Words& words) {
    const std::string text = RunWords(words).output;
    return text.substr(0, text.find("\nTiming Information"));
  };
  EXPECT_EQ(report(Command("svg", {"-fulltree", "-clustercolumns"})),
            report({Path("m"), "2", "-nooutput", "-colmodel=1", "-fulltree"}));
}

TEST_F(PlotFormats, OfOneCluster) {
  Words words = Command("meta");
  words[1] = "1";
  const RunResult run = RunWords(words);
  EXPECT_EQ(run.status, 84);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(testing_support::ReadMetafile(Path("matrix")).order, "TTTBBBBBBBBBT");
  EXPECT_EQ(testing_support::ReadMetafile(Path("clusters")).order, "TTTTTBBBB");
}

TEST_F(PlotFormats, OfFeaturesThatAreNone) {
  const RunResult run = RunWords(Command("meta", {"-nfeatures=0"}));
  EXPECT_EQ(run.status, 84);
  EXPECT_EQ(run.errors, "No rows or no columns to plot: " + Path("matrix") +
                            " is not written\nNo rows or no columns to plot: " + Path("clusters") +
                            " is not written\n");
  EXPECT_FALSE(std::filesystem::exists(Path("matrix")));
  EXPECT_FALSE(std::filesystem::exists(Path("clusters")));
}

TEST_F(PlotFormats, AreNotMadeOfSparseRowsUnderCorrelation) {
  const RunResult run = RunWords(Command("meta", {"-sim=2"}));
  EXPECT_EQ(run.status, 84);
  EXPECT_EQ(run.errors, "");
  EXPECT_FALSE(std::filesystem::exists(Path("matrix")));
  EXPECT_FALSE(std::filesystem::exists(Path("clusters")));
}

TEST_F(PlotFormats, AreMadeOfDenseRowsUnderCorrelation) {
  folder_.Write("d", "4 3\n1 2 3\n2 4 7\n3 2 1\n9 8 6\n");
  Words words = Command("meta", {"-sim=2", "-denseinput"});
  words[0] = Path("d");
  const RunResult run = RunWords(words);
  EXPECT_EQ(run.status, 84);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(testing_support::ReadMetafile(Path("matrix")).labels.size(), 3U + 2);
  EXPECT_EQ(testing_support::ReadMetafile(Path("clusters")).labels.size(), 3U + 4);
}

// -prune=0.5 leaves rows without entries and so without a cluster; the plots leave them out.
TEST_F(PlotFormats, LeaveOutRowsThatWerePruned) {
  std::string rows = "9 6 21\n";
  for (int i = 0; i < 6; ++i) rows += i % 2 == 0 ? "1 9 2 8 5 1\n" : "1 8 2 9\n";
  for (int i = 0; i < 3; ++i) rows += "3 1 4 1\n";
  folder_.Write("m", rows);
  folder_.Write("m.clabel", "a\nb\nc\nd\ne\nf\n");
  for (const Words& options : {Words{}, Words{"-fulltree"}}) {
    Words all = {"-prune=0.5"};
    all.insert(all.end(), options.begin(), options.end());
    Plots("meta", "", all);
    const testing_support::Metafile plot = testing_support::ReadMetafile(Path("matrix"));
    double highest = 0;
    double lowest = 1e9;
    for (const testing_support::MetaBox& box : plot.boxes) {
      highest = std::max(highest, box.opposite.y);
      lowest = std::min(lowest, box.corner.y);
    }
    const double cell = plot.boxes[0].opposite.y - plot.boxes[0].corner.y;
    EXPECT_NEAR((highest - lowest) / cell, 6, 1e-3);
  }
}

// Random runs, which may do anything but crash or hang.
class RandomPlots {
 public:
  explicit RandomPlots(std::uint32_t seed) : random_(seed) {}

  void Run() {
    const testing_support::FatalThrows throws;
    const bool dense = OneIn(2);
    const int rows = 1 + Below(OneIn(4) ? 40 : 8);
    const int columns = 1 + Below(OneIn(4) ? 40 : 8);
    folder_.Write("m", dense ? DenseRows(rows, columns) : SparseRows(rows, columns));
    std::string labels;
    for (int j = 0; j < columns; ++j) labels += Label() + "\n";
    folder_.Write("m.clabel", labels);
    constexpr std::array kFormats = {"ps", "fig", "ai", "svg", "cgm", "pcl", "gif", "meta"};
    Words words = {folder_.Path("m"),
                   std::to_string(1 + Below(rows)),
                   "-nooutput",
                   "-ntrials=1",
                   std::string("-plotformat=") + kFormats[static_cast<std::size_t>(Below(8))],
                   "-plotmatrix=" + folder_.Path("matrix"),
                   "-plotclusters=" + folder_.Path("clusters"),
                   "-nfeatures=" + std::to_string(OneIn(4) ? Below(3) - 1 : 1 + Below(9)),
                   "-rowmodel=" + std::to_string(1 + Below(4)),
                   "-seed=" + std::to_string(Below(1000))};
    if (dense) words.emplace_back("-denseinput");
    if (dense && OneIn(2)) words.emplace_back("-sim=2");
    if (!dense) words.push_back("-colmodel=" + std::to_string(1 + Below(2)));
    if (OneIn(4)) words.emplace_back("-prune=0.6");
    for (const char* option : {"-fulltree", "-clustercolumns", "-zeroblack", "-noreorder"}) {
      if (OneIn(2)) words.emplace_back(option);
    }
    if (RunWords(words).status == 84) ++completed_;
  }
  int completed() const { return completed_; }

 private:
  int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  bool OneIn(int n) { return Below(n) == 0; }

  std::string Value() {
    constexpr std::array kOdd = {"nan",   "inf",   "-inf", "1e-45",  "-1e-40", "1e38", "-3e38",
                                 "1e400", "1e-30", "1e-6", "0.0001", "0",      "-0",   "1e20"};
    if (OneIn(odd_)) return kOdd[static_cast<std::size_t>(Below(kOdd.size()))];
    return std::to_string(Below(2001) - 1000);
  }

  // Of every matrix a third has no odd values, a third few and a third many.
  void ChooseOddity() { odd_ = std::array{1 << 30, 20, 3}[static_cast<std::size_t>(Below(3))]; }

  std::string DenseRows(int rows, int columns) {
    ChooseOddity();
    std::string text = std::to_string(rows) + " " + std::to_string(columns) + "\n";
    for (int i = 0; i < rows; ++i) {
      for (int j = 0; j < columns; ++j) text += Value() + " ";
      text += "\n";
    }
    return text;
  }

  std::string SparseRows(int rows, int columns) {
    ChooseOddity();
    std::string text;
    int entries = 0;
    for (int i = 0; i < rows; ++i) {
      for (int j = 1; j <= columns; ++j) {
        if (!OneIn(2)) continue;
        text += std::to_string(j) + " " + Value() + " ";
        ++entries;
      }
      text += "\n";
    }
    return std::to_string(rows) + " " + std::to_string(columns) + " " + std::to_string(entries) +
           "\n" + text;
  }

  std::string Label() {
    constexpr std::array kPieces = {"\\sp",   "\\*a", "\\",       "\\f3",
                                    "\\r9",   "\\mk", "\xc3\xa9", "\xe2\x82\xac",
                                    "<&>\"'", "((",   "%s%n",     "\x1b[2J"};
    std::string label;
    const int pieces = OneIn(10) ? 600 : Below(8);
    for (int i = 0; i < pieces; ++i) {
      if (OneIn(3)) {
        label += kPieces[static_cast<std::size_t>(Below(kPieces.size()))];
      } else {
        label += static_cast<char>(1 + Below(255));
      }
    }
    std::erase(label, '\n');
    return label;
  }

  std::mt19937 random_;
  int odd_ = 0;
  int completed_ = 0;
  TempFolder folder_;
};

TEST(RandomPlots, NeitherCrashNorHang) {
  RandomPlots plots(2026);
  for (int i = 0; i < 500; ++i) plots.Run();
  EXPECT_GT(plots.completed(), 250);
}

}  // namespace
