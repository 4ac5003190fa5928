#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "input/text_io.hpp"
#include "nuvo_siminput.h"
#include "test_files.hpp"
#include "test_streams.hpp"

namespace {

using nuvo_test::gslibImage;
using nuvo_test::kPointSet;
using nuvo_test::printed;
using nuvo_test::TempFolder;

// Owned copies of texts in the library's slot layout, as the reader builds them.
char **texts(std::initializer_list<const char *> values, int slotSize) {
  char **slots = nuvo::allocateTextSlots(static_cast<int>(values.size()), slotSize);
  int k = 0;
  for (const char *v : values) std::strcpy(slots[k++], v);
  return slots;
}
char *text(const char *value) {
  char *t = nuvo::allocateText(NUVO_FILE_NAME_MAX + 1);
  std::strcpy(t, value);
  return t;
}
template <typename T>
T *array(std::initializer_list<T> values) {
  T *a = static_cast<T *>(std::calloc(values.size(), sizeof(T)));
  std::copy(values.begin(), values.end(), a);
  return a;
}
template <typename T, typename Init>
T *records(int n, Init init) {
  T *a = static_cast<T *>(std::calloc(static_cast<std::size_t>(n), sizeof(T)));
  for (int i = 0; i < n; ++i) init(&a[i]);
  return a;
}

class SimInputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    NUVOInitSimInputASCII(&ascii_);
    NUVOInitSimInput(&input_);
    tiFile_ = folder_.write("ti.gslib", gslibImage(2));
    pdfFile_ = folder_.write("pdf.gslib", gslibImage(2));
    oneVarFile_ = folder_.write("one.gslib", gslibImage(1));
    pointSetFile_ = folder_.write("ps.txt", kPointSet);
    fillAscii();
  }
  void TearDown() override {
    NUVOFreeSimInputASCII(&ascii_);
    NUVOFreeSimInput(&input_);
  }

  // Two variables on a 4 x 3 x 2 grid, the simulation grid and one file as
  // training images, every kind of file, default post-processing.
  void fillAscii() {
    nuvo_simInputASCII &a = ascii_;
    a.simGridNx = 4;
    a.simGridNy = 3;
    a.simGridNz = 2;
    a.simGridSx = a.simGridSy = a.simGridSz = 1.0;
    a.simGridOx = 10.0;
    a.nsimVar = 2;
    a.simVarName = texts({"v0", "v1"}, NUVO_VAR_NAME_MAX + 1);
    a.outputVarFlag = array<signed char>({1, 1});
    a.formatStringVar = texts({"%.3f", NUVO_DEFAULT_FORMAT_NAME}, NUVO_VAR_NAME_MAX + 1);
    a.outputSimJob = OUTPUT_SIM_ONE_FILE_PER_VARIABLE;
    a.outputSimImageFileName = texts({"first.gslib", "second.gslib"}, NUVO_FILE_NAME_MAX + 1);
    a.outputReportFlag = 1;
    a.outputReportFileName = text("report.txt");
    a.ntrainImage = 2;
    a.trainImageFileName =
        texts({NUVO_SIM_GRID_AS_TI_NAME, tiFile_.c_str()}, NUVO_FILE_NAME_MAX + 1);
    a.pdfTrainImageFileName = text(pdfFile_.c_str());
    a.ndataImageFile = 1;
    a.dataImageFileName = texts({tiFile_.c_str()}, NUVO_FILE_NAME_MAX + 1);
    a.ndataPointSetFile = 1;
    a.dataPointSetFileName = texts({pointSetFile_.c_str()}, NUVO_FILE_NAME_MAX + 1);
    a.maskImageFlag = 1;
    a.maskImageFileName = text(oneVarFile_.c_str());
    a.homothetyUsage = 2;
    a.homothetyXRatioImageFlag = 1;
    a.homothetyXRatioImageFileName = text(tiFile_.c_str());
    a.homothetyYRatioValue = array<double>({0.5, 2.0});
    a.homothetyZRatioValue = array<double>({1.0, 1.0});
    a.rotationUsage = 1;
    a.rotationAzimuthValue = array<double>({30.0});
    a.rotationDipImageFlag = 1;
    a.rotationDipImageFileName = text(oneVarFile_.c_str());
    a.rotationPlungeValue = array<double>({0.0});
    a.normalizingType = NORMALIZING_UNIFORM;
    a.searchNeighborhoodParameters =
        records<nuvo_searchNeighborhoodParameters>(2, NUVOInitSearchNeighborhoodParameters);
    a.searchNeighborhoodParameters[1].rx = 7.0;
    a.nneighboringNode = array<int>({24, 12});
    a.neighboringNodeDensity = array<double>({1.0, 0.5});
    a.rescalingMode = array<int>({RESCALING_NONE, RESCALING_MIN_MAX});
    a.rescalingTargetMax = array<double>({0.0, 4.0});
    a.relativeDistanceFlag = array<signed char>({0, 1});
    a.distanceType = array<int>({0, 3});
    a.powerLpDistance = array<double>({1.0, 0.5});
    a.powerLpDistanceInv = array<double>({1.0, 2.0});
    a.conditioningWeightFactor = array<double>({1.0, 2.0});
    a.simAndPathParameters = records<nuvo_simAndPathParameters>(1, NUVOInitSimAndPathParameters);
    a.simAndPathParameters->pathType = PATH_UNILATERAL;
    a.simAndPathParameters->nunilateralOrder = 4;
    a.simAndPathParameters->unilateralOrder = array<int>({1, 2, 0, 0});
    a.distanceThreshold = array<double>({0.05, 0.1});
    a.softProbabilityASCII = records<nuvo_softProbabilityASCII>(2, NUVOInitSoftProbabilityASCII);
    a.connectivityASCII = records<nuvo_connectivityASCII>(2, NUVOInitConnectivityASCII);
    a.blockDataASCII = records<nuvo_blockDataASCII>(2, NUVOInitBlockDataASCII);
    a.maxScanFraction = array<double>({0.5, 0.1});
    a.pyramidGeneralParametersASCII =
        records<nuvo_pyramidGeneralParametersASCII>(1, NUVOInitPyramidGeneralParametersASCII);
    a.tolerance = 0.25;
    a.npostProcessingPathMax = 2;
    a.postProcessingParametersJob = POST_PROCESSING_PARAMETERS_DEFAULT;
    a.seed = 444;
    a.seedIncrement = 1;
    a.nrealization = 3;
  }

  int convert() {
    NUVOFreeSimInput(&input_);
    return NUVOSimInputASCIIToSimInput(&ascii_, &input_);
  }

  TempFolder folder_;
  std::string tiFile_, pdfFile_, oneVarFile_, pointSetFile_;
  nuvo_simInputASCII ascii_;
  nuvo_simInput input_;
};

