// Helpers shared by the functions of nuvo_simInput and nuvo_simInputASCII.
#pragma once

#include <cstdlib>

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
