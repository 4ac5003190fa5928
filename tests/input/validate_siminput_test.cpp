#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "input/text_io.hpp"
#include "nuvo_siminput.h"
#include "nuvo_synthetic.h"
#include "siminput_builder.hpp"
#include "tests/constraints/test_files.hpp"
#include "tests/data/data_builders.hpp"
#include "tests/support/temp_stream.hpp"
#include "tests/support/verdict.hpp"
#include "tests/support/warning_recorder.hpp"

namespace {

using nuvo_test::buildValidSimInput;
using nuvo_test::initialisedRecords;
using nuvo_test::makeImage;
using nuvo_test::makeStripeImage;
using nuvo_test::setHomothety;
using nuvo_test::setRotation;
using nuvo_test::setTrainingImageCount;
using nuvo_test::valuesOf;

using nuvo::test::TempStream;
using Recorder = nuvo::test::WarningRecorder;

// Replaces an owned text by one of `length` characters.
void setLongText(char **text, int length) {
  std::free(*text);
  *text = static_cast<char *>(std::calloc(static_cast<std::size_t>(length) + 1, 1));
  std::memset(*text, 'a', static_cast<std::size_t>(length));
}

class ValidateSimInputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    NUVOInitSimInput(&si_);
    useStripeTi(20, 20, 1);
  }
  void TearDown() override { NUVOFreeSimInput(&si_); }

  // Rebuilds the valid input on the training image `fill` makes.
  template <typename Fill>
  void useTi(Fill fill) {
    nuvo::test::EmptyImage ti;
    nuvo_test::require(fill(&ti.image));
    NUVOFreeSimInput(&si_);
    buildValidSimInput(&si_, ti.image);
  }
  void useStripeTi(int nx, int ny, int nz) {
    useTi([=](nuvo_image *ti) {
      makeStripeImage(ti, nx, ny, nz);
      return 0;
    });
  }
  nuvo_searchNeighborhoodParameters &neighborhood() { return si_.searchNeighborhoodParameters[0]; }
  void setManualRadii(double rx, double ry, double rz) {
    neighborhood().rx = rx;
    neighborhood().ry = ry;
    neighborhood().rz = rz;
  }
  // Validates with the given radius mode and returns the radii it leaves.
  std::vector<double> radiiFor(int radiusMode) {
    neighborhood().radiusMode = radiusMode;
    EXPECT_EQ(verdict(), 0);
    return {neighborhood().rx, neighborhood().ry, neighborhood().rz};
  }
  std::vector<double> ratios() { return {neighborhood().ax, neighborhood().ay, neighborhood().az}; }

  // Runs the validation, which itself must succeed, and returns its verdict.
  int verdict() {
    return nuvo_test::verdictOf(NUVOValidateSimInput, &si_, &rec_.pm, Recorder::callback);
  }
  std::vector<int> warnings() const { return rec_.warnings(); }

  nuvo_simInput si_;
  Recorder rec_;
};

// An owned nx x ny image of one variable, every value `value`.
nuvo_image *transformImage(int nx, int ny, double value) {
  return nuvo_test::newImage(nx, ny, 1, {"lower"}, [value](int, int, int, int) { return value; });
}

// Unit homothety ratios, but those along x read from an image of 2 with a 0 at node 17.
void zeroRatioAt17(nuvo_simInput &s) {
  setHomothety(&s, 1, {1}, {1}, {1});
  s.homothetyXRatioImageFlag = 1;
  s.homothetyXRatioImage = transformImage(30, 30, 2.0);
  s.homothetyXRatioImage->var[17] = 0.0;
}

using Si = nuvo_simInput;
struct Case {
  const char *what;
  void (*change)(Si &);
  int code;
};

