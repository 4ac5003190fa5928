/* Homothety and rotation parameters of a simulation, converted to the form the
 * realizations use.
 *
 * A homothety ratio r along an axis makes the simulated structures r times as
 * large as in the training images along that axis; a rotation (azimuth, dip,
 * plunge, in degrees, the angles of the search neighbourhood's ellipsoid) turns
 * them. Both are given per simulation as constants or as images on the
 * simulation grid, without tolerance (usage 1: one value per parameter) or with
 * tolerance (usage 2: a lower and an upper bound, the value of each node being
 * drawn in between).
 *
 * The conversions below store what the realizations multiply by:
 *   homothety, usage 1: r becomes 1/r;
 *   homothety, usage 2: (a, b) becomes (1/b, 1/a - 1/b), the lower bound of the
 *                       inverse interval and its width;
 *   rotation,  usage 1: t becomes t * pi/180;
 *   rotation,  usage 2: (a, b) becomes (a * pi/180, (b - a) * pi/180).
 * Usage 0 converts nothing. The conversions check what they would otherwise
 * turn into infinities or negative widths, with the codes of the input
 * validation; an axis whose parameter fails is left as it was.
 *
 * Error codes by axis: homothety x, y, z use 1701-1707, 1711-1717, 1721-1727 and
 * rotation azimuth, dip, plunge 1801-1807, 1811-1817, 1821-1827; within a block
 * +2 image not allocated, +3 image grid differs from the mask's (the simulation
 * grid), +4 image with a number of variables other than the usage, +5 values not
 * allocated, +6 ratio not above zero, +7 lower bound above the upper bound.
 */
#ifndef NUVO_SIMTRANSFORM_H
#define NUVO_SIMTRANSFORM_H

#include "nuvo_export.h"
#include "nuvo_image.h"

NUVO_EXTERN_C_BEGIN

/** Converts constant homothety ratios in place. x, y, z point to `usage` doubles
 *  each (the ratio, or its lower and upper bounds), or are null where that axis
 *  is given by an image. Returns 0; -1701 for a usage outside 0..2; -1706,
 *  -1716, -1726 for a ratio not above 0; -1707, -1717, -1727 for a lower bound
 *  above the upper bound. */
NUVO_API int NUVOSimTransformHomothetyValue(int usage, double *x, double *y, double *z);

/** Converts constant rotation angles (degrees) in place. azimuth, dip, plunge
 *  point to `usage` doubles each, or are null where that angle is given by an
 *  image. Returns 0; -1801 for a usage outside 0..2; -1807, -1817, -1827 for a
 *  lower bound above the upper bound. */
NUVO_API int NUVOSimTransformRotationValue(int usage, double *azimuth, double *dip, double *plunge);

/** Converts homothety ratio images in place, node by node, as the constants.
 *  Each image (null where the axis is given by values) has `usage` variables:
 *  the ratio, or the lower and upper bounds. Nodes where `mask` (may be null)
 *  holds 0.0, and nodes where a ratio is missing, are left unchanged. Every
 *  image is checked before any is converted. Returns 0, -1701 for a bad usage,
 *  the axis codes +3, +4, +6, +7 (see above). */
NUVO_API int NUVOSimTransformHomothetyImage(int usage, const nuvo_image *mask, nuvo_image *x,
                                            nuvo_image *y, nuvo_image *z);

/** Converts rotation angle images (degrees) in place, as
 *  NUVOSimTransformHomothetyImage does for ratios. Returns 0, -1801 for a bad
 *  usage, the angle codes +3, +4, +7. */
NUVO_API int NUVOSimTransformRotationImage(int usage, const nuvo_image *mask, nuvo_image *azimuth,
                                           nuvo_image *dip, nuvo_image *plunge);

NUVO_EXTERN_C_END

#endif /* NUVO_SIMTRANSFORM_H */
