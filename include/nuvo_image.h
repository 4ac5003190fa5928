/* nuvo_image: named real-valued variables on the nodes of a grid.
 *
 * Values are stored variable after variable: variable iv at node i is
 * var[iv*nxyz + i]. A node where a variable is not informed holds exactly
 * NUVO_MISSING_VALUE; statistics and transforms skip such nodes.
 *
 * Ownership: the image owns its grid record, its names (one block of nvar
 * slots of 128 characters plus the array of pointers into it) and its values.
 * NUVOFreeImage releases them and re-initialises the record, never the record
 * itself.
 */
#ifndef NUVO_IMAGE_H
#define NUVO_IMAGE_H

#include <stdint.h>
#include <stdio.h>

#include "nuvo_export.h"
#include "nuvo_grid.h"

NUVO_EXTERN_C_BEGIN

/** The missing value of every image and point set. */
#define NUVO_MISSING_VALUE (-9999999.0)

typedef struct {
  nuvo_grid *grid; /**< owned */
  int nvar;        /**< number of variables (1 to 100 in a valid image) */
  int nxyzv;       /**< nxyz * nvar */
  char **varName;  /**< nvar names of at most 127 characters */
  double *var;     /**< nxyzv values, variable after variable */
} nuvo_image;

/** Sets every field to zero or null. */
NUVO_API void NUVOInitImage(nuvo_image *image);

/** Allocates a zeroed grid record, nvar name slots and nxyz*nvar values (not
 *  initialised). Sets none of nvar, nxyzv or the grid fields. With nvar <= 0 only
 *  the grid is allocated. Returns 0, -3 when nxyz*nvar is zero, -1 on allocation
 *  failure (what was allocated stays for NUVOFreeImage). */
NUVO_API int NUVOMallocImage(nuvo_image *image, int nxyz, int nvar);

/** Allocates dst (which must be initialised or freed) for src's sizes and copies
 *  grid, sizes, names and values. Returns 0 or -1. */
NUVO_API int NUVOCopyImage(const nuvo_image *src, nuvo_image *dst);

/** Releases what the image owns and re-initialises it; freeing twice is harmless. */
NUVO_API void NUVOFreeImage(nuvo_image *image);

/** Writes "grid:" and the grid (NUVOPrintGrid with `prefix` plus three blanks),
 *  then nvar, nxyzv and "varName:" followed by one name per line, indented like
 *  the grid. Every line starts with `prefix`. Returns 0, or -1 when the longer
 *  prefix cannot be allocated. */
NUVO_API int NUVOPrintImage(const nuvo_image *image, const char *prefix, FILE *stream);

/** Writes a report on the image: the grid, the variables, the pair counts n(i,j),
 *  minimum, maximum, mean, variance and standard deviation per variable, the
 *  covariance and correlation matrices, then per variable the proportion of
 *  missing values, the number of distinct values and, when there are at most
 *  maxNumberOfValuesForDetail of them, the pdf. Variables are numbered from 0.
 *  A correlation with a zero standard deviation prints as NAN. Returns 0,
 *  -1 on allocation failure, -3 when nvar < 1, -20 when the image has no grid. */
NUVO_API int NUVOPrintImageInfo(const nuvo_image *image, const char *prefix, FILE *stream,
                                int maxNumberOfValuesForDetail);

/** Checks an image and sets *verdict to 0 or to the first failure, in this order:
 *  no grid record (-20); nx, ny, nz < 1 (-611, -612, -613); sx, sy, sz < 1e-15
 *  (-614, -615, -616); nx*ny*nz too large for an int (-620); nvar < 1 (-621);
 *  nvar > 100 (-622); nxyzv <= 0 (-625); nxyz*nvar too large for an int (-626);
 *  names or values not allocated (-20); a name whose length plus nameSuffixLength (the characters
 * the caller will append later, 0 when none) is 128 or more (-623); two equal names
 *  (-624); then value by value, a NaN (-627) or an infinite value (-628). The
 *  origin and the agreement of nxyzv with the grid are not checked: the nxyzv
 *  values must be allocated. Returns 0. */
NUVO_API int NUVOValidateImage(const nuvo_image *image, int nameSuffixLength, int *verdict);

