/* Gaussian pyramid reduction and expansion of grids of values.
 *
 * A reduction with an integer step k along a direction filters the values with a
 * symmetric kernel of 2k + 1 taps and keeps one node in k; an expansion puts the
 * coarse nodes back on every k-th fine node and interpolates between them with the
 * same kernel scaled by k. Step 0 leaves a direction untouched, step 1 keeps its
 * dimension and smooths over 3 nodes, step 2 is the classical gaussian pyramid.
 *
 * Dimensions: a reduction by k > 0 of n nodes gives (n - 1) / k + 1 nodes, output
 * node i sitting on input node shift + i * k with shift = ((n - 1) mod k) / 2; an
 * expansion by k > 0 of n nodes gives (n - 1) * k + 1 nodes, coarse node j
 * sitting on fine node j * k. Reducing then expanding returns the starting
 * dimension only when n - 1 is a multiple of k.
 *
 * Missing values (NUVO_MISSING_VALUE) are skipped: every output node is the
 * weighted mean of the informed nodes its filter covers, and it is defined only
 * when their share of the filter weight (taps outside the grid count as
 * uninformed) is at least minWeight. Values are stored x fastest, then y, then z.
 * The filter is separable: one pass per direction with a positive step.
 */
#ifndef NUVO_PYRAMID_H
#define NUVO_PYRAMID_H

#include "nuvo_export.h"
#include "nuvo_image.h"

NUVO_EXTERN_C_BEGIN

/** Fills w[0..k] with the kernel of step k: w[0] is the centre tap, w[d] the two
 *  taps at distance d. Binomial weights normalised so that each phase modulo k
 *  sums to 1 / k; the centre phase (offsets -k, 0, k) keeps the binomial ratio
 *  when alpha < 0, else w[0] = alpha and w[k] = (1 / k - alpha) / 2. For k = 2 and
 *  alpha < 0 the kernel is (1, 4, 6, 4, 1) / 16. Nothing is done when k < 1.
 *  Returns 0. */
NUVO_API int NUVOPyramidWeight(int k, double alpha, double *w);

/** Dimension *nOut and shift *shift of a reduction by k of n nodes (n and 0 when
 *  k = 0). Returns 0, -3501 when k < 0, -3505 when k > 0 and n < k + 1. */
NUVO_API int NUVOPyramidReduceDimension(int n, int k, int *nOut, int *shift);

/** Dimension *nOut of an expansion by k of n nodes (n when k = 0). Returns 0,
 *  -3511 when k < 0, -3515 when k > 0 and n < 2, -620 when the result does not
 *  fit in an int. */
NUVO_API int NUVOPyramidExpandDimension(int n, int k, int *nOut);

/** Reduces the nx x ny x nz values in into the nxOut x nyOut x nzOut values out,
 *  with steps kx, ky, kz, the kernels wx, wy, wz (from NUVOPyramidWeight; not
 *  read for a step 0) and the shifts of NUVOPyramidReduceDimension. outWeight
 *  receives the informed share of each output node's filter. With every step 0
 *  the input is copied (weights 1 or 0). The caller owns every array; in is not
 *  modified. Returns 0, -3501 for a negative step, -3 for an empty grid or an
 *  output dimension other than the input one along a step 0, -20 for a null array, -3509 when
 * minWeight < 1e-10, -1 when scratch memory cannot be allocated. */
NUVO_API int NUVOPyramidReduce(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                               const double *wx, const double *wy, const double *wz, int shiftx,
                               int shifty, int shiftz, int nxOut, int nyOut, int nzOut, double *out,
                               double *outWeight, double minWeight);

/** Expands the nx x ny x nz values in onto the nxOut x nyOut x nzOut grid of out
 *  (dimensions of NUVOPyramidExpandDimension): fine node i receives the coarse
 *  nodes j with |i - j k| <= k, weighted by k * w[|i - j k|]. Otherwise as
 *  NUVOPyramidReduce, with -3511 for a negative step and -3519 when
 *  minWeight < 1e-10. */
NUVO_API int NUVOPyramidExpand(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                               const double *wx, const double *wy, const double *wz, int nxOut,
                               int nyOut, int nzOut, double *out, double *outWeight,
                               double minWeight);

/** Reduces every variable of in into out (initialised or freed; allocated here)
 *  with steps kx, ky, kz, kernels of parameters alphax, alphay, alphaz and a
 *  least informed share of 0.6. out keeps the origin; its cell sizes are
 *  n * s / n' so that it covers the same extent; its variables are named after
 *  those of in with "_GPred" appended. Returns 0, -3502 / -3503 / -3504 for a
 *  negative step in x / y / z, -3506 / -3507 / -3508 when a positive step exceeds
 *  the dimension minus 1, -20 for an image without grid or values, -1. */
NUVO_API int NUVOImagePyramidReduce(const nuvo_image *in, nuvo_image *out, int kx, int ky, int kz,
                                    double alphax, double alphay, double alphaz);

/** As NUVOImagePyramidReduce for an expansion: names with "_GPexp" appended,
 *  -3512 / -3513 / -3514 for a negative step, -3516 / -3517 / -3518 for a
 *  positive step on a dimension below 2, -620 when the expanded grid is too
 *  large. */
NUVO_API int NUVOImagePyramidExpand(const nuvo_image *in, nuvo_image *out, int kx, int ky, int kz,
                                    double alphax, double alphay, double alphaz);

NUVO_EXTERN_C_END

#endif /* NUVO_PYRAMID_H */
