#include "engine/local_transform.hpp"

#include <algorithm>
#include <cmath>

#include "engine/rotation.hpp"
#include "foundation/check.hpp"
#include "input/transform_checks.hpp"
#include "nuvo_simtransform.h"

namespace nuvo {

namespace {

// Far beyond any training image, yet twice it still fits in an int (the extent
// of a data event).
constexpr double kFar = 1 << 29;

// Halves go up, so that along an axis every training-image node stands for the
// same number of simulation nodes (ratio 2: offsets -1 and 0 give 0, 1 and 2 give
// 1). Offsets past kFar are held there; 0 times an infinite ratio counts as 0.
int nearestNode(double offset) {
  if (std::isnan(offset)) return 0;
  return static_cast<int>(std::clamp(std::floor(offset + 0.5), -kFar, kFar));
}

}  // namespace

void OffsetMap::apply(int *dx, int *dy, int *dz) const {
  const double x = *dx, y = *dy, z = *dz;
  *dx = nearestNode(m[0][0] * x + m[0][1] * y + m[0][2] * z);
  *dy = nearestNode(m[1][0] * x + m[1][1] * y + m[1][2] * z);
  *dz = nearestNode(m[2][0] * x + m[2][1] * y + m[2][2] * z);
}

int LocalTransform::prepareParameters(const TransformParameters &t, const nuvo_image *mask,
                                      std::array<Parameter, 3> &out) {
  if (t.usage == 0) return 0;
  std::array<double *, 3> values{};
  std::array<nuvo_image *, 3> images{};
  for (int axis = 0; axis < 3; ++axis) {
    Parameter &p = out[axis];
    p.fromImage = t.imageFlag[axis] != 0;
    if (p.fromImage) {
      NUVO_TRY(NUVOCopyImage(t.image[axis], &p.image.image));
      images[axis] = &p.image.image;
    } else {
      std::copy_n(t.value[axis], t.usage, p.value);
      values[axis] = p.value;
    }
  }
  if (t.kind == TransformKind::kHomothety) {
    NUVO_TRY(NUVOSimTransformHomothetyValue(t.usage, values[0], values[1], values[2]));
    return NUVOSimTransformHomothetyImage(t.usage, mask, images[0], images[1], images[2]);
  }
  NUVO_TRY(NUVOSimTransformRotationValue(t.usage, values[0], values[1], values[2]));
  return NUVOSimTransformRotationImage(t.usage, mask, images[0], images[1], images[2]);
}

int LocalTransform::prepare(const nuvo_simInput &si) {
  homothetyUsage_ = si.homothetyUsage;
  rotationUsage_ = si.rotationUsage;
  const nuvo_image *mask = si.maskImageFlag ? si.maskImage : nullptr;
  NUVO_TRY(prepareParameters(homothetyParameters(si), mask, ratio_));
  return prepareParameters(rotationParameters(si), mask, angle_);
}

double LocalTransform::sample(const Parameter &p, int usage, int k, double neutral,
                              nuvo_randContext *ctx) {
  const double u = usage == 2 ? NUVODoubleRand(0, ctx) : 0.0;
  double lower = p.value[0], width = p.value[1];
  if (p.fromImage) {
    const nuvo_image &im = p.image.image;
    if (!transformNodeInUse(im, usage, nullptr, k)) return neutral;
    lower = im.var[k];
    if (usage == 2) width = im.var[im.grid->nxyz + k];
  }
  return usage == 2 ? lower + u * width : lower;
}

OffsetMap LocalTransform::at(int k, nuvo_randContext *ctx) const {
  double h[3] = {1.0, 1.0, 1.0}, angle[3] = {0.0, 0.0, 0.0};
  for (int axis = 0; homothetyUsage_ != 0 && axis < 3; ++axis)
    h[axis] = sample(ratio_[axis], homothetyUsage_, k, 1.0, ctx);
  for (int axis = 0; rotationUsage_ != 0 && axis < 3; ++axis)
    angle[axis] = sample(angle_[axis], rotationUsage_, k, 0.0, ctx);
  // Row i gives the i-th coordinate in the rotated frame, scaled by h_i.
  const Rotation rot = rotationOfRadians(angle[0], angle[1], angle[2]);
  OffsetMap map;
  for (int i = 0; i < 3; ++i) {
    map.m[i][0] = h[i] * rot.u[i];
    map.m[i][1] = h[i] * rot.v[i];
    map.m[i][2] = h[i] * rot.w[i];
  }
  return map;
}

}  // namespace nuvo
