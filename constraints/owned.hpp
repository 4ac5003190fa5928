// Helpers for the owned members of the constraint and pyramid records: arrays,
// text buffers, class-of-values records and images that a record allocates,
// copies, loads and releases. They use the C allocator because the records cross
// the C interface and are released by their NUVOFree... functions.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "input/text_io.hpp"
#include "nuvo_classofvalues.h"
#include "nuvo_image.h"

namespace nuvo {

// Stores in *array a new block of n zeroed elements. Returns 0, -3 when n <= 0,
// -1 when the block cannot be allocated.
template <typename T>
int allocateArray(T **array, int n) {
  if (n <= 0) return -3;
  *array = static_cast<T *>(std::calloc(static_cast<std::size_t>(n), sizeof(T)));
  return *array == nullptr ? -1 : 0;
}

// Stores in *copy a copy of the n elements of source, or null when source is
// null. Returns 0, -3 or -1 as allocateArray.
template <typename T>
int copyArray(const T *source, int n, T **copy) {
  if (source == nullptr) return 0;
  if (int rc = allocateArray(copy, n); rc != 0) return rc;
  std::memcpy(*copy, source, static_cast<std::size_t>(n) * sizeof(T));
  return 0;
}

// Releases *array and nulls it.
template <typename T>
void releaseArray(T **array) {
  std::free(*array);
  *array = nullptr;
}

// A new empty owned text of slotSize bytes in *text. Returns 0 or -1.
inline int allocateOwnedText(char **text, int slotSize) {
  *text = allocateText(slotSize);
  return *text == nullptr ? -1 : 0;
}

// A new initialised class of values in *classes, then filled by the class reader.
// Returns 0, -1, or the reader's code.
int readOwnedClasses(nuvo_classOfValues **classes, FILE *stream);
// A deep copy of source in *copy, or null for null. Returns 0 or -1.
int copyOwnedClasses(const nuvo_classOfValues *source, nuvo_classOfValues **copy);
// Frees, releases and nulls *classes.
void releaseOwnedClasses(nuvo_classOfValues **classes);

// A new initialised image in *image, then filled by NUVOReadImage from the GSLIB
// text file fileName. Returns 0, cannotOpenCode, -1 or the reader's code.
int readOwnedImage(nuvo_image **image, const char *fileName, int cannotOpenCode);
// Frees, releases and nulls *image.
void releaseOwnedImage(nuvo_image **image);

}  // namespace nuvo
