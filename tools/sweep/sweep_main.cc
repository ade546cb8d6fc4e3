// SPDX-License-Identifier: MIT
//
// mardle-sweep: how many clusters a matrix has, or that it does not tell.
#include "tools/sweep/request.h"
#include "tools/sweep/sweep_run.h"
#include "tools/text/tool_frame.h"

namespace {

using namespace mardle::tools;

int Work(int argc, const char* const* argv) {
  SweepRequest request;
  if (const auto status = ParseSweepRequest(argc, argv, request)) return *status;
  return RunSweep(request);
}

}  // namespace

int main(int argc, char** argv) {
  PrepareTool();
  return StatusOf("mardle-sweep", [&] { return Work(argc, argv); });
}
