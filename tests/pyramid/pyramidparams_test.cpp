#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nuvo_pyramidparams.h"
#include "tests/constraints/test_files.hpp"
#include "tests/support/temp_stream.hpp"
#include "tests/support/verdict.hpp"

namespace {

using nuvo::test::printed;

// Two levels reduced by (2, 2, 1) each, hierarchical, every factor by default.
constexpr char kTwoLevelsDefault[] =
    "2 // levels\n"
    "2 2 1\n"
    "2 2 1\n"
    "PYRAMID_SIM_HIERARCHICAL\n"
    "PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_DEFAULT\n"
    "PYRAMID_THRESHOLD_ADAPTING_FACTOR_DEFAULT\n"
    "PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_DEFAULT\n";

std::vector<double> values(const double *array, int n) {
  return {array, array + n};
}

class PyramidGeneralTest : public ::testing::Test {
 protected:
  int read(const std::string &text) {
    return ascii_.read(NUVOReadPyramidGeneralParametersASCII, text);
  }
  // Reads text and converts it into p_; fails the test on any error.
  void resolve(const std::string &text) {
    ASSERT_EQ(read(text), 0);
    NUVOFreePyramidGeneralParameters(&p_);
    ASSERT_EQ(NUVOPyramidGeneralParametersASCIIToPyramidGeneralParameters(&ascii_, &p_), 0);
  }
  int validate() {
    return nuvo_test::verdictOf(NUVOValidatePyramidGeneralParameters, &p_, nullptr, nullptr);
  }

