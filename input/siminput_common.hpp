// Helpers shared by the functions of nuvo_simInput and nuvo_simInputASCII.
#pragma once

#include <cstdlib>

#include "foundation/check.hpp"
#include "nuvo_image.h"
#include "nuvo_siminput.h"

namespace nuvo {

// Number of names in outputSimImageFileName: none, one, or one per variable
// whose output flag is 1.
inline int outputSimImageFileCount(int outputSimJob, const signed char *outputVarFlag, int nvar) {
  switch (outputSimJob) {
    case OUTPUT_SIM_ALL_IN_ONE_FILE:
    case OUTPUT_SIM_ONE_FILE_PER_REALIZATION:
      return 1;
    case OUTPUT_SIM_ONE_FILE_PER_VARIABLE: {
      int n = 0;
      for (int iv = 0; outputVarFlag != nullptr && iv < nvar; ++iv) n += outputVarFlag[iv] == 1;
      return n;
    }
    default:
      return 0;
  }
}

// An owned array of n zero values (nothing when n <= 0).
template <typename T>
int allocateArray(int n, T **dst) {
  if (n <= 0) return 0;
  *dst = static_cast<T *>(std::calloc(static_cast<std::size_t>(n), sizeof(T)));
  return *dst == nullptr ? kAllocationFailed : 0;
}

// n initialised records of type T (nothing when n <= 0).
template <typename T, typename Init>
int allocateRecords(int n, T **array, Init init) {
  if (n <= 0) return 0;
  *array = static_cast<T *>(std::calloc(static_cast<std::size_t>(n), sizeof(T)));
  NUVO_FAIL_IF(*array == nullptr, kAllocationFailed);
  for (int i = 0; i < n; ++i) init(&(*array)[i]);
  return 0;
}

// Releases an owned array of n records, each with its own Free; null accepted.
template <typename T, typename Free>
void freeRecords(T *array, int n, Free freeOne) {
  if (array == nullptr) return;
  for (int i = 0; i < n; ++i) freeOne(&array[i]);
  std::free(array);
}

// Releases an owned image record and what it owns; null accepted.
inline void freeImagePointer(nuvo_image *image) {
  freeRecords(image, 1, NUVOFreeImage);
}

}  // namespace nuvo
