/* SPDX-License-Identifier: MIT
 *
 * Clustering more rows than one machine holds: the rows come in blocks, each block is prepared,
 * assigned to clusters and summed by itself, and what is kept of it are sums. Part of molva.h.
 *
 * The course of a clustering
 *
 *   1. MOLVA_B_CountColumns over all blocks, MOLVA_B_WeighColumns; with pruning below 1
 *      MOLVA_B_Prepare and MOLVA_B_SumColumns over all blocks; MOLVA_B_ChooseColumns. This gives a
 *      MOLVA_Space, and MOLVA_B_Prepare then turns the rows of any block into those that the whole
 *      matrix would be prepared to.
 *   2. A sample of the prepared rows, chosen by MOLVA_B_HashRows, is clustered by
 *      MOLVA_VP_ClusterDirect, without models.
 *   3. Passes over the blocks: MOLVA_B_AssignRows tells where each row would move,
 *      MOLVA_B_SumChanges what this changes in the sums of the clusters. The changes of all blocks
 *      are added up, and a pass that makes MOLVA_B_CriterionValue worse is taken back, or a share
 *      of its moves is made, chosen by hashes again.
 *
 * Sums are 64-bit integers in units of 2^-32, so they are the same in whatever order blocks are
 * summed and added; all else follows from the sums and the row alone. So labels are the same, bit
 * for bit, however rows are cut into blocks, wherever blocks are worked on, and for every number of
 * threads.
 *
 * A prepared block is row-compressed as in molva.h: nrows rows over the columns kept.
 */
#ifndef MOLVA_BLOCKS_H_
#define MOLVA_BLOCKS_H_

#include <stddef.h>
#include <stdint.h>

#if !defined(MOLVA_API)
#if defined(__GNUC__)
#define MOLVA_API __attribute__((visibility("default")))
#else
#define MOLVA_API
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* How the rows of every block are prepared. */
typedef struct MOLVA_Space {
  int simfun;              /* as in molva.h; correlation stores every cell */
  int rowmodel;            /* as in molva.h */
  const float* weights;    /* for each column what its entries are multiplied by, or null */
  const signed char* kept; /* for each column whether it is kept, or null when nothing is pruned */
} MOLVA_Space;

/* The clusters that the rows of a pass are judged against; MOLVA_B_MakeView and MOLVA_B_MeasureSums
 * fill the arrays. */
typedef struct MOLVA_View {
  int nparts;
  int ncols;               /* columns kept */
  const float* composites; /* ncols*nparts: column by column, D_k[j] of all clusters side by side */
  const float* whole;      /* ncols: G */
  const int64_t* pwgts;    /* nparts: n_k */
  const double* dnorms;    /* nparts: D_k.D_k */
  const double* csim;      /* nparts: D_k.G */
} MOLVA_View;

/* Adds the entries stored in each column to counts, ncols integers; all cells of a dense block,
 * whose rowptr is null. */
MOLVA_API void MOLVA_B_CountColumns(int nrows, int ncols, const int* rowptr, const int* rowind,
                                    int64_t* counts);

/* weights[j] = ln(nrows / counts[j]), 0 for a column without entries: the factors of IDF, from the
 * counts and the rows of all blocks. */
MOLVA_API void MOLVA_B_WeighColumns(int ncols, int64_t nrows, const int64_t* counts,
                                    float* weights);

/* Adds the rows of a block that was prepared without a choice of columns to sums, ncols integers in
 * units of 2^-32. Ends the run when a sum passes 64 bits. */
MOLVA_API void MOLVA_B_SumColumns(int nrows, int ncols, const int* rowptr, const int* rowind,
                                  const float* rowval, int64_t* sums);

/* Chooses the columns that pruning keeps and returns how many there are.
 *
 *   sums  of all blocks; null, with which the columns stored twice or more are kept, as a pruning
 *         fraction of 1 means it
 *   kept  ncols bytes, written: 1 for a column kept, else 0 */
MOLVA_API int MOLVA_B_ChooseColumns(int ncols, float prune, const int64_t* counts,
                                    const int64_t* sums, signed char* kept);