  using Parameters =
      nuvo_test::Owned<nuvo_pyramidGeneralParameters, NUVOInitPyramidGeneralParameters,
                       NUVOFreePyramidGeneralParameters>;
  nuvo_test::Owned<nuvo_pyramidGeneralParametersASCII, NUVOInitPyramidGeneralParametersASCII,
                   NUVOFreePyramidGeneralParametersASCII>
      ascii_;
  Parameters p_, copy_;
};

TEST_F(PyramidGeneralTest, HierarchicalDefaults) {
  resolve(kTwoLevelsDefault);
  EXPECT_EQ(ascii_.factorNneighboringNode, nullptr);
  ASSERT_EQ(NUVOGetPyramidNFactor(p_.pyramidSimulationMode, p_.npyramidLevel), 9);
  EXPECT_EQ(values(p_.factorNneighboringNode, 9),
            (std::vector<double>{0.5, 0.5, 0.25 / 3, 0.25, 0.5, 0.5, 0.5 / 3, 0.5, 1.0}));
  EXPECT_EQ(values(p_.factorDistanceThreshold, 9), std::vector<double>(9, 1.0));
  EXPECT_EQ(values(p_.factorMaxScanFraction, 3), (std::vector<double>{1.0, 4.0, 16.0}));
  EXPECT_EQ(validate(), 0);

  // The factors are printed per level, a and b pairs side by side, then the coarsest.
  const std::string text =
      printed([&](FILE *f) { NUVOPrintPyramidGeneralParameters(&p_, "# ", f); });
  for (const char *line :
       {"# ...for level  0: 0.500, 0.500 (a - cond / sim), 0.083, 0.250 (b - cond / sim)\n",
        "# ...for coarsest level ( 2): 1.000 (b)\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line << text;
}

TEST_F(PyramidGeneralTest, OneByOneDefaultsAndZeroSteps) {
  resolve(
      "3 2 0 1 3 3 0 0 0 0 PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE "
      "PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_DEFAULT PYRAMID_THRESHOLD_ADAPTING_FACTOR_DEFAULT "
      "PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_DEFAULT");
  EXPECT_EQ(values(p_.factorNneighboringNode, 4), std::vector<double>(4, 0.25));
  EXPECT_EQ(values(p_.factorDistanceThreshold, 4), std::vector<double>(4, 1.0));
  // A step of 0 keeps the size of its direction.
  EXPECT_EQ(values(p_.factorMaxScanFraction, 4), (std::vector<double>{1.0, 2.0, 18.0, 18.0}));
  EXPECT_EQ(validate(), 0);
  std::string text = printed([&](FILE *f) { NUVOPrintPyramidGeneralParameters(&p_, "", f); });
  EXPECT_NE(text.find("(factorNneighboringNode):\nfactor for pyramid level          0: 0.250\n"),
            std::string::npos)
      << text;
}

TEST_F(PyramidGeneralTest, ManualFactorsAreKeptAndCopiedDeeply) {
  resolve(
      "1 2 2 2 PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION\n"
      "PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL 1 2 3 4 5\n"
      "PYRAMID_THRESHOLD_ADAPTING_FACTOR_MANUAL 6 7 8 9 10\n"
      "PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_MANUAL 0.5 2\n");
  EXPECT_EQ(values(p_.factorNneighboringNode, 5), (std::vector<double>{1, 2, 3, 4, 5}));
  EXPECT_EQ(values(p_.factorDistanceThreshold, 5), (std::vector<double>{6, 7, 8, 9, 10}));
  EXPECT_EQ(values(p_.factorMaxScanFraction, 2), (std::vector<double>{0.5, 2}));

  ASSERT_EQ(NUVOCopyPyramidGeneralParameters(&p_, &copy_), 0);
  NUVOFreePyramidGeneralParameters(&p_);
  EXPECT_EQ(copy_.kz[0], 2);
  EXPECT_EQ(values(copy_.factorMaxScanFraction, 2), (std::vector<double>{0.5, 2}));
}

TEST_F(PyramidGeneralTest, NoPyramid) {
  resolve("0 // no pyramid");
  EXPECT_EQ(validate(), 0);
  EXPECT_EQ(printed([&](FILE *f) { NUVOPrintPyramidGeneralParameters(&p_, "", f); }),
            "npyramidLevel: 0 (no use of pyramid)\n");

  // Mode NONE with a level reads without factors but is refused.
  resolve("1 2 2 2 PYRAMID_SIM_NONE");
  EXPECT_EQ(p_.factorNneighboringNode, nullptr);
  EXPECT_EQ(p_.factorMaxScanFraction, nullptr);
  EXPECT_EQ(validate(), -3623);
}

// A missing or malformed value of each field gives that field's code; the
// parameter-file tests check this for every token of a file holding every
// section. Here: the fields that file does not hold.
TEST_F(PyramidGeneralTest, ReadingManualNeighborAndScanFactors) {
  const std::string head = "1 2 2 1 PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE ";
  const std::string threshold = head +
                                "PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL 0.5 0.5 "
                                "PYRAMID_THRESHOLD_ADAPTING_FACTOR_DEFAULT ";
  EXPECT_EQ(read(head + "PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL 0.5"), -3595);
  EXPECT_EQ(read(threshold + "PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_MANUAL 1"), -3597);
  EXPECT_EQ(read(threshold + "PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_MANUAL 1 4"), 0);
}

TEST_F(PyramidGeneralTest, RulesInOrder) {
  resolve(kTwoLevelsDefault);
  // Factors are checked index by index, the neighbor factor before the threshold one.
  p_.factorNneighboringNode[1] = 101.0;
  p_.factorDistanceThreshold[0] = 0.0;
  EXPECT_EQ(validate(), -3619);
  p_.factorDistanceThreshold[0] = 1.0;
  EXPECT_EQ(validate(), -3618);
  p_.factorNneighboringNode[1] = 1e-7;
  EXPECT_EQ(validate(), -3617);
  p_.factorNneighboringNode[1] = 1.0;
  p_.factorMaxScanFraction[0] = 0.0;
  EXPECT_EQ(validate(), -3651);

  p_.pyramidSimulationMode = 4;
  EXPECT_EQ(validate(), -3623);
  p_.kz[1] = 6;
  EXPECT_EQ(validate(), -3629);
  p_.kx[1] = -1;
  EXPECT_EQ(validate(), -3624);
  p_.npyramidLevel = 11;
  EXPECT_EQ(validate(), -3622);
  p_.npyramidLevel = -1;
  EXPECT_EQ(validate(), -3621);
}

class PyramidParametersTest : public ::testing::Test {
 protected:
  int read(const std::string &text) { return p_.read(NUVOReadPyramidParameters, text); }
  int validate() {
    return nuvo_test::verdictOf(NUVOValidatePyramidParameters, &p_, nullptr, nullptr);
  }

  using Parameters = nuvo_test::Owned<nuvo_pyramidParameters, NUVOInitPyramidParameters,
                                      NUVOFreePyramidParameters>;
  Parameters p_, copy_;
};

TEST_F(PyramidParametersTest, CustomClassesReadCopyAndPrint) {
  ASSERT_EQ(read("2 // nlevel\nPYRAMID_CATEGORICAL_CUSTOM\n2 1 0 1 1 1 3"), 0);
  EXPECT_EQ(validate(), 0);
  ASSERT_EQ(NUVOCopyPyramidParameters(&p_, &copy_), 0);
  NUVOFreePyramidParameters(&p_);
  EXPECT_EQ(p_.classOfValues, nullptr);
  const std::string text =
      printed([&](FILE *f) { EXPECT_EQ(NUVOPrintPyramidParameters(&copy_, "# ", f), 0); });
  EXPECT_EQ(text.substr(0, text.find("#    class   0")),
            "# nlevel: 2\n# Pyramid type:PYRAMID_CATEGORICAL_CUSTOM\n# classOfValues:\n"
            "#    nclass:   2\n");
}

TEST_F(PyramidParametersTest, OtherTypesAndNoLevel) {
  ASSERT_EQ(read("1 PYRAMID_CONTINUOUS 2"), 0);
  EXPECT_EQ(p_.classOfValues, nullptr);
  EXPECT_EQ(validate(), 0);
  ASSERT_EQ(read("0 PYRAMID_CONTINUOUS"), 0);
  EXPECT_EQ(p_.pyramidType, PYRAMID_NONE);
  EXPECT_EQ(printed([&](FILE *f) { NUVOPrintPyramidParameters(&p_, "", f); }),
            "nlevel: 0 (no use of pyramid)\n");
}

// The custom classes are not in the parameter-file tests.
TEST_F(PyramidParametersTest, ReadingErrorsOfCustomClassesNameTheField) {
  const std::string custom = "1 PYRAMID_CATEGORICAL_CUSTOM ";
  for (auto [text, code] : {std::pair<std::string, int>{custom + "x", -3613},
                            {custom + "1 y", -3614},
                            {custom + "1 1 i", -3615},
                            {custom + "1 1 0 s", -3616}})
    EXPECT_EQ(read(text), code) << text;
}

TEST_F(PyramidParametersTest, RulesInOrder) {
  ASSERT_EQ(read("1 PYRAMID_CATEGORICAL_CUSTOM 11 1 0 1 1 1 2 1 2 3 1 3 4 1 4 5 1 5 6 1 6 7 "
                 "1 7 8 1 8 9 1 9 10 1 10 11"),
            0);
  EXPECT_EQ(validate(), -3650);
  // The class validator's codes in the pyramid's numbering.
  p_.classOfValues->intervalInf[1][0] = 0.5;  // overlaps class 0
  EXPECT_EQ(validate(), -3646);
  NUVOFreeClassOfValues(p_.classOfValues);
  EXPECT_EQ(validate(), -3641);
  std::free(p_.classOfValues);
  p_.classOfValues = nullptr;
  EXPECT_EQ(validate(), -3635);

  p_.pyramidType = PYRAMID_NONE;
  EXPECT_EQ(validate(), -3633);
  p_.pyramidType = 5;
  EXPECT_EQ(validate(), -3632);
  p_.nlevel = 11;
  EXPECT_EQ(validate(), -3631);
  p_.nlevel = -1;
  EXPECT_EQ(validate(), -3630);
  p_.nlevel = 0;
  EXPECT_EQ(validate(), 0);
}

}  // namespace
