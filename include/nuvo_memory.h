/* Allocation helpers and contiguous multi-dimensional arrays.
 *
 * Helpers that return a pointer report failures through `err`, in the negative
 * form of the error table: -1 allocation failure, -3/-4 zero count or size, ...
 * Every block they return is released with NUVOFree (arrays with their own Free).
 */
#ifndef NUVO_MEMORY_H
#define NUVO_MEMORY_H

#include <stddef.h>

#include "nuvo_export.h"

NUVO_EXTERN_C_BEGIN

/** Block of n*size bytes; sets err to 0, or to -3 (n == 0), -4 (size == 0) or
 *  -1 (allocation failure) and returns NULL. */
NUVO_API void *NUVOMalloc(size_t n, size_t size, int *err);

/** Resizes ptr to n*size bytes and returns the new block. On n == 0 (-5),
 *  size == 0 (-6) or failure (-2) returns ptr unchanged and still owned by the
 *  caller. On success err is left untouched, so initialise it before the call. */
NUVO_API void *NUVORealloc(void *ptr, size_t n, size_t size, int *err);

/** Releases a block of NUVOMalloc/NUVORealloc; NULL is accepted. */
NUVO_API void NUVOFree(void *ptr);

/** dim1 row pointers into one contiguous block of dim1*dim2 elements of `size`
 *  bytes (p[0] addresses the whole block). err: -7 zero dimension, -8 zero size,
 *  -3 zero product, -1 allocation failure (nothing stays allocated). */
NUVO_API void **NUVOMallocArray2D(size_t dim1, size_t dim2, size_t size, int *err);
/** Releases a 2D array (its data block and row pointers); NULL is accepted. */
NUVO_API void NUVOFreeArray2D(void **p);

/** As NUVOMallocArray2D with three levels over one data block;
 *  err: -9 zero dimension, -10 zero size, -3, -1. */
NUVO_API void ***NUVOMallocArray3D(size_t dim1, size_t dim2, size_t dim3, size_t size, int *err);
/** Releases a 3D array; NULL is accepted. */
NUVO_API void NUVOFreeArray3D(void ***p);

/** As NUVOMallocArray2D with four levels over one data block;
 *  err: -11 zero dimension, -12 zero size, -3, -1. */
NUVO_API void ****NUVOMallocArray4D(size_t dim1, size_t dim2, size_t dim3, size_t dim4, size_t size,
                                    int *err);
/** Releases a 4D array; NULL is accepted. */
NUVO_API void NUVOFreeArray4D(void ****p);

NUVO_EXTERN_C_END

#endif /* NUVO_MEMORY_H */
