// Checks of homothety and rotation parameters, shared by the validation of a
// simulation input and by the conversions of the parameters.
//
// Each parameter (a homothety axis, a rotation angle) has its own block of error
// codes: base + 2 to base + 7, with base 1700, 1710, 1720 for the homothety axes
// x, y, z and 1800, 1810, 1820 for the rotation angles azimuth, dip, plunge (see
// nuvo_simtransform.h); base + 1 of the first block is the bad usage.
#pragma once

#include <array>

#include "nuvo_image.h"
#include "nuvo_siminput.h"

namespace nuvo {

enum class TransformKind { kHomothety, kRotation };

// One transform: its usage (0 none, 1 one value, 2 lower and upper bounds) and
// its three parameters, each given by an image (flag 1) or by values.
struct TransformParameters {
  TransformKind kind = TransformKind::kHomothety;
  int usage = 0;
  std::array<signed char, 3> imageFlag{};
  std::array<double *, 3> value{};
  std::array<nuvo_image *, 3> image{};

  int base(int axis) const { return (kind == TransformKind::kHomothety ? 1700 : 1800) + 10 * axis; }
  int badUsage() const { return -(base(0) + 1); }
};

TransformParameters homothetyParameters(const nuvo_simInput &si);
TransformParameters rotationParameters(const nuvo_simInput &si);

// 0, or the negative code of the first fault of the `usage` values of one
// parameter: a ratio not above 0, a lower bound above the upper bound.
int checkTransformValues(TransformKind kind, int usage, int axis, const double *value);

// Whether node k of a parameter image is converted: not masked out, and every
// one of its `usage` values informed.
bool transformNodeInUse(const nuvo_image &image, int usage, const nuvo_image *mask, int k);

// 0, or the negative code of what makes `image` unusable for one parameter: no
// grid or values, a grid other than `grid`, a number of variables other than the usage, a bad
// value at a node in use.
int checkTransformImage(TransformKind kind, int usage, int axis, const nuvo_image &image,
                        const nuvo_grid &grid, const nuvo_image *mask);

// Every check of a transform of a simulation input: the usage, then for each
// parameter its image (allocated, then as above) or its values (allocated,
// then as above).
int checkTransform(const TransformParameters &t, const nuvo_simInput &si);

}  // namespace nuvo
