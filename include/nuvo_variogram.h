/* Lag maps of image variables (variograms, covariances, correlograms,
 * transiograms, connectivity functions) and variogram range estimates. */
#ifndef NUVO_VARIOGRAM_H
#define NUVO_VARIOGRAM_H

#include "nuvo_export.h"
#include "nuvo_image.h"

NUVO_EXTERN_C_BEGIN

/* ---- Lag maps ----
 *
 * Each function computes one statistic of variable iv of `image` for every lag
 * vector h = (hx, hy, hz), in nodes, of the box hxMin..hxMax by hxStep, hyMin..
 * hyMax by hyStep, hzMin..hzMax by hzStep, and writes it into `map`: an
 * initialised, empty image that receives one node per lag (x fastest, z slowest),
 * its grid scaled by the steps and placed so that the centre of a node lies at
 * the physical lag vector (a lag of 0 on a node centre), and one variable named
 * after the input variable plus the function's suffix (the input name is cut so
 * that the whole stays within 127 characters). The caller frees `map` with
 * NUVOFreeImage.
 *
 * The pairs of a lag are the nodes x and x + h both inside the grid; x is the
 * tail, x + h the head, so a negative lag swaps them. A pair with a missing
 * value (-9999999.0) at either end is left out. With n the number of pairs left,
 * a = v(x) and b = v(x + h):
 *   variogram            gamma(h) = sum (a - b)^2 / (2 n)                "_variogram"
 *   covariance           C(h) = sum a b / n - m_tail m_head,
 *                        m_tail = sum a / n, m_head = sum b / n          "_covariance"
 *   non-centred          K(h) = sum a b / n                   "_covarianceNotCentred"
 *   correlogram          rho(h) = C(h) / (s_tail s_head),
 *                        s_tail^2 = sum a^2 / n - m_tail^2, likewise s_head
 *                                                                        "_correlogram"
 * The covariance and the correlogram sum their products around the mean of the
 * variable, which they do not depend on, to keep their digits. A lag with no
 * pair, and a correlogram lag where either standard deviation is 0, gets the
 * missing value.
 *
 * The transiogram and the connectivity functions look at one class of nodes: the
 * nodes whose value is informed and not 0. A caller picks a category (or a set
 * of values) by passing an indicator variable of it, 1 inside and 0 outside,
 * missing where unknown.
 *   transiogram          t(h) = number of pairs with a and b in the class
 *                               / number of pairs with a in the class      "_transiogram"
 *                        (the probability that the head is in the class when
 *                        the tail is; t(0) = 1)
 *   connectivity k       tau(h) = number of pairs with a and b in one geobody
 *                                 / number of pairs with a and b in the class
 *                                                           "_connectivity0/1/2"
 * The geobodies are the connected components of the class nodes; two class nodes
 * are neighbours when they share a face (function 0, 6 neighbours), a face or an
 * edge (function 1, 18 neighbours), or a face, an edge or a corner (function 2,
 * 26 neighbours). Missing nodes are outside the class and so cut geobodies. The
 * labelling costs one pass over the nodes, linear in their number. A lag without
 * a qualifying pair gets the missing value.
 *
 * Each lag walks the pairs row by row of x with a fixed offset between tail and
 * head, a straight pass through memory with no copy of the image (the
 * connectivity functions walk one label per node instead of the values).
 *
 * Checks, first failure wins: iv outside [0, nvar): -1100; along x a lag bound
 * hxMin or hxMax of absolute value nx or more, then likewise along y and z:
 * -2011; a step is taken as 1 when its minimum equals its maximum; a minimum
 * above its maximum or a step below 1: -2011. Allocation failures give -1 or -3.
 * With progressFlag set, a line "Progress: %3d %%" goes to standard output each
 * time the whole percentage of lags done grows. Returns 0 on success. */

/** Variogram map (see Lag maps above). */
NUVO_API int NUVOImageVariogram(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                int hxMax, int hxStep, int hyMin, int hyMax, int hyStep, int hzMin,
                                int hzMax, int hzStep, signed char progressFlag);

/** Covariance map, centred on the pairs' own means (see Lag maps above). */
NUVO_API int NUVOImageCovariance(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                 int hxMax, int hxStep, int hyMin, int hyMax, int hyStep, int hzMin,
                                 int hzMax, int hzStep, signed char progressFlag);

/** Non-centred covariance map (see Lag maps above). */
NUVO_API int NUVOImageCovarianceNotCentred(const nuvo_image *image, nuvo_image *map, int iv,
                                           int hxMin, int hxMax, int hxStep, int hyMin, int hyMax,
                                           int hyStep, int hzMin, int hzMax, int hzStep,
                                           signed char progressFlag);

/** Correlogram map (see Lag maps above). */
NUVO_API int NUVOImageCorrelogram(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                  int hxMax, int hxStep, int hyMin, int hyMax, int hyStep,
                                  int hzMin, int hzMax, int hzStep, signed char progressFlag);

/** Transiogram map of the class of informed non-zero values (see Lag maps above). */
NUVO_API int NUVOImageTransiogram(const nuvo_image *image, nuvo_image *map, int iv, int hxMin,
                                  int hxMax, int hxStep, int hyMin, int hyMax, int hyStep,
                                  int hzMin, int hzMax, int hzStep, signed char progressFlag);

/** Connectivity function of the class of informed non-zero values, geobodies
 *  of face neighbours (see Lag maps above). */
NUVO_API int NUVOImageConnectivityFunction0(const nuvo_image *image, nuvo_image *map, int iv,
                                            int hxMin, int hxMax, int hxStep, int hyMin, int hyMax,
                                            int hyStep, int hzMin, int hzMax, int hzStep,
                                            signed char progressFlag);

/** Connectivity function, geobodies of face and edge neighbours. */
NUVO_API int NUVOImageConnectivityFunction1(const nuvo_image *image, nuvo_image *map, int iv,
                                            int hxMin, int hxMax, int hxStep, int hyMin, int hyMax,
                                            int hyStep, int hzMin, int hzMax, int hzStep,
                                            signed char progressFlag);

/** Connectivity function, geobodies of face, edge and corner neighbours. */
NUVO_API int NUVOImageConnectivityFunction2(const nuvo_image *image, nuvo_image *map, int iv,
                                            int hxMin, int hxMax, int hxStep, int hyMin, int hyMax,
                                            int hyStep, int hzMin, int hzMax, int hzStep,
                                            signed char progressFlag);

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