// One field changed at a time; 0 marks the values on the valid side of a bound.
// One row per family of checks, both sides of the bounds where an off-by-one is
// plausible, and the sub-record validators reached through the input.
const Case kCases[] = {
    {"no variable", [](Si &s) { s.nvar = 0; }, -629},
    {"more variables than the image", [](Si &s) { s.nvar = 2; }, -645},
    {"no output flag", [](Si &s) { s.outputVarFlag[0] = 0; }, -647},
    {"format without %", [](Si &s) { std::strcpy(s.formatStringVar[0], "10.5E"); }, -648},
    {"no format strings",
     [](Si &s) { nuvo::freeTextSlots(std::exchange(s.formatStringVar, nullptr)); }, 0},
    {"output job 4", [](Si &s) { s.outputSimJob = 4; }, -651},
    {"report name of 255", [](Si &s) { setLongText(&s.outputReportFileName, 255); }, 0},
    {"report name", [](Si &s) { setLongText(&s.outputReportFileName, 256); }, -653},
    {"error map without a name", [](Si &s) { s.outputErrorFlag = 1; }, -20},
    {"TI index map name", [](Si &s) { setLongText(&s.outputTiIndexFileName, 256); }, -598},
    {"no TI", [](Si &s) { setTrainingImageCount(&s, 0); }, -656},
    {"100 TIs", [](Si &s) { setTrainingImageCount(&s, 100); }, 0},
    {"101 TIs", [](Si &s) { setTrainingImageCount(&s, 101); }, -657},
    {"TI with two variables",
     [](Si &s) {
       NUVOFreeImage(&s.trainImage[0]);
       makeImage(&s.trainImage[0], 5, 5, 1, {"a", "b"}, [](int, int, int, int) { return 0.0; });
     },
     -655},
    {"SG as TI twice",
     [](Si &s) { setTrainingImageCount(&s, 2), s.simGridAsTiFlag[0] = s.simGridAsTiFlag[1] = 1; },
     -654},
    {"range extension 10", [](Si &s) { s.trainValueRangeExtensionMax = 10.0; }, 0},
    {"range extension 10.5", [](Si &s) { s.trainValueRangeExtensionMax = 10.5; }, -1151},
    {"normalizing 3", [](Si &s) { s.normalizingType = 3; }, -1155},
    {"uniform normalization of a categorical variable",
     [](Si &s) { s.normalizingType = NORMALIZING_UNIFORM; }, 0},
    {"distance type 5", [](Si &s) { s.distanceType[0] = 5; }, -667},
    {"relative categorical", [](Si &s) { s.relativeDistanceFlag[0] = 1; }, -710},
    {"L-p power 0", [](Si &s) { s.distanceType[0] = 3, s.powerLpDistance[0] = 0.0; }, -668},
    {"L-p inverse off", [](Si &s) { s.distanceType[0] = 3, s.powerLpDistanceInv[0] = 0.5000001; },
     -669},
    {"min-max categorical", [](Si &s) { s.rescalingMode[0] = RESCALING_MIN_MAX; }, -2131},
    {"mean-length relative",
     [](Si &s) {
       s.rescalingMode[0] = RESCALING_MEAN_LENGTH;
       s.distanceType[0] = 2, s.relativeDistanceFlag[0] = 1;
     },
     -2134},
    {"min-max with SG as TI",
     [](Si &s) {
       s.rescalingMode[0] = RESCALING_MIN_MAX;
       s.distanceType[0] = 1, s.simGridAsTiFlag[0] = 1;
     },
     -2141},
    {"radius mode 8", [](Si &s) { s.searchNeighborhoodParameters[0].radiusMode = 8; }, -686},
    {"TI range with SG as TI",
     [](Si &s) {
       s.searchNeighborhoodParameters[0].radiusMode = SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_DEFAULT;
       s.simGridAsTiFlag[0] = 1;
     },
     -689},
    {"1000 neighbors", [](Si &s) { s.nneighboringNode[0] = 1000; }, 0},
    {"1001 neighbors", [](Si &s) { s.nneighboringNode[0] = 1001; }, -664},
    {"density 0", [](Si &s) { s.neighboringNodeDensity[0] = 0.0; }, -665},
    {"conditioning weight 0", [](Si &s) { s.conditioningWeightFactor[0] = 0.0; }, -670},
    {"sim type 2", [](Si &s) { s.simAndPathParameters->simType = 2; }, -705},
    {"no thresholds", [](Si &s) { std::free(std::exchange(s.distanceThreshold, nullptr)); }, -20},
    {"threshold 1", [](Si &s) { s.distanceThreshold[0] = 1.0; }, 0},
    {"threshold 1.0000001", [](Si &s) { s.distanceThreshold[0] = 1.0000001; }, -673},
    {"unused soft probability left unchecked",
     [](Si &s) { s.softProbability[0].deactivationDistance = -1.0; }, 0},
    {"soft probability usage 7", [](Si &s) { s.softProbability[0].probabilityConstraintUsage = 7; },
     -1920},
    {"connectivity usage 9", [](Si &s) { s.connectivity[0].connectivityConstraintUsage = 9; },
     -2091},
    {"block data usage 5", [](Si &s) { s.blockData[0].blockDataUsage = 5; }, -2920},
    {"scan fraction 0", [](Si &s) { s.maxScanFraction[0] = 0.0; }, -674},
    {"scan fraction 0 with homothety",
     [](Si &s) { s.maxScanFraction[0] = 0.0, s.homothetyUsage = 1; }, -734},
    {"pyramid levels -1", [](Si &s) { s.pyramidGeneralParameters->npyramidLevel = -1; }, -3621},
    {"tolerance 100", [](Si &s) { s.tolerance = 100.0; }, 0},
    {"tolerance 100.5", [](Si &s) { s.tolerance = 100.5; }, -677},
    {"post-processing paths 101", [](Si &s) { s.npostProcessingPathMax = 101; }, -1662},
    {"post-processing threshold 2", [](Si &s) { s.postProcessingDistanceThreshold[0] = 2.0; },
     -673},
    {"post-processing off",
     [](Si &s) { s.npostProcessingPathMax = 0, s.postProcessingDistanceThreshold[0] = 2.0; }, 0},
    {"1000000 realizations", [](Si &s) { s.nrealization = 1000000; }, 0},
    {"1000001 realizations", [](Si &s) { s.nrealization = 1000001; }, -678},
    {"two TIs without their pdf",
     [](Si &s) {
       setTrainingImageCount(&s, 2);
       NUVOFreeImage(s.pdfTrainImage);
       std::free(std::exchange(s.pdfTrainImage, nullptr));
     },
     -1651},
    {"TI pdf not summing to 1",
     [](Si &s) { setTrainingImageCount(&s, 2), s.pdfTrainImage->var[7] = 0.6; }, -1656},
    {"TI pdf with a negative value",
     [](Si &s) { setTrainingImageCount(&s, 2), s.pdfTrainImage->var[3] = -0.5; }, -1655},
    {"homothety usage 3", [](Si &s) { s.homothetyUsage = 3; }, -1701},
    {"homothety z bounds reversed",
     [](Si &s) {
       setHomothety(&s, 2, {1, 2}, {1, 1}, {3, 2});
     },
     -1727},
    {"homothety with equal bounds",
     [](Si &s) {
       setHomothety(&s, 2, {1, 1}, {.5, 2}, {1, 1});
     },
     0},
    {"homothety x flagged without image",
     [](Si &s) { setHomothety(&s, 1, {1}, {1}, {1}), s.homothetyXRatioImageFlag = 1; }, -1702},
    {"homothety z image on another grid",
     [](Si &s) {
       setHomothety(&s, 1, {1}, {1}, {1});
       s.homothetyZRatioImageFlag = 1;
       s.homothetyZRatioImage = transformImage(30, 20, 2.0);
     },
     -1723},
    {"homothety x image with a ratio 0", [](Si &s) { zeroRatioAt17(s); }, -1706},
    {"homothety x image with a ratio 0 masked out",
     [](Si &s) {
       zeroRatioAt17(s);
       s.maskImageFlag = 1;
       s.maskImage = transformImage(30, 30, 1.0);
       s.maskImage->var[17] = 0.0;
     },
     0},
    {"rotation of 180 degrees", [](Si &s) { setRotation(&s, 1, {180}, {0}, {0}); }, 0},
    {"rotation azimuth image without its upper bound",
     [](Si &s) {
       setRotation(&s, 2, {0, 0}, {0, 0}, {0, 0});
       s.rotationAzimuthImageFlag = 1;
       s.rotationAzimuthImage = transformImage(30, 30, 45.0);
     },
     -1804},
    {"NaN in the training image",
     [](Si &s) { s.trainImage[0].var[5] = std::numeric_limits<double>::quiet_NaN(); }, -627},
    {"infinity in the training image",
     [](Si &s) { s.trainImage[0].var[9] = -std::numeric_limits<double>::infinity(); }, -628},
};

