/* Search neighborhoods: the parameters of a search ellipsoid and the list of grid
 * offsets built from them, sorted from the closest node to the furthest. */
#ifndef NUVO_SEARCHNEIGHBORHOOD_H
#define NUVO_SEARCHNEIGHBORHOOD_H

#include <stdio.h>

#include "nuvo_export.h"
#include "nuvo_random.h"

NUVO_EXTERN_C_BEGIN

/** How the radii rx, ry, rz are obtained. */
typedef enum {
  SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT = 0,
  SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_DEFAULT = 1,
  SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE = 2,
  SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XY = 3,
  SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XZ = 4,
  SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_YZ = 5,
  SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XYZ = 6,
  SEARCHNEIGHBORHOOD_RADIUS_MANUAL = 7
} nuvo_searchNeighborhoodRadiusMode;

/** How the anisotropy ratios ax, ay, az are obtained. */
typedef enum {
  SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE = 0,
  SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS = 1,
  SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XY = 2,
  SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XZ = 3,
  SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_YZ = 4,
  SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XYZ = 5,
  SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL = 6
} nuvo_searchNeighborhoodAnisotropyRatioMode;

/** Values of rotationFlag. */
typedef enum {
  SEARCHNEIGHBORHOOD_ROTATION_OFF = 0,
  SEARCHNEIGHBORHOOD_ROTATION_ON = 1
} nuvo_searchNeighborhoodRotation;

typedef struct {
  int radiusMode;                /**< nuvo_searchNeighborhoodRadiusMode */
  double rx, ry, rz;             /**< search radii, in nodes */
  int anisotropyRatioMode;       /**< nuvo_searchNeighborhoodAnisotropyRatioMode */
  double ax, ay, az;             /**< anisotropy ratios (inverse distance unit) */
  signed char rotationFlag;      /**< SEARCHNEIGHBORHOOD_ROTATION_ON or _OFF */
  double angle1, angle2, angle3; /**< azimuth, dip, plunge, in degrees */
  double power;                  /**< power applied to the distance to weigh each node */
} nuvo_searchNeighborhoodParameters;

typedef struct {
  int size;                /**< number of nodes, the central node included */
  int *ix, *iy, *iz;       /**< offsets relative to the central node, in cells */
  double *distance;        /**< anisotropic distance to the central node, non-decreasing */
  double *weight;          /**< weight of each node in the distance between data events */
  int ixMin, iyMin, izMin; /**< bounding box of the offsets (min <= 0) */
  int ixMax, iyMax, izMax; /**< bounding box of the offsets (max >= 0) */
} nuvo_searchNeighborhood;

/* ---- nuvo_searchNeighborhoodParameters ---- */

/** Sets default values: manual radius and anisotropy modes with zero values,
 *  rotation off, power 0. */
NUVO_API void NUVOInitSearchNeighborhoodParameters(nuvo_searchNeighborhoodParameters *p);
/** 0 when radii, ratios, angles and power are exactly equal, else 1 (the modes and
 *  the rotation flag are not compared). */
NUVO_API int NUVOCmpSearchNeighborhoodParameters(const nuvo_searchNeighborhoodParameters *a,
                                                 const nuvo_searchNeighborhoodParameters *b);
/** One line per field, each starting with prefix; modes as keywords. */
NUVO_API int NUVOPrintSearchNeighborhoodParameters(const nuvo_searchNeighborhoodParameters *p,
                                                   const char *prefix, FILE *stream);
/** Checks the record; puts 0 or the first failure (-680 to -687) in *error. Returns 0. */
NUVO_API int NUVOValidateSearchNeighborhoodParameters(const nuvo_searchNeighborhoodParameters *p,
                                                      int *error);
/** Reads the text form from stream; with readModes != 0 the radius and anisotropy
 *  modes are read as keywords. Returns 0 or a reading error code. */
NUVO_API int NUVOReadSearchNeighborhoodParameters(nuvo_searchNeighborhoodParameters *p,
                                                  signed char readModes, FILE *stream);

/* ---- nuvo_searchNeighborhood ---- */

/** Size 0, all arrays null. */
NUVO_API void NUVOInitSearchNeighborhood(nuvo_searchNeighborhood *sn);
/** Allocates the five arrays for n nodes and sets size. -3 when n <= 0, -1 on failure. */
NUVO_API int NUVOMallocSearchNeighborhood(nuvo_searchNeighborhood *sn, int n);
/** Resizes the five arrays to n nodes, keeping their content. -5 when n <= 0, -2 on failure. */
NUVO_API int NUVOReallocSearchNeighborhood(nuvo_searchNeighborhood *sn, int n);
/** Releases the arrays and re-initialises the record. */
NUVO_API void NUVOFreeSearchNeighborhood(nuvo_searchNeighborhood *sn);
/** The size and the six bounds, one line each. Returns 0. */
NUVO_API int NUVOPrintSearchNeighborhood(const nuvo_searchNeighborhood *sn, const char *prefix,
                                         FILE *stream);
/** Builds the sorted list of offsets from parameters holding numeric radii, ratios
 *  and angles, into sn (initialised or freed; on failure what was allocated stays for
 *  NUVOFreeSearchNeighborhood). The angles alone decide about rotation (all three
 *  exactly 0: none); the rotation flag is not consulted, so parameters that compare
 *  equal always give the same list. ctx is re-seeded with seed 1, so the result never
 *  depends on its state. Returns 0, -688 when a radius is negative or not a number,
 *  -1 on allocation failure or when the candidate box exceeds 32-bit counts. */
NUVO_API int NUVOBuildSearchNeighborhood(const nuvo_searchNeighborhoodParameters *p,
                                         nuvo_searchNeighborhood *sn, nuvo_randContext *ctx);
/** Approximate half-extents of the ellipsoid along x, y, z, in cells: without
 *  rotation |rx|, |ry|, |rz| truncated; with rotation the largest coordinates of
 *  points sampled every 0.01 rad on its surface, truncated (the samples stay just
 *  inside the exact envelope, so an integer extent may come out one less). Meant for
 *  warnings and sizing. Returns 0. */
NUVO_API int NUVOSearchNeighborhoodApproxBound(const nuvo_searchNeighborhoodParameters *p,
                                               int *bx, int *by, int *bz);

NUVO_EXTERN_C_END

#endif /* NUVO_SEARCHNEIGHBORHOOD_H */
