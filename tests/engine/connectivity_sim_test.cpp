// Simulations under connectivity constraints with connecting paths (usage 1 and
// 2): a training image of a sand (1) network on background (0), wells as labelled
// conditioning data, every realization checked with a component labelling of the
// test's own.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "../input/siminput_builder.hpp"
#include "nuvo_conditioning.h"
#include "nuvo_sim.h"
#include "tests/constraints/test_files.hpp"
#include "tests/data/data_builders.hpp"
#include "tests/support/components.hpp"
#include "tests/support/pyramid_input.hpp"
#include "tests/support/verdict.hpp"
#include "tests/support/warning_recorder.hpp"

namespace {

using nuvo::test::TestImage;
using nuvo::test::TestPointSet;

struct Well {
  int x, y, z;
  double facies;
  double label;
};

using Warnings = nuvo::test::WarningList;

class ConnectivitySimulation : public ::testing::Test {
 protected:
  void SetUp() override { NUVOInitSimOutput(&out_); }
  void TearDown() override { NUVOFreeSimOutput(&out_); }

  // A grid nx x ny x nz to simulate from a training image of sand (connected
  // under every neighbourhood): in a plane, lines every 4 nodes across x and
  // every 5 across y; in 3D, such lines on every third layer joined by vertical
  // rods where they cross. The wells are a data image "facies", "well".
  void build(int nx, int ny, int nz, int tnx, int tny, int tnz, const std::vector<Well> &wells) {
    nx_ = nx, ny_ = ny, nz_ = nz;
    wells_ = wells;
    const TestImage ti(tnx, tny, tnz, {"facies"}, [tnz](int x, int y, int z, int) {
      const bool wall = x % 4 == 0 || y % 5 == 0;
      const bool rod = x % 4 == 0 && y % 5 == 0;
      return (tnz == 1 ? wall : (z % 3 == 0 && wall) || rod) ? 1.0 : 0.0;
    });
    nuvo_test::buildValidSimInput(&si_.si, ti.image);
    nuvo_simInput &si = si_.si;
    nuvo_test::setSimGrid(&si, nx, ny, nz);
    si.outputSimJob = OUTPUT_SIM_NO_FILE;
    si.outputReportFlag = 0;
    si.nrealization = 2;
    si.searchNeighborhoodParameters[0].rz = nz > 1 ? 2.0 : 0.0;
    TestImage data(nx, ny, nz, {"facies", "well"});
    for (const Well &w : wells) {
      const int k = w.x + nx * (w.y + ny * w.z);
      data.at(0, k) = w.facies;
      data.at(1, k) = w.label;
    }
    nuvo_test::addDataImage(&si, data.image);
  }

  void constrain(int usage, int type) {
    nuvo_connectivity &c = si_.si.connectivity[0];
    NUVOFreeConnectivity(&c);
    c.connectivityConstraintUsage = usage;
    c.connectivityType = type;
    c.classOfValues = nuvo_test::newClasses("2  1 -0.5 0.5  1 0.5 1.5");
    c.varName = nuvo_test::newText("well", NUVO_VAR_NAME_MAX + 1);
    c.tiAsRefFlag = 1;
    c.threshold = 0.05;
  }

  // Simulates, then checks in every realization the data and, unless only the
  // pattern of labels steers the simulation (which does not promise it), that the
  // wells of each positive label lie in one sand body.
  void simulateAndCheck(int type, bool connected = true) {
    Warnings warnings;
    NUVOFreeSimOutput(&out_);
    ASSERT_EQ(NUVOSim(&si_.si, &out_, &warnings.pm, Warnings::callback), 0);
    // The label variable is read by the constraint, not ignored (no warning 44),
    // and no group fails.
    EXPECT_TRUE(warnings.seen.empty());
    const int nxyz = nx_ * ny_ * nz_;
    for (int r = 0; r < out_.nreal; ++r) {
      const double *v = out_.outputSimImage->var + r * nxyz;
      const std::vector<int> comp =
          nuvo_test::components(nx_, ny_, nz_, type, [v](int k) { return v[k] == 1.0; });
      std::vector<int> bodyOfLabel(8, -1);
      for (const Well &w : wells_) {
        const int k = w.x + nx_ * (w.y + ny_ * w.z);
        ASSERT_EQ(v[k], w.facies) << "realization " << r;
        if (w.label <= 0.0 || !connected) continue;
        int &body = bodyOfLabel[static_cast<int>(w.label)];
        if (body < 0) body = comp[k];
        EXPECT_EQ(comp[k], body) << "label " << w.label << " realization " << r;
      }
    }
  }