TEST_F(SimInputTest, ConversionLoadsEveryFileAndCopiesTheSettings) {
  ASSERT_EQ(convert(), 0);
  const nuvo_simInput &in = input_;
  ASSERT_NE(in.simImage, nullptr);
  EXPECT_EQ(in.simImage->grid->nxyz, 24);
  EXPECT_EQ(in.simImage->grid->nxy, 12);
  EXPECT_EQ(in.simImage->grid->ox, 10.0);
  EXPECT_EQ(in.nvar, 2);
  EXPECT_STREQ(in.simImage->varName[1], "v1");
  EXPECT_EQ(in.simImage->var[47], NUVO_MISSING_VALUE);
  EXPECT_STREQ(in.formatStringVar[0], "%.3f");
  EXPECT_STREQ(in.formatStringVar[1], "%.10g");
  EXPECT_STREQ(in.outputSimImageFileName[1], "second.gslib");
  EXPECT_STREQ(in.outputReportFileName, "report.txt");

  EXPECT_EQ(in.simGridAsTiFlag[0], 1);
  EXPECT_EQ(in.trainImage[0].var, nullptr);
  EXPECT_EQ(in.simGridAsTiFlag[1], 0);
  EXPECT_EQ(in.trainImage[1].nvar, 2);
  ASSERT_NE(in.pdfTrainImage, nullptr);
  EXPECT_EQ(in.dataImage[0].grid->nxyz, 4);
  EXPECT_EQ(in.dataPointSet[0].npoint, 2);
  EXPECT_EQ(in.maskImage->nvar, 1);

  EXPECT_EQ(in.homothetyXRatioImage->nvar, 2);
  EXPECT_EQ(in.homothetyXRatioValue, nullptr);
  EXPECT_EQ(in.homothetyYRatioValue[1], 2.0);
  EXPECT_EQ(in.rotationAzimuthValue[0], 30.0);
  EXPECT_EQ(in.rotationDipImage->nvar, 1);
  EXPECT_EQ(in.rotationPlungeImage, nullptr);

  EXPECT_EQ(in.searchNeighborhoodParameters[1].rx, 7.0);
  EXPECT_EQ(in.rescalingTargetMax[1], 4.0);
  EXPECT_EQ(in.powerLpDistanceInv[1], 2.0);
  EXPECT_EQ(in.simAndPathParameters->unilateralOrder[1], 2);
  EXPECT_NE(in.simAndPathParameters->unilateralOrder, ascii_.simAndPathParameters->unilateralOrder);
  ASSERT_NE(in.softProbability, nullptr);
  ASSERT_NE(in.pyramidParameters, nullptr);
  EXPECT_EQ(in.pyramidParameters[1].nlevel, 0);
  EXPECT_EQ(in.seed, 444);
  EXPECT_EQ(in.nrealization, 3);
}

