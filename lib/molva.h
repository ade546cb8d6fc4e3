/* SPDX-License-Identifier: MIT
 *
 * libmolva: clusters the rows of a matrix and measures the result. Callable from C and C++.
 *
 * Conventions shared by every entry point
 *
 *   The matrix. nrows rows (objects) and ncols columns (features), row-compressed: the entries of
 *   row i are rowind[p] (its column, 0 to ncols-1) and rowval[p] (its value) for p from rowptr[i]
 *   to rowptr[i+1]-1; rowptr has nrows+1 elements and starts at 0. When rowptr and rowind are both
 *   null the matrix is dense and rowval holds nrows*ncols values, row by row. The arrays are only
 *   read; every entry point works on a prepared copy of its own: scaled by the row model, then by
 *   the column model, brought to unit rows, and, when fewer than nrows*ncols entries are stored,
 *   pruned of columns and of the rows that this leaves empty.
 *
 *   Codes.  simfun    1 cosine, 2 correlation coefficient
 *           crfun     1 I1, 2 I2, 3 E1, 4 G1, 5 G1', 6 H1, 7 H2, 8 G3, 9 H3
 *           rowmodel  1 none, 2 MAXTF, 3 SQRT, 4 LOG
 *           colmodel  1 none, 2 IDF (sparse cosine input only)
 *   prune (colprune) is the pruning fraction: columns are kept, heaviest first, until the squares
 *   of their weights in the unit-length sum of all rows pass prune*prune. A column stored in one
 *   row only is always dropped, also at 1.0.
 *
 *   Clusters. part[i] is the cluster of row i, 0 to nparts-1, or -1 for a row without a cluster;
 *   rows whose part lies outside 0 to nparts-1 are left out of every sum.
 *
 *   Notation. D_k is the sum of the prepared rows of cluster k, n_k their number, G the sum of all
 *   prepared rows, N their number, "." the dot product.
 *
 *   Trees. A binary tree over L leaves has 2L-1 nodes: leaves 0 to L-1, internal nodes L to 2L-2,
 *   every node numbered below its parent, the root 2L-2. ptree[x] is the parent of node x, -1 for
 *   the root; tsims[x] the average similarity between the rows of the two children of x. Where
 *   leaves stand for nothing (rows that preparation drops, empty clusters) their parents are -1,
 *   and so are those of the nodes above the root, which is then the highest node with children.
 *   Arrays over nodes hold 2L elements. ftree holds 2L pairs: the children of node x are ftree[2x]
 *   (left) and ftree[2x+1] (right), -1 where absent. nfeatures-long lists of columns hold the
 *   caller's column numbers, best first, -1 in slots without a column.
 *
 *   Errors. Unless a handler says otherwise, every error prints a message to standard error and
 *   ends the process with status 0: an unknown code, a block that cannot be had (the message names
 *   it), a column outside 0 to ncols-1, a rowptr that decreases, fewer rows than clusters, no trial
 *   to keep.
 *
 *   Numbers. Stored results are single precision, sums behind them are wider. The same arguments
 *   give the same bits on every build, but for the sign of a not-a-number, which means nothing.
 */
#ifndef MOLVA_H_
#define MOLVA_H_

#include <stddef.h>

#include "molva_codes.h"

#if defined(__GNUC__)
#define MOLVA_API __attribute__((visibility("default")))
#else
#define MOLVA_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version of this header, and of the library at hand, as "1.5.0". */
#define MOLVA_VERSION "1.5.0"
MOLVA_API const char* MOLVA_Version(void);

/* Errors that do not end the process.
 *
 * A handler receives the message of an error and must not return: it may throw a C++ exception,
 * which passes through the library and releases all that the call had allocated; results written
 * before the error are not to be used. Returns the handler that was in place; null stands for the
 * default, which prints the message to standard error and ends the process with status 0. There is
 * one handler for the whole process. */
typedef void (*MOLVA_ErrorHandler)(const char* message);
MOLVA_API MOLVA_ErrorHandler MOLVA_SetErrorHandler(MOLVA_ErrorHandler handler);

