// Joint statistics of the variables of an image: per-variable extremes and means,
// pair counts and the covariance matrix over the nodes where both are informed.
#include <algorithm>

#include "data/values.hpp"
#include "nuvo_image.h"
#include "nuvo_memory.h"

namespace nuvo {
namespace {

struct PairMoments {
  int n;
  double cov;
};

// Covariance of a and b over the nodes where both are informed, about the means
// over those same nodes, divided by max(1, n - 1).
PairMoments pairMoments(std::span<const double> a, std::span<const double> b) {
  int n = 0;
  double sumA = 0.0;
  double sumB = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (isMissing(a[i]) || isMissing(b[i])) continue;
    sumA += a[i];
    sumB += b[i];
    ++n;
  }
  if (n == 0) return {0, 0.0};
  const double meanA = sumA / n;
  const double meanB = sumB / n;
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (isMissing(a[i]) || isMissing(b[i])) continue;
    sum += (a[i] - meanA) * (b[i] - meanB);
  }
  return {n, sum / std::max(1, n - 1)};
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOGetImageVarStats(const nuvo_image *image, int **npair, double *min, double *max,
                         double *mean, double **cov) {
  *npair = nullptr;
  *cov = nullptr;
  const int nvar = image->nvar;
  NUVO_FAIL_IF(nvar < 1, -3);
  int err = 0;
  auto *counts = static_cast<int *>(NUVOMalloc(std::size_t(nvar) * nvar, sizeof(int), &err));
  auto *matrix = static_cast<double *>(NUVOMalloc(std::size_t(nvar) * nvar, sizeof(double), &err));
  if (counts == nullptr || matrix == nullptr) {
    NUVOFree(counts);
    NUVOFree(matrix);
    return nuvo::kAllocationFailed;
  }
  for (int i = 0; i < nvar; ++i) {
    const auto own = nuvo::summarizeInformed(nuvo::variableValues(image, i));
    min[i] = own.min;
    max[i] = own.max;
    mean[i] = own.mean();
    for (int j = i; j < nvar; ++j) {
      const auto moments =
          nuvo::pairMoments(nuvo::variableValues(image, i), nuvo::variableValues(image, j));
      counts[i * nvar + j] = counts[j * nvar + i] = moments.n;
      matrix[i * nvar + j] = matrix[j * nvar + i] = moments.cov;
    }
  }
  *npair = counts;
  *cov = matrix;
  return 0;
}

}  // extern "C"
