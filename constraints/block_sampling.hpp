// The placements of a block drawn in the training images and the statistics
// derived from them (rules in block_constraint.hpp).
#pragma once

#include <span>
#include <vector>

#include "constraints/block_constraint.hpp"
#include "nuvo_image.h"
#include "nuvo_random.h"

namespace nuvo {

inline constexpr int kPlacementsPerTrainImage = 200;

// One placement of a block: its mean, the mean of its squared values, and the
// squared deviations from the target of its values below and above the target.
struct Placement {
  double mean = 0.0, meanSquare = 0.0;
  double lowSquares = 0.0, highSquares = 0.0;
  int nlow = 0, nhigh = 0;
};

// The nodes of a block, as grid indices.
struct BlockNodes {
  std::span<const int> ix, iy, iz;
};

// kPlacementsPerTrainImage random placements of `nodes` in each training image
// (null entries skipped), variable v, those meeting a missing value dropped.
std::vector<Placement> drawPlacements(const BlockNodes &nodes, double target,
                                      std::span<const nuvo_image *const> trainImage, int v,
                                      nuvo_randContext *ctx);

// The interquartile range of `values` (quartiles by linear interpolation
// between order statistics); 0 for fewer than two values.
double computeIQRofReal(std::vector<double> values);

// The statistics of a block of target `target` from its placements; false when
// there is none or they are not finite.
bool blockStatistics(std::span<const Placement> placements, double target, BlockStatistics *out);

}  // namespace nuvo