TEST_F(SimInputTest, DefaultPostProcessingDependsOnGridDimensionsAndDistanceType) {
  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(input_.postProcessingNneighboringNode[0], 8);  // 4 x 3 x 2: three dimensions
  EXPECT_EQ(input_.postProcessingNneighboringNode[1], 8);
  EXPECT_EQ(input_.postProcessingNeighboringNodeDensity[1], 1.0);
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

TEST_F(SimInputTest, PostProcessingCopiesTheMainSettingsOrTheManualOnes) {
  ascii_.postProcessingParametersJob = POST_PROCESSING_PARAMETERS_SAME;
  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(input_.postProcessingNneighboringNode[0], 24);
  EXPECT_EQ(input_.postProcessingNeighboringNodeDensity[1], 0.5);
  EXPECT_EQ(input_.postProcessingDistanceThreshold[1], 0.1);
  EXPECT_EQ(input_.postProcessingMaxScanFraction[0], 0.5);
  EXPECT_EQ(input_.postProcessingTolerance, 0.25);

  ascii_.postProcessingParametersJob = POST_PROCESSING_PARAMETERS_MANUAL;
  ascii_.postProcessingNneighboringNode = array<int>({3, 5});
  ascii_.postProcessingNeighboringNodeDensity = array<double>({0.1, 0.2});
  ascii_.postProcessingDistanceThreshold = array<double>({0.3, 0.4});
  ascii_.postProcessingMaxScanFraction = array<double>({0.6, 0.7});
  ascii_.postProcessingTolerance = 0.8;
  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(input_.postProcessingNneighboringNode[1], 5);
  EXPECT_EQ(input_.postProcessingMaxScanFraction[1], 0.7);
  EXPECT_EQ(input_.postProcessingTolerance, 0.8);

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
      {&ascii_.maskImageFileName, "mask", -125},
      {&ascii_.homothetyXRatioImageFileName, "homothety x", -113},
      {&ascii_.rotationDipImageFileName, "dip", -117},
  };
  std::string missing = folder_.missing();
  for (const Case &k : cases) {
    char saved[NUVO_FILE_NAME_MAX + 1];
    std::strcpy(saved, *k.slot);
    std::strcpy(*k.slot, missing.c_str());
    EXPECT_EQ(convert(), k.code) << k.name;  // the partly built input is freed by the next call
    std::strcpy(*k.slot, saved);
  }
  // The other transform images, switched from values to files one at a time.
  struct Axis {
    signed char *flag;
    char **file;
    int code;
  };
  for (const Axis &k :
       {Axis{&ascii_.homothetyYRatioImageFlag, &ascii_.homothetyYRatioImageFileName, -114},
        Axis{&ascii_.homothetyZRatioImageFlag, &ascii_.homothetyZRatioImageFileName, -115},
        Axis{&ascii_.rotationAzimuthImageFlag, &ascii_.rotationAzimuthImageFileName, -116},
        Axis{&ascii_.rotationPlungeImageFlag, &ascii_.rotationPlungeImageFileName, -118}}) {
    *k.flag = 1;
    *k.file = text(missing.c_str());
    EXPECT_EQ(convert(), k.code);
    *k.flag = 0;
  }
  // A file that opens but does not hold an image gives the reader's code.
  std::strcpy(ascii_.trainImageFileName[1], pointSetFile_.c_str());
  int rc = convert();
  EXPECT_LT(rc, 0);
  EXPECT_NE(rc, -112);
}

