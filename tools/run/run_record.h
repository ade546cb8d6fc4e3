// SPDX-License-Identifier: MIT
//
// The record of a run, which stands beside its results: docs/run-record.md.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/text/file_hash.h"

namespace mardle::tools {

struct RecordedFile {
  std::string role;
  std::string path;                   // from the folder of the record
  std::optional<FileHash> hash;       // nothing for a pipe
  std::optional<std::int64_t> count;  // of the files of a folder
};

// Of the sampled form: the rows that were clustered directly, and the passes over all of them.
struct RecordedSample {
  int rows;
  int passes;
};

struct RunRecord {
  std::vector<std::string> options = {};
  int nclusters = 0;
  int seed = 0;
  int threads = 1;
  std::optional<std::vector<std::string>> import_options = {};  // nothing without an import
  std::optional<RecordedSample> sampled = {};                   // nothing for the other forms
  std::vector<RecordedFile> files = {};
};

// As the text of the file. Bytes that are no UTF-8 become U+FFFD.
std::string RecordText(const RunRecord& record);

// Throws FileError when it cannot be written.
void WriteRecord(const RunRecord& record, const std::string& path);

}  // namespace mardle::tools
