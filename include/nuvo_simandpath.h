/* Simulation type and path parameters. */
#ifndef NUVO_SIMANDPATH_H
#define NUVO_SIMANDPATH_H

#include <stdio.h>

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

/** Values of simType. */
typedef enum { SIM_ONE_BY_ONE = 0, SIM_VARIABLE_VECTOR = 1 } nuvo_simType;

/** Values of pathType. */
typedef enum {
  PATH_RANDOM = 0,
  PATH_RANDOM_HD_DISTANCE_PDF = 1,
  PATH_RANDOM_HD_DISTANCE_SORT = 2,
  PATH_RANDOM_HD_DISTANCE_SUM_PDF = 3,
  PATH_RANDOM_HD_DISTANCE_SUM_SORT = 4,
  PATH_UNILATERAL = 5
} nuvo_pathType;

typedef struct {
  int simType;          /**< nuvo_simType */
  int pathType;         /**< nuvo_pathType */
  int nunilateralOrder; /**< length of unilateralOrder: 4 (one by one) or 3 (vector) */
  int *unilateralOrder; /**< owned; ranks of x, y, z (and variable), 0 = random */
  double strength;      /**< s in [0, 1] for the distance-guided paths */
  double pow;           /**< p in (0, 10] for the summed-distance paths */
} nuvo_simAndPathParameters;

/** Zero values, null order. */
NUVO_API void NUVOInitSimAndPathParameters(nuvo_simAndPathParameters *p);
/** Releases unilateralOrder and re-initialises. */
NUVO_API void NUVOFreeSimAndPathParameters(nuvo_simAndPathParameters *p);
/** Deep copy of in into out (out initialised or freed). Returns 0 or -1. */
NUVO_API int NUVOCopySimAndPathParameters(const nuvo_simAndPathParameters *in,
                                          nuvo_simAndPathParameters *out);
/** One line per field, each starting with prefix. Returns 0. */
NUVO_API int NUVOPrintSimAndPathParameters(const nuvo_simAndPathParameters *p, const char *prefix,
                                           FILE *stream);
/** Checks the record; puts 0 or the first failure (-705 to -709) in *error. Returns 0. */
NUVO_API int NUVOValidateSimAndPathParameters(const nuvo_simAndPathParameters *p, int *error);
/** Reads the text form from stream. Returns 0 or a reading error code. */
NUVO_API int NUVOReadSimAndPathParameters(nuvo_simAndPathParameters *p, FILE *stream);

NUVO_EXTERN_C_END

#endif /* NUVO_SIMANDPATH_H */
