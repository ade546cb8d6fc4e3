// SPDX-License-Identifier: MIT
//
// Every allocation of whole runs, failing in turn. A run that cannot have a block ends with a
// message that names it, or does without it; either way nothing is lost or leaked.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <set>
#include <string>

#include "lib/support/alloc.h"
#include "tests/reliability/failing_new.h"
#include "tests/reliability/runs.h"

namespace reliability {
namespace {

using Names = std::set<std::string>;

// While it lives, the n-th request for a named block, counted from 1, fails.
class FailingBlock {
 public:
  explicit FailingBlock(long n) {
    requests_ = 0;
    failing_ = n;
    replaced_ = molva::SetAllocateFunction([](std::size_t size) {
      if (++requests_ != failing_) return std::malloc(size);
      failing_size_ = size;
      return static_cast<void*>(nullptr);
    });
  }
  ~FailingBlock() { molva::SetAllocateFunction(replaced_); }
  FailingBlock(const FailingBlock&) = delete;
  FailingBlock& operator=(const FailingBlock&) = delete;

  // Whether the request was made.
  bool failed() const { return requests_ >= failing_; }
  std::size_t size() const { return failing_size_; }

 private:
  static inline long requests_, failing_;
  static inline std::size_t failing_size_;
  molva::AllocateFunction replaced_;
};

Names Of(const std::string& routine, const Names& arrays) {
  Names names;
  for (const std::string& array : arrays) names.insert(routine + ": " + array);
  return names;
}

template <typename... Sets>
Names Together(const Sets&... sets) {
  Names all;
  (all.insert(sets.begin(), sets.end()), ...);
  return all;
}

const Names kPermuted = {"rperm", "cperm", "ppart"};

// Reading, by the form of the matrix.
Names Reading(const Names& arrays) {
  return Together(
      Names{"mystrdup: str", "CreateMatrix: mat", "ReadMatrix: Matrix", "ReadMat: clabel",
            "ReadMat: rlabels", "SetUpClasses: class", "SetUpClasses: classnames", "main: part"},
      Of("ReadMat", arrays), Of("SetUpMatrix", {"mat->rowptr", "mat->rowind", "mat->rowval"}));
}
const Names kReadingSparse = Reading({"rowptr", "rowind", "rowval"});
const Names kReadingDense = Reading({"rowval"});

// Only sparse rows are pruned and weighed.
const Names kPruning = Together(Of("SimilarityBasedFeatureSelection", {"rmvec", "center", "fcand"}),
                                Names{"EliminateColumns: cmap"});
const Names kWeighing = Of("ComputeScaleFactors", {"collen", "vscale"});

Names Refining(const std::string& criterion, bool against_all) {
  const Names refined =
      Together(Of("RefineClusteringKWay" + criterion, {"pwgts", "dnorms", "centers"}),
               Names{"PartitionRefineKWay" + criterion + ": perm"});
  if (!against_all) return refined;
  return Together(refined, Names{"RefineClusteringKWay" + criterion + ": csim",
                                 "PartitionRefineKWay" + criterion + ": gcenter"});
}

const Names kSeeding = Of("InitialClustering", {"perm", "dnorms", "centers[i]"});
const Names kReordering = Of("ReorderClusters", {"centers", "gcenter", "pwgts", "pmap ", "fcand"});
const Names kBisecting = Together(Of("MOLVA_VP_ClusterRB", kPermuted), kSeeding, kReordering,
                                  Of("Concept2Matrix", {"crowptr", "crowind", "crowval"}),
                                  Names{"BisectKMeans: bpart", "PartitionMatRecursive: cpart",
                                        "SelectACluster:pwgts ", "Cluster2Matrix: cmap"});
const Names kPartitioning = Together(Of("MOLVA_VP_ClusterDirect", kPermuted), kSeeding, kReordering,
                                     Names{"PartitionMatKWay: bpart"});

// The value of the clustering and the table of its clusters, which every run prints.
const Names kMeasuring =
    Together(Of("MOLVA_V_GetSolutionQuality", kPermuted),
             Of("GetCriterionFunctionValue", {"pwgts", "dnorms", "csim", "centers", "gcenter"}),
             Of("EvaluateClusters", {"pwgts", "cintsim", "cintsdev", "izscores", "cextsim",
                                     "cextsdev", "ezscores", "classdist"}),
             Of("EvaluatePartition", {"ocldist", "entropies", "purities", "fscores"}),
             Of("MOLVA_V_GetClusterStats", kPermuted), Names{"MOLVA_V_GetClusterStats: pizscores"},
             Of("GetClusterStats", {"centers", "gcenter", "isims", "esims"}));

const Names kFeatures =
    Together(Of("MOLVA_V_GetClusterFeatures", kPermuted),
             Of("GetClusterFeatures", {"centers", "gcenter", "vec", "fcand", "pwgts", "dnorms"}));
const Names kFeatureReport = Together(
    kFeatures, Of("ShowClusterFeatures",
                  {"pwgts", "cintsim", "cextsim", "cintsdev", "izscores", "cextsdev", "ezscores",
                   "internalids", "internalwgts", "externalids", "externalwgts"}));

// Merging, by the best merge alone or through the queue.
const Names kCutting = Of("InduceClusteringFromHAC", {"ftree", "queue"});
const Names kClearMerges = Together(
    kCutting, Of("BuildSimHAC_LocalGains", {"pwgts", "imap", "rmap", "tsim", "rowids", "smat"}));
const Names kQueuedMerges =
    Together(kClearMerges, Of("HACPQueueInit", {"heap", "locdata", "locator"}));
const Names kExhaustiveMerges =
    Together(kCutting, Of("BuildSimHAC_I1I2E1G1G1P", {"pwgts", "tsim", "rowids", "smat"}));

const Names kClusterTree =
    Together(Of("MOLVA_V_BuildTree", kPermuted), Names{"MOLVA_V_BuildTree: gains"},
             Of("BuildPartitionTree", {"ppart", "pwgts", "smat"}),
             Names{"ComputeCluster2ClusterSimilarities: centers"});
const Names kReorderedTree =
    Together(Of("ReorderTree", {"twgts", "left", "right"}), Of("PQueueInit", {"heap", "locator"}));
const Names kReorderedClusters =
    Together(kReorderedTree, Of("MOLVA_V_ClusterTreeReorder", kPermuted),
             Of("MOLVA_V_ClusterTreeReorder", {"pwgts", "smat"}));
const Names kTreeReport =
    Together(kClusterTree, kReorderedClusters,
             Of("ShowHACTree", {"ptree", "tsims", "ftree", "tsize", "xnode", "ynode", "canvas"}));
const Names kLabelView =
    Together(Of("ShowHACTree", {"pwgts", "cintsim", "cextsim", "internalids", "externalids",
                                "internalwgts", "externalwgts"}),
             Of("MOLVA_V_GetTreeStats", kPermuted), Of("MOLVA_V_GetTreeFeatures", kPermuted),
             Of("GetTreeFeatures", {"pwgts", "fcand"}), Names{"ShowTreeStats: ftree"});

// The columns of a prepared matrix, which the similarities of its rows are summed over.
const Names kColumns = Of("CreateColMat", {"colptr", "colind", "colval"});
const Names kCompleteTree = Together(
    kClusterTree, kColumns, Of("main", {"ptree", "tsims"}),
    Of("MOLVA_V_BuildTree", {"pptree", "ptsims", "pgains"}),
    Of("BuildPartitionedTree", {"ppart", "pptree", "croot", "pgains", "rwgts", "ptsims", "spmat"}),
    Of("BestFirstTreeReorder", {"ftree", "nmap", "nptree"}), Of("PQueueInit", {"heap", "locator"}));

const Names kReorderedRows =
    Together(kReorderedTree, Of("MOLVA_V_TreeReorder", {"rperm", "cperm", "rwgts", "smat"}));
// The columns are clustered as the rows of a matrix of their own.
const Names kClusteredColumns =
    Together(kColumns, kReorderedRows, Of("MOLVA_VA_Cluster", kPermuted),
             Of("MOLVA_VA_Cluster", {"gains", "pptree", "rwgts", "ptsims", "smat"}));
const Names kPlotted = {"rperm", "cperm", "part"};
const Names kInternal = Of("MOLVA_InternalizeMatrix", {"rperm", "cperm"});
const Names kPlottedColumns = {"colptr", "colind", "colval", "cpart",  "cptree",
                               "ctsims", "ftree",  "tsize",  "cxnode", "cynode"};
const Names kSelectedColumns =
    Together(kFeatures, Names{"CompactMatrix: cmap"},
             Of("PlotSparseTreeMatrix",
                {"internalids", "internalwgts", "externalids", "externalwgts", "cmarker"}));

Names MatrixPlot(const std::string& routine) {
  return Together(kInternal, kCompleteTree, kClusteredColumns, Of(routine, kPlotted),
                  Of(routine, kPlottedColumns), Of(routine, {"ptree", "rxnode", "rynode"}));
}
const Names kClusterPlot =
    Together(kInternal, kClusterTree, kReorderedClusters, kSelectedColumns, kClusteredColumns,
             Of("PlotTreeClusterMatrix", {"pwgts", "tpwgts", "center"}),
             Of("PlotSparseTreeMatrix", kPlotted), Of("PlotSparseTreeMatrix", kPlottedColumns),
             Of("PlotSparseTreeMatrix", {"ptree", "tsims", "xnode", "ynode"}));

// What a run under each scenario asks for, by name.
Names BlocksOf(const std::string& scenario) {
  const Names sparse = Together(kReadingSparse, kPruning, kMeasuring);
  const Names bisected = Together(sparse, kWeighing, kBisecting, Refining("I2", false));
  const Names dense = Together(kReadingDense, kMeasuring, kBisecting, Refining("I2", false));
  const Names classes = {"ReadMat: rclasses"};
  const Names class_view = {"ShowHACTree: classdist"};
  const std::map<std::string, Names> blocks = {
      {"sparse", bisected},
      {"dense", dense},
      {"correlation", dense},
      {"sparse correlation",
       Together(kReadingSparse, kMeasuring, kBisecting, Refining("I2", false))},
      {"direct", Together(sparse, kPartitioning, Refining("H2", true))},
      {"refine", Together(sparse, kWeighing, kBisecting, Refining("E1", true))},
      {"pruned", bisected},
      {"z-scores", bisected},
      {"classes", Together(bisected, classes)},
      {"features", Together(bisected, classes, kFeatureReport)},
      {"tree", Together(bisected, classes, class_view, kTreeReport, kClearMerges)},
      {"tree of an exhaustive criterion", Together(bisected, kTreeReport, kExhaustiveMerges)},
      {"tree over equal gains", Together(dense, kTreeReport, kQueuedMerges)},
      {"label tree", Together(bisected, classes, kTreeReport, kLabelView, kClearMerges)},
      {"complete tree", Together(bisected, classes, kCompleteTree, kClearMerges,
                                 Names{"ComputeFScores: tclassdist"})},
      {"matrix plot",
       Together(bisected, kSelectedColumns, kClearMerges, MatrixPlot("PlotSparseTreeMatrix"))},
      {"dense matrix plot", Together(dense, kClearMerges, MatrixPlot("PlotDenseTreeMatrix"))},
      {"cluster plot", Together(bisected, kClusterPlot, kClearMerges)},
  };
  const auto found = blocks.find(scenario);
  return found == blocks.end() ? Names{} : found->second;
}

void ExpectSame(const Outcome& outcome, const Outcome& expected) {
  EXPECT_EQ(outcome.error, expected.error);
  EXPECT_EQ(outcome.status, expected.status);
  EXPECT_EQ(outcome.report, expected.report);
  EXPECT_EQ(outcome.files, expected.files);
}

// A file stands there whole or not at all; a plot may break off. The clustering file is opened
// before its z-scores are measured, and stays empty when they cannot be.
void ExpectWholeFiles(const Files& files, const Files& expected) {
  for (const auto& [name, text] : files) {
    if (name == "p" || text.empty()) continue;
    const auto whole = expected.find(name);
    ASSERT_NE(whole, expected.end()) << name;
    EXPECT_TRUE(text == whole->second) << name;
  }
}

std::string NameIn(const std::string& message, std::size_t size) {
  const std::string before = "***Memory allocation failed for ";
  const std::string after = ". Requested size: " + std::to_string(size) + " bytes";
  EXPECT_TRUE(message.starts_with(before) && message.ends_with(after)) << message;
  return message.substr(before.size(), message.size() - before.size() - after.size());
}

Names Without(Names names, const Names& others) {
  std::erase_if(names, [&others](const std::string& name) { return others.contains(name); });
  return names;
}

class EveryRun : public ::testing::TestWithParam<Scenario> {
 protected:
  void SetUp() override {
    expected_ = stage_.Run();
    ASSERT_EQ(expected_.error, "");
    ASSERT_EQ(expected_.status, 84);
  }

