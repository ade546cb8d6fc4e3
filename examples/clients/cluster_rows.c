/* SPDX-License-Identifier: MIT
 *
 * Clusters four rows, kept in compressed form, and prints the cluster of each and a line about each
 * cluster. Ends with status 1 and the library's message when something is wrong with the arguments.
 */
#include <molva.h>
#include <stdio.h>

enum { kRows = 4, kColumns = 7, kClusters = 2 };

static const int rowptr[] = {0, 4, 8, 12, 16};
static const int rowind[] = {0, 1, 2, 3, 0, 1, 2, 3, 3, 4, 5, 6, 3, 4, 5, 6};
static const float rowval[] = {9, 3, 3, 1, 18, 6, 6, 2, 1, 1, 7, 7, 7, 7, 1, 1};

struct Clustering {
  int part[kRows];
  int pwgts[kClusters];
  float isim[kClusters], isdev[kClusters], esim[kClusters], esdev[kClusters];
  float value;
};

static void Cluster(void* result) {
  const int ntrials = 10, niter = 10, seed = 1, refine = 0, dbglvl = 0;
  const float prune = 1.0F;
  struct Clustering* c = result;
  MOLVA_VP_ClusterRB(kRows, kColumns, rowptr, rowind, rowval, MOLVA_SIM_COSINE, MOLVA_CRFUN_I2,
                     MOLVA_ROW_NONE, MOLVA_COL_NONE, prune, ntrials, niter, seed, refine, dbglvl,
                     kClusters, c->part);
  c->value = MOLVA_V_GetSolutionQuality(kRows, kColumns, rowptr, rowind, rowval, MOLVA_SIM_COSINE,
                                        MOLVA_CRFUN_I2, MOLVA_ROW_NONE, MOLVA_COL_NONE, prune,
                                        kClusters, c->part);
  MOLVA_V_GetClusterStats(kRows, kColumns, rowptr, rowind, rowval, MOLVA_SIM_COSINE, MOLVA_ROW_NONE,
                          MOLVA_COL_NONE, prune, kClusters, c->part, c->pwgts, c->isim, c->isdev,
                          NULL, c->esim, c->esdev, NULL);
}

int main(void) {
  struct Clustering c;
  char message[256];
  if (MOLVA_Try(Cluster, &c, message, sizeof(message)) != 0) {
    fprintf(stderr, "%s\n", message);
    return 1;
  }
  for (int i = 0; i < kRows; ++i) printf("row %d: cluster %d\n", i, c.part[i]);
  for (int k = 0; k < kClusters; ++k) {
    printf("cluster %d: %d rows, inside %.2f, outside %.2f\n", k, c.pwgts[k], c.isim[k], c.esim[k]);
  }
  printf("I2 = %.2f\n", c.value);
  return 0;
}
