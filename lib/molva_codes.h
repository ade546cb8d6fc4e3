/* SPDX-License-Identifier: MIT
 *
 * The numbers that callers and the engine exchange: codes, debug bits, kinds of trees, and what a
 * progress hook is called with. Part of molva.h, which includes it.
 */
#ifndef MOLVA_CODES_H_
#define MOLVA_CODES_H_

#ifdef __cplusplus
extern "C" {
#endif

/* The codes that the entry points take. */
enum MOLVA_Similarity { MOLVA_SIM_COSINE = 1, MOLVA_SIM_CORRELATION = 2 };
enum MOLVA_Criterion {
  MOLVA_CRFUN_I1 = 1,
  MOLVA_CRFUN_I2 = 2,
  MOLVA_CRFUN_E1 = 3,
  MOLVA_CRFUN_G1 = 4,
  MOLVA_CRFUN_G1P = 5, /* G1' */
  MOLVA_CRFUN_H1 = 6,
  MOLVA_CRFUN_H2 = 7,
  MOLVA_CRFUN_G3 = 8,
  MOLVA_CRFUN_H3 = 9
};
enum MOLVA_RowModel {
  MOLVA_ROW_NONE = 1,
  MOLVA_ROW_MAXTF = 2,
  MOLVA_ROW_SQRT = 3,
  MOLVA_ROW_LOG = 4
};
enum MOLVA_ColumnModel { MOLVA_COL_NONE = 1, MOLVA_COL_IDF = 2 };
enum MOLVA_TreeType { MOLVA_TREE_CLUSTERS = 1, MOLVA_TREE_ROWS = 2 };
/* Bits of dbglvl: what is reported on standard output while it happens. */
enum MOLVA_Debug { MOLVA_DBG_CLUSTERING = 1, MOLVA_DBG_REFINEMENT = 2, MOLVA_DBG_MERGING = 4 };

/* What a progress hook is called for. */
typedef enum MOLVA_Event {
  MOLVA_EVENT_BISECTION = 1, /* a cluster was split in two */
  MOLVA_EVENT_TRIAL = 2,     /* one start of a clustering, or of the splitting of one cluster */
  MOLVA_EVENT_POLL = 3       /* a fraction of a second has passed, more or less */
} MOLVA_Event;

/* A hook is given what happened, how many of these are done, of how many (0 and 0 for polls), and
 * the data that it was set with. Non-zero asks for the end of the run. */
typedef int (*MOLVA_ProgressHook)(MOLVA_Event event, int done, int total, void* data);

#ifdef __cplusplus
}
#endif

#endif /* MOLVA_CODES_H_ */
