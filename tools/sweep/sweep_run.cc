// SPDX-License-Identifier: MIT
#include "tools/sweep/sweep_run.h"

#include <algorithm>
#include <memory>

#include "lib/support/fatal.h"
#include "programs/io/read_matrix.h"
#include "programs/thread_count.h"
#include "tools/cluster/stage_line.h"
#include "tools/run/promised_files.h"
#include "tools/sweep/curve_picture.h"
#include "tools/sweep/sweep.h"
#include "tools/text/file_error.h"
#include "tools/text/kept_inputs.h"
#include "tools/text/output_file.h"
#include "tools/text/tool_frame.h"

namespace mardle::tools {
namespace {

RunParams ParamsOf(const SweepRequest& request) {
  std::vector<std::string> command_line{"mardle"};
  command_line.insert(command_line.end(), request.mardle_options.begin(),
                      request.mardle_options.end());
  command_line.insert(command_line.end(), {request.matrix, std::to_string(request.numbers.back())});
  RunParams params;
  ReadCommandLine(command_line, params);
  // Clustered directly, numbers have nothing to do with each other.
  const auto& options = request.mardle_options;
  params.rb = std::find(options.begin(), options.end(), "-rb") != options.end();
  params.direct = !params.rb;
  return params;
}

Sweep Work(const SweepRequest& request, RunParams& params) {
  const molva::CatchableErrors errors_are_thrown;
  UseThreadsOfEnvironment();
  StageLine line(request.quiet);
  line.Begin("reading");
  const molva::Owned<Matrix> mat = CreateMatrix();
  ReadMatrix(params, *mat);
  if (mat->nrows < request.numbers.back()) {
    throw FileError({request.matrix, 0}, "has " + std::to_string(mat->nrows) + " rows, and " +
                                             std::to_string(request.numbers.back()) +
                                             " clusters are asked for");
  }
  const Progressing progressing(line);
  return SweepNumbers(params, *mat, request.numbers, request.nseeds, line);
}

// Files appear together, and only when the answer could be printed.
void Write(const SweepRequest& request, const Sweep& sweep) {
  std::vector<std::unique_ptr<OutputFile>> files;
  std::vector<OutputFile*> complete;
  const auto write = [&](const std::string& name, const std::string& text) {
    if (name.empty()) return;
    OutputFile& file = *files.emplace_back(std::make_unique<OutputFile>(name));
    file.Write(text);
    file.Complete();
    complete.push_back(&file);
  };
  write(request.csv, CsvText(sweep.rows));
  write(request.picture, CurvePicture(sweep));
  WriteStandardOutput(TableText(sweep.rows) + "\n" + RecommendationText(sweep.recommendation));
  Publish(complete);
}

}  // namespace

int RunSweep(const SweepRequest& request) {
  RunParams params = ParamsOf(request);
  const std::string outputs[] = {request.csv, request.picture, "/dev/stdout"};
  RefuseInputsAsOutputs(InputsOf(params), outputs);
  Write(request, Work(request, params));
  return kSuccess;
}

}  // namespace mardle::tools
