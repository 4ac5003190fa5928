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

NUVO_EXTERN_C_END

#endif /* NUVO_GRID_H */