/* Statistics. Every statistic skips the nodes holding NUVO_MISSING_VALUE, and a
 * variable index outside [0, nvar) returns -1100. Arrays "per variable" have nvar
 * entries and are given by the caller unless said otherwise. */

/** *mean = arithmetic mean of the informed values of variable iv, or
 *  NUVO_MISSING_VALUE when none is informed. Returns 0 or -1100. */
NUVO_API int NUVOGetImageOneVarValueMean(const nuvo_image *image, int iv, double *mean);

/** Standard deviation of variable iv about *mean (an input, from
 *  NUVOGetImageOneVarValueMean): sqrt(sum((v - mean)^2) / (n - 1)) over the n
 *  informed values for n >= 2, 0 for n = 1, NUVO_MISSING_VALUE for n = 0 or when
 *  *mean is missing. Returns 0 or -1100. */
NUVO_API int NUVOGetImageOneVarValueSD(const nuvo_image *image, int iv, const double *mean,
                                       double *sd);

/** *n = number of informed values of variable iv, with their minimum, maximum and
 *  range (max - min); the three are NUVO_MISSING_VALUE when n is 0. Returns 0 or
 *  -1100. */
NUVO_API int NUVOGetImageOneVarValueRange(const nuvo_image *image, int iv, int *n, double *min,
                                          double *max, double *range);

/** The distinct informed values of variable iv in ascending order (*value) with
 *  their proportions count / (nxyz - nmissing) (*proportion), *nvalue of each, and
 *  the number of missing values (*nmissing). Values are distinct when not exactly
 *  equal. Both arrays are allocated here and released by the caller with
 *  NUVOFree; with no informed value *nvalue is 0 and both are NULL. Returns 0,
 *  -1100 or -1. */
NUVO_API int NUVOGetImageOneVarValuePdf(const nuvo_image *image, int iv, int *nvalue,
                                        double **value, double **proportion, int *nmissing);

/** index[i] (nxyz entries, given by the caller) = position of the value of
 *  variable iv at node i in sortedValues (n values in ascending order, exact
 *  equality), or -1 when the value is missing or absent. Returns 0 or -1100. */
NUVO_API int NUVOGetImageOneVarValueIndex(const nuvo_image *image, int iv, int n,
                                          const double *sortedValues, int *index);

/** NUVOGetImageOneVarValueMean for every variable: mean[iv]. Returns 0. */
NUVO_API int NUVOGetImageVarValueMean(const nuvo_image *image, double *mean);

/** NUVOGetImageOneVarValueSD for every variable: sd[iv] about mean[iv]. Returns 0. */
NUVO_API int NUVOGetImageVarValueSD(const nuvo_image *image, const double *mean, double *sd);

/** NUVOGetImageOneVarValueRange for every variable (n, min, max and range per
 *  variable). Returns 0. */
NUVO_API int NUVOGetImageVarValueRange(const nuvo_image *image, int *n, double *min, double *max,
                                       double *range);

/** NUVOGetImageOneVarValuePdf for every variable: nvalue[iv], value[iv],
 *  proportion[iv] and nmissing[iv]; value and proportion are arrays of nvar
 *  pointers given by the caller, and each value[iv] and proportion[iv] is
 *  allocated here (NULL when nvalue[iv] is 0) and released with NUVOFree, also
 *  after a failure. Returns 0 or -1. */
NUVO_API int NUVOGetImageVarValuePdf(const nuvo_image *image, int *nvalue, double **value,
                                     double **proportion, int *nmissing);

/** NUVOGetImageOneVarValuePdf over the values of variable iv pooled from the
 *  nimage images image[0..nimage-1] (all with the same number of variables); the
 *  proportions are count / (total number of nodes - nmissing). Returns 0, -3 when
 *  nimage < 1, -30 when the numbers of variables differ, -1100 or -1. */
NUVO_API int NUVOGetNImageOneVarValuePdf(int nimage, const nuvo_image *const *image, int iv,
                                         int *nvalue, double **value, double **proportion,
                                         int *nmissing);

/** NUVOGetNImageOneVarValuePdf for every variable, with per-variable results as in
 *  NUVOGetImageVarValuePdf (nvar of image[0]). Returns 0, -3, -30 or -1. */
NUVO_API int NUVOGetNImageVarValuePdf(int nimage, const nuvo_image *const *image, int *nvalue,
                                      double **value, double **proportion, int *nmissing);

