#include <gtest/gtest.h>

#include <string>

#include "nuvo_searchneighborhood.h"
#include "tests/support/temp_stream.hpp"
#include "tests/support/verdict.hpp"

namespace {

using nuvo::test::printed;
using nuvo::test::TempStream;

nuvo_searchNeighborhoodParameters initialised() {
  nuvo_searchNeighborhoodParameters p;
  NUVOInitSearchNeighborhoodParameters(&p);
  return p;
}

int errorOf(const nuvo_searchNeighborhoodParameters &p) {
  return nuvo_test::verdictOf(NUVOValidateSearchNeighborhoodParameters, &p);
}

// The keyword form is read in the parameter-file tests; the bare form of ten
// values sets the manual modes.
TEST(SearchNeighborhoodParameters, BareValuesSetTheManualModesAndRotation) {
  nuvo_searchNeighborhoodParameters p = initialised();
  p.radiusMode = SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT;
  ASSERT_EQ(NUVOReadSearchNeighborhoodParameters(&p, 0, TempStream("1 2 3 4 5 6 7 8 9 10").get()),
            0);
  EXPECT_EQ(p.radiusMode, SEARCHNEIGHBORHOOD_RADIUS_MANUAL);
  EXPECT_EQ(p.anisotropyRatioMode, SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL);
  EXPECT_EQ(p.rotationFlag, SEARCHNEIGHBORHOOD_ROTATION_ON);
  EXPECT_EQ(p.rx, 1.0);
  EXPECT_EQ(p.power, 10.0);
  EXPECT_EQ(NUVOReadSearchNeighborhoodParameters(&p, 0, TempStream("1 2 3 4 5 6 7").get()), -887);
}

TEST(SearchNeighborhoodParameters, ValidationFollowsItsOrder) {
  nuvo_searchNeighborhoodParameters p = initialised();
  p.ax = p.ay = p.az = 1.0;
  EXPECT_EQ(errorOf(p), 0);  // zero radii flatten the axes
  p.rx = -1.0;
  p.ry = -1.0;
  p.ax = 0.0;
  EXPECT_EQ(errorOf(p), -680);
  p.rx = 0.0;
  EXPECT_EQ(errorOf(p), -681);
  p.ry = 0.0;
  p.rz = -0.5;
  EXPECT_EQ(errorOf(p), -682);
  p.rz = 0.0;
  EXPECT_EQ(errorOf(p), -683);
  p.ax = 1e-6;
  p.ay = 9e-7;
  EXPECT_EQ(errorOf(p), -684);
  p.ay = 1.0;
  p.az = -1.0;
  EXPECT_EQ(errorOf(p), -685);
  p.anisotropyRatioMode = 7;
  EXPECT_EQ(errorOf(p), -687);
  p.anisotropyRatioMode = SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XYZ;
  EXPECT_EQ(errorOf(p), 0);
  p.radiusMode = 8;
  EXPECT_EQ(errorOf(p), -686);
  // Radii of an automatic mode are not checked: they are computed later.
  p.radiusMode = SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE;
  p.rx = -5.0;
  EXPECT_EQ(errorOf(p), 0);
}

TEST(SearchNeighborhoodParameters, CompareIgnoresModesAndRotationFlag) {
  nuvo_searchNeighborhoodParameters a = initialised();
  nuvo_searchNeighborhoodParameters b = initialised();
  b.radiusMode = SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE;
  b.rotationFlag = SEARCHNEIGHBORHOOD_ROTATION_ON;
  EXPECT_EQ(NUVOCmpSearchNeighborhoodParameters(&a, &b), 0);
  for (double nuvo_searchNeighborhoodParameters::*field :
       {&nuvo_searchNeighborhoodParameters::rx, &nuvo_searchNeighborhoodParameters::az,
        &nuvo_searchNeighborhoodParameters::angle3, &nuvo_searchNeighborhoodParameters::power}) {
    nuvo_searchNeighborhoodParameters c = a;
    c.*field = 0.5;
    EXPECT_EQ(NUVOCmpSearchNeighborhoodParameters(&a, &c), 1);
  }
}

TEST(SearchNeighborhoodParameters, PrintsModesWithTheirMeaning) {
  nuvo_searchNeighborhoodParameters p = initialised();
  p.anisotropyRatioMode = SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XZ;
  p.rx = 12.5;
  p.rotationFlag = 5;
  std::string text = printed([&](FILE *f) { NUVOPrintSearchNeighborhoodParameters(&p, "   ", f); });
  for (const char *line :
       {"   radiusMode: SEARCHNEIGHBORHOOD_RADIUS_MANUAL (given)\n   rx:      12.500000\n",
        "   anisotropyRatioMode: SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XZ "
        "(ax = az = max(rx, rz), ay = ry)\n",
        "   rotationFlag: unknown\n   angle1 (azimuth):       0.000000\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line << text;
}

}  // namespace