TEST_F(ValidateSimInputTest, EachMistakeHasItsCode) {
  for (const Case &c : kCases) {
    useStripeTi(20, 20, 1);
    c.change(si_);
    EXPECT_EQ(verdict(), c.code) << c.what;
    si_.nvar = 1;  // the variable arrays are freed for nvar variables
    rec_.nseen = 0;
  }
}

TEST_F(ValidateSimInputTest, TheFirstFailureWinsAndTransformsComeLast) {
  si_.distanceThreshold[0] = 2.0;
  si_.nrealization = 1000001;
  si_.homothetyUsage = 1;
  EXPECT_EQ(verdict(), -673);
  si_.distanceThreshold[0] = 0.05;
  EXPECT_EQ(verdict(), -678);
  si_.nrealization = 1;
  EXPECT_EQ(verdict(), -1705);
}

// Manual radii are reduced to fit the smallest TI; a neighborhood that leaves few
// candidate positions is warned about along each axis, section and the volume.
TEST_F(ValidateSimInputTest, LargeNeighborhoodsAreReducedAndWarnedAboutAlongTheAxes) {
  struct WarningCase {
    int ti[3], sg[3];
    double r[3];
    std::vector<double> reduced;
    std::vector<int> expected;
  };
  const WarningCase cases[] = {
      // The built input as it stands.
      {{20, 20, 1}, {30, 30, 1}, {3, 3, 0}, {3, 3, 0}, {}},
      // Radii (20 - 1) / 2 and (12 - 1) / 2 still large along x and y.
      {{20, 12, 1}, {30, 30, 1}, {15, 9, 2}, {9, 5, 0}, {25, 26, 27, 30, 31, 33, 34, 35, 36}},
      // Along z, a data event spans 8 of the TI's 10 layers; xy keeps 16 x 16 of 20 x 20.
      {{20, 20, 10}, {30, 30, 10}, {2, 2, 4}, {2, 2, 4}, {32, 34, 35}},
      // The same neighborhood on a flat simulation grid never spans several layers.
      {{20, 20, 10}, {30, 30, 1}, {2, 2, 4}, {2, 2, 4}, {}},
      // Along x only: 20 - 12 = 8 positions of 20.
      {{20, 20, 1}, {30, 30, 1}, {6, 2, 0}, {6, 2, 0}, {30}},
  };
  for (const WarningCase &c : cases) {
    useStripeTi(c.ti[0], c.ti[1], c.ti[2]);
    nuvo_test::setSimGrid(&si_, c.sg[0], c.sg[1], c.sg[2]);
    setManualRadii(c.r[0], c.r[1], c.r[2]);
    rec_.nseen = 0;
    EXPECT_EQ(radiiFor(SEARCHNEIGHBORHOOD_RADIUS_MANUAL), c.reduced) << c.ti[1] << " " << c.ti[2];
    EXPECT_EQ(warnings(), c.expected) << c.ti[1] << " " << c.ti[2] << " " << c.sg[2];
  }
}