TEST_F(SimInputTest, OneTrainingImageNeedsNoPdf) {
  ascii_.ntrainImage = 1;
  std::strcpy(ascii_.pdfTrainImageFileName, folder_.missing().c_str());
  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(input_.pdfTrainImage, nullptr);
  EXPECT_EQ(input_.simGridAsTiFlag[0], 1);
  std::string dump = printed([&](FILE *f) { EXPECT_EQ(NUVOPrintSimInput(&input_, "", f), 0); });
  EXPECT_EQ(dump.find("pdfTrainImage"), std::string::npos);
  EXPECT_NE(dump.find("trainImage for training image   0\n"
                      "   simulation grid is set as training image\n"),
            std::string::npos);
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

TEST_F(SimInputTest, PrintShowsEveryFieldInItsForm) {
  ASSERT_EQ(convert(), 0);
  input_.outputSimJob = 7;
  std::string dump = printed([&](FILE *f) { EXPECT_EQ(NUVOPrintSimInput(&input_, "# ", f), 0); });
  for (const char *line : {
           "# consoleAppFlag: 0",
           "# simImage:",
           "#    nvar:         2",
           "# nvar: 2",
           "# outputVarFlag for variable   1: 1",
           "# formatStringVar for variable   1: %.10g",
           "# outputSimJob: unknown",
           "# outputReportFlag: 1",
           "# outputReportFileName: report.txt",
           "# simGridAsTiFlag for training image   0: 1",
           "# trainImage for training image   0",
           "#    simulation grid is set as training image",
           "# trainImage for training image   1",
           "# pdfTrainImage:",
           "# dataPointSet for data point set   0",
           "# homothetyUsage: 2",
           "# homothetyXRatioImage:",
           "# homothetyYRatioValue:       0.500000       2.000000",
           "# rotationDipImage:",
           "# rotationPlungeValue:       0.000000",
           "# normalizingType: NORMALIZING_UNIFORM",
           "# searchNeighborhoodParameters for variable   1",
           "#    rx:       7.000000",
           "# rescalingMode for variable   1: RESCALING_MIN_MAX",
           "# rescalingTargetMin: NOT ALLOCATED",
           "# distanceType for variable   1: 3",
           "#    pathType: PATH_UNILATERAL",
           "# distanceThreshold for variable   0:       0.050000",
           "# softProbability:",
           "# softProbability for variable   1",
           "# connectivity for variable   0",
           "# blockData for variable   1",
           "# maxScanFraction for training image   1:       0.100000",
           "# pyramidGeneralParameters:",
           "# pyramidParameters for variable   0",
           "# postProcessingMaxScanFraction for training image   0:       0.200000",
           "# postProcessingTolerance:       0.000000",
           "# nrealization: 3",
       })
    EXPECT_TRUE(hasLine(dump, line)) << line;
  // Only the sources given are printed; an unknown output job has no file names.
  EXPECT_FALSE(hasLine(dump, "# homothetyXRatioValue: NOT ALLOCATED"));
  EXPECT_EQ(dump.find("outputSimImageFileName"), std::string::npos);
}

TEST_F(SimInputTest, PrintMarksMissingArraysAndUsesOutputVariables) {
  ascii_.outputVarFlag[0] = 0;
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
  EXPECT_TRUE(hasLine(dump, "outputSimImageFileName for variable   1: first.gslib"));
}

TEST_F(SimInputTest, AsciiPrintShowsFileNames) {
  std::string dump =
      printed([&](FILE *f) { EXPECT_EQ(NUVOPrintSimInputASCII(&ascii_, "", f), 0); });
  for (std::string line : {
           std::string("simGridNx: 4"),
           std::string("simGridOx:      10.000000"),
           std::string("simVarName for variable   1: v1"),
           std::string("formatStringVar for variable   1: DEFAULT_FORMAT"),
           std::string("outputSimJob: OUTPUT_SIM_ONE_FILE_PER_VARIABLE"),
           std::string("outputSimImageFileName for variable   0: first.gslib"),
           std::string("trainImageFileName for training image   0: _DATA_"),
           "pdfTrainImageFileName: " + pdfFile_,
           "homothetyXRatioImageFileName: " + tiFile_,
           std::string("softProbabilityASCII for variable   0"),
           std::string("npostProcessingPathMax: 2"),
           std::string("postProcessingParametersJob: POST_PROCESSING_PARAMETERS_DEFAULT"),
           std::string("postProcessingNneighboringNode: NOT ALLOCATED"),
       })
    EXPECT_TRUE(hasLine(dump, line)) << line;
}

TEST_F(SimInputTest, FreeAcceptsInitialisedAndPartlyFilledRecords) {
  nuvo_simInput empty;
  NUVOInitSimInput(&empty);
  NUVOFreeSimInput(&empty);
  NUVOFreeSimInput(&empty);
  EXPECT_EQ(empty.simImage, nullptr);
  std::string dump = printed([&](FILE *f) { EXPECT_EQ(NUVOPrintSimInput(&empty, "", f), 0); });
  EXPECT_TRUE(hasLine(dump, "simImage: NOT ALLOCATED"));

  nuvo_simInputASCII emptyAscii;
  NUVOInitSimInputASCII(&emptyAscii);
  NUVOFreeSimInputASCII(&emptyAscii);
  EXPECT_EQ(emptyAscii.simVarName, nullptr);

  // A conversion that stops at the data images leaves the training images
  // loaded; freeing releases them (the sanitizer build checks for leaks).
  std::strcpy(ascii_.dataImageFileName[0], folder_.missing().c_str());
  ASSERT_EQ(convert(), -111);
  EXPECT_EQ(input_.trainImage[1].nvar, 2);
  EXPECT_EQ(input_.maskImage, nullptr);
  NUVOFreeSimInput(&input_);
  EXPECT_EQ(input_.trainImage, nullptr);
  EXPECT_EQ(input_.nvar, 0);
}

}  // namespace
