/* Distance maps: for every node of a grid, the distance to the nearest informed
 * node.
 *
 * Distances are measured between node centres in the units of the grid, so the
 * cell sizes sx, sy, sz weigh the three directions (anisotropic spacing). Both
 * metrics are computed exactly, one direction after the other, in time linear in
 * the number of nodes: the Euclidean map by lower envelopes of parabolas along
 * each line of the grid, the L1 map by one forward and one backward sweep per line.
 *
 * A node on an informed node has distance 0. When no node is informed, every
 * distance is +infinity (HUGE_VAL) and the call still succeeds: the distance to
 * the nearest element of an empty set.
 *
 * The caller owns the output array of nxyz doubles (x fastest, as the grid).
 */
#ifndef NUVO_DISTANCEMAP_H
#define NUVO_DISTANCEMAP_H

#include "nuvo_export.h"
#include "nuvo_grid.h"
#include "nuvo_image.h"

NUVO_EXTERN_C_BEGIN

/** Euclidean distance from every node of grid to the nearest node whose entry of
 *  informed (nxyz bytes) is non-zero, written to distance (nxyz doubles).
 *  Returns 0; -601, -602, -603 when nx, ny or nz is below 1; -604, -605, -606
 *  when sx, sy or sz is not positive; -610 when nx*ny*nz does not fit in 32 bits;
 *  -1 when scratch memory cannot be allocated. */
NUVO_API int NUVOEuclideanDistanceMap(const nuvo_grid *grid, const signed char *informed,
                                      double *distance);

/** As NUVOEuclideanDistanceMap with the L1 (city-block) distance
 *  sx*|dx| + sy*|dy| + sz*|dz|. */
NUVO_API int NUVOL1DistanceMap(const nuvo_grid *grid, const signed char *informed,
                               double *distance);

/** Euclidean distance from every node of image's grid to the nearest node where
 *  variable iv is not NUVO_MISSING_VALUE, written to distance (nxyz doubles).
 *  Returns 0, -1100 when iv is not a variable of the image, the grid codes of
 *  NUVOEuclideanDistanceMap, or -1. */
NUVO_API int NUVOImageEuclideanDistanceMap(const nuvo_image *image, int iv, double *distance);

/** As NUVOImageEuclideanDistanceMap with the L1 distance. */
NUVO_API int NUVOImageL1DistanceMap(const nuvo_image *image, int iv, double *distance);

NUVO_EXTERN_C_END

#endif /* NUVO_DISTANCEMAP_H */