/* The same for callers in C: calls function(argument) and returns 0, or, when an entry point called
 * in it meets an error, non-zero at once. The handler is not called then, and the part of the
 * function that follows the error is not run.
 *
 *   message  size bytes or null, written: the message, cut to fit and ended by a NUL; "" on success
 *
 * Errors of other threads are not caught. Calls may be nested. */
MOLVA_API int MOLVA_Try(void (*function)(void* argument), void* argument, char* message,
                        size_t size);

/* Progress, and a way to stop. The hook is called by MOLVA_VP_ClusterRB, MOLVA_VP_ClusterDirect and
 * the entry points that merge, compare all clusters or order trees, in the thread that set it and
 * for calls of that thread only; molva_codes.h tells what it is given. When it returns non-zero the
 * run ends as on an error, "The run was interrupted.". A null hook removes it.
 *
 *   data  handed to the hook as it is */
MOLVA_API void MOLVA_SetProgressHook(MOLVA_ProgressHook hook, void* data);

/* How many threads the calls of the current thread use: 1 at first. 0 asks for all processors that
 * the process may use, as its affinity and the quota of its control group have it; a number below
 * 0 or above 1024 ends the run. Results are the same, bit for bit, for every number. Threads are
 * started within a call and have ended when it returns or ends with an error; they call nothing of
 * the host's: handlers and hooks run in the calling thread. */
MOLVA_API void MOLVA_SetNumThreads(int nthreads);
/* The number in use, at least 1. */
MOLVA_API int MOLVA_GetNumThreads(void);

/* Clusters the rows into nparts clusters by nparts-1 bisections: each splits the cluster with the
 * most rows, taking the best of ntrials two-way clusterings, each improved by at most niter
 * refinement passes under the criterion crfun.
 *
 *   seed    starts the sequence of srand48 and drand48, in a state of the library's own; the same
 *           seed gives the same clustering
 *   refine  non-zero: the finished clustering is refined once more as a whole
 *   dbglvl  1: clustering progress, 2: refinement progress, on standard output; values add
 *   part    nrows ints, written: clusters numbered by falling internal minus external similarity,
 *           D_k.D_k/n_k^2 - (D_k.G - D_k.D_k)/((N - n_k) n_k); -1 for rows that preparation drops
 *
 * With nparts 1 no trial is made. Ends the run when nparts is below 1 or, from 2 on, above the
 * number of prepared rows, and when ntrials is below 1 and a trial is needed. */
MOLVA_API void MOLVA_VP_ClusterRB(int nrows, int ncols, const int* rowptr, const int* rowind,
                                  const float* rowval, int simfun, int crfun, int rowmodel,
                                  int colmodel, float prune, int ntrials, int niter, int seed,
                                  int refine, int dbglvl, int nparts, int* part);

/* Clusters the rows into nparts clusters at once: the best of ntrials k-way clusterings, each
 * improved by at most niter refinement passes. Arguments, results and limits as for
 * MOLVA_VP_ClusterRB, without the final refinement; a trial is always needed. */
MOLVA_API void MOLVA_VP_ClusterDirect(int nrows, int ncols, const int* rowptr, const int* rowind,
                                      const float* rowval, int simfun, int crfun, int rowmodel,
                                      int colmodel, float prune, int ntrials, int niter, int seed,
                                      int dbglvl, int nparts, int* part);

/* Measures every cluster and every row of a clustering.
 *
 *   pwgts     nparts ints, written: n_k
 *   cintsim   nparts floats, written: D_k.D_k / n_k^2, the average similarity of two rows of the
 *             cluster, a row's similarity with itself included
 *   cintsdev  nparts floats, written: the sample deviation of the rows' own averages d_i.D_k / n_k
 *   izscores  nrows floats or null, written for the rows that preparation keeps: the row's own
 *             average minus cintsim, divided by cintsdev; -100 for one without a cluster
 *   cextsim   nparts floats, written: (D_k.G - D_k.D_k) / ((N - n_k) n_k), the average similarity
 *             of a row of the cluster and a row outside it
 *   cextsdev, ezscores  the same for the external averages d_i.(G - D_k) / (N - n_k); the
 *             deviation is divided by n_k - 1 as well
 *
 * Clusters of one row, empty clusters and a cluster of all rows divide by zero; the results are
 * then infinite or not-a-number. */
