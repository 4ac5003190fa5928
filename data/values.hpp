// Small helpers shared by the image and point-set operations: missing values,
// access to one variable's block of values, size checks and name matching.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>

#include "data/names.hpp"
#include "foundation/check.hpp"
#include "nuvo_image.h"
#include "nuvo_memory.h"

namespace nuvo {

inline constexpr int kVariableOutOfRange = -1100;
inline constexpr int kNotAllocated = -20;

inline bool isMissing(double v) {
  return v == NUVO_MISSING_VALUE;
}

// Count, extremes and sum of the informed values of a sequence. The extremes start
// from the first informed value, so that any magnitude is handled.
struct InformedSummary {
  int n = 0;
  double min = NUVO_MISSING_VALUE;
  double max = NUVO_MISSING_VALUE;
  double sum = 0.0;

  double mean() const { return n > 0 ? sum / n : NUVO_MISSING_VALUE; }
};
inline InformedSummary summarizeInformed(std::span<const double> values) {
  InformedSummary s;
  for (double v : values) {
    if (isMissing(v)) continue;
    s.min = (s.n == 0 || v < s.min) ? v : s.min;
    s.max = (s.n == 0 || v > s.max) ? v : s.max;
    s.sum += v;
    ++s.n;
  }
  return s;
}

// True when a count computed in 64 bits can be stored in an int.
inline bool fitsInInt(std::int64_t n) {
  return n >= INT_MIN && n <= INT_MAX;
}

// Multiplies counts (nx, ny, nz, nvar ...) into *product; false, leaving *product
// untouched, when a factor or the product does not fit in an int.
inline bool productFitsInInt(std::initializer_list<std::int64_t> factors, int *product) {
  int p = 1;
  for (std::int64_t f : factors)
    if (!fitsInInt(f) || __builtin_mul_overflow(p, static_cast<int>(f), &p)) return false;
  *product = p;
  return true;
}

// The nxyz values of variable iv of an image.
inline std::span<double> variableValues(nuvo_image *image, int iv) {
  const std::size_t nxyz = static_cast<std::size_t>(image->grid->nxyz);
  return {image->var + static_cast<std::size_t>(iv) * nxyz, nxyz};
}
inline std::span<const double> variableValues(const nuvo_image *image, int iv) {
  const std::size_t nxyz = static_cast<std::size_t>(image->grid->nxyz);
  return {image->var + static_cast<std::size_t>(iv) * nxyz, nxyz};
}

inline bool validVariable(const nuvo_image *image, int iv) {
  return iv >= 0 && iv < image->nvar;
}

// Names are compared byte by byte, within their 128-character slots.
inline bool sameName(const char *a, const char *b) {
  return std::strncmp(a, b, kNameSlot) == 0;
}

// Length of a name, kNameSlot when its slot holds no terminating zero.
inline std::size_t nameLength(const char *name) {
  return strnlen(name, kNameSlot);
}

// Position of `name` among names[0..n-1], -1 when absent.
inline int findName(char *const *names, int n, const char *name) {
  for (int i = 0; i < n; ++i)
    if (sameName(names[i], name)) return i;
  return -1;
}

// True when two of names[0..n-1] are equal.
inline bool hasDuplicateName(char *const *names, int n) {
  for (int i = 0; i < n; ++i)
    for (int j = i + 1; j < n; ++j)
      if (sameName(names[i], names[j])) return true;
  return false;
}

// Owns a block that the library's C functions allocated for their caller.
struct FreeBlock {
  void operator()(void *p) const { NUVOFree(p); }
};
template <typename T>
using CBlock = std::unique_ptr<T[], FreeBlock>;

// The prefix of nested lines in printouts: the caller's prefix and three blanks.
inline std::string nestedPrefix(const char *prefix) {
  return std::string(prefix) + "   ";
}

// Puts an informed datum on a node value. A missing node takes it; an informed one
// makes mode 0 fail with conflictCode, is kept in mode 1 and overwritten in any
// other mode, the last two counting the conflict.
inline int placeDatum(double &node, double datum, int conflictMode, int &nConflict,
                      int conflictCode) {
  if (!isMissing(node)) {
    if (conflictMode == 0) return conflictCode;
    ++nConflict;
    if (conflictMode == 1) return 0;
  }
  node = datum;
  return 0;
}

}  // namespace nuvo
