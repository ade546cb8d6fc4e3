// SPDX-License-Identifier: MIT
//
// Every entry point gives the same bits for every number of threads. The matrices are large enough
// for each loop to be cut into several pieces.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/blocks.h"
#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"

namespace {

using testing_support::AddChanges;
using testing_support::ClusterArrays;
using testing_support::RandomDocuments;
using testing_support::SparseMatrix;

// All that a call wrote, as bytes.
class Written {
 public:
  template <typename T>
  void Add(const std::vector<T>& values) {
    const auto* first = reinterpret_cast<const unsigned char*>(values.data());
    bytes_.insert(bytes_.end(), first, first + values.size() * sizeof(T));
  }
  bool operator==(const Written&) const = default;

 private:
  std::vector<unsigned char> bytes_;
};

constexpr int kClusters = 7;
constexpr int kFeatures = 5;

std::size_t Size(int n) { return static_cast<std::size_t>(n); }

// The matrix as the first arguments of an entry point.
template <typename EntryPoint, typename... Rest>
auto Call(EntryPoint entry_point, const SparseMatrix& m, Rest... rest) {
  return entry_point(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(), rest...);
}

Written Clusterings(const SparseMatrix& m, int crfun) {
  Written written;
  std::vector<int> part(Size(m.nrows));
  Call(MOLVA_VP_ClusterRB, m, MOLVA_SIM_COSINE, crfun, MOLVA_ROW_LOG, MOLVA_COL_IDF, 0.9F, 5, 4, 1,
       1, 0, kClusters, part.data());
  written.Add(part);
  Call(MOLVA_VP_ClusterDirect, m, MOLVA_SIM_COSINE, crfun, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 5,
       3, 1, 0, kClusters, part.data());
  written.Add(part);
  return written;
}

// Row by row a cluster in turn, none for some.
std::vector<int> InTurn(const SparseMatrix& m, int every_nth_has_none) {
  std::vector<int> part(Size(m.nrows));
  for (int i = 0; i < m.nrows; ++i) {
    part[Size(i)] = i % every_nth_has_none == 1 ? -1 : i % kClusters;
  }
  return part;
}

Written Measures(const SparseMatrix& m) {
  Written written;
  const std::vector<int> part = InTurn(m, 50);
  std::vector<int> pwgts(kClusters);
  std::vector<float> isim(kClusters), isdev(kClusters), esim(kClusters), esdev(kClusters);
  std::vector<float> iz(Size(m.nrows)), ez(Size(m.nrows));
  Call(MOLVA_V_GetClusterStats, m, MOLVA_SIM_COSINE, MOLVA_ROW_MAXTF, MOLVA_COL_IDF, 1.0F,
       kClusters, part.data(), pwgts.data(), isim.data(), isdev.data(), iz.data(), esim.data(),
       esdev.data(), ez.data());
  written.Add(pwgts);
  for (const auto& values : {isim, isdev, esim, esdev, iz, ez}) written.Add(values);

  std::vector<int> ids(Size(kClusters * kFeatures)), xids(ids);
  std::vector<float> weights(ids.size()), xweights(ids.size());
  Call(MOLVA_V_GetClusterFeatures, m, MOLVA_SIM_COSINE, MOLVA_ROW_SQRT, MOLVA_COL_IDF, 1.0F,
       kClusters, part.data(), kFeatures, ids.data(), weights.data(), xids.data(), xweights.data());
  written.Add(ids);
  written.Add(xids);
  written.Add(weights);
  written.Add(xweights);
  written.Add(
      std::vector<float>{Call(MOLVA_V_GetSolutionQuality, m, MOLVA_SIM_COSINE, MOLVA_CRFUN_H1,
                              MOLVA_ROW_NONE, MOLVA_COL_IDF, 1.0F, kClusters, part.data())});
  return written;
}

Written Trees(const SparseMatrix& m, int crfun) {
  Written written;
  std::vector<int> part = InTurn(m, 1);
  std::vector<int> ptree(2 * Size(m.nrows), -1), ftree(4 * Size(m.nrows), -1);
  std::vector<float> tsims(2 * Size(m.nrows));
  Call(MOLVA_V_BuildTree, m, MOLVA_SIM_COSINE, crfun, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F,
       MOLVA_TREE_ROWS, 0, kClusters, part.data(), ptree.data(), tsims.data());
  Call(MOLVA_V_TreeReorder, m, MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0,
       ptree.data(), ftree.data());
  written.Add(ptree);
  written.Add(ftree);
  written.Add(tsims);
  Call(MOLVA_VA_Cluster, m, MOLVA_SIM_COSINE, crfun, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0,
       kClusters, part.data(), ptree.data(), tsims.data());
  written.Add(part);
  written.Add(ptree);
  written.Add(tsims);
  return written;
}

Written BlockCalls(const SparseMatrix& m, int crfun) {
  Written written;
  const std::vector<int> part = InTurn(m, 1);
  std::vector<int> best(Size(m.nrows));
  const ClusterArrays clusters(m, part, kClusters);
  const MOLVA_View view = clusters.view();
  MOLVA_B_AssignRows(m.nrows, m.rowptr.data(), m.rowind.data(), m.rowval.data(), crfun, &view,
                     part.data(), best.data());
  std::vector<std::int64_t> changes(clusters.sums.size());
  AddChanges(m, kClusters, part, best, changes);
  written.Add(best);
  written.Add(changes);
  written.Add(clusters.dnorms);
  written.Add(clusters.composites);
  return written;
}

class NumThreads : public testing::TestWithParam<int> {
 protected:
  ~NumThreads() override { MOLVA_SetNumThreads(1); }

