// A fixture for simulations of channels (sand 1, background 0, about 0.28 of sand
// in an 80 x 80 training image) on a kN x kN grid with 20 neighbours within 6
// nodes, no output file and no report.
#pragma once

#include <gtest/gtest.h>

#include "../input/siminput_builder.hpp"
#include "nuvo_sim.h"
#include "nuvo_synthetic.h"

namespace nuvo_test {

class ChannelSimulation : public ::testing::Test {
 protected:
  static constexpr int kN = 40;

  void SetUp() override {
    NUVOInitSimInput(&si_);
    NUVOInitSimOutput(&out_);
    nuvo_image ti;
    NUVOInitImage(&ti);
    require(NUVOGenerateChannelImage(&ti, 80, 80, 1, 0.3, 5.0, 2));
    buildValidSimInput(&si_, ti);
    NUVOFreeImage(&ti);
    NUVOFreeImage(si_.simImage);
    require(makeImage(si_.simImage, kN, kN, 1, {"facies"},
                      [](int, int, int, int) { return NUVO_MISSING_VALUE; }));
    si_.outputSimJob = OUTPUT_SIM_NO_FILE;
    si_.outputReportFlag = 0;
    si_.nneighboringNode[0] = 20;
    si_.searchNeighborhoodParameters[0].rx = si_.searchNeighborhoodParameters[0].ry = 6.0;
  }
  void TearDown() override {
    NUVOFreeSimOutput(&out_);
    NUVOFreeSimInput(&si_);
  }

  nuvo_simInput si_;
  nuvo_simOutput out_;
};

}  // namespace nuvo_test
