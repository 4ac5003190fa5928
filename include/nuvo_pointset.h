/* nuvo_pointSet: scattered points with coordinates and named variables.
 *
 * Values are stored variable after variable: variable iv at point k is
 * val[iv*npoint + k]. Missing values are NUVO_MISSING_VALUE, as in images.
 * The point set owns its arrays; NUVOFreePointSet releases them and
 * re-initialises the record.
 */
#ifndef NUVO_POINTSET_H
#define NUVO_POINTSET_H

#include <stdio.h>

#include "nuvo_export.h"
#include "nuvo_grid.h"
#include "nuvo_image.h"

NUVO_EXTERN_C_BEGIN

typedef struct {
  int npoint;     /**< number of points */
  double *x;      /**< npoint x coordinates */
  double *y;      /**< npoint y coordinates */
  double *z;      /**< npoint z coordinates */
  int nvar;       /**< variables besides the coordinates (1 to 100 when valid) */
  char **varName; /**< nvar names of at most 127 characters */
  double *val;    /**< nvar*npoint values, variable after variable */
} nuvo_pointSet;

/** Sets every field to zero or null. */
NUVO_API void NUVOInitPointSet(nuvo_pointSet *ps);

/** Allocates coordinates, name slots and values for npoint points and nvar
 *  variables; sets npoint and nvar. Returns 0, -3 for a zero count, -1 on
 *  allocation failure (what was allocated stays for NUVOFreePointSet). */
NUVO_API int NUVOMallocPointSet(nuvo_pointSet *ps, int npoint, int nvar);

/** Allocates dst for src's sizes and copies everything. Returns 0, -3 or -1. */
NUVO_API int NUVOCopyPointSet(const nuvo_pointSet *src, nuvo_pointSet *dst);

/** Releases what the point set owns and re-initialises it. */
NUVO_API void NUVOFreePointSet(nuvo_pointSet *ps);

/** Writes "npoint: ", "nvar:   " and "varName" lines, then one name per line
 *  indented by three blanks; every line starts with `prefix`. Returns 0, or -1
 *  when the longer prefix cannot be allocated. */
NUVO_API int NUVOPrintPointSet(const nuvo_pointSet *ps, const char *prefix, FILE *stream);

/** Checks a point set and sets *verdict to 0 or to the first failure: nvar < 1
 *  (-641), nvar > 100 (-642), names not allocated (-20), a name of 128 characters
 *  or more (-643), two equal names (-644). Returns 0. */
NUVO_API int NUVOValidatePointSet(const nuvo_pointSet *ps, int *verdict);

/* Points and grid nodes. A point belongs to the grid when ox <= x <= ox + nx*sx
 * (both ends included), and likewise along y and z. Along x its node is found from
 * t = (x - (ox + sx/2)) / sx: with k = t truncated toward zero and f = t - k, the
 * node is k + 1 when f > 0.5, k - 1 when f < -0.5, else k (a point half-way between
 * two node centres goes to the one nearer the origin), clamped to [0, nx-1]. */

/** index[k] (npoint entries, given by the caller) = node index ix + nx*iy + nxy*iz
 *  of point k. A point outside the grid gets -1 when ignoreOutside is not 0, else
 *  the operation stops and returns -161. Returns 0 or -161. */
NUVO_API int NUVOGetIndexInGridForPointSet(const nuvo_pointSet *ps, const nuvo_grid *grid,
                                           int *index, int ignoreOutside);

/** As NUVOGetIndexInGridForPointSet, giving the node coordinates ix[k], iy[k],
 *  iz[k] instead (all three -1 for a point outside the grid). Returns 0 or -161. */
NUVO_API int NUVOGetXYZIndexInGridForPointSet(const nuvo_pointSet *ps, const nuvo_grid *grid,
                                              int *ix, int *iy, int *iz, int ignoreOutside);

/** Writes the point values into the already allocated image. First every point is
 *  placed on its node: a point outside the grid returns -161, or with
 *  ignoreOutside is counted in *nOutside and skipped. Then each variable goes to
 *  the image variable of exactly the same name; a variable without one returns
 *  -160, or with ignoreUnknownVar is counted in *nIgnoredVar and skipped. Missing
 *  point values are skipped. When the node already holds an informed value (from
 *  the image or an earlier point), conflictMode 0 returns -162, 1 keeps the node's
 *  value and any other mode takes the point's value, the last two counting the
 *  value in *nConflict. The three counts are set to 0 first. Stops at the first
 *  failure; what was written stays. Returns 0, -160, -161, -162, -3 when the point
 *  set has no variable, -20 when a count is NULL, -1 on allocation failure. */
NUVO_API int NUVOPointSetToImage(const nuvo_pointSet *ps, nuvo_image *image, int ignoreUnknownVar,
                                 int ignoreOutside, int conflictMode, int *nIgnoredVar,
                                 int *nOutside, int *nConflict);

/** Builds ps (initialised or freed, allocated here) from the informed nodes of
 *  the image: it keeps the variables that have at least one informed value and
 *  makes one point per node where at least one variable is informed, located at
 *  the node centre, in node order; values missing at that node stay missing.
 *  Returns 0, -165 when no value of the image is informed, -1 on allocation
 *  failure (ps is then freed by the caller). */
NUVO_API int NUVOImageToPointSet(const nuvo_image *image, nuvo_pointSet *ps);

/** Summary of a point set: the extent of its coordinates and, per variable, how
 *  many values are informed and their minimum, maximum and mean. The record owns
 *  its per-variable arrays; NUVOFreePointSetInfo releases them. */
typedef struct {
  int npoint;               /**< number of points */
  double xMin, xMax;        /**< extent of the x coordinates (missing when npoint is 0) */
  double yMin, yMax;        /**< extent of the y coordinates */
  double zMin, zMax;        /**< extent of the z coordinates */
  int npointWithMissing;    /**< points where at least one variable is missing */
  int nvar;                 /**< number of variables */
  int *ninformed;           /**< per variable: informed values (npoint - ninformed missing) */
  double *min, *max, *mean; /**< per variable, NUVO_MISSING_VALUE when none is informed */
} nuvo_pointSetInfo;

/** Sets every field to zero or null. */
NUVO_API void NUVOInitPointSetInfo(nuvo_pointSetInfo *info);

/** Releases what the summary owns and re-initialises it; freeing twice is harmless. */
NUVO_API void NUVOFreePointSetInfo(nuvo_pointSetInfo *info);

/** Fills info (initialised or freed) with the summary of ps. Returns 0 or -1 on
 *  allocation failure (info is then freed by the caller). */
NUVO_API int NUVOGetPointSetInfo(const nuvo_pointSet *ps, nuvo_pointSetInfo *info);

/** Writes the summary of ps: number of points and of variables, the variable
 *  names, the extent of each coordinate, the points with a missing value, and a
 *  table with, per variable, the informed and missing counts, minimum, maximum and
 *  mean. Every line starts with `prefix`. Returns 0 or -1. */
NUVO_API int NUVOPrintPointSetInfo(const nuvo_pointSet *ps, const char *prefix, FILE *stream);

NUVO_EXTERN_C_END

#endif /* NUVO_POINTSET_H */