/* Prepares the rows of a block: row model, weights, unit rows; then, with a choice of columns, what
 * is left of the rows, brought to unit length once more. Rows of which nothing is left are dropped.
 *
 *   prepared_*  as for MOLVA_InternalizeMatrix; released with MOLVA_Free
 *   rperm       nrows ints, written: the block's row of each prepared row
 *
 * Ends the run on a value that is no finite number afterwards. */
MOLVA_API void MOLVA_B_Prepare(int nrows, int ncols, const int* rowptr, const int* rowind,
                               const float* rowval, const MOLVA_Space* space, int* prepared_nrows,
                               int* prepared_ncols, int** prepared_rowptr, int** prepared_rowind,
                               float** prepared_rowval, int* rperm);

/* hashes[i], for i below nrows, is a number of 64 bits that depends on first + i and the salt
 * alone: `first` is the number of the block's first row among the rows of all blocks. */
MOLVA_API void MOLVA_B_HashRows(int64_t first, int nrows, uint64_t salt, uint64_t* hashes);

/* Tells where the rows of a prepared block would move if all others stayed.
 *
 *   part  nrows ints: the cluster of each row, below 0 for none yet
 *   best  nrows ints, written: the cluster by which criterion crfun gains most when the row leaves
 *         its own and joins it; part[i] when nothing gains or its cluster has two rows or fewer. A
 *         row without a cluster joins one in any case */
MOLVA_API void MOLVA_B_AssignRows(int nrows, const int* rowptr, const int* rowind,
                                  const float* rowval, int crfun, const MOLVA_View* view,
                                  const int* part, int* best);

/* Sums what moves change. Row i leaves list from[i] and joins list to[i], numbers outside 0 to
 * nlists-1 standing for none; a list is a cluster, or the part of one that a share of the moves is
 * for.
 *
 *   starts   nlists+1 integers, written: the changes of list l are columns[p] and sums[p] for p
 * from starts[l] to starts[l+1]-1 columns  increasing within a list; the caller's, released with
 * MOLVA_Free sums     in units of 2^-32, none of them 0; the same
 *
 * Returns a bound on the magnitude that any sum over some of the rows has, in units: while those of
 * all blocks add up to less than 2^63, no sum passes 64 bits. Ends the run where one does. */
MOLVA_API int64_t MOLVA_B_SumChanges(int nrows, int ncols, const int* rowptr, const int* rowind,
                                     const float* rowval, int nlists, const int* from,
                                     const int* to, int64_t* starts, int** columns, int64_t** sums);

/* Measures clusters by their sums, nparts*ncols integers cluster by cluster: dnorms[k] = D_k.D_k
 * and csim[k] = D_k.G, nparts doubles each. */
MOLVA_API void MOLVA_B_MeasureSums(int nparts, int ncols, const int64_t* sums, double* dnorms,
                                   double* csim);

/* smat[k][l] = D_k.D_l, nparts*nparts floats, as MOLVA_SA_Cluster and MOLVA_S_TreeReorder take
 * them. */
MOLVA_API void MOLVA_B_MultiplySums(int nparts, int ncols, const int64_t* sums, float* smat);

/* Fills the two arrays of a view, each value times `scale`: that of a sample stands for all rows.
 */
MOLVA_API void MOLVA_B_MakeView(int nparts, int ncols, const int64_t* sums, double scale,
                                float* composites, float* whole);

/* Returns the value of criterion crfun, as MOLVA_V_GetSolutionQuality defines it; here nothing is
 * rounded to single precision. A cluster without rows may make it not-a-number. */
MOLVA_API double MOLVA_B_CriterionValue(int crfun, int nparts, const int64_t* pwgts,
                                        const double* dnorms, const double* csim);

/* The averages of the rows of a prepared block, from which deviations and z-scores follow.
 *
 *   internal, external  nrows floats each, written: d_i.D_k / n_k and d_i.(G - D_k) / (N - n_k), N
 *                       the rows of all clusters; 0 for a row without a cluster */
MOLVA_API void MOLVA_B_AverageRows(int nrows, const int* rowptr, const int* rowind,
                                   const float* rowval, const MOLVA_View* view, const int* part,
                                   float* internal, float* external);

#ifdef __cplusplus
}
#endif

#endif /* MOLVA_BLOCKS_H_ */
