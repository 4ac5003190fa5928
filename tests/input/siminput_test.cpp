#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "input/text_io.hpp"
#include "nuvo_siminput.h"
#include "param_file.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

using nuvo::test::printed;

// The complete parameter file of the reader tests: two variables on a 4 x 3 x 1
// grid, the simulation grid and an image as training images, every kind of data
// file, manual post-processing.
using SimInputTest = nuvo_test::ParameterFileTest;

// The plain copies are covered by the export round trip; this checks what the
// conversion builds: the simulation image, the loaded files, the expanded
// defaults and the records it owns apart from the ASCII ones.
TEST_F(SimInputTest, ConversionBuildsTheGridAndLoadsEveryFile) {
  ASSERT_EQ(convert(), 0);
  const nuvo_simInput &in = input_;
  ASSERT_NE(in.simImage, nullptr);
  EXPECT_EQ(in.simImage->grid->nxyz, 12);
  EXPECT_EQ(in.simImage->grid->ox, 10.0);
  EXPECT_STREQ(in.simImage->varName[1], "poro");
  EXPECT_EQ(in.simImage->var[23], NUVO_MISSING_VALUE);
  EXPECT_STREQ(in.formatStringVar[1], "%.10g");

  EXPECT_EQ(in.simGridAsTiFlag[0], 1);
  EXPECT_EQ(in.trainImage[0].var, nullptr);
  EXPECT_EQ(in.trainImage[1].nvar, 2);
  ASSERT_NE(in.pdfTrainImage, nullptr);
  EXPECT_EQ(in.maskImage->nvar, 1);
  EXPECT_EQ(in.homothetyXRatioImage->nvar, 2);
  EXPECT_EQ(in.rotationPlungeImage, nullptr);
  EXPECT_NE(in.simAndPathParameters->unilateralOrder, ascii_.simAndPathParameters->unilateralOrder);
}

TEST_F(SimInputTest, DefaultPostProcessingDependsOnGridDimensionsAndDistanceType) {
  ascii_.postProcessingParametersJob = POST_PROCESSING_PARAMETERS_DEFAULT;
  ascii_.simGridNz = 2;
  ascii_.maxScanFraction[1] = 0.1;
  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(input_.postProcessingNneighboringNode[1], 8);      // 4 x 3 x 2: three dimensions
  EXPECT_EQ(input_.postProcessingDistanceThreshold[0], 0.02);  // distance type 0
  EXPECT_EQ(input_.postProcessingDistanceThreshold[1], 0.01);
  EXPECT_EQ(input_.postProcessingMaxScanFraction[0], 0.2);  // min(0.2, 0.5)
  EXPECT_EQ(input_.postProcessingMaxScanFraction[1], 0.1);
  EXPECT_EQ(input_.postProcessingTolerance, 0.0);

  struct Case {
    int nx, ny, nz, nneighbor;
  };
  for (const Case &k : {Case{4, 3, 1, 6}, Case{1, 3, 2, 6}, Case{4, 1, 1, 4}, Case{1, 1, 1, 4}}) {
    ascii_.simGridNx = k.nx;
    ascii_.simGridNy = k.ny;
    ascii_.simGridNz = k.nz;
    ASSERT_EQ(convert(), 0);
    EXPECT_EQ(input_.postProcessingNneighboringNode[1], k.nneighbor)
        << k.nx << " x " << k.ny << " x " << k.nz;
  }
}

TEST_F(SimInputTest, PostProcessingTakesTheMainSettingsOrTheManualOnes) {
  ascii_.postProcessingParametersJob = POST_PROCESSING_PARAMETERS_SAME;
  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(input_.postProcessingNneighboringNode[0], 24);
  EXPECT_EQ(input_.postProcessingMaxScanFraction[0], 0.5);
  EXPECT_EQ(input_.postProcessingTolerance, 0.25);

  ascii_.postProcessingParametersJob = POST_PROCESSING_PARAMETERS_MANUAL;
  ascii_.npostProcessingPathMax = 0;
  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(input_.postProcessingNneighboringNode, nullptr);
}

