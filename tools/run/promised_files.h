// SPDX-License-Identifier: MIT
//
// The files that a command line of mardle promises, and whether they are there.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "programs/options.h"
#include "programs/run_params.h"

namespace mardle::tools {

// Reads the arguments, the program's name first, as mardle does; fills params for a run.
CommandLineKind ReadCommandLine(std::vector<std::string> command_line, RunParams& params);

// Throws std::invalid_argument when the run is to build a tree under a criterion that builds none:
// mardle ends there, after all of the clustering.
void RefuseTreesWithoutCriterion(const RunParams& params);

// Whether a result can be read back: others may be pipes, devices and standard output.
bool IsReadBack(const std::string& name);

// What a file was like at some time; nothing when there was none.
struct FileState {
  ino_t file = 0;
  off_t size = 0;
  timespec changed{};
  static std::optional<FileState> Of(const std::string& name);
  bool operator==(const FileState& other) const;
};

// A drawing, and what stood under its name before the run.
struct Drawing {
  std::string name;
  std::optional<FileState> before;
};

// The drawings that a run is asked for; to be called before it.
std::vector<Drawing> DrawingsOf(const RunParams& params);

// The files that a run reads and those that it writes, standard output among them. As their names
// tell the number of clusters, one that is left to the classes is settled in params.
std::vector<std::string> InputsOf(const RunParams& params);
std::vector<std::string> OutputsOf(RunParams& params);

// Checks what a completed run has left, and returns what is wrong, a sentence for each file. The
// clustering file has a line for each row of the matrix, a tree file one for each node, a drawing
// is new and has its end. Files that are no regular files, such as /dev/null, are not checked.
std::vector<std::string> MissingResults(RunParams& params, const std::vector<Drawing>& drawings);

}  // namespace mardle::tools