TEST_F(ValidateSimInputTest, LargeDefaultTakesAQuarterOfTheSmallestTi) {
  useStripeTi(20, 13, 1);
  setTrainingImageCount(&si_, 2);
  NUVOFreeImage(&si_.trainImage[1]);
  makeStripeImage(&si_.trainImage[1], 40, 9, 1);
  EXPECT_EQ(radiiFor(SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT), (std::vector<double>{5, 2, 0}));
  EXPECT_TRUE(warnings().empty());
}

TEST_F(ValidateSimInputTest, AnisotropyModesTakeTheirRatiosFromTheRadii) {
  struct RatioCase {
    int mode;
    std::vector<double> a;
  };
  const RatioCase cases[] = {
      {SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE, {1, 1, 1}},
      {SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS, {4, 2, 1}},  // 1 for a radius of 0
      {SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XY, {4, 4, 1}},
      {SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XZ, {4, 2, 4}},
      {SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_YZ, {4, 2, 2}},
      {SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XYZ, {4, 4, 4}},
      {SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL, {0.5, 0.25, 2}},
  };
  for (const RatioCase &c : cases) {
    setManualRadii(4.0, 2.0, 0.0);
    neighborhood().anisotropyRatioMode = c.mode;
    neighborhood().ax = 0.5;
    neighborhood().ay = 0.25;
    neighborhood().az = 2.0;
    EXPECT_EQ(verdict(), 0);
    EXPECT_EQ(ratios(), c.a) << c.mode;
  }
}

