#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "engine/prepared_data.hpp"
#include "nuvo_conditioning.h"
#include "tests/data/data_builders.hpp"
#include "tests/input/siminput_builder.hpp"
#include "tests/support/warning_recorder.hpp"

namespace {

using nuvo::test::imageValues;
using nuvo::test::kMissing;
using nuvo::test::TestImage;
using nuvo::test::TestPointSet;
using Recorder = nuvo::test::WarningRecorder;
using nuvo_test::addDataImage;
using nuvo_test::addDataPointSet;
using nuvo_test::addTrainImage;
using nuvo_test::OwnedSimInput;
using nuvo_test::setMask;

// The work on an input: a copy of its simulation image into which the
// conditioning data are merged, then the data prepared against the training
// images; the warnings of both steps go to rec.
struct Work : nuvo::test::EmptyImage {
  explicit Work(const nuvo_simInput &input) : si(input) {
    EXPECT_EQ(NUVOCopyImage(si.simImage, &image), 0);
  }
  int merge() {
    return NUVOSimIntegrateConditioningData(&si, &image, &nIgnoredVar, &nConflict, &rec.pm,
                                            Recorder::callback);
  }
  int prepare() {
    return nuvo::simPrepareData(si, {si.trainImage, std::size_t(si.ntrainImage)}, image, &p,
                                &rec.pm, Recorder::callback);
  }
  std::vector<double> all() const { return imageValues(image); }

