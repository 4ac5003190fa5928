// One-variable statistics of an image (mean, standard deviation, range, index of
// values in a sorted list), their all-variable forms and the missing-value counts.
#include <algorithm>
#include <cmath>

#include "data/values.hpp"
#include "nuvo_image.h"

namespace nuvo {
namespace {

double meanOf(std::span<const double> values) {
  return summarizeInformed(values).mean();
}

double sdOf(std::span<const double> values, double mean) {
  if (isMissing(mean)) return NUVO_MISSING_VALUE;
  double sum = 0.0;
  int n = 0;
  for (double v : values) {
    if (isMissing(v)) continue;
    sum += (v - mean) * (v - mean);
    ++n;
  }
  if (n == 0) return NUVO_MISSING_VALUE;
  return n == 1 ? 0.0 : std::sqrt(sum / (n - 1));
}

void rangeOf(std::span<const double> values, int *n, double *min, double *max, double *range) {
  const InformedSummary s = summarizeInformed(values);
  *n = s.n;
  *min = s.min;
  *max = s.max;
  *range = s.n > 0 ? s.max - s.min : NUVO_MISSING_VALUE;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOGetImageOneVarValueMean(const nuvo_image *image, int iv, double *mean) {
  NUVO_FAIL_IF(!nuvo::validVariable(image, iv), nuvo::kVariableOutOfRange);
  *mean = nuvo::meanOf(nuvo::variableValues(image, iv));
  return 0;
}

int NUVOGetImageOneVarValueSD(const nuvo_image *image, int iv, const double *mean, double *sd) {
  NUVO_FAIL_IF(!nuvo::validVariable(image, iv), nuvo::kVariableOutOfRange);
  *sd = nuvo::sdOf(nuvo::variableValues(image, iv), *mean);
  return 0;
}

int NUVOGetImageOneVarValueRange(const nuvo_image *image, int iv, int *n, double *min, double *max,
                                 double *range) {
  NUVO_FAIL_IF(!nuvo::validVariable(image, iv), nuvo::kVariableOutOfRange);
  nuvo::rangeOf(nuvo::variableValues(image, iv), n, min, max, range);
  return 0;
}

int NUVOGetImageOneVarValueIndex(const nuvo_image *image, int iv, int n, const double *sortedValues,
                                 int *index) {
  NUVO_FAIL_IF(!nuvo::validVariable(image, iv), nuvo::kVariableOutOfRange);
  const double *end = sortedValues + std::max(n, 0);
  int i = 0;
  for (double v : nuvo::variableValues(image, iv)) {
    const double *found = std::lower_bound(sortedValues, end, v);
    const bool present = !nuvo::isMissing(v) && found != end && *found == v;
    index[i++] = present ? static_cast<int>(found - sortedValues) : -1;
  }
  return 0;
}

int NUVOGetImageVarValueMean(const nuvo_image *image, double *mean) {
  for (int iv = 0; iv < image->nvar; ++iv) NUVOGetImageOneVarValueMean(image, iv, &mean[iv]);
  return 0;
}

int NUVOGetImageVarValueSD(const nuvo_image *image, const double *mean, double *sd) {
  for (int iv = 0; iv < image->nvar; ++iv) NUVOGetImageOneVarValueSD(image, iv, &mean[iv], &sd[iv]);
  return 0;
}

int NUVOGetImageVarValueRange(const nuvo_image *image, int *n, double *min, double *max,
                              double *range) {
  for (int iv = 0; iv < image->nvar; ++iv)
    NUVOGetImageOneVarValueRange(image, iv, &n[iv], &min[iv], &max[iv], &range[iv]);
  return 0;
}

int NUVOGetImageNumberVarValueMissing(const nuvo_image *image, int *count) {
  NUVO_FAIL_IF(count == nullptr, nuvo::kNotAllocated);
  for (int iv = 0; iv < image->nvar; ++iv) {
    const auto values = nuvo::variableValues(image, iv);
    count[iv] = static_cast<int>(std::count_if(values.begin(), values.end(), nuvo::isMissing));
  }
  return 0;
}

int NUVOGetImageVarVectorMissing(const nuvo_image *image, int8_t *flag, int *n) {
  NUVO_FAIL_IF(flag == nullptr || n == nullptr, nuvo::kNotAllocated);
  const int nxyz = image->grid->nxyz;
  std::fill(flag, flag + nxyz, int8_t{0});
  for (int iv = 0; iv < image->nvar; ++iv) {
    const auto values = nuvo::variableValues(image, iv);
    for (int i = 0; i < nxyz; ++i)
      if (nuvo::isMissing(values[i])) flag[i] = 1;
  }
  *n = static_cast<int>(std::count(flag, flag + nxyz, int8_t{1}));
  return 0;
}

}  // extern "C"
