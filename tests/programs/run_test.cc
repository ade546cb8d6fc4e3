// SPDX-License-Identifier: MIT
#include "programs/run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "lib/support/alloc.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using testing_support::ReadText;
using Words = std::vector<std::string>;

const std::string kAsterisks = std::string(83, '*') + "\n";
const std::string kRule = std::string(72, '-') + "\n";

// Rows 0 and 1 point one way, rows 2 and 3 another.
constexpr char kTwoPairs[] = "4 2 4\n1 3\n1 3\n2 4\n2 4\n";

int RunWords(Words words) {
  words.insert(words.begin(), "mardle");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  return mardle::Run(static_cast<int>(words.size()), argv.data());
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// Puts T in the place of the three timings.
std::string WithoutTimes(const std::string& text) {
  std::string masked;
  for (const std::string& line : LinesOf(text)) {
    masked += (line.ends_with(" sec") ? line.substr(0, line.find(':')) + ": T" : line) + "\n";
  }
  return masked;
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

class MardleRun : public ::testing::Test {
 protected:
  MardleRun() { folder_.Write("m", kTwoPairs); }

  std::string Path(const std::string& name) const { return folder_.Path(name); }
  std::string Text(const std::string& name) const { return ReadText(Path(name)); }
  bool Exists(const std::string& name) const { return std::filesystem::exists(Path(name)); }

  // The report of a run that completes.
  std::string Report(const Words& words) const {
    int status = 0;
    std::string report = WithoutTimes(testing_support::OutputOf([&] { status = RunWords(words); }));
    EXPECT_EQ(status, 84);
    return report;
  }

  // The run of a child process whose report goes to a file.
  void RunUnheard(const Words& words) const {
    if (std::freopen(Path("out").c_str(), "w", stdout) == nullptr) std::abort();
    RunWords(words);
  }

  // Which of the two pairs comes first is the seed's choice.
  void ExpectPairsIn(const std::string& name) const {
    const std::string text = Text(name);
    EXPECT_TRUE(text == "0\n0\n1\n1\n" || text == "1\n1\n0\n0\n") << text;
  }

  std::string Header(const std::string& columns, const std::string& methods, int nclusters) const {
    return kAsterisks +
           " MOLVA 1.5 - mardle\n"
           "\n"
           "Matrix Information --------------------------------------------------------------\n"
           "  Name: " +
           Path("m") +
           ", #Rows: 4, #Columns: 2, #NonZeros: 4\n"
           "\n"
           "Options -------------------------------------------------------------------------\n"
           "  CRfun=I2, RowModel=None, ColModel=" +
           columns +
           ", Prune=1.00, NTrials=10, NIter=10\n"
           "  " +
           methods + ", Refine=NO, SimFun=Cosine, #Clusters: " + std::to_string(nclusters) +
           "\n"
           "\n"
           "Solution ------------------------------------------------------------------------\n"
           "\n";
  }

  const std::string timing_ =
      "\n"
      "Timing Information --------------------------------------------------------------\n"
      "   I/O: T\n"
      "   Clustering: T\n"
      "   Reporting: T\n" +
      kAsterisks;
  testing_support::TempFolder folder_;
};

// Two composites of length 2 give I2 = 4. Under IDF both columns weigh ln 2, which the unit length
// takes out again.
TEST_F(MardleRun, PrintsItsReportAndReturnsTheLengthOfTheLastLine) {
  EXPECT_EQ(Report({Path("m"), "2"}), Header("IDF", "Direct=NO, RB=YES", 2) + kRule +
                                          "2-way clustering solution: [I2=4.00e+00]\n" + kRule +
                                          "cid  Size  ISim  ISdev   ESim  ESdev  | \n" + kRule +
                                          "  0     2 +1.000 +0.000 +0.000 +0.000 | \n"
                                          "  1     2 +1.000 +0.000 +0.000 +0.000 | \n" +
                                          kRule + timing_);
}

TEST_F(MardleRun, WritesTheClusteringBesideTheMatrix) {
  Report({Path("m"), "2"});
  ExpectPairsIn("m.clustering.2");
}

TEST_F(MardleRun, WritesTheClusteringUnderTheNameGiven) {
  Report({Path("m"), "2", "-output=" + Path("res")});
  ExpectPairsIn("res");
  EXPECT_FALSE(Exists("m.clustering.2"));
}

TEST_F(MardleRun, MakesAsManyClustersAsClassesForZero) {
  folder_.Write("m.rclass", "x\nx\ny\nz\n");
  const std::string report = Report({Path("m"), "0"});
  EXPECT_TRUE(report.starts_with(Header("IDF", "Direct=NO, RB=YES", 3))) << report;
  EXPECT_TRUE(Has(report, "3-way clustering: ")) << report;
  EXPECT_TRUE(Exists("m.clustering.3"));
}

TEST_F(MardleRun, MakesOneClusterForZeroWithoutClasses) {
  EXPECT_TRUE(Has(Report({Path("m"), "abc"}), "1-way clustering solution: "));
  EXPECT_EQ(Text("m.clustering.1"), "0\n0\n0\n0\n");
}

TEST_F(MardleRun, MeasuresTheClustersAgainstTheClasses) {
  folder_.Write("k", "x\nx\ny\ny\n");
  EXPECT_TRUE(Has(Report({Path("m"), "2", "-rclassfile=" + Path("k")}),
                  "2-way clustering: [I2=4.00e+00], Entropy: 0.000, Purity: 1.000\n"));
}

TEST_F(MardleRun, WritesNoClusteringWhenToldSo) {
  Report({Path("m"), "2", "-nooutput"});
  EXPECT_FALSE(Exists("m.clustering.2"));
}

TEST_F(MardleRun, WritesTheClusteringForItsZScoresAllTheSame) {
  Report({Path("m"), "2", "-zscores", "-nooutput"});
  const std::vector<std::string> lines = LinesOf(Text("m.clustering.2"));
  ASSERT_EQ(lines.size(), 4U);
  for (const std::string& line : lines) EXPECT_EQ(std::count(line.begin(), line.end(), ' '), 2);
}

TEST_F(MardleRun, ClustersDirectlyWhenToldSo) {
  const std::string report = Report({Path("m"), "2", "-direct", "-dbglvl=1"});
  EXPECT_TRUE(report.starts_with(Header("IDF", "Direct=YES, RB=NO", 2))) << report;
  EXPECT_TRUE(Has(report, "Clustering a matrix of size"));
  EXPECT_FALSE(Has(report, "Bisecting a cluster of size"));
  ExpectPairsIn("m.clustering.2");
}

TEST_F(MardleRun, BisectsWhenBothMethodsAreAskedFor) {
  const std::string report = Report({Path("m"), "2", "-direct", "-rb", "-dbglvl=1"});
  EXPECT_TRUE(report.starts_with(Header("IDF", "Direct=YES, RB=YES", 2))) << report;
  EXPECT_TRUE(Has(report, "Bisecting a cluster of size"));
  EXPECT_FALSE(Has(report, "Clustering a matrix of size"));
}

TEST_F(MardleRun, CountsTheZerosOfADenseMatrix) {
  folder_.Write("d", "4 2\n3 0\n3 0\n0 4\n0 4\n");
  const std::string report = Report({Path("d"), "2", "-denseinput"});
  EXPECT_TRUE(Has(report, "#Rows: 4, #Columns: 2, #NonZeros: 8\n")) << report;
  EXPECT_TRUE(Has(report, "ColModel=None")) << report;
  ExpectPairsIn("d.clustering.2");
}

// Rows that rise and rows that fall correlate at 1 within their pair and at -1 across.
TEST_F(MardleRun, ClustersByCorrelation) {
  folder_.Write("d", "4 3\n1 2 3\n2 4 6\n3 2 1\n9 8 7\n");
  const std::string report = Report({Path("d"), "2", "-denseinput", "-sim=2"});
  EXPECT_TRUE(Has(report, "SimFun=CorrCoef")) << report;
  EXPECT_TRUE(Has(report, "  0     2 +1.000 +0.000 -1.000 +0.000 | \n")) << report;
  ExpectPairsIn("d.clustering.2");
}

TEST_F(MardleRun, GivesTheSameReportAndClusteringAgain) {
  const Words words = {Path("m"), "3", "-seed=5", "-refine"};
  const std::string report = Report(words);
  const std::string clustering = Text("m.clustering.3");
  EXPECT_EQ(Report(words), report);
  EXPECT_EQ(Text("m.clustering.3"), clustering);
}

TEST_F(MardleRun, TellsThatANamedLabelFileIsMissingBeforeItsHeader) {
  EXPECT_TRUE(Report({Path("m"), "2", "-clabelfile=" + Path("none")})
                  .starts_with("Column label file (" + Path("none") +
                               ") does not exist! Ignoring the file...\n" + kAsterisks));
}

TEST_F(MardleRun, GoesOnWhenTheDiskIsFull) {
  testing::internal::CaptureStderr();
  const std::string report = Report({Path("m"), "2", "-output=/dev/full"});
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            std::string("Writing /dev/full failed: ") + std::strerror(ENOSPC) + "\n");
  EXPECT_TRUE(report.ends_with(timing_)) << report;
}

TEST_F(MardleRun, EndsWhenTheMatrixIsMissing) {
  EXPECT_FATAL(RunUnheard({Path("none"), "2"}),
               "Matrix file to be clusterd (" + Path("none") + ") does not exist!\n");
}

TEST_F(MardleRun, EndsWhenTheClusteringCannotBeOpened) {
  EXPECT_FATAL(RunUnheard({Path("m"), "2", "-output=" + Path("no/res")}),
               "Problems in opening the clustering file: " + Path("no/res"));
  EXPECT_EQ(Text("out"), Header("IDF", "Direct=NO, RB=YES", 2));
}

// The header prints the empty name, the engine the message.
TEST_F(MardleRun, EndsOnAnUnknownCode) {
  EXPECT_FATAL(RunUnheard({Path("m"), "2", "-rowmodel=9"}), "Unknown RowModel value of 9\n");
  EXPECT_TRUE(Has(Text("out"), "RowModel=, ColModel=IDF"));
  EXPECT_FATAL(RunUnheard({Path("m"), "2", "-colmodel=9"}), "Unknown ColModel value of 9\n");
  EXPECT_FATAL(RunUnheard({Path("m"), "2", "-sim=9"}), "Unknown similarity function: 9\n");
  EXPECT_FATAL(RunUnheard({Path("m"), "2", "-crfun=12"}),
               "Unknown clustering criterion function (CRFun) of 12\n");
}

TEST_F(MardleRun, EndsOnMoreClustersThanRows) {
  EXPECT_FATAL(RunUnheard({Path("m"), "5"}),
               "Cannot make 5 clusters out of 4 rows with entries!\n");
}

TEST_F(MardleRun, EndsWithoutATrial) {
  EXPECT_FATAL(RunUnheard({Path("m"), "2", "-ntrials=0"}),
               "At least one trial is needed to find a clustering! NTrials=0\n");
}

// Column numbers start at 1.
TEST_F(MardleRun, EndsOnAMatrixWithColumnZero) {
  folder_.Write("z", "2 2 2\n1 1\n0 1\n");
  EXPECT_FATAL(RunUnheard({Path("z"), "2"}),
               "Column number is outside the matrix! Ncols=2, ColNum=-1, Row=1\n");
}

// A matrix of 1001 empty rows asks for 1001 ints twice: for the classes, then for the clustering.
TEST_F(MardleRun, NamesTheClusteringThatCannotBeHad) {
  folder_.Write("r", "1001 1 0\n" + std::string(1001, '\n'));
  const Words words = {Path("r"), "2"};
  EXPECT_FATAL(
      {
        static int times;
        times = 0;
        molva::SetAllocateFunction([](std::size_t nbytes) {
          return nbytes == 4004 && ++times == 2 ? nullptr : std::malloc(nbytes);
        });
        RunUnheard(words);
      },
      "***Memory allocation failed for main: part. Requested size: 4004 bytes");
}

constexpr char kTreeTitle[] = "Hierarchical Tree that optimizes the ";

TEST_F(MardleRun, ShowsFeaturesWhenToldSo) {
  const std::string report = Report({Path("m"), "2", "-showfeatures", "-nfeatures=1"});
  EXPECT_TRUE(Has(report, "2-way clustering solution - Descriptive & Discriminating Features..."));
  EXPECT_TRUE(Has(report, "      Descriptive:  col00001 100.0%\n")) << report;
  EXPECT_FALSE(Has(report, kTreeTitle));
}

TEST_F(MardleRun, ShowsNoTreeForItsLabelsAlone) {
  EXPECT_EQ(Report({Path("m"), "2", "-labeltree", "-noreorder"}), Report({Path("m"), "2"}));
}

TEST_F(MardleRun, ShowsTheFeaturesBeforeTheTree) {
  const std::string report = Report({Path("m"), "2", "-showtree", "-showfeatures"});
  const std::size_t features = report.find("Descriptive & Discriminating");
  const std::size_t tree = report.find(kTreeTitle);
  ASSERT_NE(tree, std::string::npos);
  EXPECT_LT(report.find("2-way clustering solution: "), features);
  EXPECT_LT(features, tree);
}

TEST_F(MardleRun, BuildsTheTreeOverTheClustersUnderTheirCriterion) {
  EXPECT_TRUE(Has(Report({Path("m"), "2", "-showtree", "-crfun=3"}),
                  kTreeTitle + std::string("E1 criterion function...\n")));
}

TEST_F(MardleRun, BuildsTheTreeOverTheClustersUnderACriterionOfItsOwn) {
  const std::string report = Report({Path("m"), "2", "-showtree=6", "-crfun=8"});
  EXPECT_TRUE(Has(report, "[H3=")) << report;
  EXPECT_TRUE(Has(report, kTreeTitle + std::string("H1 criterion function...\n"))) << report;
}

// Rows of the two pairs are at right angles.
TEST_F(MardleRun, WritesTheTreeOverTheClustersSilently) {
  EXPECT_EQ(Report({Path("m"), "2", "-writetree"}), Report({Path("m"), "2"}));
  EXPECT_EQ(Text("m.tree.2"), "2 0.000000\n2 0.000000\n-1 0.000000\n");
}

TEST_F(MardleRun, WritesTheTreeItShows) {
  const std::string report =
      Report({Path("m"), "2", "-showtree", "-writetree=" + Path("res.tree")});
  EXPECT_TRUE(Has(report, kTreeTitle));
  EXPECT_EQ(Text("res.tree"), "2 0.000000\n2 0.000000\n-1 0.000000\n");
  EXPECT_FALSE(Exists("m.tree.2"));
}

// Which pair is cluster 0 is the seed's choice, but rows of a pair have one parent, and the two
// parents another.
TEST_F(MardleRun, WritesTheCompleteTreeUnderTheNumberOfRows) {
  Report({Path("m"), "2", "-fulltree", "-writetree"});
  const std::vector<std::string> lines = LinesOf(Text("m.tree.4"));
  ASSERT_EQ(lines.size(), 7U);
  EXPECT_EQ(lines[0], lines[1]);
  EXPECT_EQ(lines[2], lines[3]);
  EXPECT_NE(lines[0], lines[2]);
  EXPECT_EQ(lines[4], "6 1.000000");
  EXPECT_EQ(lines[5], "6 1.000000");
  EXPECT_EQ(lines[6], "-1 0.000000");
  EXPECT_FALSE(Exists("m.tree.2"));
}

// The file is that of the complete tree, and is not written again by the report.
TEST_F(MardleRun, WritesOneTreeOnly) {
  const std::string report =
      Report({Path("m"), "2", "-fulltree", "-showtree", "-writetree=" + Path("res.tree")});
  EXPECT_TRUE(Has(report, kTreeTitle));
  EXPECT_EQ(LinesOf(Text("res.tree")).size(), 7U);
  EXPECT_FALSE(Exists("m.tree.2"));
}

TEST_F(MardleRun, WritesNoTreeUnlessToldSo) {
  Report({Path("m"), "2", "-fulltree", "-showtree"});
  EXPECT_FALSE(Exists("m.tree.4"));
  EXPECT_FALSE(Exists("m.tree.2"));
}

TEST_F(MardleRun, MeasuresTheCompleteTreeAgainstTheClasses) {
  folder_.Write("k", "x\nx\ny\ny\n");
  EXPECT_TRUE(
      Has(Report({Path("m"), "2", "-fulltree", "-rclassfile=" + Path("k")}), ", FScore: 1.000\n"));
  EXPECT_FALSE(Has(Report({Path("m"), "2", "-rclassfile=" + Path("k")}), "FScore"));
}

// Codes 8 and 9 build no tree. The complete tree comes before the clustering file.
TEST_F(MardleRun, EndsBeforeTheClusteringFileWhenTheCompleteTreeCannotBeBuilt) {
  for (const std::string code : {"8", "9"}) {
    EXPECT_FATAL(RunUnheard({Path("m"), "2", "-fulltree", "-writetree", "-crfun=" + code}),
                 "Unknown clustering criterion function (CRFun) of " + code + "\n");
    EXPECT_FALSE(Exists("m.clustering.2"));
    EXPECT_FALSE(Exists("m.tree.4"));
    EXPECT_FALSE(Has(Text("out"), "2-way clustering"));
  }
}

// The tree over the clusters comes after the clustering file and the table.
TEST_F(MardleRun, EndsAfterTheTableWhenTheTreeOverTheClustersCannotBeBuilt) {
  for (const std::string code : {"8", "9"}) {
    for (const std::string& option : {"-showtree=" + code, "-crfun=" + code}) {
      std::filesystem::remove(Path("m.clustering.2"));
      EXPECT_FATAL(RunUnheard({Path("m"), "2", "-showtree", "-writetree", option}),
                   "Unknown clustering criterion function (CRFun) of " + code + "\n");
      ExpectPairsIn("m.clustering.2");
      EXPECT_FALSE(Exists("m.tree.2"));
      EXPECT_TRUE(Has(Text("out"), "2-way clustering"));
      EXPECT_FALSE(Has(Text("out"), kTreeTitle));
    }
  }
}

TEST_F(MardleRun, EndsBeforeTheClusteringFileWhenTheCompleteTreeCannotBeWritten) {
  const std::string path = Path("no/such/folder/tree");
  EXPECT_FATAL(RunUnheard({Path("m"), "2", "-fulltree", "-writetree=" + path}),
               "Problems in creating the tree file: " + path);
  EXPECT_FALSE(Exists("m.clustering.2"));
}

TEST_F(MardleRun, EndsAfterTheTableWhenTheTreeOverTheClustersCannotBeWritten) {
  const std::string path = Path("no/such/folder/tree");
  EXPECT_FATAL(RunUnheard({Path("m"), "2", "-writetree=" + path}),
               "Problems in creating the tree file: " + path);
  ExpectPairsIn("m.clustering.2");
  EXPECT_TRUE(Has(Text("out"), "2-way clustering"));
}

// 1,002 rows: the table of their labels has the size of 2,004 parents and of 2,004 similarities,
// and comes before them.
TEST_F(MardleRun, NamesTheCompleteTreeThatCannotBeHad) {
  std::string text = "1002 1 1002\n";
  for (int i = 0; i < 1002; ++i) text += "1 1\n";
  folder_.Write("r", text);
  const Words words = {Path("r"), "1", "-fulltree", "-colmodel=1"};
  const auto run_without = [&](int failing) {
    static int times;
    static int nth;
    times = 0;
    nth = failing;
    molva::SetAllocateFunction([](std::size_t nbytes) {
      return nbytes == 8016 && ++times == nth ? nullptr : std::malloc(nbytes);
    });
    RunUnheard(words);
  };
  EXPECT_FATAL(run_without(2),
               "***Memory allocation failed for main: ptree. Requested size: 8016 bytes");
  EXPECT_FATAL(run_without(3),
               "***Memory allocation failed for main: tsims. Requested size: 8016 bytes");
}

// Rows alone in their clusters have no deviation. That is all there is to say of the row of zeros
// in itself, and its products with the other row are not numbers at all.
TEST_F(MardleRun, TellsWhatTheDataOfThisRunBroughtFromWhatNumbersMade) {
  const auto scores = [this](const std::string& matrix) {
    folder_.Write("table", matrix);
    Report({"-denseinput", "-direct", "-zscores", Path("table"), "2"});
    std::string both;
    for (const std::string& line : LinesOf(Text("table.clustering.2"))) {
      both += line.substr(line.find(' ')) + "\n";
    }
    return both;
  };
  EXPECT_EQ(scores("2 1\n0\nnan\n"), " -nan nan\n nan nan\n");
  EXPECT_EQ(scores("2 1\n0\n-nan\n"), " -nan nan\n nan nan\n");
  EXPECT_EQ(scores("2 1\n1\n1\n"), " -nan -nan\n -nan -nan\n");
}

}  // namespace