MOLVA_API void MOLVA_V_GetClusterStats(int nrows, int ncols, const int* rowptr, const int* rowind,
                                       const float* rowval, int simfun, int rowmodel, int colmodel,
                                       float colprune, int nparts, const int* part, int* pwgts,
                                       float* cintsim, float* cintsdev, float* izscores,
                                       float* cextsim, float* cextsdev, float* ezscores);

/* Returns the value of criterion crfun for a clustering, sums over the clusters:
 *
 *   I1   D_k.D_k / n_k                 G1   D_k.G / D_k.D_k
 *   I2   |D_k|                         G1'  n_k^2 D_k.G / D_k.D_k
 *   E1   n_k D_k.G / |D_k|             H3   n_k D_k.G / D_k.D_k
 *   H1   I1 / E1        H2   I2 / E1   G3   I2 * I1^(1/4)
 *
 * I1, I2, H1, H2 and G3 are better when larger, the others when smaller. */
MOLVA_API float MOLVA_V_GetSolutionQuality(int nrows, int ncols, const int* rowptr,
                                           const int* rowind, const float* rowval, int simfun,
                                           int crfun, int rowmodel, int colmodel, float colprune,
                                           int nparts, const int* part);

/* Names the columns of every cluster: those that describe it and those that tell it from the rest.
 * Every output has nparts lists of nfeatures slots, cluster k's from k*nfeatures on.
 *
 *   internalids, internalwgts  columns by their share D_k[j]^2 / D_k.D_k of the internal similarity
 *   externalids, externalwgts  columns by their share of the squared distance between the unit
 *                              vectors of D_k and of G - D_k
 *
 * With more slots than prepared columns the surplus ids are -1 and their weights are not written.
 * A zero composite, or a cluster of all rows, gives weights that are not numbers. */
MOLVA_API void MOLVA_V_GetClusterFeatures(int nrows, int ncols, const int* rowptr,
                                          const int* rowind, const float* rowval, int simfun,
                                          int rowmodel, int colmodel, float colprune, int nparts,
                                          const int* part, int nfeatures, int* internalids,
                                          float* internalwgts, int* externalids,
                                          float* externalwgts);

/* Builds a tree by merging, always the merge that is best for criterion crfun (1 to 7; codes 8 and
 * 9 end the run).
 *
 *   treetype  1: over the clusters, leaf c is cluster c, arrays of 2*nparts; 2: over the rows, each
 *             cluster's rows forming a subtree, leaf i is row i, arrays of 2*nrows; any other value
 *             ends the run
 *   dbglvl    1: progress, 4: one line per merge; values add
 *   ptree     written throughout
 *   tsims     written at internal nodes, and for treetype 1 at leaves (0). For treetype 2 internal
 *             nodes are renumbered at the end, so that merges with smaller gains stand higher, and
 *             tsims keeps the numbers from before
 *
 * A complete tree needs a cluster for every prepared row, a cluster of at most 65,536 rows, and
 * memory for the square of the largest cluster; a tree over clusters at most 65,536 clusters. */
MOLVA_API void MOLVA_V_BuildTree(int nrows, int ncols, const int* rowptr, const int* rowind,
                                 const float* rowval, int simfun, int crfun, int rowmodel,
                                 int colmodel, float colprune, int treetype, int dbglvl, int nparts,
                                 const int* part, int* ptree, float* tsims);

/* Clusters the rows by merging alone: a tree over all rows under criterion crfun (1 to 7), cut into
 * nparts clusters. part has nrows elements, ptree and tsims 2*nrows, tsims 0 at leaves. Needs
 * memory for the square of the number of rows, of which there may be 65,536. */
MOLVA_API void MOLVA_VA_Cluster(int nrows, int ncols, const int* rowptr, const int* rowind,
                                const float* rowval, int simfun, int crfun, int rowmodel,
                                int colmodel, float colprune, int dbglvl, int nparts, int* part,
                                int* ptree, float* tsims);

