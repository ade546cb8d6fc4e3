// SPDX-License-Identifier: MIT
#include "tools/run/promised_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <unordered_set>

#include "lib/support/files.h"
#include "programs/io/line_reader.h"
#include "programs/io/read_matrix.h"
#include "programs/io/write_results.h"
#include "tools/run/argument_vector.h"
#include "tools/text/fields.h"
#include "tools/text/file_error.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {
namespace {

// Whether the file can be read back: results may also go to pipes, devices and standard output.
bool IsChecked(const std::string& name) {
  struct stat file, output;
  if (stat(name.c_str(), &file) != 0) return true;
  if (!S_ISREG(file.st_mode)) return false;
  for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
    const bool same = fstat(descriptor, &output) == 0 && output.st_dev == file.st_dev &&
                      output.st_ino == file.st_ino;
    if (same) return false;
  }
  return true;
}

int RowsOf(const RunParams& params) {
  const molva::File file = molva::OpenFile(params.filename.get(), "r");
  if (!file) throw FileError({params.filename.get(), 0}, "cannot be read again");
  LineReader reader(file.get());
  return ReadHeader(reader).nrows;
}

// The classes of the rows, by which the clusters are counted when 0 are asked for.
int ClassesOf(const RunParams& params, int nrows) {
  const std::string name =
      params.rclassfile ? params.rclassfile.get() : std::string(params.filename.get()) + ".rclass";
  const molva::File file = molva::OpenFile(name.c_str(), "r");
  if (!file) return 1;
  LineReader reader(file.get());
  std::unordered_set<std::string> classes;
  for (int i = 0; i < nrows; ++i) {
    const char* line = reader.NextStripped();
    if (line != nullptr) classes.insert(line);
  }
  return static_cast<int>(classes.size());
}

// Counts the lines that hold the wanted number of fields; whatever else there is ends the count.
std::int64_t CompleteLines(const std::string& name, std::size_t fields) {
  InputLines input(name);
  std::int64_t lines = 0;
  std::string_view line;
  while (input.Next(line) && FieldsOf(line).size() == fields) ++lines;
  return lines;
}

void CheckLines(const std::string& name, std::int64_t wanted, std::size_t fields,
                std::vector<std::string>& problems) {
  if (!IsChecked(name)) return;
  try {
    const std::int64_t found = CompleteLines(name, fields);
    if (found != wanted) {
      problems.push_back(name + ": incomplete, " + std::to_string(found) + " of " +
                         std::to_string(wanted) + " lines");
    }
  } catch (const FileError& error) {
    problems.push_back(error.what());
  }
}

void CheckDrawing(const Drawing& drawing, std::vector<std::string>& problems) {
  if (!IsChecked(drawing.name)) return;
  const std::optional<FileState> now = FileState::Of(drawing.name);
  if (!now || now == drawing.before) {
    problems.push_back(drawing.name + ": not drawn");
  } else if (now->size == 0) {
    problems.push_back(drawing.name + ": empty");
  }
}

}  // namespace

CommandLineKind ReadCommandLine(std::vector<std::string> command_line, RunParams& params) {
  const int argc = static_cast<int>(command_line.size());
  const CommandLineKind kind = KindOfCommandLine(argc, ArgumentVector(command_line).data());
  if (kind != CommandLineKind::kRun) return kind;
  ParseCommandLine(params, argc, ArgumentVector(command_line).data());
  return kind;
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

std::vector<std::string> MissingResults(RunParams& params, const std::vector<Drawing>& drawings) {
  std::vector<std::string> problems;
  const int nrows = RowsOf(params);
  if (params.nclusters == 0) params.nclusters = ClassesOf(params, nrows);
  if (params.nooutput == 0) {
    CheckLines(ClusteringName(params), nrows, params.zscores != 0 ? 3 : 1, problems);
  }
  if (params.writetree != 0) {
    const int leaves = params.fulltree != 0 ? nrows : params.nclusters;
    CheckLines(TreeName(params.filename, params.treefile, leaves), 2 * std::int64_t{leaves} - 1, 2,
               problems);
  }
  for (const Drawing& drawing : drawings) CheckDrawing(drawing, problems);
  return problems;
}

}  // namespace mardle::tools
