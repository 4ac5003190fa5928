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

/** Sets every field of ctx to zero and marks it as needing a seed, so that its
 *  first draw seeds it. The caller owns ctx. */
NUVO_API void NUVOInitRandContext(nuvo_randContext *ctx);

/** Draws the next value of ctx, a double in (0, 1): strictly positive and below 1.
 *  A non-zero seed, or a context never seeded, first (re)seeds the context with
 *  seed (seeds s and -s give the same sequence; every 32-bit value is valid).
 *  Seed once with the user's seed, then draw with seed 0. */
NUVO_API double NUVODoubleRand(int seed, nuvo_randContext *ctx);

/** NUVODoubleRand(seed, ctx) * n truncated toward zero: for n >= 1 an integer in
 *  [0, n-1]. */
NUVO_API int NUVOIntRand(int seed, int n, nuvo_randContext *ctx);

/** Draws an index from the n >= 1 probabilities of pdf: with r one draw of ctx,
 *  *index is the first k < n-1 for which pdf[0] + ... + pdf[k] > r, else n-1 (the
 *  last entry takes whatever mass is left). Returns 0. */
NUVO_API int NUVODrawIndexFromPdf(int n, const double *pdf, int *index, nuvo_randContext *ctx);

/** Shuffles the n entries of list in place, Fisher-Yates from the end: for i from
 *  n-1 down to 1, swaps entries i and j = floor(draw * (i+1)). Lists shorter than
 *  two entries are left unchanged and draw nothing. Returns 0. */
NUVO_API int NUVORandomizeListOfInt(int n, int *list, nuvo_randContext *ctx);

/** Weighted shuffle in place: position k (0 to n-2) receives an entry drawn by
 *  weight among the entries at positions k to n-1.
 *
 *  cumWeight holds n+1 non-decreasing cumulative weights, cumWeight[0] = 0 and
 *  cumWeight[i+1] - cumWeight[i] the (non-negative) weight of list[i]. Each step
 *  draws x = draw * T, where T = cumWeight[n] is the initial total and is never
 *  reduced, and places the entry at the last position whose cumulative weight
 *  (over the entries not yet placed) does not exceed x. A draw beyond what remains
 *  therefore lands on the last position: the entry currently last is favoured.
 *  This is intended, and it fixes the permutation a seed produces.
 *
 *  The permutation is the one of the step-by-step form, which updates every
 *  cumulative weight by subtraction after each step (O(n^2)), obtained here in
 *  O(n log n) with a tree of the weights, and with exact sums: each weight is
 *  rounded to a whole number of units of 2^s, s chosen so that the weights total
 *  between 2^60 and 2^61 units (a unit is at most 2^-60 of the total, finer than
 *  the precision of the cumulative weights near the total), and each draw x to
 *  the whole units below it. The draw then falls on the position exact arithmetic
 *  gives for those weights, whatever the order of summation. This is the
 *  step-by-step form's result whenever its own sums are exact (for instance
 *  integer weights, or multiples of a common power of two, totalling less than
 *  2^53 such units); otherwise its rounding, not this one, may pick a neighbour
 *  of the entry for a draw within rounding error of a cumulative weight.
 *  Weights that are negative or not finite count as zero.
 *
 *  On return cumWeight[0] ... cumWeight[n-1] are 0 and cumWeight[n] is the weight
 *  of the entry placed last (in units as above), the state the step-by-step form
 *  ends in. Lists shorter than two entries are left unchanged and draw nothing.
 *  Returns 0, or -1 when scratch memory cannot be allocated (then nothing is
 *  changed and nothing is drawn). */
NUVO_API int NUVORandomizeWeightedListOfInt(int n, int *list, double *cumWeight,
                                            nuvo_randContext *ctx);

NUVO_EXTERN_C_END

#endif /* NUVO_RANDOM_H */
