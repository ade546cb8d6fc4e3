// SPDX-License-Identifier: MIT
//
// The entry points of molva.h on arrays of any contents: columns, codes, clusters, row starts,
// trees and values that are out of range, counts below 0 and above what memory holds. Every array
// is as long as its counts promise and not an element longer. Each call is made twice, with fresh
// memory holding different bytes; all that it hands out must be the same.
//
// The bytes are taken in the order in which Arguments and the calls take them. Trials and passes
// are few, matrices at most 12 x 12, so that an input runs for milliseconds.
#include <algorithm>
#include <functional>

#include "lib/molva.h"
#include "tests/fuzz/harness.h"

namespace fuzzing {
namespace {

constexpr int kMost = 12;

std::size_t Length(long long n) { return static_cast<std::size_t>(std::max(n, 0LL)); }

// An output array: what is not written keeps the same value in both calls.
template <typename T>
std::vector<T> Output(long long n) {
  return std::vector<T>(Length(n), T{-77});
}

std::vector<int> AnyInts(Input& input, std::size_t n) {
  std::vector<int> values(n);
  for (int& value : values) value = input.AnyInt();
  return values;
}

std::vector<float> AnyFloats(Input& input, std::size_t n) {
  std::vector<float> values(n);
  for (float& value : values) value = input.AnyFloat();
  return values;
}

// Codes are mostly known ones.
int Code(Input& input, int most) {
  const int choice = input.Byte();
  return choice < 0xf0 ? 1 + choice % most : input.AnyInt();
}

// The matrix and the codes that most entry points share. A huge matrix has short arrays: it must be
// refused before they are read.
struct Arguments {
  explicit Arguments(Input& input);

  bool huge() const { return std::max(nrows, ncols) > kMost; }
  const int* row_starts() const { return dense ? nullptr : rowptr.data(); }
  const int* columns() const { return dense ? nullptr : rowind.data(); }

  int nrows, ncols;
  bool dense;
  int simfun, crfun, rowmodel, colmodel;
  float prune;
  int ntrials, niter, seed, refine, dbglvl;
  int nparts;
  std::vector<int> rowptr, rowind;
  std::vector<float> rowval;
  std::vector<int> part;

