/* Variograms of image variables. */
#ifndef NUVO_VARIOGRAM_H
#define NUVO_VARIOGRAM_H

#include "nuvo_export.h"
#include "nuvo_image.h"

NUVO_EXTERN_C_BEGIN

/** Experimental variogram map of variable iv of `image` over the box of lags
 *  hxMin..hxMax by hxStep (and likewise along y and z), in nodes. The result is
 *  written into `map` (initialised and empty; freed by the caller with
 *  NUVOFreeImage): one node per lag, z slowest, its grid centred so that the node
 *  of a lag lies at the physical lag vector, one variable named after the input
 *  variable with the suffix "_variogram". Each value is half the mean squared
 *  difference over the pairs of informed nodes at that lag, or the missing value
 *  when there is no pair. A step is taken as 1 when its minimum equals its
 *  maximum. With progressFlag set, "Progress: %3d %%" lines go to standard output.
 *  Returns 0, -1100 (bad iv), -2011 (a lag as large as the grid, an empty range,
 *  a step below 1) or -1 / -3 on allocation failure. */
NUVO_API int NUVOImageVariogram(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                int hxMax, int hxStep, int hyMin, int hyMax, int hyStep, int hzMin,
                                int hzMax, int hzStep, signed char progressFlag);

/** Approximate ranges, in nodes, of variable iv of a training image along x, y
 *  and z: for each axis the first lag at which the experimental variogram reaches
 *  95 % of the variable's variance, or the largest lag (n - 1) when it never does
 *  (0 along an axis of one node). With `categorical` set, the variable's
 *  categories are taken one at a time as indicators and their ranges averaged
 *  with the weights p(1 - p) of their indicator variances; this costs one pass
 *  per category. Returns 0, -1100 (bad iv), or -1061 when the variable has fewer
 *  than two informed values or no variance. */
NUVO_API int NUVOComputeVariogramRangeApprox(const nuvo_image *ti, int iv, signed char categorical,
                                             double *rx, double *ry, double *rz);

NUVO_EXTERN_C_END

#endif /* NUVO_VARIOGRAM_H */
