// In-place transforms of the values of one image variable: linear, and
// piecewise-linear through a table of points.
#include <algorithm>

#include "data/values.hpp"
#include "nuvo_image.h"

namespace nuvo {
namespace {

// The piecewise-linear map through (x[k], y[k]), constant beyond both ends.
double mapExplicit(double v, int n, const double *x, const double *y) {
  const double *end = x + n;
  const double *upper = std::lower_bound(x, end, v);
  if (upper == end) return y[n - 1];
  const auto k = upper - x;
  if (*upper == v || k == 0) return y[k];
  const double t = (v - x[k - 1]) / (x[k] - x[k - 1]);
  return (1.0 - t) * y[k - 1] + t * y[k];
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOTransformLinearImageVar(nuvo_image *image, int iv, double a, double b) {
  NUVO_FAIL_IF(!nuvo::validVariable(image, iv), nuvo::kVariableOutOfRange);
  for (double &v : nuvo::variableValues(image, iv))
    if (!nuvo::isMissing(v)) v = a * v + b;
  return 0;
}

int NUVOTransformExplicitImageVar(nuvo_image *image, int iv, int n, const double *x,
                                  const double *y) {
  NUVO_FAIL_IF(!nuvo::validVariable(image, iv), nuvo::kVariableOutOfRange);
  NUVO_FAIL_IF(n < 1, -3);
  for (double &v : nuvo::variableValues(image, iv))
    if (!nuvo::isMissing(v)) v = nuvo::mapExplicit(v, n, x, y);
  return 0;
}

}  // extern "C"