/* The same over n items with a ready matrix.
 *
 *   pwgts     n ints: the rows in each item
 *   smat      n*n floats, row by row: D_i.D_j
 *   handling  1: works on a copy; 2: works in smat, whose contents are lost
 *   part      n ints, written: clusters 0 to nparts-1
 *   ptree, tsims, gains  2n elements, written; gains[x] is what merge x added to the criterion
 *             (negated for the minimised ones), at internal nodes only */
MOLVA_API void MOLVA_SA_Cluster(int n, const int* pwgts, float* smat, int crfun, int handling,
                                int dbglvl, int nparts, int* part, int* ptree, float* tsims,
                                float* gains);

/* Measures the nodes of a tree over the clusters (MOLVA_V_BuildTree, treetype 1). Outputs have
 * 2*nparts elements.
 *
 *   pwgts  rows below each node
 *   isims  D_x.D_x / n_x^2, the average similarity of two rows below the node
 *   xsims  D_a.D_b / (n_a n_b) for siblings a and b; 0 at the root */
MOLVA_API void MOLVA_V_GetTreeStats(int nrows, int ncols, const int* rowptr, const int* rowind,
                                    const float* rowval, int simfun, int rowmodel, int colmodel,
                                    float colprune, int nparts, const int* part, const int* ptree,
                                    int* pwgts, float* isims, float* xsims);

/* Names the columns of the nodes of a tree over the clusters. Outputs have 2*nparts lists of
 * nfeatures slots. Descriptive lists are as for clusters; what tells two siblings apart is written
 * for the second one (the higher-numbered) only, other discriminating lists are not written. */
MOLVA_API void MOLVA_V_GetTreeFeatures(int nrows, int ncols, const int* rowptr, const int* rowind,
                                       const float* rowval, int simfun, int rowmodel, int colmodel,
                                       float colprune, int nparts, const int* part,
                                       const int* ptree, int nfeatures, int* internalids,
                                       float* internalwgts, int* externalids, float* externalwgts);

/* Choose the left and the right child of every node of a tree of n leaves (rows, clusters) so that
 * neighbouring subtrees are as similar as possible, the heaviest placed first. ptree is read; ftree
 * comes with the two children of every node in any order, and pairs are swapped.
 *
 *   wgts      the rows in each leaf
 *   smat      D_i.D_j of the leaves; handling 1: n*n floats, copied; otherwise 2n rows of 2n
 *             floats whose leaf block is filled, overwritten
 *
 * MOLVA_V_TreeReorder takes a tree over the rows and does nothing when preparation drops a row. */
MOLVA_API void MOLVA_S_TreeReorder(int n, const int* wgts, float* smat, int handling, int dbglvl,
                                   const int* ptree, int* ftree);
MOLVA_API void MOLVA_V_TreeReorder(int nrows, int ncols, const int* rowptr, const int* rowind,
                                   const float* rowval, int simfun, int rowmodel, int colmodel,
                                   float colprune, int dbglvl, const int* ptree, int* ftree);
MOLVA_API void MOLVA_V_ClusterTreeReorder(int nrows, int ncols, const int* rowptr,
                                          const int* rowind, const float* rowval, int simfun,
                                          int rowmodel, int colmodel, float colprune, int dbglvl,
                                          int nparts, const int* part, const int* ptree,
                                          int* ftree);

/* Hands out the prepared matrix: its counts, its arrays in row-compressed form, and the maps back.
 * rperm (nrows ints) receives the caller's row of each prepared row, cperm (ncols ints) the
 * caller's column of each prepared column. The three arrays belong to the caller, who releases each
 * with MOLVA_Free. */
MOLVA_API void MOLVA_InternalizeMatrix(int nrows, int ncols, const int* rowptr, const int* rowind,
                                       const float* rowval, int simfun, int rowmodel, int colmodel,
                                       float colprune, int* prepared_nrows, int* prepared_ncols,
                                       int** prepared_rowptr, int** prepared_rowind,
                                       float** prepared_rowval, int* rperm, int* cperm);

/* Releases an array that the library handed out; null is ignored. */
MOLVA_API void MOLVA_Free(void* array);

#ifdef __cplusplus
}
#endif

#include "molva_blocks.h"

#endif /* MOLVA_H_ */
