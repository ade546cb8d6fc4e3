// SPDX-License-Identifier: MIT
//
// mardle-cluster: from texts, tables or a matrix to clusters, trees and a page.
#include "tools/cluster/cluster_run.h"
#include "tools/cluster/request.h"
#include "tools/text/tool_frame.h"

namespace {

using namespace mardle::tools;

int Work(int argc, const char* const* argv) {
  ClusterRequest request;
  if (const auto status = ParseClusterRequest(argc, argv, request)) return *status;
  return RunClustering(request);
}

}  // namespace

int main(int argc, char** argv) {
  PrepareTool();
  return StatusOf("mardle-cluster", [&] { return Work(argc, argv); });
}
