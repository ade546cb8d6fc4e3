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

struct RunRecord {
  std::vector<std::string> options = {};
  int nclusters = 0;
  int seed = 0;
  int threads = 1;
  std::optional<std::vector<std::string>> import_options = {};  // nothing without an import
  std::vector<RecordedFile> files = {};
};

// As the text of the file. Bytes that are no UTF-8 become U+FFFD.
std::string RecordText(const RunRecord& record);

}  // namespace mardle::tools