  Stage stage_{GetParam()};
  Outcome expected_;
};

TEST_P(EveryRun, NamesTheBlockThatCannotBeHadOrDoesWithoutIt) {
  Names named;
  int done_without = 0;
  const std::size_t bytes = molva::BytesInUse();
  long n = 1;
  for (;; ++n) {
    SCOPED_TRACE("request " + std::to_string(n));
    const FailingBlock failing(n);
    const Outcome outcome = stage_.Run();
    EXPECT_EQ(molva::BytesInUse(), bytes);
    if (!failing.failed()) break;
    if (outcome.error.empty()) {
      ++done_without;
      ExpectSame(outcome, expected_);
    } else {
      named.insert(NameIn(outcome.error, failing.size()));
      EXPECT_TRUE(expected_.report.starts_with(outcome.report));
      ExpectWholeFiles(outcome.files, expected_.files);
    }
    if (HasFailure()) break;
  }
  const Names blocks = BlocksOf(GetParam().name);
  EXPECT_EQ(Without(named, blocks), Names{}) << "are no names of this run";
  EXPECT_EQ(Without(blocks, named), Names{}) << "were not asked for";
  RecordProperty("allocations", std::to_string(n - 1));
  RecordProperty("done_without", std::to_string(done_without));
}

TEST_P(EveryRun, EndsWhenTheStandardLibraryGetsNoMemory) {
  int ended = 0;
  long n = 1;
  for (bool failed = true; failed; ++n) {
    SCOPED_TRACE("request " + std::to_string(n));
    const long blocks = testing_support::LiveNewBlocks();
    const std::size_t bytes = molva::BytesInUse();
    {
      const Outcome outcome = stage_.Run(n);
      failed = outcome.new_requests >= n;
      if (outcome.error.empty()) {
        ExpectSame(outcome, expected_);
      } else {
        ++ended;
        EXPECT_EQ(outcome.error, "***Memory allocation failed for mardle.");
        EXPECT_TRUE(expected_.report.starts_with(outcome.report));
        ExpectWholeFiles(outcome.files, expected_.files);
      }
    }
    EXPECT_EQ(testing_support::LiveNewBlocks(), blocks);
    EXPECT_EQ(molva::BytesInUse(), bytes);
    if (HasFailure()) break;
  }
  EXPECT_GT(ended, 0);
  RecordProperty("allocations", std::to_string(n - 2));
}

std::string NameOf(const testing::TestParamInfo<Scenario>& scenario) {
  std::string name;
  for (const char c : std::string(scenario.param.name)) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) name += c;
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Memory, EveryRun, ::testing::ValuesIn(Scenarios()), NameOf);

}  // namespace
}  // namespace reliability
