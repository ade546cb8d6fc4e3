// SPDX-License-Identifier: MIT
//
// The record that stands beside the results of a run, read back: what made them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "programs/run_params.h"

namespace mardle::exporting {

struct RunRecord {
  struct File {
    std::string role;    // "matrix", "clustering", ...
    std::string sha256;  // empty when the record has none
  };

  struct Sample {
    int rows;    // clustered directly
    int passes;  // over all rows
  };

  std::string path;
  std::string version;               // of the program that clustered
  std::vector<std::string> options;  // as it was given them
  int clusters = 0;
  int seed = 0;
  int threads = 1;
  std::optional<std::vector<std::string>> import_options;  // nothing without an import
  std::optional<Sample> sampled;  // nothing unless the run was of the sampled form
  std::vector<File> files;
};

// Fails when the file is no record, or one of a format that is not known.
RunRecord ReadRunRecord(const std::string& path);

// Which of the files is not the one that the record tells of: "the matrix NAME". Empty when both
// are.
std::string FileOfAnotherRun(const RunRecord& record, const std::string& matrix,
                             const std::string& clustering);

// The value that the run was given for an option of mardle, the last one of several; empty text for
// one without a value, nothing when it was not given.
std::optional<std::string> OptionOf(const RunRecord& record, const std::string& name);

// The parameters of the run that its options tell.
void TakeOptions(const RunRecord& record, RunParams& params);

}  // namespace mardle::exporting
