// SPDX-License-Identifier: MIT
//
// The command line of mardle-sweep.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace mardle::tools {

struct SweepRequest {
  std::string matrix;
  std::vector<int> numbers;  // of clusters, rising
  int nseeds = 3;
  std::string csv;      // empty: none
  std::string picture;  // empty: none
  bool quiet = false;
  std::vector<std::string> mardle_options;  // "-crfun=2"
};

// Fills in the request and checks all that can be checked before anything runs. When there is
// nothing to run it returns the status to end with: 0 after --help and --version, 2 after a wrong
// command line, which is reported. Throws std::invalid_argument and FileError as well.
std::optional<int> ParseSweepRequest(int argc, const char* const* argv, SweepRequest& request);

}  // namespace mardle::tools
