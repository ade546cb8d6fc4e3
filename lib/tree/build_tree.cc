// SPDX-License-Identifier: MIT
#include "lib/tree/build_tree.h"

#include <algorithm>
#include <climits>
#include <numeric>

#include "lib/matrix/similarities.h"
#include "lib/matrix/submatrix.h"
#include "lib/support/fatal.h"
#include "lib/support/pqueue.h"
#include "lib/support/tree_arrays.h"
#include "lib/support/vectors.h"
#include "lib/tree/agglomerate.h"

namespace molva {
namespace {

std::size_t Size(std::int64_t n) { return static_cast<std::size_t>(std::max<std::int64_t>(n, 0)); }

// Moves the non-empty clusters together: their numbers into `numbers`, their sizes and their block
// of the matrix to the front. Returns how many there are.
int DropEmptyClusters(Span<int> pwgts, float* smat, Span<int> numbers) {
  const std::size_t nparts = pwgts.size();
  std::size_t kept = 0;
  for (std::size_t c = 0; c < nparts; ++c) {
    if (pwgts[c] > 0) numbers[kept++] = static_cast<int>(c);
  }
  for (std::size_t k = 0; k < kept; ++k) {
    const auto c = static_cast<std::size_t>(numbers[k]);
    pwgts[k] = pwgts[c];
    for (std::size_t l = 0; l < kept; ++l) {
      smat[k * kept + l] = smat[c * nparts + static_cast<std::size_t>(numbers[l])];
    }
  }
  return static_cast<int>(kept);
}

// Merges clusters some of which are empty: builds over the others and spreads the tree. The blocks
// carry the name of the numbering that they stand in for.
void MergeNonEmptyClusters(const Control& control, int nparts, Span<int> pwgts, float* smat,
                           Span<int> ppart, const TreeArrays& tree) {
  Array<int> numbers = AllocInts(nparts, "BuildPartitionTree: ppart");
  Array<int> ptree = AllocInts(2 * std::int64_t{nparts}, "BuildPartitionTree: ppart");
  Array<float> tsims = AllocFloats(2 * std::int64_t{nparts}, "BuildPartitionTree: ppart");
  Array<float> gains = AllocFloats(2 * std::int64_t{nparts}, "BuildPartitionTree: ppart");
  const int kept = DropEmptyClusters(pwgts, smat, numbers);
  const std::size_t nodes = 2 * Size(kept);
  const TreeArrays compact{{ptree.data(), nodes}, {tsims.data(), nodes}, {gains.data(), nodes}};
  MergeItems(control, {kept, pwgts.data(), smat, compact.ptree, compact.tsims, compact.gains}, 1,
             ppart.first(Size(kept)));
  SetFloats(tree.tsims, 0);
  if (kept < 2) {
    SetInts(tree.ptree, -1);
  } else {
    TranslateTree({numbers.data(), Size(kept)}, compact, tree);
  }
}

// The local tree of one cluster becomes nodes nextnode .. nextnode + m - 2 of the whole.
// `rows` holds the cluster's rows in order. Returns the node of the cluster's root.
int PlaceClusterTree(Span<const int> rows, const TreeArrays& local, int nextnode,
                     const TreeArrays& tree) {
  const auto m = static_cast<int>(rows.size());
  if (m == 1) return rows[0];
  const auto whole = [m, nextnode](int node) { return Size(node - m + nextnode); };
  for (int k = 0; k < m; ++k) {
    tree.ptree[rows[k]] = static_cast<int>(whole(local.ptree[k]));
  }
  const int root = 2 * m - 2;
  for (int x = m; x <= root; ++x) {
    if (x < root) tree.ptree[whole(x)] = static_cast<int>(whole(local.ptree[x]));
    tree.gains[whole(x)] = local.gains[x];
    tree.tsims[whole(x)] = local.tsims[x];
  }
  return static_cast<int>(whole(root));
}

// Joins the subtrees of `joined` clusters above: leaf c of the cluster tree is node croot[c] of the
// whole, and its internal nodes follow from nextnode on.
void PlaceTreeOfClusters(int nparts, int joined, Span<const int> croot, const TreeArrays& clusters,
                         int nextnode, const TreeArrays& tree) {
  const auto whole = [nparts, nextnode](int node) { return node - nparts + nextnode; };
  for (int c = 0; c < nparts; ++c) {
    const int parent = clusters.ptree[c];
    if (parent >= 0) tree.ptree[croot[c]] = whole(parent);
  }
  for (int x = nparts; x < nparts + joined - 1; ++x) {
    const int parent = clusters.ptree[x];
    if (parent >= 0) tree.ptree[whole(x)] = whole(parent);
    tree.gains[whole(x)] = clusters.gains[x];
    tree.tsims[whole(x)] = clusters.tsims[x];
  }
}

// The work space of the complete tree.
struct PartitionedWork {
  PartitionedWork(int nrows, int nparts)
      : ppart(AllocInts(nrows, "BuildPartitionedTree: ppart")),
        pptree(AllocIntsSet(Nodes(nrows, nparts), -1, "BuildPartitionedTree: pptree")),
        croot(AllocInts(nparts, "BuildPartitionedTree: croot")),
        pgains(AllocFloats(Nodes(nrows, nparts), "BuildPartitionedTree: pgains")),
        rwgts(AllocIntsSet(nrows, 1, "BuildPartitionedTree: rwgts")),
        ptsims(AllocFloats(Nodes(nrows, nparts), "BuildPartitionedTree: ptsims")) {}