 private:
  void TakeRowStarts(Input& input);
  void TakeEntries(Input& input);
};

Arguments::Arguments(Input& input)
    : nrows(input.Count(kMost)),
      ncols(input.Count(kMost)),
      dense(input.Byte() % 4 == 1),
      simfun(Code(input, 2)),
      crfun(Code(input, 9)),
      rowmodel(Code(input, 4)),
      colmodel(Code(input, 2)),
      prune(input.Flag() ? 1.0F : input.AnyFloat()),
      ntrials(std::min(input.AnyInt(), 3)),
      niter(std::min(input.AnyInt(), 4)),
      seed(input.AnyInt()),
      refine(input.Below(3)),
      dbglvl(input.AnyInt()),
      nparts(input.Count(kMost)) {
  if (huge()) {
    rowptr.assign(1, 0);
    return;
  }
  if (!dense) TakeRowStarts(input);
  TakeEntries(input);
  part = AnyInts(input, Length(nrows));
}

// Rows of 0 to 4 entries, or one start that is any number. If no start is lower than the one
// before, the last one tells how many entries there are, so it stays small.
void Arguments::TakeRowStarts(Input& input) {
  constexpr int kMostEntries = 1000;
  rowptr.assign(Length(nrows) + 1, 0);
  for (std::size_t i = 1; i < rowptr.size(); ++i) rowptr[i] = rowptr[i - 1] + input.Below(5);
  const std::size_t odd = input.Byte();
  if (odd < rowptr.size()) rowptr[odd] = input.AnyInt();
  if (std::is_sorted(rowptr.begin(), rowptr.end())) rowptr.back() %= kMostEntries;
}

void Arguments::TakeEntries(Input& input) {
  const bool sorted = std::is_sorted(rowptr.begin(), rowptr.end());
  const std::size_t entries = dense    ? Length(nrows) * Length(ncols)
                              : sorted ? Length(rowptr.back())
                                       : 0;
  if (!dense) {
    const int columns = std::max(ncols, 1);
    for (std::size_t p = 0; p < entries; ++p) rowind.push_back(input.Byte() % columns);
    rowind.shrink_to_fit();
    const std::size_t odd = input.Byte();
    if (odd < entries) rowind[odd] = input.AnyInt();
  }
  rowval = AnyFloats(input, entries);
}

// A call adds all it hands out to the record; it draws from the input what it needs besides the
// arguments.
using Call = std::function<void(const Arguments&, Input&, Record&)>;

#define MATRIX a.nrows, a.ncols, a.row_starts(), a.columns(), a.rowval.data()
#define MODEL a.simfun, a.rowmodel, a.colmodel, a.prune

void RequireClusters(int nparts, const std::vector<int>& part) {
  for (const int k : part) Require(k >= -1 && k < nparts, "a row is in a cluster or in none");
}

// Every parent is an internal node above its children, or there is none. A complete tree over one
// prepared row of several shifts even the parent -1.
void RequireTree(const std::vector<int>& ptree) {
  const int nodes = static_cast<int>(ptree.size());
  const int lone_parent = nodes / 2 - 2;
  for (int x = 0; x + 1 < nodes; ++x) {
    const int parent = ptree[static_cast<std::size_t>(x)];
    const bool above = parent > x && parent >= nodes / 2 && parent < nodes - 1;
    Require(above || parent == -1 || (x < nodes / 2 && parent == lone_parent),
            Format("node %d of %d has the parent %d", x, nodes, parent));
  }
}

void ClusterRB(const Arguments& a, Input&, Record& record) {
  std::vector<int> part = Output<int>(a.huge() ? 0 : a.nrows);
  MOLVA_VP_ClusterRB(MATRIX, a.simfun, a.crfun, a.rowmodel, a.colmodel, a.prune, a.ntrials, a.niter,
                     a.seed, a.refine, a.dbglvl, a.nparts, part.data());
  RequireClusters(a.nparts, part);
  record.Add(part);
}

void ClusterDirect(const Arguments& a, Input&, Record& record) {
  std::vector<int> part = Output<int>(a.huge() ? 0 : a.nrows);
  MOLVA_VP_ClusterDirect(MATRIX, a.simfun, a.crfun, a.rowmodel, a.colmodel, a.prune, a.ntrials,
                         a.niter, a.seed, a.dbglvl, a.nparts, part.data());
  RequireClusters(a.nparts, part);
  record.Add(part);
}

void SolutionQuality(const Arguments& a, Input&, Record& record) {
  record.Add(std::vector{MOLVA_V_GetSolutionQuality(MATRIX, a.simfun, a.crfun, a.rowmodel,
                                                    a.colmodel, a.prune, a.nparts, a.part.data())});
}

// What has an element for each cluster cannot be had for more clusters than memory holds.
bool TooManyClusters(const Arguments& a) { return a.nparts > kMost; }

void ClusterStats(const Arguments& a, Input& input, Record& record) {
  if (TooManyClusters(a)) return;
  const bool scores = input.Flag();
  auto pwgts = Output<int>(a.nparts);
  auto isim = Output<float>(a.nparts), isdev = isim, esim = isim, esdev = isim;
  auto izscores = Output<float>(scores && !a.huge() ? a.nrows : 0), ezscores = izscores;
  MOLVA_V_GetClusterStats(MATRIX, MODEL, a.nparts, a.part.data(), pwgts.data(), isim.data(),
                          isdev.data(), scores ? izscores.data() : nullptr, esim.data(),
                          esdev.data(), scores ? ezscores.data() : nullptr);
  record.Add(pwgts);
  for (const auto& values : {isim, isdev, izscores, esim, esdev, ezscores}) record.Add(values);
}

// Lists of columns and their weights, one list per cluster or node.
struct Lists {
  Lists(long long lists, int nfeatures)
      : internal(Output<int>(lists * std::max(nfeatures, 0))),
        external(internal),
        internal_weights(Output<float>(std::ssize(internal))),
        external_weights(internal_weights) {}
  void AddTo(Record& record, int ncols) const {
    for (const auto& ids : {internal, external}) {
      for (const int id : ids) {
        Require(id == -77 || id == -1 || (id >= 0 && id < ncols), Format("%d is a column", id));
      }
      record.Add(ids);
    }
    record.Add(internal_weights);
    record.Add(external_weights);
  }
  std::vector<int> internal, external;
  std::vector<float> internal_weights, external_weights;
};

void ClusterFeatures(const Arguments& a, Input& input, Record& record) {
  if (TooManyClusters(a)) return;
  const int nfeatures = input.Below(20) - 3;
  Lists lists(a.nparts, nfeatures);
  MOLVA_V_GetClusterFeatures(MATRIX, MODEL, a.nparts, a.part.data(), nfeatures,
                             lists.internal.data(), lists.internal_weights.data(),
                             lists.external.data(), lists.external_weights.data());
  lists.AddTo(record, a.ncols);
}

// Every row in a cluster that exists, for calls that refuse others.
std::vector<int> TamePart(const Arguments& a) {
  std::vector<int> part = a.part;
  for (int& k : part) k = a.nparts > 0 ? std::abs(k % a.nparts) : 0;
  return part;
}

void BuildTree(const Arguments& a, Input& input, Record& record) {
  const int treetype = Code(input, 2);
  const std::vector<int> part = input.Flag() ? TamePart(a) : a.part;
  const long long leaves = treetype == 1 ? a.nparts : a.nrows;
  auto ptree = Output<int>(leaves > kMost ? 0 : 2 * leaves);
  auto tsims = Output<float>(std::ssize(ptree));
  MOLVA_V_BuildTree(MATRIX, a.simfun, a.crfun, a.rowmodel, a.colmodel, a.prune, treetype, a.dbglvl,
                    a.nparts, part.data(), ptree.data(), tsims.data());
  RequireTree(ptree);
  record.Add(ptree);
  record.Add(tsims);
}

void AgglomerateRows(const Arguments& a, Input&, Record& record) {
  const long long rows = a.huge() ? 0 : a.nrows;
  auto part = Output<int>(rows), ptree = Output<int>(2 * rows);
  auto tsims = Output<float>(2 * rows);
  MOLVA_VA_Cluster(MATRIX, a.simfun, a.crfun, a.rowmodel, a.colmodel, a.prune, a.dbglvl, a.nparts,
                   part.data(), ptree.data(), tsims.data());
  RequireClusters(a.nparts, part);
  RequireTree(ptree);
  record.Add(part);
  record.Add(ptree);
  record.Add(tsims);
}

// n items with arrays for at most kMost of them; more must be refused.
void AgglomerateItems(const Arguments& a, Input& input, Record& record) {
  const int n = input.Count(kMost);
  const long long items = n > kMost ? 0 : n;
  const std::vector<int> pwgts = AnyInts(input, Length(items));
  std::vector<float> smat = AnyFloats(input, Length(items * items));
  const int handling = Code(input, 2);
  auto part = Output<int>(items), ptree = Output<int>(2 * items);
  auto tsims = Output<float>(2 * items), gains = tsims;
  MOLVA_SA_Cluster(n, pwgts.data(), smat.data(), a.crfun, handling, a.dbglvl, a.nparts, part.data(),
                   ptree.data(), tsims.data(), gains.data());
  RequireClusters(a.nparts, part);
  RequireTree(ptree);
  record.Add(part);
  record.Add(ptree);
  record.Add(tsims);
  record.Add(gains);
}

// The parents of a tree: those of a tree, with or without a parent that is any number,
// or any numbers at all.
std::vector<int> AnyTree(Input& input, int leaves) {
  const int kind = input.Byte() % 4;
  const int n = std::max(leaves, 0);
  const int nodes = 2 * n;
  if (kind == 3) return AnyInts(input, Length(nodes));
  std::vector<int> open, ptree(Length(nodes), -1);
  for (int x = 0; x < n; ++x) open.push_back(x);
  for (int x = n; x < nodes - 1; ++x) {
    for (int child = 0; child < 2; ++child) {
      const auto chosen = open.begin() + input.Byte() % std::ssize(open);
      ptree[Length(*chosen)] = x;
      open.erase(chosen);
    }
    open.push_back(x);
  }
  const std::size_t odd = input.Byte();
  if (kind == 2 && odd < ptree.size()) ptree[odd] = input.AnyInt();
  return ptree;
}

void TreeStats(const Arguments& a, Input& input, Record& record) {
  if (TooManyClusters(a)) return;
  const std::vector<int> ptree = AnyTree(input, a.nparts);
  auto pwgts = Output<int>(std::ssize(ptree));
  auto isims = Output<float>(std::ssize(ptree)), xsims = isims;
  MOLVA_V_GetTreeStats(MATRIX, MODEL, a.nparts, a.part.data(), ptree.data(), pwgts.data(),
                       isims.data(), xsims.data());
  record.Add(pwgts);
  record.Add(isims);
  record.Add(xsims);
}

void TreeFeatures(const Arguments& a, Input& input, Record& record) {
  if (TooManyClusters(a)) return;
  const std::vector<int> ptree = AnyTree(input, a.nparts);
  const int nfeatures = input.Below(20) - 3;
  Lists lists(std::ssize(ptree), nfeatures);
  MOLVA_V_GetTreeFeatures(MATRIX, MODEL, a.nparts, a.part.data(), ptree.data(), nfeatures,
                          lists.internal.data(), lists.internal_weights.data(),
                          lists.external.data(), lists.external_weights.data());
  lists.AddTo(record, a.ncols);
}

// The children of every node, as the documentation tells a caller to enter them; or any numbers.
std::vector<int> Children(Input& input, const std::vector<int>& ptree) {
  std::vector<int> ftree(2 * ptree.size(), -1);
  if (input.Byte() % 8 == 7) return AnyInts(input, ftree.size());
  const int nodes = static_cast<int>(ptree.size());
  for (int x = 0; x < nodes - 2; ++x) {
    const int parent = ptree[Length(x)];
    if (parent < 0 || parent >= nodes) continue;
    const std::size_t slot = 2 * Length(parent);
    ftree[ftree[slot] < 0 ? slot : slot + 1] = x;
  }
  return ftree;
}

void ReorderItems(const Arguments& a, Input& input, Record& record) {
  const int n = input.Count(kMost);
  const int items = n > kMost ? 0 : std::max(n, 0);
  const std::vector<int> wgts = AnyInts(input, Length(items));
  const bool copied = n > kMost || input.Flag();
  const int side = copied ? items : 2 * items;
  std::vector<float> smat = AnyFloats(input, Length(side * side));
  const std::vector<int> ptree = AnyTree(input, items);
  std::vector<int> ftree = Children(input, ptree);
  MOLVA_S_TreeReorder(n, wgts.data(), smat.data(), copied ? 1 : 2, a.dbglvl, ptree.data(),
                      ftree.data());
  record.Add(ftree);
}

void ReorderRows(const Arguments& a, Input& input, Record& record) {
  const std::vector<int> ptree = AnyTree(input, a.huge() ? 0 : a.nrows);
  std::vector<int> ftree = Children(input, ptree);
  MOLVA_V_TreeReorder(MATRIX, MODEL, a.dbglvl, ptree.data(), ftree.data());
  record.Add(ftree);
}

void ReorderClusters(const Arguments& a, Input& input, Record& record) {
  const std::vector<int> ptree = AnyTree(input, TooManyClusters(a) ? 0 : a.nparts);
  std::vector<int> ftree = Children(input, ptree);
  MOLVA_V_ClusterTreeReorder(MATRIX, MODEL, a.dbglvl, a.nparts, a.part.data(), ptree.data(),
                             ftree.data());
  record.Add(ftree);
}

void Internalize(const Arguments& a, Input&, Record& record) {
  int nrows = -1, ncols = -1;
  int *rowptr = nullptr, *rowind = nullptr;
  float* rowval = nullptr;
  auto rperm = Output<int>(a.huge() ? 0 : a.nrows), cperm = Output<int>(a.huge() ? 0 : a.ncols);
  MOLVA_InternalizeMatrix(MATRIX, MODEL, &nrows, &ncols, &rowptr, &rowind, &rowval, rperm.data(),
                          cperm.data());
  const std::size_t entries = Length(rowptr[nrows]);
  record.Add(std::vector{nrows, ncols});
  record.Add(std::span<const int>(rowptr, Length(nrows) + 1));
  record.Add(std::span<const int>(rowind, entries));
  record.Add(std::span<const float>(rowval, entries));
  record.Add(rperm);
  record.Add(cperm);
  MOLVA_Free(rowptr);
  MOLVA_Free(rowind);
  MOLVA_Free(rowval);
}

#undef MATRIX
#undef MODEL

const Call kCalls[] = {ClusterRB,       ClusterDirect, SolutionQuality, ClusterStats,
                       ClusterFeatures, BuildTree,     AgglomerateRows, AgglomerateItems,
                       TreeStats,       TreeFeatures,  ReorderItems,    ReorderRows,
                       ReorderClusters, Internalize};

// All that a call hands out, its messages and its progress lines included.
Record Outcome(Bytes bytes, std::uint8_t fill) {
  Input input(bytes);
  const Call& call = kCalls[input.Byte() % std::size(kCalls)];
  const int blocks = input.Byte();
  const Arguments arguments(input);
  Sandbox sandbox({.fill = fill, .blocks = blocks < 0xc0 ? INT_MAX : blocks - 0xc0});
  Record record;
  record.Add(FatalMessageOf([&] { call(arguments, input, record); }));
  record.Add(sandbox.Output());
  Require(sandbox.ErrorOutput().empty(), "the library says nothing but its error messages");
  return record;
}

}  // namespace

void FuzzLibrary(Bytes bytes) {
  Require(Outcome(bytes, 0x00) == Outcome(bytes, 0xff), "results do not depend on fresh memory");
}

}  // namespace fuzzing
