/* SPDX-License-Identifier: MIT
 *
 * Calls every entry point of molva.h twice, with output arrays that hold zeros before the first
 * call and ones in every bit before the second, and compares what comes back: an element that is
 * told as written must not keep what stood there, nor depend on it. Built with a memory sanitizer,
 * or run under valgrind, it also shows that nothing uninitialised is used on the way. All results
 * go into the file that is named as an argument, to be compared with those of another library. */
#include <stdio.h>
#include <string.h>

#include "lib/molva.h"

enum {
  kRows = 8,
  kColumns = 6,
  kEntries = 30,
  kParts = 3,
  kFeatures = 4,
  kNodes = 2 * kParts - 1,
  kRowNodes = 2 * kRows - 1,
  kModels = 4,
  kCriteria = 9,
  kTreeCriteria = 7
};

/* One matrix in both forms; every column stands in several rows, so none is pruned. */
static const int kRowptr[kRows + 1] = {0, 4, 8, 11, 15, 19, 23, 26, 30};
static const int kRowind[kEntries] = {0, 1, 2, 5, 0, 1, 2, 3, 0, 2, 4, 1, 2, 3, 4,
                                      2, 3, 4, 5, 0, 3, 4, 5, 3, 4, 5, 1, 3, 4, 5};
static const float kRowval[kEntries] = {3, 1, 2, 1, 2, 2, 1, 1, 4, 1, 1, 3, 2, 1, 1,
                                        1, 4, 2, 2, 1, 3, 3, 1, 2, 2, 5, 1, 1, 1, 4};
static const float kDense[kRows * kColumns] = {
    3, 1, 2, 0, 0, 1, /**/ 2, 2, 1, 1, 0, 0, /**/ 4, 0, 1, 0, 1, 0, /**/ 0, 3, 2, 1, 1, 0,
    0, 0, 1, 4, 2, 2, /**/ 1, 0, 0, 3, 3, 1, /**/ 0, 0, 0, 2, 2, 5, /**/ 0, 1, 0, 1, 1, 4};

/* How the rows are given and compared. */
struct Form {
  const char* name;
  const int* rowptr;
  const int* rowind;
  const float* rowval;
  int simfun;
  int colmodel;
};

static const struct Form kForms[] = {{"sparse", kRowptr, kRowind, kRowval, 1, 2},
                                     {"sparse, correlation", kRowptr, kRowind, kRowval, 2, 1},
                                     {"dense", NULL, NULL, kDense, 1, 1},
                                     {"dense, correlation", NULL, NULL, kDense, 2, 1}};

/* What the entry points write, each in a part of its own. */
struct Results {
  struct {
    int bisected[kCriteria][kRows], direct[kCriteria][kRows];
  } clusterings;
  struct {
    float of[kModels][kCriteria];
  } qualities;
  struct {
    int pwgts[kParts];
    float cintsim[kParts], cintsdev[kParts], cextsim[kParts], cextsdev[kParts];
    float izscores[kRows], ezscores[kRows];
  } stats;
  struct {
    int internalids[kParts * kFeatures], externalids[kParts * kFeatures];
    float internalwgts[kParts * kFeatures], externalwgts[kParts * kFeatures];
  } features;
  struct {
    int ptree[kTreeCriteria][kNodes + 1];
    float tsims[kTreeCriteria][kNodes + 1];
  } trees;
  struct {
    int ptree[kTreeCriteria][kRowNodes + 1];
    float tsims[kTreeCriteria][kRowNodes + 1];
  } row_trees;
  struct {
    int part[kTreeCriteria][kRows], ptree[kTreeCriteria][kRowNodes + 1];
    float tsims[kTreeCriteria][kRowNodes + 1];
  } merged_rows;
  struct {
    int part[kTreeCriteria][kRows], ptree[kTreeCriteria][kRowNodes + 1];
    float tsims[kTreeCriteria][kRowNodes + 1], gains[kTreeCriteria][kRowNodes + 1];
  } merged_items;
  struct {
    int pwgts[kNodes];
    float isims[kNodes], xsims[kNodes];
  } tree_stats;
  struct {
    int internalids[kNodes * kFeatures];
    float internalwgts[kNodes * kFeatures];
  } tree_features;
  struct {
    int items[2 * kNodes], rows[2 * kRowNodes], clusters[2 * kNodes];
  } orders;
  struct {
    int nrows, ncols, rperm[kRows], cperm[kColumns];
    int rowptr[kRows + 1], rowind[kRows * kColumns];
    float rowval[kRows * kColumns];
  } prepared;
};

#define MATRIX(f) kRows, kColumns, (f)->rowptr, (f)->rowind, (f)->rowval, (f)->simfun