  nuvo_test::OwnedSimInput si_;
  nuvo_simOutput out_;
  int nx_ = 0, ny_ = 0, nz_ = 0;
  std::vector<Well> wells_;
};

// Two groups and an unlabelled sand well far from the wells of label 1, on a
// plane grid, with each binding order and each neighbourhood; the pattern of
// labels runs on the same wells.
TEST_F(ConnectivitySimulation, LabelledWellsEndInOneSandBodyIn2D) {
  build(36, 36, 1, 60, 60, 1,
        {{2, 3, 0, 1.0, 1.0},
         {33, 31, 0, 1.0, 1.0},
         {17, 34, 0, 1.0, 1.0},
         {30, 4, 0, 1.0, 2.0},
         {4, 30, 0, 1.0, 2.0},
         {18, 18, 0, 0.0, 0.0},
         {10, 20, 0, 1.0, 0.0}});
  for (int usage : {NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER, NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER,
                    NUVO_CONNECTIVITY_PATTERN})
    for (int type : {CONNECT_FACE, CONNECT_FACE_EDGE, CONNECT_FACE_EDGE_CORNER}) {
      SCOPED_TRACE(testing::Message() << "usage " << usage << " type " << type);
      constrain(usage, type);
      simulateAndCheck(type, usage != NUVO_CONNECTIVITY_PATTERN);
    }
}

// Through a pyramid the paths are data at every level: the wells still end in
// one body on the simulation grid. The sand lines of the training image are one
// node wide, so the reduced images never reach a well's value: its datum on a
// coarse level (one-by-one mode) is kept inside their range.
TEST_F(ConnectivitySimulation, LabelledWellsEndInOneSandBodyThroughAPyramid) {
  build(36, 36, 1, 60, 60, 1,
        {{2, 3, 0, 1.0, 1.0}, {33, 31, 0, 1.0, 1.0}, {30, 4, 0, 1.0, 2.0}, {4, 30, 0, 1.0, 2.0}});
  for (int mode : {PYRAMID_SIM_HIERARCHICAL, PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE}) {
    SCOPED_TRACE(testing::Message() << "mode " << mode);
    nuvo_test::usePyramid(&si_.si, mode, PYRAMID_CATEGORICAL_AUTO);
    constrain(NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER, CONNECT_FACE);
    simulateAndCheck(CONNECT_FACE);
  }
}

TEST_F(ConnectivitySimulation, LabelledWellsEndInOneSandBodyIn3D) {
  build(16, 16, 6, 30, 30, 8,
        {{1, 1, 0, 1.0, 1.0}, {13, 6, 5, 1.0, 1.0}, {9, 11, 3, 1.0, 1.0}, {3, 12, 2, 0.0, 0.0}});
  for (int type : {CONNECT_FACE, CONNECT_FACE_EDGE, CONNECT_FACE_EDGE_CORNER}) {
    SCOPED_TRACE(testing::Message() << "type " << type);
    constrain(NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER, type);
    simulateAndCheck(type);
  }
}

// The labels of a row of six nodes from a data image ("facies", "well"), an
// optional second data image and point set of labels, and a mask.
struct LabelCase {
  std::vector<double> facies, well;
  std::vector<double> secondWell = {};  // a second data image of labels
  double pointLabel = 0.0;              // a point at node 0 with this label
  std::vector<double> mask = {};
};

int integrateLabels(const LabelCase &c, std::vector<int> *label, std::vector<int> *warnings) {
  nuvo_test::OwnedSimInput input(TestImage(6, 1, 1, {"facies"}).image, {0});
  nuvo_simInput &si = input.si;
  si.connectivity = nuvo_test::initialisedRecords<nuvo_connectivity>(1, NUVOInitConnectivity);
  nuvo_connectivity &con = si.connectivity[0];
  con.connectivityConstraintUsage = NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER;
  con.classOfValues = nuvo_test::newClasses("2  1 -0.5 0.5  1 0.5 1.5");
  con.varName = nuvo_test::newText("well", NUVO_VAR_NAME_MAX + 1);
  const auto addImage = [&](std::vector<std::string> names, std::vector<double> a,
                            std::vector<double> b) {
    std::vector<double> values = a;
    values.insert(values.end(), b.begin(), b.end());
    nuvo_test::addDataImage(&si, TestImage(6, 1, 1, names, values).image);
  };
  addImage({"facies", "well"}, c.facies, c.well);
  if (!c.secondWell.empty()) addImage({"well", "other"}, c.secondWell, c.secondWell);
  if (c.pointLabel != 0.0) {
    nuvo_test::addDataPointSet(&si, TestPointSet({0.5}, {0.5}, {0.5}, {"well"}, {c.pointLabel}).ps);
  }
  if (!c.mask.empty()) nuvo_test::setMask(&si, TestImage(6, 1, 1, {"mask"}, c.mask).image);
  Warnings w;
  label->assign(6, -7);
  int nIgnored = 0, nConflict = 0;
  const int rc = NUVOSimIntegrateConditioningDataWithConnectivity(
      &si, si.simImage, label->data(), &nIgnored, &nConflict, &w.pm, Warnings::callback);
  *warnings = w.seen;
  return rc;
}

TEST(ConnectivityLabels, LabelsArePlacedMaskedAndCheckedAgainstTheData) {
  constexpr double M = NUVO_MISSING_VALUE;
  std::vector<int> label, warnings;
  // Labels 0 and below constrain nothing; 2.2 is label 2; the point gives node 0
  // its label again; the mask removes the label of node 5 (and its datum).
  EXPECT_EQ(
      integrateLabels(
          {{1, 0, 1, 1, 1, 1}, {1, -3, 2.2, 2, 1, 3}, {0, 0, 0, 0, 0, 0}, 1.0, {1, 1, 1, 1, 1, 0}},
          &label, &warnings),
      0);
  EXPECT_EQ(label, (std::vector<int>{1, 0, 2, 2, 1, 0}));
  // The label variable "well" is read, not ignored: only "other" raises 44.
  EXPECT_EQ(warnings, (std::vector<int>{44, 40, 46}));
  // Without any label the constraint is dropped with warning 55.
  EXPECT_EQ(integrateLabels({{1, 0, 1, 1, 1, 1}, {M, M, 0, M, M, M}}, &label, &warnings), 0);
  EXPECT_EQ(warnings, (std::vector<int>{55}));
  // The failures, first found wins.
  const std::vector<std::pair<LabelCase, int>> failures = {
      {{{1, 0, 1, M, 1, 1}, {1, M, M, 1, M, M}}, -181},
      {{{1, 0, 5, 1, 1, 1}, {1, M, 1, M, M, M}}, -185},
      {{{1, 0, 1, 1, 1, 1}, {1, 1, M, M, M, M}}, -186},
      {{{1, 0, 1, 1, 1, 1}, {1, M, 2, 2, M, M}}, -184},
      {{{1, 0, 1, 1, 1, 1}, {1, M, 1, M, M, M}, {3, M, M, M, M, M}}, -182},
      {{{1, 0, 1, 1, 1, 1}, {1, M, 1, M, M, M}, {}, 4.0}, -180},
  };
  for (const auto &[c, code] : failures) EXPECT_EQ(integrateLabels(c, &label, &warnings), code);
}

// The whole input: the label variable may not be simulated, and the paths need
// one training image and absolute distances; the pattern of labels is refused.
TEST_F(ConnectivitySimulation, InputsTheConstraintCannotServeAreRefused) {
  build(12, 12, 1, 20, 20, 1, {{1, 1, 0, 1.0, 1.0}, {9, 9, 0, 1.0, 1.0}});
  const auto verdict = [this] {
    return nuvo_test::verdictOf(NUVOValidateSimInput, &si_.si, nullptr, nullptr);
  };
  constrain(NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER, CONNECT_FACE);
  EXPECT_EQ(verdict(), 0);
  std::strcpy(si_.si.connectivity[0].varName, "facies");
  EXPECT_EQ(verdict(), -2105);
  std::strcpy(si_.si.connectivity[0].varName, "well");
  si_.si.relativeDistanceFlag[0] = 1;
  si_.si.distanceType[0] = 1;
  EXPECT_EQ(verdict(), -2107);
  si_.si.relativeDistanceFlag[0] = 0;
  si_.si.distanceType[0] = 0;
  nuvo_test::setTrainingImageCount(&si_.si, 2);
  EXPECT_EQ(verdict(), -2108);
}

}  // namespace
