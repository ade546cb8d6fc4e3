// SPDX-License-Identifier: MIT
#include "tools/export/export_run.h"

#include <gmock/gmock.h>

#include <vector>

#include "tests/testing/files.h"
#include "tests/tools/export/trees.h"
#include "tools/text/file_hash.h"

namespace {

using mardle::tools::HashOfFile;
using testing::HasSubstr;
using testing::Not;
using testing_support::ReadText;
using testing_support::TempFolder;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

// Five rows, two directions; the third row has a column of its own only, which preparation drops.
class ExportRun : public testing::Test {
 protected:
  ExportRun() {
    Write("m", "5 3 8\n1 1 2 1\n1 2 2 1\n3 1\n1 1\n2 1 1 3\n");
    Write("m.rlabel", "a\nb b\n<c>\nd'\ne\n");
    Write("m.rclass", "X\nX\nY\nY\nX\n");
    Write("c", "0\n0\n-1\n1\n1\n");
    Write("t", kFiveLeavesOneDropped);
    Write("ct", "2 0.000000\n2 0.000000\n-1 0.500000\n");
  }
  void Write(const std::string& name, const std::string& text) { folder_.Write(name, text); }
  std::string Path(const std::string& name) { return folder_.Path(name); }

  // Arguments that begin with "@" are files of the folder.
  Outcome Run(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"mardle-export"};
    for (const std::string& word : arguments) {
      words.push_back(word[0] == '@' ? Path(word.substr(1)) : word);
    }
    std::vector<const char*> argv;
    for (const std::string& word : words) argv.push_back(word.c_str());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = mardle::exporting::Export(static_cast<int>(argv.size()), argv.data());
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
  }
  // What a failing run says; the status must be 1 and standard output empty.
  std::string Failure(const std::vector<std::string>& arguments) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    return outcome.err;
  }

 private:
  TempFolder folder_;
};