  static std::int64_t Nodes(int nrows, int nparts) {
    return 2 * std::int64_t{std::max(nrows, nparts)};
  }
  TreeArrays Tree(int leaves) {
    const std::size_t nodes = 2 * Size(leaves);
    return {{pptree.data(), nodes}, {ptsims.data(), nodes}, {pgains.data(), nodes}};
  }

  Array<int> ppart;
  Array<int> pptree;
  Array<int> croot;
  Array<float> pgains;
  Array<int> rwgts;
  Array<float> ptsims;
};

// Builds the tree over the rows of cluster c alone, into the first 2m work arrays.
void BuildClusterRowsTree(const Control& control, const PreparedMatrix& mat, int c,
                          Span<const int> part, PartitionedWork& work) {
  Owned<PreparedMatrix> cluster = Cluster2Matrix(mat, c, part);
  const int m = cluster->nrows;
  CheckItemCount(m);
  Array<float> spmat = AllocFloats(static_cast<std::int64_t>(m) * m, "BuildPartitionedTree: spmat");
  ComputeRowSimilarities(control, *cluster, spmat.data(), Size(m));
  const TreeArrays local = work.Tree(m);
  MergeItems(control, {m, work.rwgts.data(), spmat.data(), local.ptree, local.tsims, local.gains},
             1, {work.ppart.data(), Size(m)});
}

// A row without a cluster would have no place in the complete tree.
void CheckEveryRowHasACluster(int nparts, Span<const int> part) {
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (part[i] < 0 || part[i] >= nparts) {
      FatalError("A complete tree needs a cluster for every row! Row=%zu, Cluster=%d\n", i,
                 part[i]);
    }
  }
}

// Nodes are numbered by ints.
void CheckLeafCount(std::int64_t leaves) {
  if (leaves > INT_MAX / 2) {
    FatalError("A tree over %lld leaves cannot be numbered, the most is %d!\n",
               static_cast<long long>(leaves), INT_MAX / 2);
  }
}

// Collects the rows of cluster c, in order, at the front of ppart, which is free again by then.
Span<const int> RowsOf(int c, Span<const int> part, Array<int>& ppart) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (part[i] == c) ppart[count++] = static_cast<int>(i);
  }
  return {ppart.data(), count};
}

// The complete tree is built over the prepared rows and then spread over all of them.
void BuildTreeOverRows(const Control& control, PreparedCopy& copy, int nparts, std::int64_t nodes,
                       const TreeArrays& tree) {
  Array<int> pptree = AllocIntsSet(nodes, -1, "MOLVA_V_BuildTree: pptree");
  Array<float> ptsims = AllocFloatsSet(nodes, -1.0F, "MOLVA_V_BuildTree: ptsims");
  Array<float> pgains = AllocFloatsSet(nodes, -1.0F, "MOLVA_V_BuildTree: pgains");
  const std::size_t prepared = 2 * Size(copy.nrows);
  const TreeArrays private_tree{
      {pptree.data(), prepared}, {ptsims.data(), prepared}, {pgains.data(), prepared}};
  BuildPartitionedTree(control, *copy.mat, nparts, copy.part(), private_tree);
  TranslateTree(copy.rows(), private_tree, tree);
}

}  // namespace

void BuildTree(const Control& control, PreparedCopy& copy, int treetype, int nparts,
               Span<int> ptree, Span<float> tsims) {
  const std::int64_t nrows = static_cast<std::int64_t>(copy.rperm.size());
  const auto leaves = static_cast<std::int64_t>(ptree.size() / 2);
  CheckLeafCount(std::max(leaves, nrows));
  const std::int64_t nodes = 2 * std::max(leaves, nrows);
  // The gains decide the numbering of the complete tree and are not handed out.
  Array<float> gains = AllocFloats(nodes, "MOLVA_V_BuildTree: gains");
  const TreeArrays tree{ptree, tsims, {gains.data(), ptree.size()}};
  switch (treetype) {
    case MOLVA_TREE_CLUSTERS:
      return BuildPartitionTree(control, *copy.mat, nparts, copy.part(), tree);
    case MOLVA_TREE_ROWS:
      return BuildTreeOverRows(control, copy, nparts, nodes, tree);
    default:
      FatalError("Unknown treetype=%d\n", treetype);
  }
}

