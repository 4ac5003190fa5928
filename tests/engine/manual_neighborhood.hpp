// Search-neighborhood parameters given by hand: the radii, unit anisotropy ratios,
// no rotation and the weighting power.
#pragma once

#include "nuvo_searchneighborhood.h"

namespace nuvo_test {

inline nuvo_searchNeighborhoodParameters manualNeighborhood(double rx, double ry, double rz,
                                                            double power = 0.0) {
  nuvo_searchNeighborhoodParameters p{};
  p.radiusMode = SEARCHNEIGHBORHOOD_RADIUS_MANUAL;
  p.anisotropyRatioMode = SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL;
  p.rx = rx, p.ry = ry, p.rz = rz;
  p.ax = p.ay = p.az = 1.0;
  p.rotationFlag = SEARCHNEIGHBORHOOD_ROTATION_OFF;
  p.power = power;
  return p;
}

}  // namespace nuvo_test
