// SPDX-License-Identifier: MIT
#include "tools/export/run_record.h"

#include <gmock/gmock.h>

#include "tests/testing/files.h"
#include "tests/tools/export/failures.h"

namespace {

using mardle::RunParams;
using mardle::exporting::FileOfAnotherRun;
using mardle::exporting::OptionOf;
using mardle::exporting::ReadRunRecord;
using mardle::exporting::RunRecord;
using mardle::exporting::TakeOptions;
using testing::ElementsAre;
using testing_support::FailureMessage;
using testing_support::TempFolder;

// The hashes of "abc" and of nothing, as the standard of the hash has them.

constexpr char kRecord[] = R"({"format": 1, "program": "mardle", "version": "1.5.0",
    "options": ["-crfun=3", "-rowmodel=4", "-colmodel=1", "-prune=0.5", "-showtree=5", "-rowmodel=2"],
    "clusters": 8, "seed": 7, "threads": 2, "import": ["--folder-classes"], "new": {},
    "sampled": {"rows": 62, "passes": 9},
    "files": [{"role": "source", "path": "-"},
              {"role": "matrix", "path": "m", "size": 3, "sha256":
               "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
              {"role": "clustering", "path": "c", "size": 0, "sha256":
               "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"}]})";

TEST(RunRecord, IsRead) {
  const TempFolder folder;
  const RunRecord record = ReadRunRecord(folder.Write("r", kRecord));
  EXPECT_EQ(record.version, "1.5.0");
  EXPECT_EQ(record.clusters, 8);
  EXPECT_EQ(record.seed, 7);
  EXPECT_EQ(record.threads, 2);
  EXPECT_THAT(*record.import_options, ElementsAre("--folder-classes"));
  EXPECT_EQ(record.sampled->rows, 62);
  EXPECT_EQ(record.sampled->passes, 9);
  EXPECT_EQ(record.files.size(), 3U);
}

TEST(RunRecord, TellsTheParametersOfTheRun) {
  const TempFolder folder;
  const RunRecord record = ReadRunRecord(folder.Write("r", kRecord));
  RunParams params;
  TakeOptions(record, params);
  EXPECT_EQ(params.crfun, 3);
  EXPECT_EQ(params.treecrfun, 5);
  EXPECT_EQ(params.rowmodel, 2);  // the last one counts
  EXPECT_EQ(params.colmodel, 1);
  EXPECT_EQ(params.prune, 0.5F);
  EXPECT_EQ(params.simfun, 1);
  EXPECT_FALSE(params.denseinput);
  EXPECT_EQ(params.seed, 7);
  EXPECT_EQ(OptionOf(record, "row"), std::nullopt);
}

TEST(RunRecord, TellsWhichFileIsAnother) {
  const TempFolder folder;
  const RunRecord record = ReadRunRecord(folder.Write("r", kRecord));
  const std::string matrix = folder.Write("m", "abc");
  const std::string clustering = folder.Write("c", "");
  EXPECT_EQ(FileOfAnotherRun(record, matrix, clustering), "");
  EXPECT_EQ(FileOfAnotherRun(record, matrix, matrix), "the clustering " + matrix);
  EXPECT_EQ(FileOfAnotherRun(record, clustering, clustering), "the matrix " + clustering);
}

TEST(RunRecord, RefusesWhatIsNone) {
  const TempFolder folder;
  for (const char* text : {"", "{", "[]", "{}", R"({"format": "1"})", R"({"format": 1})",
                           R"({"format": 1, "version": 2, "options": []})",
                           R"({"format": 1, "version": "1", "options": [], "clusters": 1, "seed": 1,
                               "sampled": {"rows": 1}, "files": []})"}) {
    const std::string path = folder.Write("r", text);
    EXPECT_EQ(FailureMessage([&] { ReadRunRecord(path); }),
              path + ": this is not the record of a run");
  }
}

TEST(RunRecord, RefusesAFormatThatIsNotKnown) {
  const TempFolder folder;
  const std::string path = folder.Write("r", R"({"format": 2})");
  EXPECT_EQ(FailureMessage([&] { ReadRunRecord(path); }),
            path + ": records of format 2 are not known to this version");
}

}  // namespace
