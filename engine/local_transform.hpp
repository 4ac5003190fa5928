// Homothety and rotation of the data events: the variable-transform form of a
// realization.
//
// The neighbours of a node are gathered on the simulation grid as usual; their
// offsets are then taken into the frame of the training images before the scan,
// so the scan and the error computation are those of the plain form and only the
// offsets differ.
//
// Parameters at a node. The converted constants or images (nuvo_simtransform.h)
// give the inverse ratios hx, hy, hz and the angles a, b, c (azimuth, dip,
// plunge, in radians). With tolerance (usage 2) each parameter is its lower
// bound plus U times its width, U uniform in (0, 1), drawn from the entry's
// random stream in the order hx, hy, hz, then a, b, c (one draw per parameter
// of a transform with tolerance, none without). Where an image has no usable
// value at the node (missing, or left out by the mask) that parameter does not
// deform: ratio 1, angle 0.
//
// Offsets. A neighbour at offset d of the simulation grid is compared with the
// training-image node at offset round(h * (R d)): R d is d in the frame of the
// rotated axes (the frame of a search ellipsoid with the same angles, so a
// training-image direction appears turned by the angles in the simulation), h * ()
// multiplies its coordinates by hx, hy, hz, and each coordinate is rounded to
// the nearest integer, halves upwards (so every training-image node stands for
// the same number of simulation nodes along an axis). Structures thus appear 1/h times
// as large and turned by the angles. Of the neighbours that land on the same
// training-image node only the first (the closest on the simulation grid) is
// kept: a node of the training image can match one value only.
#pragma once

#include <array>
#include <vector>

#include "engine/owned.hpp"
#include "input/transform_checks.hpp"
#include "nuvo_random.h"
#include "nuvo_siminput.h"

namespace nuvo {

// The linear map of simulation-grid offsets to training-image offsets at a node.
struct OffsetMap {
  double m[3][3];

  void apply(int *dx, int *dy, int *dz) const;
};

class LocalTransform {
 public:
  // Copies and converts the homothety and rotation parameters of `si`, which has
  // been validated. Returns 0 or -1.
  int prepare(const nuvo_simInput &si);

  // Whether homothety or rotation is in use.
  bool active() const { return homothetyUsage_ != 0 || rotationUsage_ != 0; }

  // The map at node k; draws the tolerance samples from ctx.
  OffsetMap at(int k, nuvo_randContext *ctx) const;

 private:
  // One parameter: its converted values (value, or lower bound and width), from
  // an image when `image` holds one.
  struct Parameter {
    OwnedImage image;
    bool fromImage = false;
    double value[2] = {0.0, 0.0};
  };
  int prepareParameters(const TransformParameters &t, const nuvo_image *mask,
                        std::array<Parameter, 3> &out);
  // The parameter's value at node k, or `neutral` where it has none.
  static double sample(const Parameter &p, int usage, int k, double neutral, nuvo_randContext *ctx);

  int homothetyUsage_ = 0, rotationUsage_ = 0;
  std::array<Parameter, 3> ratio_, angle_;
  const nuvo_image *mask_ = nullptr;
};

}  // namespace nuvo
