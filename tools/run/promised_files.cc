// SPDX-License-Identifier: MIT
#include "tools/run/promised_files.h"

#include <getopt.h>
#include <sys/stat.h>
#include <unistd.h>

#include <unordered_set>

#include "lib/support/files.h"
#include "programs/io/line_reader.h"
#include "programs/io/read_matrix.h"
#include "programs/options.h"
#include "tools/run/argument_vector.h"
#include "tools/text/input_error.h"
#include "tools/text/input_lines.h"
#include "tools/text/number_field.h"

namespace mardle::tools {
namespace {

int ArgumentRule(Option::Value value) {
  switch (value) {
    case Option::Value::kNone:
    case Option::Value::kHelp:
      return no_argument;
    case Option::Value::kOptionalInt:
    case Option::Value::kOptionalText:
      return optional_argument;
    default:
      return required_argument;
  }
}

std::vector<option> ParserTable() {
  std::vector<option> table;
  table.reserve(OptionTable().size() + 1);
  for (const Option& option : OptionTable()) {
    table.push_back({option.name, ArgumentRule(option.value), nullptr, 0});
  }
  table.push_back({});
  return table;
}

// Whether mardle would run; its own parser ends the process when it would not.
Request Classify(std::vector<std::string> command_line) {
  unsetenv("POSIXLY_CORRECT");
  optind = 0;
  opterr = 0;
  const int argc = static_cast<int>(command_line.size());
  const std::vector<char*> argv = ArgumentVector(command_line);
  const std::vector<option> table = ParserTable();
  int position = 0;
  for (;;) {
    const int code = getopt_long_only(argc, argv.data(), "", table.data(), &position);
    if (code == -1) break;
    if (code != 0) return Request::kRefused;
    const Option& option = OptionTable()[static_cast<std::size_t>(position)];
    if (option.value == Option::Value::kHelp) return Request::kHelp;
  }
  return argc - optind == 2 ? Request::kRun : Request::kRefused;
}

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
  if (!file) throw InputError({params.filename.get(), 0}, "cannot be read again");
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
  } catch (const InputError& error) {
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

std::string Named(const molva::String& given, const RunParams& params, const char* kind,
                  int count) {
  if (given) return given.get();
  return std::string(params.filename.get()) + kind + std::to_string(count);
}

}  // namespace

Request ReadCommandLine(const std::vector<std::string>& command_line, RunParams& params) {
  const Request request = Classify(command_line);
  if (request != Request::kRun) return request;
  std::vector<std::string> texts = command_line;
  ParseCommandLine(params, static_cast<int>(texts.size()), ArgumentVector(texts).data());
  return request;
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

std::vector<std::string> MissingResults(const RunParams& params,
                                        const std::vector<Drawing>& drawings) {
  std::vector<std::string> problems;
  const int nrows = RowsOf(params);
  const int nclusters = params.nclusters != 0 ? params.nclusters : ClassesOf(params, nrows);
  if (params.nooutput == 0) {
    CheckLines(Named(params.outputfile, params, ".clustering.", nclusters), nrows,
               params.zscores != 0 ? 3 : 1, problems);
  }
  if (params.writetree != 0) {
    const std::int64_t leaves = params.fulltree != 0 ? nrows : nclusters;
    CheckLines(Named(params.treefile, params, ".tree.", static_cast<int>(leaves)), 2 * leaves - 1,
               2, problems);
  }
  for (const Drawing& drawing : drawings) CheckDrawing(drawing, problems);
  return problems;
}

}  // namespace mardle::tools
