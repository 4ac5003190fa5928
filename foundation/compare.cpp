// Comparators for the standard sort and binary search.
#include "nuvo_compare.h"

namespace nuvo {
namespace {

// -1, 0 or 1; values that are neither smaller nor larger (NaN included) compare equal.
template <typename T>
int threeWay(const T &a, const T &b) {
  if (a < b) return -1;
  if (a > b) return 1;
  return 0;
}

template <typename T>
int compareVectors(const T *a, const T *b, int n) {
  for (int i = 0; i < n; ++i)
    if (int c = threeWay(a[i], b[i]); c != 0) return c;
  return 0;
}

template <typename Record>
int compareValues(const void *a, const void *b) {
  return threeWay(static_cast<const Record *>(a)->value, static_cast<const Record *>(b)->value);
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOCmpInt(const void *a, const void *b) {
  return nuvo::threeWay(*static_cast<const int *>(a), *static_cast<const int *>(b));
}

int NUVOCmpReal(const void *a, const void *b) {
  return nuvo::threeWay(*static_cast<const double *>(a), *static_cast<const double *>(b));
}

int NUVOCmpInfoIntValue(const void *a, const void *b) {
  return nuvo::compareValues<nuvo_infoIntValue>(a, b);
}

int NUVOCmpInfoIntValueAll(const void *a, const void *b) {
  const auto *x = static_cast<const nuvo_infoIntValue *>(a);
  const auto *y = static_cast<const nuvo_infoIntValue *>(b);
  if (int c = nuvo::threeWay(x->index, y->index); c != 0) return c;
  return nuvo::threeWay(x->value, y->value);
}

int NUVOCmpInfoDouValue(const void *a, const void *b) {
  return nuvo::compareValues<nuvo_infoDouValue>(a, b);
}

int NUVOCmpInfoReaValue(const void *a, const void *b) {
  return nuvo::compareValues<nuvo_infoReaValue>(a, b);
}

int NUVOCmpVectorOfClassId(const int8_t *a, const int8_t *b, int n) {
  return nuvo::compareVectors(a, b, n);
}

int NUVOCmpVectorOfReal(const double *a, const double *b, int n) {
  return nuvo::compareVectors(a, b, n);
}

}  // extern "C"
