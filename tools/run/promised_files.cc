// SPDX-License-Identifier: MIT
#include "tools/run/promised_files.h"

#include <sys/stat.h>

#include <set>
#include <stdexcept>

#include "lib/molva.h"
#include "lib/support/fatal.h"
#include "lib/support/files.h"
#include "programs/files/file_identity.h"
#include "programs/io/line_reader.h"
#include "programs/io/read_matrix.h"
#include "programs/io/write_results.h"
#include "tools/run/argument_vector.h"
#include "tools/run/whole_lines.h"
#include "tools/run/whole_picture.h"
#include "tools/text/file_error.h"

namespace mardle::tools {
namespace {

// The file of this name, or else the one beside the matrix.
std::string CompanionName(const molva::String& given, const RunParams& params, const char* suffix) {
  return given ? given.get() : std::string(params.filename.get()) + suffix;
}

// Opens what mardle reads, too. What comes through a pipe would be lost to one of the two, and
// opening one may wait for ever.
molva::File OpenAsWell(const std::string& name) {
  if (!RegularFileAt(name)) return {};
  return molva::OpenFile(name.c_str(), "r");
}

int RowsOf(const RunParams& params) {
  const std::string name = params.filename.get();
  const molva::File file = OpenAsWell(name);
  if (!file) throw FileError({name, 0}, "cannot be read again");
  LineReader reader(file.get());
  return ReadHeader(reader).nrows;
}

// The classes of the rows, by which the clusters are counted when 0 are asked for.
int ClassesOf(const RunParams& params, int nrows) {
  const std::string name = CompanionName(params.rclassfile, params, ".rclass");
  const molva::File file = OpenAsWell(name);
  if (!file) return 1;
  LineReader reader(file.get());
  std::set<std::string> classes;
  for (int i = 0; i < nrows; ++i) {
    const char* line = reader.NextStripped();
    if (line == nullptr) break;
    classes.insert(line);
  }
  return static_cast<int>(classes.size());
}

// Settles the number of clusters where it is left to the classes; returns the number of rows.
int SettleClusters(RunParams& params) {
  const int nrows = RowsOf(params);
  if (params.nclusters == 0) params.nclusters = ClassesOf(params, nrows);
  return nrows;
}

// The same where the run has yet to judge the matrix; 0 when there is something wrong with it.
int RowsBeforeTheRun(RunParams& params) {
  const molva::CatchableErrors errors_are_thrown;
  try {
    return SettleClusters(params);
  } catch (const std::runtime_error&) {
    return 0;
  }
}

// The leaves of the tree that is written.
int LeavesOf(const RunParams& params, int nrows) {
  return params.fulltree != 0 ? nrows : params.nclusters;
}

bool BuildsTrees(int criterion) {
  return criterion != MOLVA_CRFUN_G3 && criterion != MOLVA_CRFUN_H3;
}

// Whether the clusters are drawn; see the sequence of a run for what is passed over.
bool DrawsClusters(const RunParams& params) {
  return params.plotclustersfile && (params.denseinput != 0 || params.simfun == MOLVA_SIM_COSINE);
}

void CheckLines(const std::string& name, const WantedLines& wanted,
                std::vector<std::string>& problems) {
  if (!IsReadBack(name)) return;
  if (const auto problem = ProblemOfLines(name, wanted)) problems.push_back(*problem);
}

void CheckDrawing(const Drawing& drawing, const RunParams& params,
                  std::vector<std::string>& problems) {
  if (!IsReadBack(drawing.name)) return;
  const std::optional<FileState> now = FileState::Of(drawing.name);
  if (!now || now == drawing.before) {
    problems.push_back(drawing.name + ": not drawn");
  } else if (now->size == 0) {
    problems.push_back(drawing.name + ": empty");
  } else if (!HasEndOfPicture(drawing.name, params.plotformat.data())) {
    problems.push_back(drawing.name + ": incomplete, the picture has no end");
  }
}

}  // namespace

bool IsReadBack(const std::string& name) {
  struct stat file;
  if (stat(name.c_str(), &file) != 0) return true;
  return S_ISREG(file.st_mode) && !IsStandardStream(name);
}

CommandLineKind ReadCommandLine(std::vector<std::string> command_line, RunParams& params) {
  const int argc = static_cast<int>(command_line.size());
  const CommandLineKind kind = KindOfCommandLine(argc, ArgumentVector(command_line).data());
  if (kind != CommandLineKind::kRun) return kind;
  ParseCommandLine(params, argc, ArgumentVector(command_line).data());
  return kind;
}

void RefuseTreesWithoutCriterion(const RunParams& params) {
  if (params.fulltree != 0 && !BuildsTrees(params.crfun)) {
    throw std::invalid_argument("-fulltree needs a criterion from 1 to 7, and -crfun is " +
                                std::to_string(params.crfun));
  }
  const bool writes_tree = params.writetree != 0 && params.fulltree == 0;
  const bool needs_tree = params.showtree != 0 || writes_tree || DrawsClusters(params);
  if (needs_tree && !BuildsTrees(params.treecrfun)) {
    throw std::invalid_argument("the tree over the clusters needs a criterion from 1 to 7, not " +
                                std::to_string(params.treecrfun) + ": name one by -showtree=N");
  }
}

std::optional<FileState> FileState::Of(const std::string& name) {
  struct stat file;
  if (stat(name.c_str(), &file) != 0) return std::nullopt;
  return FileState{file.st_ino, file.st_size, file.st_mtim};
}

bool FileState::operator==(const FileState& other) const {
  return file == other.file && size == other.size && changed.tv_sec == other.changed.tv_sec &&
         changed.tv_nsec == other.changed.tv_nsec;
}

std::vector<Drawing> DrawingsOf(const RunParams& params) {
  std::vector<Drawing> drawings;
  for (const molva::String* file : {&params.plotmatrixfile, &params.plotclustersfile}) {
    if (*file) drawings.push_back({file->get(), FileState::Of(file->get())});
  }
  return drawings;
}

std::vector<std::string> InputsOf(const RunParams& params) {
  return {params.filename.get(), CompanionName(params.clabelfile, params, ".clabel"),
          CompanionName(params.rlabelfile, params, ".rlabel"),
          CompanionName(params.rclassfile, params, ".rclass")};
}

std::vector<std::string> OutputsOf(RunParams& params) {
  const int nrows = RowsBeforeTheRun(params);
  std::vector<std::string> outputs = {"/dev/stdout"};
  if (params.nooutput == 0) outputs.push_back(ClusteringName(params));
  if (params.writetree != 0) {
    outputs.push_back(TreeName(params.filename, params.treefile, LeavesOf(params, nrows)));
  }
  for (const Drawing& drawing : DrawingsOf(params)) outputs.push_back(drawing.name);
  return outputs;
}

std::vector<std::string> MissingResults(RunParams& params, const std::vector<Drawing>& drawings) {
  std::vector<std::string> problems;
  const int nrows = SettleClusters(params);
  if (params.nooutput == 0) {
    const std::size_t fields = params.zscores != 0 ? 3 : 1;
    CheckLines(ClusteringName(params), {nrows, fields}, problems);
  }
  if (params.writetree != 0) {
    const int leaves = LeavesOf(params, nrows);
    CheckLines(TreeName(params.filename, params.treefile, leaves),
               {2 * std::int64_t{leaves} - 1, 2}, problems);
  }
  for (const Drawing& drawing : drawings) CheckDrawing(drawing, params, problems);
  return problems;
}

}  // namespace mardle::tools
