// Inputs for simulations on a given grid, and fixtures for simulations kept in
// memory (no output file, no report): a valid input on a generated training
// image, and channels (sand 1, background 0, about 0.28 of sand in an 80 x 80
// training image) on a kN x kN grid with 20 neighbours within 6 nodes.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "../input/siminput_builder.hpp"
#include "nuvo_sim.h"
#include "nuvo_synthetic.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/verdict.hpp"

namespace nuvo_test {

// A valid input (see buildValidSimInput) on `ti` over an nx x ny x nz grid of
// missing values of its first variable, searching within `radius` (half of it
// along z in 3D), without report.
inline void buildOnGrid(nuvo_simInput *si, const nuvo_image &ti, int nx, int ny, int nz,
                        double radius) {
  buildValidSimInput(si, ti);
  NUVOFreeImage(si->simImage);
  require(makeImage(si->simImage, nx, ny, nz, {ti.varName[0]},
                    [](int, int, int, int) { return NUVO_MISSING_VALUE; }));
  nuvo_searchNeighborhoodParameters &p = si->searchNeighborhoodParameters[0];
  p.rx = p.ry = radius;
  p.rz = nz > 1 ? radius / 2 : 0.0;
  si->outputReportFlag = 0;
}

class InMemorySimulation : public ::testing::Test {
 protected:
  InMemorySimulation() {
    NUVOInitSimInput(&si_);
    NUVOInitSimOutput(&out_);
  }
  void TearDown() override {
    NUVOFreeSimOutput(&out_);
    NUVOFreeSimInput(&si_);
  }

  // A valid input (see buildValidSimInput) on the image `generate` fills, over an
  // n x n grid.
  template <typename Generate>
  void build(Generate generate, int n) {
    nuvo::test::EmptyImage ti;
    require(generate(&ti.image));
    buildValidSimInput(&si_, ti.image);
    setSimGrid(&si_, n, n, 1);
    si_.outputSimJob = OUTPUT_SIM_NO_FILE;
    si_.outputReportFlag = 0;
  }
  int simulate() {
    NUVOFreeSimOutput(&out_);
    return NUVOSim(&si_, &out_, nullptr, nullptr);
  }
  // The validation's verdict on the input.
  int verdict() { return verdictOf(NUVOValidateSimInput, &si_, nullptr, nullptr); }
  // The values of realization r (of the only variable).
  std::vector<double> realization(int r) const {
    const int n = out_.outputSimImage->grid->nxyz;
    return {out_.outputSimImage->var + r * n, out_.outputSimImage->var + (r + 1) * n};
  }

  nuvo_simInput si_;
  nuvo_simOutput out_;
};

class ChannelSimulation : public InMemorySimulation {
 protected:
  static constexpr int kN = 40;

  void SetUp() override {
    build([](nuvo_image *ti) { return NUVOGenerateChannelImage(ti, 80, 80, 1, 0.3, 5.0, 2); }, kN);
    si_.nneighboringNode[0] = 20;
    si_.searchNeighborhoodParameters[0].rx = si_.searchNeighborhoodParameters[0].ry = 6.0;
  }
};

}  // namespace nuvo_test
