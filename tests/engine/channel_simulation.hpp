// Fixtures for simulations kept in memory (no output file, no report): a valid
// input on a generated training image, and channels (sand 1, background 0, about
// 0.28 of sand in an 80 x 80 training image) on a kN x kN grid with 20 neighbours
// within 6 nodes.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "../input/siminput_builder.hpp"
#include "nuvo_sim.h"
#include "nuvo_synthetic.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/verdict.hpp"

namespace nuvo_test {

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