  // What a call writes with as many threads, against what it writes with one.
  void ExpectSame(const std::function<Written()>& call) {
    MOLVA_SetNumThreads(1);
    const Written expected = call();
    MOLVA_SetNumThreads(GetParam());
    EXPECT_TRUE(call() == expected);
  }
};

TEST_P(NumThreads, ChangesNoClustering) {
  const SparseMatrix m = RandomDocuments(3, 2500, 700, 5, 40);
  for (int crfun = MOLVA_CRFUN_I1; crfun <= MOLVA_CRFUN_H3; ++crfun) {
    ExpectSame([&] { return Clusterings(m, crfun); });
  }
}

TEST_P(NumThreads, ChangesNoMeasure) {
  const SparseMatrix m = RandomDocuments(4, 2500, 700, 5, 40);
  ExpectSame([&] { return Measures(m); });
}

// H1 is one of the two criteria that search all pairs for every merge, so its items are few.
TEST_P(NumThreads, ChangesNoTree) {
  const SparseMatrix m = RandomDocuments(5, 1200, 300, 5, 10);
  for (const int crfun : {MOLVA_CRFUN_I1, MOLVA_CRFUN_I2, MOLVA_CRFUN_E1}) {
    ExpectSame([&] { return Trees(m, crfun); });
  }
  const SparseMatrix few = RandomDocuments(6, 120, 100, 5, 10);
  ExpectSame([&] { return Trees(few, MOLVA_CRFUN_H1); });
}

TEST_P(NumThreads, ChangesNoPassOverABlock) {
  const SparseMatrix m = RandomDocuments(6, 2500, 700, 5, 40);
  for (int crfun = MOLVA_CRFUN_I1; crfun <= MOLVA_CRFUN_H3; ++crfun) {
    ExpectSame([&] { return BlockCalls(m, crfun); });
  }
}

INSTANTIATE_TEST_SUITE_P(Library, NumThreads, testing::Values(2, 3, 8, 16));

TEST(NumThreadsOfTheHost, AreItsThreadsOwn) {
  MOLVA_SetNumThreads(3);
  EXPECT_EQ(MOLVA_GetNumThreads(), 3);
  int elsewhere = 0;
  std::thread([&] { elsewhere = MOLVA_GetNumThreads(); }).join();
  EXPECT_EQ(elsewhere, 1);
  MOLVA_SetNumThreads(0);
  EXPECT_GE(MOLVA_GetNumThreads(), 1);
  MOLVA_SetNumThreads(1);
}

// Two threads of a host, each with threads of its own.
TEST(NumThreadsOfTheHost, MayAllCluster) {
  const SparseMatrix m = RandomDocuments(7, 1500, 300, 5, 20);
  const Written expected = Clusterings(m, MOLVA_CRFUN_I2);
  std::vector<char> same(3);
  std::vector<std::thread> hosts;
  for (char& is_same : same) {
    hosts.emplace_back([&] {
      MOLVA_SetNumThreads(2);
      is_same = Clusterings(m, MOLVA_CRFUN_I2) == expected ? 1 : 0;
    });
  }
  for (std::thread& host : hosts) host.join();
  EXPECT_EQ(same, std::vector<char>(3, 1));
}

TEST(NumThreadsOfTheHost, LeaveTryAndHookAsTheyAre) {
  const SparseMatrix m = RandomDocuments(8, 1500, 300, 5, 20);
  MOLVA_SetNumThreads(3);
  const std::thread::id caller = std::this_thread::get_id();
  struct Seen {
    std::thread::id caller;
    int calls, elsewhere;
  } seen{caller, 0, 0};
  MOLVA_SetProgressHook(
      [](MOLVA_Event, int, int, void* data) {
        Seen& s = *static_cast<Seen*>(data);
        s.elsewhere += std::this_thread::get_id() == s.caller ? 0 : 1;
        return ++s.calls > 20 ? 1 : 0;
      },
      &seen);
  char message[100];
  const int failed = MOLVA_Try(
      [](void* matrix) { Clusterings(*static_cast<const SparseMatrix*>(matrix), MOLVA_CRFUN_I2); },
      const_cast<SparseMatrix*>(&m), message, sizeof(message));
  MOLVA_SetProgressHook(nullptr, nullptr);
  MOLVA_SetNumThreads(1);
  EXPECT_EQ(failed, 1);
  EXPECT_STREQ(message, "The run was interrupted.");
  EXPECT_EQ(seen.elsewhere, 0);
}

}  // namespace