TEST_F(ExportRun, WritesATableToStandardOutput) {
  const Outcome outcome = Run({"tsv", "--clustering", "@c", "--matrix", "@m"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out,
            "row\tlabel\tclass\tcluster\n0\ta\tX\t0\n1\tb b\tX\t0\n2\t<c>\tY\t-1\n3\td'\tY\t1\n"
            "4\te\tX\t1\n");
}

TEST_F(ExportRun, WritesToAFile) {
  const Outcome outcome = Run({"newick", "--tree", "@t", "--matrix", "@m", "--output", "@o"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(ReadText(Path("o")), "(('b b':1,'d''':1):2,(a:2,e:2):1);\n");
}

TEST_F(ExportRun, TakesNamedLabelFiles) {
  Write("l", "1\n2\n3\n4\n5\n");
  EXPECT_EQ(Run({"newick", "--tree", "@t", "--matrix", "@m", "--rlabelfile", "@l"}).out,
            "((2:1,4:1):2,(1:2,5:2):1);\n");
}

TEST_F(ExportRun, CallsLeavesByTheirNumbersWithoutAMatrix) {
  EXPECT_EQ(Run({"newick", "--tree", "@t"}).out, "((1:1,3:1):2,(0:2,4:2):1);\n");
}

TEST_F(ExportRun, WritesTheLabelsOfALinkageTable) {
  const Outcome outcome = Run({"linkage", "--tree", "@t", "--matrix", "@m", "--leaves", "@l"});
  EXPECT_EQ(outcome.out, "1\t2\t1\t2\n0\t3\t2\t2\n4\t5\t3\t4\n");
  EXPECT_EQ(ReadText(Path("l")), "a\nb b\nd'\ne\n");
}

TEST_F(ExportRun, WritesAPage) {
  const Outcome outcome = Run({"html", "--clustering", "@c", "--matrix", "@m", "--tree", "@ct"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("<title>m: 2 clusters</title>"));
  EXPECT_THAT(outcome.out,
              HasSubstr("<p>5 rows in 2 clusters by 3 columns, 1 without a cluster</p>"));
  EXPECT_THAT(outcome.out, HasSubstr("2\t-\t-\t&lt;c&gt;\n"));
  EXPECT_THAT(outcome.out, Not(HasSubstr("<c>")));
  EXPECT_THAT(outcome.out, Not(HasSubstr("F-score")));
}

TEST_F(ExportRun, TakesFScoresFromTheCompleteTree) {
  // X is rows 0, 1 and 4. Node 5 with rows 0 and 1 has recall 2/3 and precision 1, F = 4/5; the
  // root has 1 and 3/4, F = 6/7. Y is row 3 alone, a leaf.
  Write("t", "5 0\n5 0\n-1 0\n6 0\n6 0\n7 0\n7 0\n-1 0\n-1 0\n");
  const Outcome outcome = Run({"html", "--clustering", "@c", "--matrix", "@m", "--tree", "@t"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("<th scope=\"row\">X</th><td>3</td><td>0.857</td>"));
  EXPECT_THAT(outcome.out, HasSubstr("<th scope=\"row\">Y</th><td>1</td><td>1.000</td>"));
  EXPECT_THAT(outcome.out, HasSubstr("<dt>F-score</dt><dd>0.893</dd>"));  // (3 * 6/7 + 1) / 4
}

TEST_F(ExportRun, ShowsOneClusterAndNoClasses) {
  Write("one", "0\n0\n-1\n0\n0\n");
  Write("n", ReadText(Path("m")));
  const Outcome outcome = Run({"html", "--clustering", "@one", "--matrix", "@n"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("<title>n: 1 cluster</title>"));
  EXPECT_THAT(outcome.out, Not(HasSubstr("Entropy")));
  // There is nothing to tell it from: its words have dashes in the last column.
  EXPECT_THAT(outcome.out, HasSubstr("</td><td>–</td></tr>"));
  EXPECT_THAT(outcome.out, Not(HasSubstr("<h4>Nearest clusters</h4>")));
}

TEST_F(ExportRun, SkipsEmptyClusters) {
  Write("gap", "0\n0\n-1\n2\n2\n");
  const Outcome outcome = Run({"html", "--clustering", "@gap", "--matrix", "@m"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(
      outcome.out,
      HasSubstr("<h3 id=\"name-1\"><span class=\"no\">1</span> </h3>\n<p class=\"size\">0 rows"));
}

TEST_F(ExportRun, ShowsTheOnlyClusterWithRowsAsTheTree) {
  Write("last", "1\n1\n-1\n1\n1\n");
  const Outcome outcome = Run({"html", "--clustering", "@last", "--matrix", "@m"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const std::string tree = outcome.out.substr(outcome.out.find("<ul class=\"tree\">"));
  EXPECT_THAT(tree.substr(0, 100), HasSubstr(">Cluster 1</a> <span class=\"dim\">4 rows"));
}

constexpr char kUntold[] =
    "mardle-export: warning: nothing tells the models of the run, neither a record beside the "
    "clustering nor an option such as --rowmodel; the defaults of mardle are taken\n";

TEST_F(ExportRun, WarnsWhenNothingTellsTheModels) {
  const std::vector<std::string> page = {"html", "--clustering", "@c", "--matrix", "@m"};
  EXPECT_EQ(Run(page).err, kUntold);
  for (const char* option : {"--rowmodel=1", "--colmodel=2", "--sim=1", "--prune=1"}) {
    std::vector<std::string> told = page;
    told.emplace_back(option);
    EXPECT_EQ(Run(told).err, "") << option;
  }
}

// The record of a run over the files m and c under no column model.
std::string RecordOf(const std::string& matrix_hash, const std::string& clustering_hash) {
  return R"({"format": 1, "program": "mardle", "version": "1.5.0", "options": ["-colmodel=1",
    "-crfun=1"], "clusters": 2, "seed": 17, "files": [
    {"role": "matrix", "path": "m", "sha256": ")" +
         matrix_hash + R"("}, {"role": "clustering", "path": "c", "sha256": ")" + clustering_hash +
         "\"}]}";
}

TEST_F(ExportRun, TakesTheModelsOfTheRecord) {
  Write("c.run.json", RecordOf(HashOfFile(Path("m")).sha256, HashOfFile(Path("c")).sha256));
  const Outcome recorded = Run({"html", "--clustering", "@c", "--matrix", "@m"});
  EXPECT_EQ(recorded.err, "");
  EXPECT_THAT(recorded.out, HasSubstr("<dt>Criterion I1</dt>"));
  EXPECT_THAT(recorded.out, HasSubstr("<dt>Column model</dt><dd>None</dd>"));
  EXPECT_THAT(recorded.out, HasSubstr("<dt>Seed</dt><dd>17</dd>"));
  EXPECT_THAT(recorded.out,
              HasSubstr("<code>mardle -colmodel=1 -crfun=1 -seed=17 " + Path("m") + " 2</code>"));
  const Outcome told =
      Run({"features", "--clustering", "@c", "--matrix", "@m", "--record", "@c.run.json"});
  EXPECT_EQ(told.status, 0) << told.err;
  Write("elsewhere", ReadText(Path("c")));
  EXPECT_EQ(
      told.out,
      Run({"features", "--clustering", "@elsewhere", "--matrix", "@m", "--colmodel", "1"}).out);
  EXPECT_NE(told.out, Run({"features", "--clustering", "@elsewhere", "--matrix", "@m"}).out);
}

TEST_F(ExportRun, TellsThatARunWasOfTheSampledForm) {
  std::string record = RecordOf(HashOfFile(Path("m")).sha256, HashOfFile(Path("c")).sha256);
  const std::vector<std::string> page = {"html", "--clustering", "@c", "--matrix", "@m"};
  Write("c.run.json", record);
  EXPECT_THAT(Run(page).out, Not(HasSubstr("Sampled form")));
  record.insert(record.find("\"files\""), R"("sampled": {"rows": 3, "passes": 1}, )");
  record.insert(record.find("\"-colmodel"), R"("--sample=2", )");
  Write("c.run.json", record);
  const Outcome sampled = Run(page);
  EXPECT_EQ(sampled.err, "");
  const std::string how = "3 rows clustered directly, all placed in 1 pass";
  EXPECT_THAT(sampled.out, HasSubstr("<p class=\"dim\">Sampled form: " + how + ".</p>\n<ol"));
  EXPECT_THAT(sampled.out, HasSubstr("<dt>Sampled form</dt><dd>" + how + "</dd>"));
  EXPECT_THAT(sampled.out, HasSubstr("<code>mardle-run --sample=2 -colmodel=1 -crfun=1 -seed=17 " +
                                     Path("m") + " 2</code>"));
}

TEST_F(ExportRun, LeavesARecordOfAnotherRunWithAWarning) {
  Write("c.run.json", RecordOf(HashOfFile(Path("m")).sha256, HashOfFile(Path("m")).sha256));
  const Outcome outcome = Run({"html", "--clustering", "@c", "--matrix", "@m", "--colmodel", "2"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "mardle-export: warning: " + Path("c.run.json") +
                             ": the record is of another run: it does not tell of the clustering " +
                             Path("c") + " as it is now; it is not used\n");
  EXPECT_THAT(outcome.out, HasSubstr("<dt>Seed</dt><dd>not recorded</dd>"));
}

TEST_F(ExportRun, RefusesANamedRecordOfAnotherRun) {
  Write("r", RecordOf(HashOfFile(Path("c")).sha256, HashOfFile(Path("c")).sha256));
  EXPECT_EQ(Failure({"html", "--clustering", "@c", "--matrix", "@m", "--record", "@r"}),
            "mardle-export: " + Path("r") +
                ": the record is of another run: it does not tell of the matrix " + Path("m") +
                " as it is now\n");
}

TEST_F(ExportRun, RefusesModelsThatTheRecordContradicts) {
  Write("c.run.json", RecordOf(HashOfFile(Path("m")).sha256, HashOfFile(Path("c")).sha256));
  const Outcome outcome = Run({"html", "--clustering", "@c", "--matrix", "@m", "--colmodel", "2"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "mardle-export: --colmodel is not that of the run, as " +
                             Path("c.run.json") + " tells\n");
  EXPECT_EQ(Run({"html", "--clustering", "@c", "--matrix", "@m", "--colmodel", "1"}).status, 0);
}

TEST_F(ExportRun, DrawsThePictureOfAMatrix) {
  const Outcome outcome =
      Run({"heatmap", "--clustering", "@c", "--matrix", "@m", "--rowmodel", "1"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("<svg xmlns="));
  EXPECT_THAT(outcome.out, HasSubstr("4 rows in 2 clusters</text>"));
}

TEST_F(ExportRun, FailsWithoutItsFiles) {
  const std::string none = ": No such file or directory\n";
  EXPECT_EQ(Failure({"tsv", "--clustering", "/no/c", "--matrix", "@m"}),
            "mardle-export: /no/c" + none);
  EXPECT_EQ(Failure({"tsv", "--clustering", "@c", "--matrix", "/no/m"}),
            "mardle-export: /no/m" + none);
  EXPECT_EQ(Failure({"tsv", "--clustering", "@c", "--matrix", "@m", "--rlabelfile", "/no/l"}),
            "mardle-export: /no/l" + none);
  EXPECT_EQ(Failure({"html", "--clustering", "@c", "--matrix", "@m", "--rclassfile", "/no/k"}),
            "mardle-export: /no/k" + none);
}

TEST_F(ExportRun, TellsOfAMatrixWithoutRows) {
  Write("empty", "");
  const std::string told = "mardle-export: " + Path("empty") + ":1: the header tells of no rows\n";
  EXPECT_EQ(Failure({"tsv", "--clustering", "@c", "--matrix", "@empty"}), told);
  EXPECT_EQ(Failure({"html", "--clustering", "@c", "--matrix", "@empty"}), told);
}

TEST_F(ExportRun, TellsWhatTheReadersTell) {
  Write("m.rlabel", "a\nb\n");
  EXPECT_EQ(Failure({"tsv", "--clustering", "@c", "--matrix", "@m"}),
            "mardle-export: Row label file (" + Path("m.rlabel") +
                ") ends too early! Lines wanted: 5, lines found: 2\n");
}

TEST_F(ExportRun, TellsWhatTheLibraryTells) {
  Write("full", "2 2 4\n1 1 2 1\n1 1 2 2\n");
  Write("two", "0\n1\n");
  EXPECT_THAT(Failure({"html", "--clustering", "@two", "--matrix", "@full"}),
              HasSubstr("IDF column model only applies to sparse matrices"));
}

TEST_F(ExportRun, WantsATreeThatFits) {
  Write("t3", "4 0\n3 0\n3 0\n4 0\n-1 0\n");
  EXPECT_EQ(Failure({"newick", "--tree", "@t3", "--matrix", "@m"}),
            "mardle-export: " + Path("t3") +
                ":5: the file ends here, a tree of 3 leaves; the matrix has 5 rows\n");
  EXPECT_EQ(Failure({"html", "--clustering", "@c", "--matrix", "@m", "--tree", "@t3"}),
            "mardle-export: " + Path("t3") +
                ":5: the file ends here, a tree of 3 leaves; there are 2 clusters and 5 rows\n");
}

TEST_F(ExportRun, WantsATreeOfTheClustering) {
  // It joins row 1 of cluster 0 and row 3 of cluster 1 first.
  EXPECT_EQ(Failure({"html", "--clustering", "@c", "--matrix", "@m", "--tree", "@t"}),
            "mardle-export: " + Path("t") +
                ": the tree does not keep the rows of cluster 0 together, so it is not of this "
                "clustering\n");
}

TEST_F(ExportRun, WantsARowWithACluster) {
  Write("none", "-1\n-1\n-1\n-1\n-1\n");
  EXPECT_EQ(
      Failure({"html", "--clustering", "@none", "--matrix", "@m"}),
      "mardle-export: " + Path("none") + ": no row has a cluster, there is nothing to show\n");
}

TEST_F(ExportRun, FailsWhereItCannotWrite) {
  EXPECT_EQ(Failure({"dot", "--tree", "@t", "--output", "/no/such/folder/o"}),
            "mardle-export: /no/such/folder/o: No such file or directory\n");
  EXPECT_EQ(Failure({"dot", "--tree", "@t", "--output", "/dev/full"}),
            "mardle-export: /dev/full: No space left on device\n");
}

TEST_F(ExportRun, ReturnsTwoForAWrongCommandLine) { EXPECT_EQ(Run({"tsv"}).status, 2); }

}  // namespace
