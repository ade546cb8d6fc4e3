// SPDX-License-Identifier: MIT
//
// mardle-run: runs mardle and ends with a status that make and shells understand. The status of
// mardle is 84 after a completed run and 0 after anything else.
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tools/run/child_process.h"
#include "tools/run/program_path.h"
#include "tools/run/promised_files.h"
#include "tools/run/sampled_run.h"
#include "tools/text/kept_inputs.h"
#include "tools/text/tool_frame.h"
#include "tools/text/version.h"

namespace {

using namespace mardle::tools;
using mardle::CommandLineKind;

constexpr int kCannotStart = 126;
constexpr int kNotFound = 127;
constexpr int kCompletedRun = 84;

constexpr char kHelp[] =
    "Usage: mardle-run [OPTIONS] FILENAME NCLUSTERS\n"
    "\n"
    "Runs mardle with the same arguments, checks that the files it promises are there and complete,\n"
    "and ends with an ordinary exit status. 'mardle-run -help' is mardle's own help.\n"
    "\n"
    "For a matrix that does not fit into memory, in place of mardle:\n"
    "  --sample[=ROWS]  Cluster so many rows (300 a cluster, at least 20,000) directly, then place\n"
    "                   all rows in passes over the file\n"
    "  --passes=N       At most so many passes (12)\n"
    "\n"
    "Alone on the command line:\n"
    "  --help      Print this help\n"
    "  --version   Print the version\n"
    "\n"
    "Environment: MARDLE names the program to run; by default the mardle beside mardle-run or else\n"
    "the one on PATH.\n"
    "\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage, 126 mardle cannot be started, 127 there is no\n"
    "mardle.\n";

constexpr char kName[] = "mardle-run";

void Report(const std::string& message) { ReportError(kName, message); }

// The help and the version of this program, which are asked for alone.
std::optional<std::string> OwnAnswer(const std::vector<std::string>& arguments) {
  if (arguments.size() != 1) return std::nullopt;
  if (arguments[0] == "--help") return kHelp;
  if (arguments[0] == "--version") return std::string("mardle-run ") + kVersion + "\n";
  return std::nullopt;
}

std::optional<std::string> FindOther() {
  std::optional<std::string> program = FindMardle();
  std::error_code ignored;
  if (program && std::filesystem::equivalent(*program, OwnPath(), ignored)) return std::nullopt;
  return program;
}

int JudgeUncompleted(CommandLineKind kind, int status) {
  if (kind == CommandLineKind::kHelp && status == 0) return kSuccess;
  if (kind == CommandLineKind::kRefused) return kWrongUsage;
  Report("the run was not completed");
  return kFailure;
}

int JudgeCompleted(CommandLineKind kind, mardle::RunParams& params,
                   const std::vector<Drawing>& drawings) {
  if (kind != CommandLineKind::kRun) {
    Report("cannot tell which files the run has promised");
    return kFailure;
  }
  const std::vector<std::string> problems = MissingResults(params, drawings);
  for (const std::string& problem : problems) Report(problem);
  return problems.empty() ? kSuccess : kFailure;
}

int Judge(const Ending& ending, CommandLineKind kind, mardle::RunParams& params,
          const std::vector<Drawing>& drawings) {
  const int status = ending.status == kCompletedRun ? JudgeCompleted(kind, params, drawings)
                                                    : JudgeUncompleted(kind, ending.status);
  if (status != kSuccess || !ending.has_failed_write) return status;
  Report("the run could not write everything");
  return kFailure;
}

int RunAndJudge(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<std::string> command_line{program};
  command_line.insert(command_line.end(), arguments.begin(), arguments.end());
  mardle::RunParams params;
  const CommandLineKind kind = ReadCommandLine(command_line, params);
  if (kind == CommandLineKind::kRun) {
    RefuseTreesWithoutCriterion(params);
    RefuseInputsAsOutputs(InputsOf(params), OutputsOf(params));
  }
  const std::vector<Drawing> drawings = DrawingsOf(params);
  const Ending ending = RunProgram(program, arguments);
  if (ending.start_error != 0) {
    Report(program + ": " + std::strerror(ending.start_error));
    return kCannotStart;
  }
  if (ending.signal != 0) EndBySignal(ending.signal);
  return Judge(ending, kind, params, drawings);
}

int Work(std::vector<std::string> arguments) {
  if (const std::optional<std::string> answer = OwnAnswer(arguments)) {
    WriteStandardOutput(*answer);
    return kSuccess;
  }
  if (const std::optional<SampleSettings> settings = TakeSampleOptions(arguments)) {
    RunSampled(arguments, *settings);
    return kSuccess;
  }
  const std::optional<std::string> program = FindOther();
  if (!program) {
    Report(
        "there is no mardle: the variable MARDLE, the folder of this program and PATH name none");
    return kNotFound;
  }
  return RunAndJudge(*program, arguments);
}

}  // namespace

int main(int argc, char** argv) {
  PrepareTool();
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return StatusOf(kName, [&arguments] { return Work(arguments); });
}
