// Conversion of homothety and rotation parameters to the form the realizations
// multiply by: inverse ratios, and angles in radians.
#include <array>

#include "foundation/check.hpp"
#include "input/transform_checks.hpp"
#include "nuvo_simtransform.h"

namespace nuvo {
namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;

// Converts the `usage` values of one parameter in place.
void convert(TransformKind kind, int usage, double *p) {
  if (kind == TransformKind::kHomothety) {
    if (usage == 1) {
      p[0] = 1.0 / p[0];
    } else {
      const double lower = 1.0 / p[1];
      p[1] = 1.0 / p[0] - lower;
      p[0] = lower;
    }
  } else {
    if (usage == 2) p[1] = (p[1] - p[0]) * kRadiansPerDegree;
    p[0] *= kRadiansPerDegree;
  }
}

int convertValues(TransformKind kind, int usage, std::array<double *, 3> value) {
  TransformParameters t{kind, usage};
  NUVO_FAIL_IF(static_cast<unsigned>(usage) > 2u, t.badUsage());
  if (usage == 0) return 0;
  for (int axis = 0; axis < 3; ++axis)
    if (value[axis] != nullptr) NUVO_TRY(checkTransformValues(kind, usage, axis, value[axis]));
  for (double *p : value)
    if (p != nullptr) convert(kind, usage, p);
  return 0;
}

int convertImages(TransformKind kind, int usage, const nuvo_image *mask,
                  std::array<nuvo_image *, 3> image) {
  TransformParameters t{kind, usage};
  NUVO_FAIL_IF(static_cast<unsigned>(usage) > 2u, t.badUsage());
  if (usage == 0) return 0;
  // The mask stands for the simulation grid; without it the images must agree
  // with the first of them.
  const nuvo_grid *grid = mask != nullptr ? mask->grid : nullptr;
  for (int axis = 0; axis < 3; ++axis) {
    if (image[axis] == nullptr) continue;
    if (grid == nullptr) grid = image[axis]->grid;
    NUVO_FAIL_IF(grid == nullptr, -(t.base(axis) + 2));
    NUVO_TRY(checkTransformImage(kind, usage, axis, *image[axis], *grid, mask));
  }
  for (nuvo_image *im : image) {
    if (im == nullptr) continue;
    const int nxyz = im->grid->nxyz;
    for (int k = 0; k < nxyz; ++k) {
      if (!transformNodeInUse(*im, usage, mask, k)) continue;
      double p[2];
      for (int i = 0; i < usage; ++i) p[i] = im->var[static_cast<long long>(i) * nxyz + k];
      convert(kind, usage, p);
      for (int i = 0; i < usage; ++i) im->var[static_cast<long long>(i) * nxyz + k] = p[i];
    }
  }
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOSimTransformHomothetyValue(int usage, double *x, double *y, double *z) {
  return nuvo::convertValues(nuvo::TransformKind::kHomothety, usage, {x, y, z});
}

int NUVOSimTransformRotationValue(int usage, double *azimuth, double *dip, double *plunge) {
  return nuvo::convertValues(nuvo::TransformKind::kRotation, usage, {azimuth, dip, plunge});
}

int NUVOSimTransformHomothetyImage(int usage, const nuvo_image *mask, nuvo_image *x, nuvo_image *y,
                                   nuvo_image *z) {
  return nuvo::convertImages(nuvo::TransformKind::kHomothety, usage, mask, {x, y, z});
}

int NUVOSimTransformRotationImage(int usage, const nuvo_image *mask, nuvo_image *azimuth,
                                  nuvo_image *dip, nuvo_image *plunge) {
  return nuvo::convertImages(nuvo::TransformKind::kRotation, usage, mask, {azimuth, dip, plunge});
}

}  // extern "C"