  const nuvo_simInput &si;
  Recorder rec;
  int nIgnoredVar = 0, nConflict = 0;
  nuvo::PreparedData p;
};

// ---- Merging the conditioning data ----

TEST(IntegrateConditioningData, LaterDataImagesWinAndCountTheirConflicts) {
  // The simulation image holds its own datum at node 0.
  TestImage sim(4, 1, 1, {"facies"}, {1, kMissing, kMissing, kMissing});
  TestImage first(4, 1, 1, {"facies"}, {2, 2, kMissing, kMissing});
  TestImage second(4, 1, 1, {"facies"}, {kMissing, 3, 3, kMissing});
  OwnedSimInput in(sim.image, {0});
  addDataImage(&in.si, first.image);
  addDataImage(&in.si, second.image);
  Work w(in.si);
  ASSERT_EQ(w.merge(), 0);
  // The first data image replaces the simulation image's own value silently; the
  // second one conflicts at node 1 and wins there.
  EXPECT_EQ(w.all(), (std::vector<double>{2, 3, 3, kMissing}));
  EXPECT_EQ(std::pair(w.nConflict, w.nIgnoredVar), std::pair(1, 0));
  EXPECT_EQ(w.rec.warnings(), std::vector<int>{45});
  EXPECT_EQ(w.rec.pm.warningNumber, 0);
}

TEST(IntegrateConditioningData, DataImageWithoutNamesakeChangesNothing) {
  TestImage sim(2, 2, 1, {"facies", "poro"},
                {1, kMissing, kMissing, kMissing,  //
                 kMissing, 0.5, kMissing, kMissing});
  TestImage data(2, 2, 1, {"Facies", "perm"}, {0, 0, 0, 0, 7, 7, 7, 7});
  OwnedSimInput in(sim.image, {0, 2});
  addDataImage(&in.si, data.image);
  Work w(in.si);
  ASSERT_EQ(w.merge(), 0);
  EXPECT_EQ(w.all(), imageValues(sim.image));
  EXPECT_EQ(w.nIgnoredVar, 2);
  // One warning for the image, however many variables it ignores.
  EXPECT_EQ(w.rec.warnings(), std::vector<int>{44});
}

TEST(IntegrateConditioningData, PointSetKeepsItsUsablePointsAndWarnsInOrder) {
  TestImage sim(3, 1, 1, {"facies"});
  TestImage data(3, 1, 1, {"facies"}, {kMissing, kMissing, 4});
  // Points at nodes 0 and 2, one beyond the grid; a variable "other" is not simulated.
  TestPointSet points({0.5, 7.5, 2.5}, {0.5, 0.5, 0.5}, {0.5, 0.5, 0.5}, {"other", "facies"},
                      {9, 9, 9, 1, 2, 5});
  OwnedSimInput in(sim.image, {0});
  addDataImage(&in.si, data.image);
  addDataPointSet(&in.si, points.ps);
  Work w(in.si);
  ASSERT_EQ(w.merge(), 0);
  EXPECT_EQ(w.all(), (std::vector<double>{1, kMissing, 5}));
  EXPECT_EQ(std::pair(w.nConflict, w.nIgnoredVar), std::pair(1, 1));
  EXPECT_EQ(w.rec.warnings(), (std::vector<int>{43, 42, 41}));
}

TEST(IntegrateConditioningData, MaskRemovesEveryVariableOfItsNodesOnce) {
  TestImage sim(3, 1, 1, {"a", "b"}, {1, kMissing, 1, kMissing, kMissing, kMissing});
  TestImage data(3, 1, 1, {"b"}, {2, 2, kMissing});
  TestImage mask(3, 1, 1, {"mask"}, {0, 1, 0});
  OwnedSimInput in(sim.image, {0, 0});
  addDataImage(&in.si, data.image);
  setMask(&in.si, mask.image);
  Work w(in.si);
  ASSERT_EQ(w.merge(), 0);
  EXPECT_EQ(w.all(), (std::vector<double>{kMissing, kMissing, kMissing,  //
                                          kMissing, 2, kMissing}));
  EXPECT_EQ(w.rec.warnings(), std::vector<int>{40});
}

TEST(IntegrateConditioningData, RefusesMisplacedOrEmptyConditioning) {
  TestImage sim(2, 1, 1, {"a"});
  TestImage noVariable(2, 1, 1, {});
  TestImage shifted(2, 1, 1, {"a"}, {1, 1});
  shifted.image.grid->oy = 0.5;
  TestImage longer(3, 1, 1, {"a"}, {1, 1, 1});
  struct Case {
    const char *what;
    int expected;
    std::function<void(nuvo_simInput *)> add;
  };
  const Case cases[] = {
      {"data image without variable", -3,
       [&](nuvo_simInput *si) { addDataImage(si, noVariable.image); }},
      {"data image on another origin", -150,
       [&](nuvo_simInput *si) { addDataImage(si, shifted.image); }},
      {"mask on another grid", -150, [&](nuvo_simInput *si) { setMask(si, longer.image); }},
  };
  for (const Case &c : cases) {
    OwnedSimInput in(sim.image, {0});
    c.add(&in.si);
    EXPECT_EQ(Work(in.si).merge(), c.expected) << c.what;
  }
}

TEST(IntegrateConditioningData, CallbackAnswerAndStopRequestEndTheMerge) {
  TestImage sim(2, 1, 1, {"a"});
  TestImage unknown(2, 1, 1, {"z"}, {1, 1});
  TestImage data(2, 1, 1, {"a"}, {1, 1});
  OwnedSimInput in(sim.image, {0});
  addDataImage(&in.si, unknown.image);
  addDataImage(&in.si, data.image);
  Work answering(in.si);
  answering.rec.answer = 7;
  EXPECT_EQ(answering.merge(), 7);
  EXPECT_EQ(answering.all(), (std::vector<double>{kMissing, kMissing}));
  Work stopping(in.si);
  stopping.rec.pm.stopFlag = 1;
  EXPECT_EQ(stopping.merge(), -1000);
  EXPECT_TRUE(stopping.rec.warnings().empty());
}

// ---- Preparing the data against the training images ----

TEST(PrepareData, FlagsEntriesAndCountsNodesForTheReport) {
  // Variables: facies (categorical) and poro (continuous) on 3 x 2 nodes.
  TestImage sim(3, 2, 1, {"facies", "poro"});
  TestImage data(3, 2, 1, {"facies", "poro"},
                 {1, 0, 1, kMissing, kMissing, kMissing,  //
                  0.2, kMissing, 0.5, kMissing, kMissing, kMissing});
  TestImage mask(3, 2, 1, {"mask"}, {1, 1, 0, 1, 0, 1});
  TestImage ti(3, 2, 1, {"facies", "poro"},
               {0, 1, 1, 2, 1, kMissing,  //
                0.0, 0.3, 0.3, 0.6, 0.9, 1.0});
  OwnedSimInput in(sim.image, {0, 2});
  addDataImage(&in.si, data.image);
  setMask(&in.si, mask.image);
  addTrainImage(&in.si, &ti.image);
  Work w(in.si);
  ASSERT_EQ(w.merge(), 0);
  ASSERT_EQ(w.prepare(), 0);
  EXPECT_EQ(w.rec.warnings(), std::vector<int>{40});  // from the mask only
  const nuvo::PreparedData &p = w.p;
  // Node 0 fully informed, node 1 facies only, nodes 2 and 4 masked.
  EXPECT_EQ(p.entryFlag, (std::vector<signed char>{0, 0, 0, 1, 0, 1,  //
                                                   0, 1, 0, 1, 0, 1}));
  EXPECT_EQ(std::tuple(p.nvar, p.nxyz, p.nInformedAllVariables, p.nMasked, p.variable[0].ndata,
                       p.variable[1].ndata),
            std::tuple(2, 6, 1, 2, 2, 1));

  const nuvo::VariableMeasure &facies = p.variable[0];
  EXPECT_TRUE(facies.categorical);
  EXPECT_EQ(facies.value, (std::vector<double>{0, 1, 2}));
  EXPECT_EQ(facies.count, (std::vector<std::int64_t>{1, 3, 1}));
  const nuvo::VariableMeasure &poro = p.variable[1];
  EXPECT_FALSE(poro.categorical);
  EXPECT_EQ(poro.value, (std::vector<double>{0.0, 0.3, 0.6, 0.9, 1.0}));
  EXPECT_EQ(std::tuple(poro.min, poro.max, poro.widened), std::tuple(0.0, 1.0, false));
}

TEST(PrepareData, SimulationGridAsTrainingImageLendsItsData) {
  TestImage sim(2, 1, 1, {"facies", "poro"}, {kMissing, 5, kMissing, 40.0});
  TestImage ti(2, 1, 1, {"facies", "poro"}, {0, 1, 10.0, 20.0});
  OwnedSimInput in(sim.image, {0, 1});
  addTrainImage(&in.si, &ti.image);
  addTrainImage(&in.si, nullptr);
  Work w(in.si);
  ASSERT_EQ(w.prepare(), 0);
  EXPECT_EQ(w.p.variable[0].value, (std::vector<double>{0, 1, 5}));
  const nuvo::VariableMeasure &poro = w.p.variable[1];
  EXPECT_EQ(std::tuple(poro.min, poro.max, poro.widened), std::tuple(10.0, 40.0, false));
  EXPECT_TRUE(w.rec.warnings().empty());
}

TEST(PrepareData, TrainingImagesWithoutSpreadAreRefused) {
  TestImage sim(2, 1, 1, {"v"});
  TestImage constant(2, 1, 1, {"v"}, {3.0, 3.0});
  TestImage nearlyConstant(2, 1, 1, {"v"}, {3.0, 3.0 + 1e-11});
  TestImage empty(2, 1, 1, {"v"});
  struct Case {
    const nuvo_image *ti;
    int distanceType;
    int expected;
  };
  const Case cases[] = {
      {&nearlyConstant.image, 4, -552},
      {&empty.image, 0, -552},
      {&constant.image, 0, 0},  // a single facies is a valid categorical image
  };
  for (const Case &c : cases) {
    OwnedSimInput in(sim.image, {c.distanceType});
    addTrainImage(&in.si, c.ti);
    EXPECT_EQ(Work(in.si).prepare(), c.expected) << c.distanceType;
  }
}

TEST(PrepareData, CategoricalDataMustBeTrainingValues) {
  TestImage sim(3, 1, 1, {"facies"}, {2, 3, 3});
  TestImage ti(3, 1, 1, {"facies"}, {0, 1, 2});
  OwnedSimInput in(sim.image, {0});
  addTrainImage(&in.si, &ti.image);
  in.si.trainValueRangeExtensionMax = 10.0;  // no allowance for categories
  Work w(in.si);
  EXPECT_EQ(w.prepare(), -555);
  // A negative extension turns the check into one warning for the variable.
  in.si.trainValueRangeExtensionMax = -1.0;
  ASSERT_EQ(w.prepare(), 0);
  EXPECT_EQ(w.rec.warnings(), std::vector<int>{1});
  EXPECT_EQ(w.p.variable[0].value, (std::vector<double>{0, 1, 2}));
  EXPECT_EQ(w.p.variable[0].ndata, 3);
}

// Training range [10, 20]; with extension e a datum is accepted up to 10 e beyond
// either end, and the simulation range then covers it.
TEST(PrepareData, ContinuousDataMayExtendTheRangeWithinTheAllowance) {
  TestImage ti(2, 1, 1, {"poro"}, {10.0, 20.0});
  struct Case {
    double datum;
    double extension;
    int expected;
    double min, max;
  };
  const Case cases[] = {
      {20.0, 0.0, 0, 10.0, 20.0},      {20.001, 0.0, -556, 0, 0}, {9.0, 0.1, 0, 9.0, 20.0},
      {21.0, 0.1, 0, 10.0, 21.0},      {21.5, 0.1, -556, 0, 0},   {8.9, 0.1, -556, 0, 0},
      {1000.0, -0.5, 0, 10.0, 1000.0},
  };
  for (const Case &c : cases) {
    TestImage sim(2, 1, 1, {"poro"}, {c.datum, kMissing});
    OwnedSimInput in(sim.image, {3});
    addTrainImage(&in.si, &ti.image);
    in.si.trainValueRangeExtensionMax = c.extension;
    Work w(in.si);
    const int rc = w.prepare();
    ASSERT_EQ(rc, c.expected) << c.datum << " " << c.extension;
    if (rc != 0) continue;
    const nuvo::VariableMeasure &poro = w.p.variable[0];
    const bool beyond = c.datum < 10.0 || c.datum > 20.0;
    EXPECT_EQ(std::tuple(poro.min, poro.max, poro.widened), std::tuple(c.min, c.max, beyond))
        << c.datum;
    EXPECT_EQ(w.rec.warnings(), beyond ? std::vector<int>{2} : std::vector<int>{}) << c.datum;
    EXPECT_EQ(poro.value, (std::vector<double>{10.0, 20.0}));
  }
}

TEST(PrepareData, WarningsPassOnTheCallbackAnswerAndStopsAreHeard) {
  TestImage sim(2, 1, 1, {"poro"}, {30.0, kMissing});
  TestImage ti(2, 1, 1, {"poro"}, {10.0, 20.0});
  OwnedSimInput in(sim.image, {2});
  addTrainImage(&in.si, &ti.image);
  in.si.trainValueRangeExtensionMax = 1.0;
  Work answering(in.si);
  answering.rec.answer = 3;
  EXPECT_EQ(answering.prepare(), 3);
  Work stopping(in.si);
  stopping.rec.pm.stopFlag = 1;
  EXPECT_EQ(stopping.prepare(), -1000);
}

}  // namespace