// Ranges measured on a channel image are longer along the channels (x); the
// default mode measures on the simulation grid: ranges grow with the homothety
// ratios, and the axes turned by a rotation share the larger range.
TEST_F(ValidateSimInputTest, TiRangeRadiiFollowTheChannelsAndTheTransforms) {
  useTi([](nuvo_image *ti) { return NUVOGenerateChannelImage(ti, 80, 80, 1, 0.3, 6.0, 5); });
  neighborhood().anisotropyRatioMode = SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS;
  const std::vector<double> r = radiiFor(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE);
  EXPECT_GT(r[0], r[1]);
  EXPECT_GT(r[1], 0.0);
  EXPECT_EQ(r[2], 0.0);
  EXPECT_EQ(ratios(), (std::vector<double>{r[0], r[1], 1.0}));
  EXPECT_EQ(radiiFor(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XY), (std::vector<double>{r[0], r[0], 0}));
  EXPECT_EQ(radiiFor(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_YZ),
            (std::vector<double>{r[0], r[1], r[1]}));

  const int mode = SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_DEFAULT;
  const std::vector<double> plain = radiiFor(mode);
  setHomothety(&si_, 2, {1.0, 1.0}, {1.0, 3.0}, {1.0, 1.0});
  EXPECT_EQ(radiiFor(mode), (std::vector<double>{plain[0], 3.0 * plain[1], plain[2]}));
  si_.homothetyUsage = 0;
  setRotation(&si_, 1, {30.0}, {0.0}, {0.0});  // the azimuth turns x and y
  EXPECT_EQ(radiiFor(mode), (std::vector<double>{plain[0], plain[0], plain[2]}));
  si_.rotationAzimuthValue[0] = 0.0;
  si_.rotationPlungeValue[0] = 30.0;  // x and z, but the grid is flat
  EXPECT_EQ(radiiFor(mode), plain);
}

TEST_F(ValidateSimInputTest, TiRangesTakeTheLargestOverTheTis) {
  const std::vector<double> stripes = radiiFor(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE);
  EXPECT_LT(stripes[0], 10.0);
  EXPECT_DOUBLE_EQ(stripes[1], 19.0);  // constant along y: the largest lag

  setTrainingImageCount(&si_, 2);
  NUVOFreeImage(&si_.trainImage[1]);
  makeImage(&si_.trainImage[1], 20, 20, 1, {"facies"},
            [](int, int iy, int, int) { return static_cast<double>(iy / 3 % 2); });
  const std::vector<double> both = radiiFor(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE);
  EXPECT_DOUBLE_EQ(both[0], 19.0);
  EXPECT_DOUBLE_EQ(both[1], 19.0);
}

TEST_F(ValidateSimInputTest, ManyCategoriesAreWarnedAboutBeforeTheRanges) {
  useTi([](nuvo_image *ti) {
    return makeImage(ti, 30, 30, 1, {"facies"},
                     [](int ix, int iy, int, int) { return (ix + 2 * iy) % 25 + 0.0; });
  });
  radiiFor(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE);
  ASSERT_FALSE(warnings().empty());
  EXPECT_EQ(warnings()[0], 80);

  rec_.nseen = 0;
  si_.distanceType[0] = 1;  // continuous: one pass, no warning
  radiiFor(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE);
  for (int w : warnings()) EXPECT_NE(w, 80);
}

TEST_F(ValidateSimInputTest, AConstantTiHasNoRangeAndKeepsTheRadii) {
  useTi([](nuvo_image *ti) {
    return makeImage(ti, 20, 20, 1, {"facies"}, [](int, int, int, int) { return 1.0; });
  });
  neighborhood().radiusMode = SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XYZ;
  EXPECT_EQ(verdict(), -1061);
  EXPECT_EQ(neighborhood().rx, 3.0);
  EXPECT_EQ(neighborhood().rz, 0.0);
}

