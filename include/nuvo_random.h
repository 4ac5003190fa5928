/* The library's own random number generator.
 *
 * A lagged recursive generator modulo the prime M = 1000009711 over a table of
 * 101 values, combined with a small additive sequence and seeded by
 * Wichmann-Hill. The whole state lives in a caller-owned nuvo_randContext, so
 * equal seeds give equal sequences on every platform and independent contexts
 * can be used from different threads. Copying the record copies the stream.
 */
#ifndef NUVO_RANDOM_H
#define NUVO_RANDOM_H

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

#define NUVO_RAND_TABLE_SIZE 101

typedef struct {
  double u;                           /**< secondary sequence, in (0, 1) */
  double step;                        /**< 2^-25 */
  double twoM;                        /**< 2M */
  double fourM;                       /**< 4M */
  double table[NUVO_RAND_TABLE_SIZE]; /**< last 101 values of the main sequence */
  int needsSeed;                      /**< 1: the next draw seeds the context */
  int index;                          /**< position of the next value to replace */
} nuvo_randContext;

/** Zeroes the context and marks it as needing a seed. */
NUVO_API void NUVOInitRandContext(nuvo_randContext *ctx);

/** A double in (0, 1 + 1e-17). A non-zero seed, or a context never seeded,
 *  (re)seeds the context first; seeds s and -s give the same sequence. Draw with
 *  seed 0 after seeding once. */
NUVO_API double NUVODoubleRand(int seed, nuvo_randContext *ctx);

/** NUVODoubleRand(seed, ctx) * n truncated toward zero: an integer in [0, n-1]. */
NUVO_API int NUVOIntRand(int seed, int n, nuvo_randContext *ctx);

/** Draws an index from the n probabilities of pdf: the first k whose running sum
 *  exceeds one uniform draw, or n-1 when none does. Returns 0. */
NUVO_API int NUVODrawIndexFromPdf(int n, const double *pdf, int *index, nuvo_randContext *ctx);

/** Shuffles list in place (Fisher-Yates from the end). Returns 0. */
NUVO_API int NUVORandomizeListOfInt(int n, int *list, nuvo_randContext *ctx);

/** Weighted shuffle in place: position k (0 to n-2) receives an entry drawn with
 *  probability proportional to its weight among the entries not yet placed.
 *  cumWeight holds n+1 cumulative weights (cumWeight[0] = 0) and is modified.
 *  The draw is scaled by the initial total weight throughout, so a draw beyond
 *  what remains lands on the last position: this favours the entry currently
 *  last, and it fixes the permutation produced by a seed. Runs in O(n log n).
 *  Returns 0, or -1 when scratch memory cannot be allocated. */
NUVO_API int NUVORandomizeWeightedListOfInt(int n, int *list, double *cumWeight,
                                            nuvo_randContext *ctx);

NUVO_EXTERN_C_END

#endif /* NUVO_RANDOM_H */
