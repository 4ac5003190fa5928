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

NUVO_EXTERN_C_END

#endif /* NUVO_POINTSET_H */
