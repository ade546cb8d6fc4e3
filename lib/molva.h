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
 *   Errors. Every error prints a message to standard error and ends the process with status 0: an
 *   unknown code, a block that cannot be had (the message names it), a column outside 0 to
 *   ncols-1, a rowptr that decreases, fewer rows than clusters, no trial to keep.
 *
 *   Numbers. Stored results are single precision, sums behind them are wider. The same arguments
 *   give the same bits on every build.
 */
#ifndef MOLVA_H_
#define MOLVA_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Clusters the rows into nparts clusters by nparts-1 bisections: each splits the cluster with the
 * most rows, taking the best of ntrials two-way clusterings, each improved by at most niter
 * refinement passes under the criterion crfun.
 *
 *   seed    seeds srand and srand48; the same seed gives the same clustering
 *   refine  non-zero: the finished clustering is refined once more as a whole
 *   dbglvl  1: clustering progress, 2: refinement progress, on standard output; values add
 *   part    nrows ints, written: clusters numbered by falling internal minus external similarity,
 *           D_k.D_k/n_k^2 - (D_k.G - D_k.D_k)/((N - n_k) n_k); -1 for rows that preparation drops
 *
 * With nparts 1 no trial is made. Ends the run when nparts is below 1 or, from 2 on, above the
 * number of prepared rows, and when ntrials is below 1 and a trial is needed. */
void MOLVA_VP_ClusterRB(int nrows, int ncols, const int* rowptr, const int* rowind,
                        const float* rowval, int simfun, int crfun, int rowmodel, int colmodel,
                        float prune, int ntrials, int niter, int seed, int refine, int dbglvl,
                        int nparts, int* part);

/* Clusters the rows into nparts clusters at once: the best of ntrials k-way clusterings, each
 * improved by at most niter refinement passes. Arguments, results and limits as for
 * MOLVA_VP_ClusterRB, without the final refinement; a trial is always needed. */
void MOLVA_VP_ClusterDirect(int nrows, int ncols, const int* rowptr, const int* rowind,
                            const float* rowval, int simfun, int crfun, int rowmodel, int colmodel,
                            float prune, int ntrials, int niter, int seed, int dbglvl, int nparts,
                            int* part);

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
void MOLVA_V_GetClusterStats(int nrows, int ncols, const int* rowptr, const int* rowind,
                             const float* rowval, int simfun, int rowmodel, int colmodel,
                             float colprune, int nparts, const int* part, int* pwgts,
                             float* cintsim, float* cintsdev, float* izscores, float* cextsim,
                             float* cextsdev, float* ezscores);

/* Returns the value of criterion crfun for a clustering, sums over the clusters:
 *
 *   I1   D_k.D_k / n_k                 G1   D_k.G / D_k.D_k
 *   I2   |D_k|                         G1'  n_k^2 D_k.G / D_k.D_k
 *   E1   n_k D_k.G / |D_k|             H3   n_k D_k.G / D_k.D_k
 *   H1   I1 / E1        H2   I2 / E1   G3   I2 * I1^(1/4)
 *
 * I1, I2, H1, H2 and G3 are better when larger, the others when smaller. */
float MOLVA_V_GetSolutionQuality(int nrows, int ncols, const int* rowptr, const int* rowind,
                                 const float* rowval, int simfun, int crfun, int rowmodel,
                                 int colmodel, float colprune, int nparts, const int* part);

#ifdef __cplusplus
}
#endif

#endif /* MOLVA_H_ */