static void Cluster(const struct Form* f, struct Results* r) {
  for (int c = 0; c < kCriteria; ++c) {
    MOLVA_VP_ClusterRB(MATRIX(f), c + 1, 1, f->colmodel, 1.0f, 3, 10, 1, 1, 0, kParts,
                       r->clusterings.bisected[c]);
    MOLVA_VP_ClusterDirect(MATRIX(f), c + 1, 1, f->colmodel, 1.0f, 3, 10, 1, 0, kParts,
                           r->clusterings.direct[c]);
  }
}

static void Measure(const struct Form* f, const int* part, struct Results* r) {
  for (int model = 0; model < kModels; ++model) {
    for (int c = 0; c < kCriteria; ++c) {
      r->qualities.of[model][c] =
          MOLVA_V_GetSolutionQuality(MATRIX(f), c + 1, model + 1, f->colmodel, 1.0f, kParts, part);
    }
  }
  MOLVA_V_GetClusterStats(MATRIX(f), 1, f->colmodel, 1.0f, kParts, part, r->stats.pwgts,
                          r->stats.cintsim, r->stats.cintsdev, r->stats.izscores, r->stats.cextsim,
                          r->stats.cextsdev, r->stats.ezscores);
  MOLVA_V_GetClusterFeatures(MATRIX(f), 1, f->colmodel, 1.0f, kParts, part, kFeatures,
                             r->features.internalids, r->features.internalwgts,
                             r->features.externalids, r->features.externalwgts);
}

/* Elements that are not written are set: the leaves of a tree over the rows have no similarity, the
 * element behind the last node has no meaning. */
static void BuildTrees(const struct Form* f, const int* part, struct Results* r) {
  memset(r->trees.tsims, 0, sizeof r->trees.tsims);
  memset(&r->row_trees.tsims, 0, sizeof r->row_trees.tsims);
  for (int c = 0; c < kTreeCriteria; ++c) {
    MOLVA_V_BuildTree(MATRIX(f), c + 1, 1, f->colmodel, 1.0f, 1, 0, kParts, part, r->trees.ptree[c],
                      r->trees.tsims[c]);
    MOLVA_V_BuildTree(MATRIX(f), c + 1, 1, f->colmodel, 1.0f, 2, 0, kParts, part,
                      r->row_trees.ptree[c], r->row_trees.tsims[c]);
  }
}

/* The dot products of the rows as they are given. */
static void FillSimilarities(float* smat) {
  for (int i = 0; i < kRows; ++i) {
    for (int j = 0; j < kRows; ++j) {
      float product = 0;
      for (int c = 0; c < kColumns; ++c) {
        product += kDense[i * kColumns + c] * kDense[j * kColumns + c];
      }
      smat[i * kRows + j] = product;
    }
  }
}

static void Merge(const struct Form* f, struct Results* r) {
  static const int kOnes[kRows] = {1, 1, 1, 1, 1, 1, 1, 1};
  float smat[kRows * kRows];
  memset(r->merged_items.gains, 0, sizeof r->merged_items.gains);
  for (int c = 0; c < kTreeCriteria; ++c) {
    MOLVA_VA_Cluster(MATRIX(f), c + 1, 1, f->colmodel, 1.0f, 0, kParts, r->merged_rows.part[c],
                     r->merged_rows.ptree[c], r->merged_rows.tsims[c]);
    FillSimilarities(smat);
    MOLVA_SA_Cluster(kRows, kOnes, smat, c + 1, 1 + c % 2, 0, kParts, r->merged_items.part[c],
                     r->merged_items.ptree[c], r->merged_items.tsims[c], r->merged_items.gains[c]);
  }
}

/* What tells siblings apart is written for some nodes only and is not compared. */
static void MeasureTree(const struct Form* f, const int* part, const int* ptree,
                        struct Results* r) {
  int pwgts[kNodes + 1], internalids[(kNodes + 1) * kFeatures];
  int externalids[(kNodes + 1) * kFeatures];
  float isims[kNodes + 1], xsims[kNodes + 1];
  float internalwgts[(kNodes + 1) * kFeatures], externalwgts[(kNodes + 1) * kFeatures];
  MOLVA_V_GetTreeStats(MATRIX(f), 1, f->colmodel, 1.0f, kParts, part, ptree, pwgts, isims, xsims);
  MOLVA_V_GetTreeFeatures(MATRIX(f), 1, f->colmodel, 1.0f, kParts, part, ptree, kFeatures,
                          internalids, internalwgts, externalids, externalwgts);
  memcpy(r->tree_stats.pwgts, pwgts, sizeof r->tree_stats.pwgts);
  memcpy(r->tree_stats.isims, isims, sizeof r->tree_stats.isims);
  memcpy(r->tree_stats.xsims, xsims, sizeof r->tree_stats.xsims);
  memcpy(r->tree_features.internalids, internalids, sizeof r->tree_features.internalids);
  memcpy(r->tree_features.internalwgts, internalwgts, sizeof r->tree_features.internalwgts);
}