void BuildPartitionTree(const Control& control, const PreparedMatrix& mat, int nparts,
                        Span<const int> part, const TreeArrays& tree) {
  CheckItemCount(nparts);
  Array<int> ppart = AllocInts(nparts, "BuildPartitionTree: ppart");
  Array<int> pwgts = AllocInts(nparts, "BuildPartitionTree: pwgts");
  Array<float> smat =
      AllocFloats(static_cast<std::int64_t>(nparts) * nparts, "BuildPartitionTree: smat");
  ComputeCluster2ClusterSimilarities(mat, nparts, part, smat.data(), Size(nparts), pwgts);
  if (std::find(pwgts.begin(), pwgts.end(), 0) != pwgts.end()) {
    MergeNonEmptyClusters(control, nparts, pwgts, smat.data(), ppart, tree);
  } else {
    MergeItems(control, {nparts, pwgts.data(), smat.data(), tree.ptree, tree.tsims, tree.gains}, 1,
               ppart);
  }
}

void BuildPartitionedTree(const Control& control, const PreparedMatrix& mat, int nparts,
                          Span<const int> part, const TreeArrays& tree) {
  CheckEveryRowHasACluster(nparts, part);
  PartitionedWork work(mat.nrows, nparts);
  int nextnode = mat.nrows;
  int joined = 0;
  for (int c = 0; c < nparts; ++c) {
    BuildClusterRowsTree(control, mat, c, part, work);
    const Span<const int> rows = RowsOf(c, part, work.ppart);
    if (rows.empty()) continue;
    const auto m = static_cast<int>(rows.size());
    work.croot[c] = PlaceClusterTree(rows, work.Tree(m), nextnode, tree);
    nextnode += m - 1;
    ++joined;
  }
  const TreeArrays clusters = work.Tree(nparts);
  BuildPartitionTree(control, mat, nparts, part, clusters);
  PlaceTreeOfClusters(nparts, joined, work.croot, clusters, nextnode, tree);
  BestFirstTreeReorder(mat.nrows, tree.ptree, tree.gains);
}

void BestFirstTreeReorder(int nleaves, Span<int> ptree, Span<const float> gains) {
  if (nleaves < 1) return;
  const Span<int> parents = ptree.first(2 * Size(nleaves));
  Array<int> ftree = MakeChildTable(parents, "BestFirstTreeReorder: ftree");
  const ChildTable children(ftree);
  Array<int> nmap = AllocIntsSet(2 * std::int64_t{nleaves}, -1, "BestFirstTreeReorder: nmap");
  Array<int> nptree = AllocIntsSet(2 * std::int64_t{nleaves}, -1, "BestFirstTreeReorder: nptree");
  PQueue open;
  PQueueInit(open, 2 * nleaves);

  const int root = 2 * nleaves - 2;
  PQueueInsert(open, root, 0);
  for (int number = root; number >= nleaves; --number) {
    const int top = PQueueGetMax(open);
    if (top == -1) {
      FatalError("BestFirstTreeReorder internal error. Pqueue is empty! (%d)\n", number);
    }
    nmap[top] = number;
    for (const int child : {children.first(top), children.second(top)}) {
      if (child >= nleaves) PQueueInsert(open, child, -gains[child]);
    }
  }
  std::iota(nmap.begin(), nmap.begin() + nleaves, 0);
  for (int x = 0; x < root; ++x) nptree[nmap[x]] = nmap[ptree[x]];
  std::copy(nptree.begin(), nptree.end(), parents.begin());
}

void TranslateTree(Span<const int> leaf_of, const TreeArrays& from, const TreeArrays& to) {
  const auto n = static_cast<int>(leaf_of.size());
  const int shift = static_cast<int>(to.ptree.size() / 2) - n;
  SetInts(to.ptree, -1);
  for (int i = 0; i < n; ++i) to.ptree[leaf_of[i]] = from.ptree[i] + shift;
  for (int x = n; x <= 2 * n - 2; ++x) {
    const std::size_t node = Size(x + shift);
    if (x < 2 * n - 2) to.ptree[node] = from.ptree[x] + shift;
    to.tsims[node] = from.tsims[x];
    if (!to.gains.empty()) to.gains[node] = from.gains[x];
  }
}

}  // namespace molva