/** Per variable, the minimum, maximum and mean of the informed values
 *  (NUVO_MISSING_VALUE when none), and two nvar*nvar matrices (row i, column j at
 *  i*nvar + j) allocated here and released with NUVOFree: *npair, the number of
 *  nodes where both variables i and j are informed (the diagonal counts the
 *  informed values of each variable), and *cov, the covariance
 *  sum((vi - mi)(vj - mj)) / max(1, n(i,j) - 1) over those common nodes, with mi
 *  and mj the means over the same nodes (the diagonal holds the variances).
 *  Returns 0, -3 when nvar < 1, or -1 (*npair and *cov are NULL after a failure). */
NUVO_API int NUVOGetImageVarStats(const nuvo_image *image, int **npair, double *min, double *max,
                                  double *mean, double **cov);

/** count[iv] = number of missing values of variable iv. Returns 0, or -20 when
 *  count is NULL. */
NUVO_API int NUVOGetImageNumberVarValueMissing(const nuvo_image *image, int *count);

/** flag[i] (nxyz bytes) = 1 when at least one variable is missing at node i, else
 *  0; *n = number of such nodes. Returns 0, or -20 when flag or n is NULL. */
NUVO_API int NUVOGetImageVarVectorMissing(const nuvo_image *image, int8_t *flag, int *n);

/* Transforms, in place; missing values stay missing. */

/** v = a*v + b for every informed value of variable iv. Returns 0 or -1100. */
NUVO_API int NUVOTransformLinearImageVar(nuvo_image *image, int iv, double a, double b);

/** Maps every informed value of variable iv by the piecewise-linear function
 *  through the n points (x[k], y[k]), x strictly increasing: a value equal to x[k]
 *  becomes y[k], a value below x[0] becomes y[0], above x[n-1] becomes y[n-1], and
 *  between x[k] and x[k+1] it becomes (1-t)*y[k] + t*y[k+1] with
 *  t = (v - x[k]) / (x[k+1] - x[k]). Returns 0, -1100, or -3 when n < 1. */
NUVO_API int NUVOTransformExplicitImageVar(nuvo_image *image, int iv, int n, const double *x,
                                           const double *y);

/* Image to image. */

/** Builds dst (initialised or freed, allocated here) as the window
 *  [ix0, ix1] x [iy0, iy1] x [iz0, iz1] of src's nodes and the variables iv0 to
 *  iv1. Bounds may lie outside src: nodes outside get the missing value and a
 *  variable index outside [0, nvar) gives an all-missing variable named "varNN"
 *  after its position in dst, so the operation both crops and pads. Spacing is
 *  kept; the origin moves to (ox + ix0*sx, oy + iy0*sy, oz + iz0*sz). Returns 0,
 *  -2001 ... -2004 for an empty range along x, y, z or the variables, -620 when
 *  the window has too many nodes for an int, -626 when its values are too many,
 *  -1 on allocation failure (dst is then freed by the caller). */
NUVO_API int NUVOResizeImage(const nuvo_image *src, nuvo_image *dst, int ix0, int ix1, int iy0,
                             int iy1, int iz0, int iz1, int iv0, int iv1);

/** Writes the variables of the data image src into dst, which has the same node
 *  counts (spacing and origin may differ, else -150). Each variable of src goes to
 *  the variable of dst with exactly the same name; a variable without one returns
 *  -151, or with ignoreUnknownVar is skipped and counted in *nIgnoredVar. Without
 *  merge the whole variable is copied. With merge, node by node: a missing source
 *  value leaves dst unchanged, a missing dst value takes the source value, and
 *  when both are informed conflictMode 0 returns -152, 1 keeps the dst value and
 *  any other mode takes the source value, the last two counting the node in
 *  *nConflict. Both counts are set to 0 first. Stops at the first failure; what
 *  was written stays. Returns 0, -150, -151, -152, or -20 when a count is NULL. */
NUVO_API int NUVOImageToImage(const nuvo_image *src, nuvo_image *dst, int ignoreUnknownVar,
                              int conflictMode, int *nIgnoredVar, int *nConflict, int merge);

NUVO_EXTERN_C_END

#endif /* NUVO_IMAGE_H */
