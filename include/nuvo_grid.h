/* nuvo_grid: a regular 3D grid of nodes.
 *
 * Node (ix, iy, iz) has the index ix + nx*iy + nxy*iz (x fastest). The origin
 * (ox, oy, oz) is the corner of the grid; node (ix, iy, iz) stands for the cell
 * around its centre (ox + (ix+0.5)*sx, oy + (iy+0.5)*sy, oz + (iz+0.5)*sz).
 */
#ifndef NUVO_GRID_H
#define NUVO_GRID_H

#include <stdio.h>

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

typedef struct {
  int nx, ny, nz;    /**< node counts */
  double sx, sy, sz; /**< cell sizes */
  double ox, oy, oz; /**< corner of the grid */
  int nxy;           /**< nx*ny, kept in step with the counts */
  int nxyz;          /**< nx*ny*nz, kept in step with the counts */
} nuvo_grid;

/** Sets every field to zero. */
NUVO_API void NUVOInitGrid(nuvo_grid *grid);

/** Copies every field of src into dst. Returns 0. */
NUVO_API int NUVOCopyGrid(const nuvo_grid *src, nuvo_grid *dst);

/** Writes five lines to `stream`, each starting with `prefix`: the node counts
 *  ("Size   : "), the spacing ("Spacing: "), the origin ("Origin : "), nxy and
 *  nxyz. Returns 0. */
NUVO_API int NUVOPrintGrid(const nuvo_grid *grid, const char *prefix, FILE *stream);

/** Checks a grid and sets *verdict to 0 or to the first failure: nx < 1 (-601),
 *  ny < 1 (-602), nz < 1 (-603), sx < 1e-15 (-604), sy (-605), sz (-606),
 *  nx*ny*nz larger than the largest int (-610). The origin and the stored nxy and
 *  nxyz are not checked. Returns 0. */
NUVO_API int NUVOValidateGrid(const nuvo_grid *grid, int *verdict);

/** Reads nx, ny, nz (integers) then sx, sy, sz, ox, oy, oz (reals) from `stream`,
 *  each preceded by NUVOSkipComments (so blanks, line ends and comments may stand
 *  between and before the values), and sets nxy and nxyz. Returns 0, -(710+k) when
 *  the k-th value cannot be read (-711 for nx ... -719 for oz), or -610 when
 *  nx*ny*nz does not fit in an int. */
NUVO_API int NUVOReadGrid(nuvo_grid *grid, FILE *stream);

/** Compares the fields in the order nx, ny, nz, sx, sy, sz, ox, oy, oz, nxy, nxyz
 *  and stops at the first difference: returns -k when a's k-th field (from 1) is
 *  smaller, +k when it is larger, 0 when all are equal or a and b are the same
 *  record. Doubles are compared exactly. A magnitude of 1 to 3 means that the node
 *  counts differ, 4 to 9 that only spacing or origin differ. */
NUVO_API int NUVOCmpGrid(const nuvo_grid *a, const nuvo_grid *b);

/** Sets *id = ix + nx*iy + nxy*iz + nxyz*iv: the index of node (ix, iy, iz) in the
 *  value block of variable iv of an image on this grid. The indices are not
 *  checked. Returns 0. */
NUVO_API int NUVOGridCoordToId(const nuvo_grid *grid, int ix, int iy, int iz, int iv, int *id);

/** The inverse of NUVOGridCoordToId: iv = id / nxyz, iz = (id mod nxyz) / nxy,
 *  iy = (id mod nxy) / nx, ix = (id mod nxy) mod nx. id is not checked (it must be
 *  non-negative and the grid's counts positive). Returns 0. */
NUVO_API int NUVOGridIdToCoord(const nuvo_grid *grid, int id, int *ix, int *iy, int *iz, int *iv);

NUVO_EXTERN_C_END

#endif /* NUVO_GRID_H */