/* The children of every node, the smaller number first. */
static void FillChildren(int nodes, const int* ptree, int* ftree) {
  for (int slot = 0; slot < 2 * nodes; ++slot) ftree[slot] = -1;
  for (int x = 0; x < nodes; ++x) {
    if (ptree[x] < 0) continue;
    int* pair = ftree + 2 * ptree[x];
    pair[pair[0] < 0 ? 0 : 1] = x;
  }
}

static void Reorder(const struct Form* f, const int* part, const int* ptree, const int* row_ptree,
                    struct Results* r) {
  static const int kItemWeights[kParts] = {2, 3, 3};
  static const int kItemTree[2 * kParts] = {3, 4, 3, 4, -1, -1};
  float smat[kParts * kParts] = {5, 2, 1, 2, 6, 3, 1, 3, 7};
  int items[4 * kParts], rows[4 * kRows], clusters[4 * kParts];
  FillChildren(2 * kParts, kItemTree, items);
  FillChildren(2 * kParts, ptree, clusters);
  FillChildren(2 * kRows, row_ptree, rows);
  MOLVA_S_TreeReorder(kParts, kItemWeights, smat, 1, 0, kItemTree, items);
  MOLVA_V_TreeReorder(MATRIX(f), 1, f->colmodel, 1.0f, 0, row_ptree, rows);
  MOLVA_V_ClusterTreeReorder(MATRIX(f), 1, f->colmodel, 1.0f, 0, kParts, part, ptree, clusters);
  memcpy(r->orders.items, items, sizeof r->orders.items);
  memcpy(r->orders.rows, rows, sizeof r->orders.rows);
  memcpy(r->orders.clusters, clusters, sizeof r->orders.clusters);
}

static void Prepare(const struct Form* f, struct Results* r) {
  int *rowptr, *rowind;
  float* rowval;
  memset(&r->prepared, 0, sizeof r->prepared);
  memset(r->prepared.cperm, 0xff, sizeof r->prepared.cperm);
  MOLVA_InternalizeMatrix(MATRIX(f), 1, f->colmodel, 1.0f, &r->prepared.nrows, &r->prepared.ncols,
                          &rowptr, &rowind, &rowval, r->prepared.rperm, r->prepared.cperm);
  const size_t entries = (size_t)rowptr[r->prepared.nrows];
  memcpy(r->prepared.rowptr, rowptr, sizeof r->prepared.rowptr);
  memcpy(r->prepared.rowind, rowind, entries * sizeof *rowind);
  memcpy(r->prepared.rowval, rowval, entries * sizeof *rowval);
  MOLVA_Free(rowptr);
  MOLVA_Free(rowind);
  MOLVA_Free(rowval);
  MOLVA_Free(NULL);
}

static void CallAll(const struct Form* f, int filling, struct Results* r) {
  memset(r, filling, sizeof *r);
  Cluster(f, r);
  const int* part = r->clusterings.bisected[1];
  Measure(f, part, r);
  BuildTrees(f, part, r);
  Merge(f, r);
  MeasureTree(f, part, r->trees.ptree[1], r);
  Reorder(f, part, r->trees.ptree[1], r->row_trees.ptree[1], r);
  Prepare(f, r);
}

/* Returns how many parts of the results differ, and names them. */
static int Differences(const struct Form* f, const struct Results* a, const struct Results* b) {
  int found = 0;
#define COMPARE(field)                                                    \
  do {                                                                    \
    if (memcmp(&a->field, &b->field, sizeof a->field) != 0) {             \
      printf("%s: " #field " keeps what stood in the arrays\n", f->name); \
      ++found;                                                            \
    }                                                                     \
  } while (0)
  COMPARE(clusterings);
  COMPARE(qualities);
  COMPARE(stats);
  COMPARE(features);
  COMPARE(trees);
  COMPARE(row_trees);
  COMPARE(merged_rows);
  COMPARE(merged_items);
  COMPARE(tree_stats);
  COMPARE(tree_features);
  COMPARE(orders);
  COMPARE(prepared);
#undef COMPARE
  return found;
}

int main(int argc, char** argv) {
  static struct Results over_zeros, over_ones;
  FILE* file = argc > 1 ? fopen(argv[1], "wb") : NULL;
  int found = argc > 1 && file == NULL;
  for (size_t i = 0; i < sizeof kForms / sizeof *kForms; ++i) {
    CallAll(&kForms[i], 0x00, &over_zeros);
    CallAll(&kForms[i], 0xff, &over_ones);
    found += Differences(&kForms[i], &over_zeros, &over_ones);
    if (file != NULL) found += fwrite(&over_zeros, sizeof over_zeros, 1, file) != 1;
  }
  if (file != NULL) found += fclose(file) != 0;
  return found != 0;
}
