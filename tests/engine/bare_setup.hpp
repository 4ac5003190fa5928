// A RealizationSetup built by hand: categorical variables with equal weights,
// every one with the same neighbourhood, node limit and threshold, on one
// training image scanned whole. The image and neighbourhood stay the caller's.
#pragma once

#include <vector>

#include "engine/realization.hpp"
#include "nuvo_random.h"
#include "tests/engine/manual_neighborhood.hpp"

namespace nuvo_test {

// A search neighbourhood of the given radii and equal weights, freed with it.
struct BuiltNeighborhood {
  nuvo_searchNeighborhood nb;
  int rc = 0;  // the build's return code
  BuiltNeighborhood(double rx, double ry, double rz) {
    NUVOInitSearchNeighborhood(&nb);
    nuvo_searchNeighborhoodParameters p = manualNeighborhood(rx, ry, rz);
    nuvo_randContext ctx;
    NUVOInitRandContext(&ctx);
    rc = NUVOBuildSearchNeighborhood(&p, &nb, &ctx);
  }
  ~BuiltNeighborhood() { NUVOFreeSearchNeighborhood(&nb); }
  BuiltNeighborhood(const BuiltNeighborhood &) = delete;
  BuiltNeighborhood &operator=(const BuiltNeighborhood &) = delete;
};

inline nuvo::RealizationSetup bareSetup(const nuvo_image &ti, const nuvo_searchNeighborhood &nb,
                                        int maxNodes, double threshold) {
  const int nvar = ti.nvar;
  const auto perVariable = [nvar](auto value) { return std::vector(nvar, value); };
  nuvo::RealizationSetup setup;
  setup.nvar = nvar;
  setup.ti = {&ti};
  setup.simGridAsTi = {0};
  setup.neighborhood = perVariable(&nb);
  setup.uniformWeights = perVariable(char{1});
  setup.distanceType = perVariable(0);
  setup.relativeDistance = perVariable(char{0});
  setup.conditioningWeight = perVariable(1.0);
  setup.power = setup.invPower = perVariable(1.0);
  setup.initial.maxNodes = perVariable(maxNodes);
  setup.initial.invThreshold = perVariable(1.0 / threshold);
  const std::vector<double> fraction = {1.0};
  setup.initial.maxScan = nuvo::maxScanTable(setup, fraction);
  setup.postProcessing = setup.initial;
  return setup;
}

}  // namespace nuvo_test
