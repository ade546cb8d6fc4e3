// SPDX-License-Identifier: MIT
//
// The command line of mardle-cluster.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/import/import_options.h"

namespace mardle::tools {

struct ClusterRequest {
  std::string program;  // as it was typed
  std::string input;
  int nclusters = 0;
  std::string output;  // the folder
  bool replace = false;
  bool quiet = false;
  ImportOptions import;                     // but for its output
  std::vector<std::string> import_options;  // as they were typed
  std::vector<std::string> mardle_options;  // "-crfun=2"
};

// Fills in the request and checks all that can be checked before anything runs. When there is
// nothing to run it returns the status to end with, as ParseImportOptions does. Throws
// std::invalid_argument and FileError as well.
std::optional<int> ParseClusterRequest(int argc, const char* const* argv, ClusterRequest& request);

// What the files in the folder are called before their endings: the name of the input without the
// endings that tell its format.
std::string StemOf(const std::string& input);

}  // namespace mardle::tools
