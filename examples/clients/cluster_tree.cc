// SPDX-License-Identifier: MIT
//
// Clusters three pairs of rows and prints the tree over the clusters. Errors come as exceptions,
// and a line on standard error tells how far the clustering is.
#include <molva.h>

#include <cstdio>
#include <stdexcept>
#include <vector>

namespace {

[[noreturn]] void Throw(const char* message) { throw std::runtime_error(message); }

int Tell(MOLVA_Event event, int done, int total, void* /*data*/) {
  if (event == MOLVA_EVENT_BISECTION) std::fprintf(stderr, "split %d of %d\n", done, total);
  return 0;  // anything else would stop the run
}

// Dense rows: the second pair shares a column with the first, the third with nothing.
constexpr int kRows = 6, kColumns = 4, kClusters = 3;
constexpr float kCells[kRows * kColumns] = {5, 0, 0, 0,  //
                                            5, 0, 0, 0,  //
                                            3, 4, 0, 0,  //
                                            3, 4, 0, 0,  //
                                            0, 0, 4, 3,  //
                                            0, 0, 4, 3};

void PrintTree() {
  std::vector<int> part(kRows);
  MOLVA_VP_ClusterRB(kRows, kColumns, nullptr, nullptr, kCells, MOLVA_SIM_COSINE, MOLVA_CRFUN_I2,
                     MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 10, 10, 1, 0, 0, kClusters, part.data());
  std::vector<int> ptree(2 * kClusters);
  std::vector<float> tsims(2 * kClusters);
  MOLVA_V_BuildTree(kRows, kColumns, nullptr, nullptr, kCells, MOLVA_SIM_COSINE, MOLVA_CRFUN_I2,
                    MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, MOLVA_TREE_CLUSTERS, 0, kClusters,
                    part.data(), ptree.data(), tsims.data());
  const bool together = ptree[part[0]] == ptree[part[2]];
  std::printf("pairs one and two are %s\n", together ? "siblings" : "apart");
  for (int node = kClusters; node < 2 * kClusters - 1; ++node) {
    std::printf("node %d: similarity %.2f, parent %d\n", node, tsims[node], ptree[node]);
  }
}

}  // namespace

int main() {
  MOLVA_SetErrorHandler(Throw);
  MOLVA_SetProgressHook(Tell, nullptr);
  try {
    PrintTree();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
