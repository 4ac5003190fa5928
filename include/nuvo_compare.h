/* Comparators for qsort and bsearch: each returns -1, 0 or 1, ascending order. */
#ifndef NUVO_COMPARE_H
#define NUVO_COMPARE_H

#include <stdint.h>

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

/** An index with an int value. */
typedef struct {
  int index;
  int value;
} nuvo_infoIntValue;

/** An index with a double value. */
typedef struct {
  int index;
  double value;
} nuvo_infoDouValue;

/** An index with a real value (reals are doubles throughout the library). */
typedef struct {
  int index;
  double value;
} nuvo_infoReaValue;

/** Compares two ints (a and b point to int). */
NUVO_API int NUVOCmpInt(const void *a, const void *b);
/** Compares two doubles; a NaN compares equal to everything. */
NUVO_API int NUVOCmpReal(const void *a, const void *b);
/** Compares two nuvo_infoIntValue by value only. */
NUVO_API int NUVOCmpInfoIntValue(const void *a, const void *b);
/** Compares two nuvo_infoIntValue by index, then by value. */
NUVO_API int NUVOCmpInfoIntValueAll(const void *a, const void *b);
/** Compares two nuvo_infoDouValue by value only. */
NUVO_API int NUVOCmpInfoDouValue(const void *a, const void *b);
/** Compares two nuvo_infoReaValue by value only. */
NUVO_API int NUVOCmpInfoReaValue(const void *a, const void *b);
/** Compares two arrays of n class ids lexicographically; 0 when n < 1. */
NUVO_API int NUVOCmpVectorOfClassId(const int8_t *a, const int8_t *b, int n);
/** Compares two arrays of n doubles lexicographically; 0 when n < 1. */
NUVO_API int NUVOCmpVectorOfReal(const double *a, const double *b, int n);

NUVO_EXTERN_C_END

#endif /* NUVO_COMPARE_H */
