/* SPDX-License-Identifier: MIT
 *
 * Names the words that describe each of two clusters and those that tell it from the other.
 */
#include <molva.h>
#include <stdio.h>

enum { kRows = 4, kColumns = 4, kClusters = 2, kWords = 2 };

static const char* const words[] = {"apple", "pear", "hammer", "saw"};
static const int rowptr[] = {0, 2, 4, 6, 8};
static const int rowind[] = {0, 1, 0, 1, 2, 3, 2, 3};
static const float rowval[] = {3, 1, 3, 1, 4, 3, 4, 3};

static void PrintWords(const char* title, const int* ids, const float* weights) {
  printf("%s:", title);
  for (int f = 0; f < kWords; ++f) printf(" %s %.1f%%", words[ids[f]], 100 * weights[f]);
  printf("\n");
}

int main(void) {
  /* Any clustering may be described, wherever it comes from. */
  const int part[] = {0, 0, 1, 1};
  int internalids[kClusters * kWords], externalids[kClusters * kWords];
  float internalwgts[kClusters * kWords], externalwgts[kClusters * kWords];
  MOLVA_V_GetClusterFeatures(kRows, kColumns, rowptr, rowind, rowval, MOLVA_SIM_COSINE,
                             MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, kClusters, part, kWords,
                             internalids, internalwgts, externalids, externalwgts);
  for (int k = 0; k < kClusters; ++k) {
    printf("cluster %d\n", k);
    PrintWords("  describing", internalids + k * kWords, internalwgts + k * kWords);
    PrintWords("  telling", externalids + k * kWords, externalwgts + k * kWords);
  }
  return 0;
}
