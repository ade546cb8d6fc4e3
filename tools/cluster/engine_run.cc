// SPDX-License-Identifier: MIT
#include "tools/cluster/engine_run.h"

#include <algorithm>
#include <stdexcept>

#include "lib/molva.h"
#include "lib/support/fatal.h"
#include "lib/support/printed.h"
#include "programs/data_numbers.h"
#include "programs/io/engine_calls.h"
#include "programs/io/read_matrix.h"
#include "programs/io/write_results.h"
#include "programs/thread_count.h"
#include "tools/run/promised_files.h"
#include "tools/run/whole_lines.h"

namespace mardle::tools {
namespace {

// Pairs of rows of a cluster are held while their tree is built, so memory goes with the square.
constexpr int kMostRowsOfATree = 4000;

RunParams ParamsOf(const EngineRequest& request) {
  std::vector<std::string> command_line{"mardle"};
  command_line.insert(command_line.end(), request.options.begin(), request.options.end());
  command_line.insert(command_line.end(), {request.matrix, std::to_string(request.nclusters)});
  RunParams params;
  ReadCommandLine(command_line, params);
  params.outputfile = molva::mystrdup(request.clustering.c_str());
  return params;
}

// A write that fails is told on standard error, and the writers go on.
void RequireWhole(const std::string& name, std::int64_t lines, std::size_t fields) {
  if (const auto problem = ProblemOfLines(name, {lines, fields})) {
    throw std::runtime_error(*problem);
  }
}

struct Trees {
  molva::Array<int> ptree;
  molva::Array<float> tsims;
};

void WriteTreeOver(MOLVA_TreeType kind, const RunParams& params, const EngineInput& input,
                   const std::string& name) {
  const int leaves = kind == MOLVA_TREE_ROWS ? input.nrows : input.clusters.count;
  const int criterion = kind == MOLVA_TREE_ROWS ? params.crfun : params.treecrfun;
  Trees trees{molva::AllocIntsSet(2 * std::int64_t{leaves}, -1, "RunEngine: ptree"),
              molva::AllocFloatsSet(2 * std::int64_t{leaves}, 0, "RunEngine: tsims")};
  BuildTree(input, kind, criterion, trees.ptree, trees.tsims);
  WriteTree(params.filename, molva::mystrdup(name.c_str()), leaves, trees.ptree.get(),
            trees.tsims.get());
  RequireWhole(name, 2 * std::int64_t{leaves} - 1, 2);
}

void CountRows(const Clusters& clusters, int nrows, EngineResult& result) {
  result.sizes.assign(static_cast<std::size_t>(clusters.count), 0);
  for (int i = 0; i < nrows; ++i) {
    const int cluster = clusters.part[i];
    cluster < 0 ? ++result.rows_without : ++result.sizes[static_cast<std::size_t>(cluster)];
  }
}

void BuildTrees(const EngineRequest& request, const RunParams& params, const EngineInput& input,
                EngineResult& result, StageLine& line) {
  if (params.crfun > MOLVA_CRFUN_H2) {
    result.notes.emplace_back(
        "No trees: the criteria 8 and 9 build none; that on the page is built under I2");
    return;
  }
  if (request.nclusters > 1) {
    line.Begin("tree over the clusters");
    WriteTreeOver(MOLVA_TREE_CLUSTERS, params, input, request.cluster_tree);
    result.has_cluster_tree = true;
  }
  const int largest = *std::max_element(result.sizes.begin(), result.sizes.end());
  if (largest > kMostRowsOfATree && !params.fulltree) {
    result.notes.push_back("No tree over the rows: the largest cluster has " +
                           std::to_string(largest) + ", more than " +
                           std::to_string(kMostRowsOfATree) + "; -fulltree builds it all the same");
    return;
  }
  line.Begin("tree over the rows");
  WriteTreeOver(MOLVA_TREE_ROWS, params, input, request.tree);
  result.has_tree = true;
}

}  // namespace

EngineResult RunEngine(const EngineRequest& request, StageLine& line) {
  const molva::CatchableErrors errors_are_thrown;
  const RunParams params = ParamsOf(request);
  RefuseTreesWithoutCriterion(params);
  UseThreadsOfEnvironment();
  EngineResult result;
  result.seed = params.seed;
  result.threads = MOLVA_GetNumThreads();

  line.Begin("reading");
  const molva::Owned<Matrix> mat = CreateMatrix();
  ReadMatrix(params, *mat);
  molva::Array<int> part = molva::AllocIntsSet(mat->nrows, -1, "RunEngine: part");
  const Clusters clusters{request.nclusters, part.get()};
  const EngineInput input = RunInput(params, *mat, clusters);
  molva::DataBringNotANumber(DataBringNotANumber(params, *mat));

  const Progressing progressing(line);
  line.Begin("clustering");
  FindClusters(params, input, part);
  WriteClustering(params, *mat, clusters);
  RequireWhole(request.clustering, mat->nrows, params.zscores ? 3 : 1);
  CountRows(clusters, mat->nrows, result);
  BuildTrees(request, params, input, result, line);
  return result;
}

}  // namespace mardle::tools