TEST_F(SimInputTest, EachUnopenableFileHasItsCode) {
  struct Case {
    char **slot;
    const char *name;
    int code;
  };
  const Case cases[] = {
      {&ascii_.trainImageFileName[1], "TI", -112},
      {&ascii_.pdfTrainImageFileName, "pdf", -119},
      {&ascii_.dataImageFileName[0], "data image", -111},
      {&ascii_.dataPointSetFileName[0], "point set", -123},
      {&ascii_.rotationDipImageFileName, "dip", -117},
  };
  std::string missing = folder_.missing();
  for (const Case &k : cases) {
    char saved[NUVO_FILE_NAME_MAX + 1];
    std::strcpy(saved, *k.slot);
    std::strcpy(*k.slot, missing.c_str());
    // The partly built input (the sanitizer build checks for leaks) is freed by
    // the next call.
    EXPECT_EQ(convert(), k.code) << k.name;
    std::strcpy(*k.slot, saved);
  }
  // A file that opens but does not hold an image gives the reader's code.
  std::strcpy(ascii_.trainImageFileName[1], folder_.file("ps.txt").c_str());
  int rc = convert();
  EXPECT_LT(rc, 0);
  EXPECT_NE(rc, -112);
}

TEST_F(SimInputTest, OneTrainingImageNeedsNoPdf) {
  ascii_.ntrainImage = 1;
  std::strcpy(ascii_.pdfTrainImageFileName, folder_.missing().c_str());
  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(input_.pdfTrainImage, nullptr);
  std::string dump = printed([&](FILE *f) { EXPECT_EQ(NUVOPrintSimInput(&input_, "", f), 0); });
  EXPECT_EQ(dump.find("pdfTrainImage"), std::string::npos);
}

TEST_F(SimInputTest, ImpossibleGridsAreRefused) {
  ascii_.simGridNy = 0;
  EXPECT_EQ(convert(), -602);
  ascii_.simGridNx = 65536;
  ascii_.simGridNy = 65536;
  EXPECT_EQ(convert(), -610);
}

// Whether the dump holds the line exactly.
bool hasLine(const std::string &dump, const std::string &line) {
  return ("\n" + dump).find("\n" + line + "\n") != std::string::npos;
}

TEST_F(SimInputTest, PrintsShowFieldsInTheirForms) {
  ASSERT_EQ(convert(), 0);
  input_.outputSimJob = 7;
  std::string dump = printed([&](FILE *f) { EXPECT_EQ(NUVOPrintSimInput(&input_, "# ", f), 0); });
  for (const char *line : {
           "# simImage:",
           "#    nvar:         2",
           "# outputSimJob: unknown",
           "# trainImage for training image   0",
           "#    simulation grid is set as training image",
           "# homothetyYRatioValue:       0.500000       2.000000",
           "# rescalingMode for variable   1: RESCALING_MEAN_LENGTH",
           "# maxScanFraction for training image   1:       0.250000",
           "#    pathType: PATH_UNILATERAL",
       })
    EXPECT_TRUE(hasLine(dump, line)) << line;
  // Only the sources given are printed; an unknown output job has no file names.
  EXPECT_FALSE(hasLine(dump, "# homothetyXRatioValue: NOT ALLOCATED"));
  EXPECT_EQ(dump.find("outputSimImageFileName"), std::string::npos);

  dump = printed([&](FILE *f) { EXPECT_EQ(NUVOPrintSimInputASCII(&ascii_, "", f), 0); });
  EXPECT_TRUE(hasLine(dump, "formatStringVar for variable   1: DEFAULT_FORMAT"));
  EXPECT_TRUE(hasLine(dump, "homothetyXRatioImageFileName: " + folder_.file("ti.gslib")));
}

TEST_F(SimInputTest, PrintMarksMissingArraysAndUsesOutputVariables) {
  ascii_.outputVarFlag[0] = 0;
  ascii_.outputVarFlag[1] = 1;
  ascii_.pyramidGeneralParametersASCII->npyramidLevel = 0;
  ASSERT_EQ(convert(), 0);
  NUVOFreeSimAndPathParameters(input_.simAndPathParameters);
  std::free(input_.simAndPathParameters);
  input_.simAndPathParameters = nullptr;
  nuvo::freeTextSlots(input_.formatStringVar);
  input_.formatStringVar = nullptr;
  std::free(input_.distanceThreshold);
  input_.distanceThreshold = nullptr;
  std::string dump = printed([&](FILE *f) { NUVOPrintSimInput(&input_, "", f); });
  EXPECT_TRUE(hasLine(dump, "formatStringVar: UNUSED (NOT ALLOCATED)"));
  EXPECT_TRUE(hasLine(dump, "simAndPathParameters: NOT ALLOCATED"));
  EXPECT_TRUE(hasLine(dump, "distanceThreshold: NOT ALLOCATED"));
  // One output variable left: the first name belongs to variable 1.
  EXPECT_TRUE(hasLine(
      dump, "outputSimImageFileName for variable   1: " + folder_.file("out_facies.gslib")));
}

}  // namespace
