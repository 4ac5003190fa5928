/* Synthetic training images and conditioning samples.
 *
 * Small deterministic generators for examples, tests and benchmarks: the same
 * arguments and seed give the same image on every platform, because every random
 * draw goes through the library's generator (nuvo_random.h). Images are built on
 * a grid with unit spacing and origin 0, in an initialised image (freed first if
 * it holds anything).
 */
#ifndef NUVO_SYNTHETIC_H
#define NUVO_SYNTHETIC_H

#include "nuvo_export.h"
#include "nuvo_image.h"
#include "nuvo_pointset.h"

NUVO_EXTERN_C_BEGIN

/** Binary facies image of sinuous channels running along x: variable "facies",
 *  0 background, 1 channel. Channels of `channelWidth` nodes (across y; in 3D
 *  their thickness along z is a third of the width, at least one node) meander
 *  with random amplitude, wavelength and phase, and are added until the channel
 *  proportion reaches `channelProportion`.
 *  Returns 0, -3 for a size below 1 or a product that does not fit in an int,
 *  -4301 for a proportion outside (0, 1) or a width below 1, -1 on allocation failure. */
NUVO_API int NUVOGenerateChannelImage(nuvo_image *image, int nx, int ny, int nz,
                                      double channelProportion, double channelWidth, int seed);

/** Three-facies image of flattened lenses: variable "facies", 0 background,
 *  1 sand lenses (about 25 % of the nodes), 2 shale lenses (about 15 %). Lenses
 *  are ellipsoids elongated along x, about a tenth of the grid's height thick.
 *  Returns 0, -3 for a bad size, -1 on allocation failure. */
NUVO_API int NUVOGenerateLensImage(nuvo_image *image, int nx, int ny, int nz, int seed);

/** Smooth stationary continuous field, variable "value", approximately standard
 *  normal, with a Gaussian-shaped covariance of range about `correlationLength`
 *  nodes (a sum of random cosine waves).
 *  Returns 0, -3 for a bad size, -4302 for a correlation length not above 0,
 *  -1 on allocation failure. */
NUVO_API int NUVOGenerateContinuousImage(nuvo_image *image, int nx, int ny, int nz,
                                         double correlationLength, int seed);

/** Draws `npoint` distinct nodes at random among the nodes where every variable
 *  of `image` is informed, and stores them in `ps` (initialised or freed) as
 *  points at the node centres with the image's variables and values, in node
 *  order. Fewer nodes than asked are returned when fewer are informed.
 *  Returns 0, -3 for npoint < 1, -165 when no node is informed, -1 on allocation
 *  failure. */
NUVO_API int NUVOSampleImage(const nuvo_image *image, int npoint, int seed, nuvo_pointSet *ps);

NUVO_EXTERN_C_END

#endif /* NUVO_SYNTHETIC_H */
