#include "input/transform_checks.hpp"

#include "foundation/check.hpp"
#include "nuvo_grid.h"

namespace nuvo {
namespace {

// The mask of the simulation when it is usable here; a mask that does not fit
// the simulation grid is refused later, with the conditioning data.
const nuvo_image *maskOf(const nuvo_simInput &si) {
  const nuvo_image *mask = si.maskImageFlag ? si.maskImage : nullptr;
  if (mask == nullptr || mask->grid == nullptr || mask->var == nullptr || mask->nvar < 1 ||
      NUVOCmpGrid(mask->grid, si.simImage->grid) != 0)
    return nullptr;
  return mask;
}

}  // namespace

TransformParameters homothetyParameters(const nuvo_simInput &si) {
  return {TransformKind::kHomothety,
          si.homothetyUsage,
          {si.homothetyXRatioImageFlag, si.homothetyYRatioImageFlag, si.homothetyZRatioImageFlag},
          {si.homothetyXRatioValue, si.homothetyYRatioValue, si.homothetyZRatioValue},
          {si.homothetyXRatioImage, si.homothetyYRatioImage, si.homothetyZRatioImage}};
}

TransformParameters rotationParameters(const nuvo_simInput &si) {
  return {TransformKind::kRotation,
          si.rotationUsage,
          {si.rotationAzimuthImageFlag, si.rotationDipImageFlag, si.rotationPlungeImageFlag},
          {si.rotationAzimuthValue, si.rotationDipValue, si.rotationPlungeValue},
          {si.rotationAzimuthImage, si.rotationDipImage, si.rotationPlungeImage}};
}

int checkTransformValues(TransformKind kind, int usage, int axis, const double *value) {
  const int base = TransformParameters{kind}.base(axis);
  // Written so that a NaN fails: a ratio must be above 0, bounds must be ordered.
  NUVO_FAIL_IF(kind == TransformKind::kHomothety && !(value[0] > 0.0), -(base + 6));
  NUVO_FAIL_IF(usage == 2 && !(value[0] <= value[1]), -(base + 7));
  return 0;
}

bool transformNodeInUse(const nuvo_image &image, int usage, const nuvo_image *mask, int k) {
  if (mask != nullptr && mask->var[k] == 0.0) return false;
  for (int i = 0; i < usage; ++i)
    if (image.var[static_cast<long long>(i) * image.grid->nxyz + k] == NUVO_MISSING_VALUE)
      return false;
  return true;
}

int checkTransformImage(TransformKind kind, int usage, int axis, const nuvo_image &image,
                        const nuvo_grid &grid, const nuvo_image *mask) {
  const int base = TransformParameters{kind}.base(axis);
  NUVO_FAIL_IF(image.grid == nullptr || image.var == nullptr, -(base + 2));
  NUVO_FAIL_IF(NUVOCmpGrid(image.grid, &grid) != 0, -(base + 3));
  NUVO_FAIL_IF(image.nvar != usage, -(base + 4));
  const int nxyz = image.grid->nxyz;
  double value[2];
  for (int k = 0; k < nxyz; ++k) {
    if (!transformNodeInUse(image, usage, mask, k)) continue;
    for (int i = 0; i < usage; ++i) value[i] = image.var[static_cast<long long>(i) * nxyz + k];
    NUVO_TRY(checkTransformValues(kind, usage, axis, value));
  }
  return 0;
}

int checkTransform(const TransformParameters &t, const nuvo_simInput &si) {
  NUVO_FAIL_IF(static_cast<unsigned>(t.usage) > 2u, t.badUsage());
  if (t.usage == 0) return 0;
  for (int axis = 0; axis < 3; ++axis) {
    const int base = t.base(axis);
    if (t.imageFlag[axis]) {
      NUVO_FAIL_IF(t.image[axis] == nullptr, -(base + 2));
      NUVO_TRY(checkTransformImage(t.kind, t.usage, axis, *t.image[axis], *si.simImage->grid,
                                   maskOf(si)));
    } else {
      NUVO_FAIL_IF(t.value[axis] == nullptr, -(base + 5));
      NUVO_TRY(checkTransformValues(t.kind, t.usage, axis, t.value[axis]));
    }
  }
  return 0;
}

}  // namespace nuvo