TEST_F(ValidateSimInputTest, AStopRequestOrACallbackCodeEndsValidation) {
  int error = 0;
  rec_.pm.stopFlag = 1;
  EXPECT_EQ(NUVOValidateSimInput(&si_, &rec_.pm, Recorder::callback, &error), -1000);
  rec_.pm.stopFlag = 0;

  setManualRadii(15.0, 3.0, 0.0);
  rec_.answer = 7;
  EXPECT_EQ(NUVOValidateSimInput(&si_, &rec_.pm, Recorder::callback, &error), 7);
  EXPECT_EQ(warnings(), std::vector<int>{25});

  setManualRadii(15.0, 3.0, 0.0);
  EXPECT_EQ(NUVOValidateSimInput(&si_, nullptr, nullptr, &error), 0);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(neighborhood().rx, 9.0);
}

// One pyramid level (steps 2, 2, 0, default factors) for the only variable, then
// one inconsistency with the rest of the input at a time.
TEST_F(ValidateSimInputTest, PyramidsAgainstTheInput) {
  *si_.pyramidGeneralParameters = {1,
                                   valuesOf<int>({2}),
                                   valuesOf<int>({2}),
                                   valuesOf<int>({0}),
                                   PYRAMID_SIM_HIERARCHICAL,
                                   valuesOf<double>({0.5, 0.5, 0.5 / 3, 0.5, 1}),
                                   valuesOf<double>({1, 1, 1, 1, 1}),
                                   valuesOf<double>({1, 4})};
  si_.pyramidParameters = initialisedRecords<nuvo_pyramidParameters>(1, NUVOInitPyramidParameters);
  nuvo_pyramidParameters &p = si_.pyramidParameters[0];
  p = {1, PYRAMID_CATEGORICAL_AUTO, nullptr};
  EXPECT_EQ(verdict(), 0);
  p.nlevel = 0;
  EXPECT_EQ(verdict(), -3655);
  p.nlevel = 1;
  si_.distanceType[0] = 1;
  EXPECT_EQ(verdict(), -3657);
  p.pyramidType = PYRAMID_CONTINUOUS;
  EXPECT_EQ(verdict(), 0);
  si_.distanceType[0] = 0;
  EXPECT_EQ(verdict(), -3658);
  p.pyramidType = PYRAMID_CATEGORICAL_TO_CONTINUOUS;

  constexpr char kClasses[] = "2  1 -0.5 0.5  1 0.5 1.5";  // the two stripe values
  nuvo_softProbability &sp = si_.softProbability[0];
  sp.probabilityConstraintUsage = NUVO_PROBABILITY_CONSTRAINT_GLOBAL;
  sp.classOfValues = nuvo_test::newClasses(kClasses);
  sp.comparingPdfMethod = NUVO_COMPARING_PDF_JSD;
  sp.constantThreshold = 0.01;
  sp.globalPdf = valuesOf<double>({0.5, 0.5});
  EXPECT_EQ(verdict(), -3665);
  NUVOFreeSoftProbability(&sp);
  si_.blockData[0].blockDataUsage = NUVO_BLOCK_DATA_MEAN;
  ASSERT_EQ(NUVOReadBlockData(&si_.blockData[0], TempStream("1\n1 0.5 0.1 0 1\n0 0 0\n").get()), 0);
  EXPECT_EQ(verdict(), -3666);
  NUVOFreeBlockData(&si_.blockData[0]);
  nuvo_connectivity &c = si_.connectivity[0];
  c.connectivityConstraintUsage = NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER;
  c.classOfValues = nuvo_test::newClasses(kClasses);
  c.varName = nuvo_test::ownedText("label");
  c.tiAsRefFlag = 1;
  c.threshold = 0.1;
  EXPECT_NE(verdict(), -3667);  // connecting paths pass the pyramid checks
  c.connectivityConstraintUsage = NUVO_CONNECTIVITY_PATTERN;
  EXPECT_EQ(verdict(), -3667);
}

}  // namespace
