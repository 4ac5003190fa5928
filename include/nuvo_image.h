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

NUVO_EXTERN_C_END

#endif /* NUVO_IMAGE_H */
