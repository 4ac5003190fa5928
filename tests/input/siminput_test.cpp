#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>

#include "input/text_io.hpp"
#include "nuvo_siminput.h"
#include "param_file.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

namespace fs = std::filesystem;
using nuvo::test::printed;
using nuvo_test::TempFolder;

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

// Export --------------------------------------------------------------------

// Every file of a folder by name, with its content.
std::map<std::string, std::string> folderContent(const std::string &path) {
  std::map<std::string, std::string> files;
  for (const auto &entry : fs::directory_iterator(path))
    files[entry.path().filename().string()] = nuvo_test::fileText(entry.path());
  return files;
}

// Runs in folder for its lifetime: the exported file names are relative to it.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::string &path) : previous_(fs::current_path()) {
    fs::current_path(path);
  }
  ~WorkingFolder() { fs::current_path(previous_); }

 private:
  fs::path previous_;
};

class ExportSimInputTest : public nuvo_test::ParameterFileTest {
 protected:
  void SetUp() override {
    ParameterFileTest::SetUp();
    ASSERT_EQ(convert(), 0);
  }

  // Reads back the parameter file "<folder>/rt.in" into ascii (initialised).
  static int readBack(const TempFolder &folder, nuvo_simInputASCII *ascii) {
    FILE *file = std::fopen(folder.file("rt.in").c_str(), "r");
    if (file == nullptr) return -7100;
    int rc = NUVOReadSimInputASCII(ascii, file);
    std::fclose(file);
    return rc;
  }

  static std::string dump(const nuvo_simInputASCII &ascii) {
    return printed([&](FILE *f) { NUVOPrintSimInputASCII(&ascii, "", f); });
  }
};

TEST_F(ExportSimInputTest, AnExportedInputReadsBackToTheSameInput) {
  TempFolder first;
  ASSERT_EQ(NUVOExportSimInput(&input_, first.path().c_str(), "rt", "\n", 2), 0);
  // One file per image, point set and block data set; the simulation grid used
  // as training image gets none.
  std::map<std::string, std::string> files = folderContent(first.path());
  for (const char *name :
       {"rt.in", "rt_ti1.gslib", "rt_pdfti.gslib", "rt_dataImage0.gslib", "rt_dataPointSet0.gslib",
        "rt_mask.gslib", "rt_homothetyXRatio.gslib", "rt_rotationDip.gslib", "rt_localPdf1.gslib",
        "rt_refConnectivityImage1.gslib", "rt_blockData1.dat"})
    EXPECT_EQ(files.count(name), 1U) << name;
  EXPECT_EQ(files.size(), 11U);

  nuvo_simInputASCII ascii;
  NUVOInitSimInputASCII(&ascii);
  nuvo_simInput again;
  NUVOInitSimInput(&again);
  ASSERT_EQ(readBack(first, &ascii), 0);
  {
    WorkingFolder in(first.path());
    ASSERT_EQ(NUVOSimInputASCIIToSimInput(&ascii, &again), 0);
  }
  // The deliberate simplifications: default formats, one file per realization.
  EXPECT_STREQ(ascii.formatStringVar[0], NUVO_DEFAULT_FORMAT_NAME);
  EXPECT_EQ(ascii.outputSimJob, OUTPUT_SIM_ONE_FILE_PER_REALIZATION);
  EXPECT_STREQ(ascii.outputSimImageFileName[0], "rt");
  EXPECT_STREQ(ascii.outputPathIndexFileName, "rt_pathIndex");
  EXPECT_EQ(ascii.postProcessingParametersJob, POST_PROCESSING_PARAMETERS_MANUAL);
  EXPECT_EQ(ascii.pyramidGeneralParametersASCII->factorNneighboringNodeSettingMode,
            PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL);
  // Pyramid factors are written with 16 significant digits; every loaded content
  // is compared through the second export.
  for (int j = 0; j < 5; ++j)
    EXPECT_NEAR(again.pyramidGeneralParameters->factorNneighboringNode[j],
                input_.pyramidGeneralParameters->factorNneighboringNode[j], 1e-15);

  // Exported once more, the input gives the same files byte for byte.
  TempFolder second;
  ASSERT_EQ(NUVOExportSimInput(&again, second.path().c_str(), "rt", "\n", 2), 0);
  EXPECT_EQ(folderContent(second.path()), files);
  NUVOFreeSimInput(&again);
  NUVOFreeSimInputASCII(&ascii);
}

// Every comment level and line end reads back to the same record; the levels
// add headings, then notes and remarks.
TEST_F(ExportSimInputTest, CommentLevelsAndLineEndsReadBackToTheSameRecord) {
  std::string reference;
  std::string text[3];
  for (int level = 0; level <= 2; ++level) {
    for (const char *eol : {"\n", "\r\n"}) {
      TempFolder folder;
      ASSERT_EQ(NUVOExportSimInput(&input_, folder.path().c_str(), "rt", eol, level), 0);
      nuvo_simInputASCII ascii;
      NUVOInitSimInputASCII(&ascii);
      ASSERT_EQ(readBack(folder, &ascii), 0) << "level " << level;
      if (reference.empty()) reference = dump(ascii);
      EXPECT_EQ(dump(ascii), reference) << "level " << level;
      NUVOFreeSimInputASCII(&ascii);
      if (eol[0] == '\n') text[level] = folderContent(folder.path())["rt.in"];
    }
  }
  EXPECT_EQ(text[0].find("/*"), std::string::npos);
  EXPECT_EQ(text[0].find("//"), std::string::npos);
  EXPECT_EQ(text[1].find("//"), std::string::npos);
  for (const std::string *t : {&text[1], &text[2]}) {
    EXPECT_EQ(t->find("/* SIMULATION GRID (SG) */\n"), 0U);
    EXPECT_NE(t->find("/* MAXIMAL DENSITY OF NEIGHBORING NODES IN SEARCH NEIGHBORHOOD FOR EACH "
                      "VARIABLE (as many number(s)\nas number of variable(s)) */\n"),
              std::string::npos);
    EXPECT_NE(t->find("\n/* POST-PROCESSING: TOLERANCE */\n"), std::string::npos);
  }
  // Level 2 notes each value; a sample of the lines.
  const std::string &full = text[2];
  for (const char *line :
       {"\n      4              3              1 // dimension\n",
        "\n_DATA_ // training image #0\nrt_ti1.gslib // training image #1\n",
        "\nRESCALING_MIN_MAX       0.000000       4.000000 // variable #0 (facies)\n", "\nEND\n"})
    EXPECT_NE(full.find(line), std::string::npos) << line;
}

TEST_F(ExportSimInputTest, APrefixWithASlashWritesNothing) {
  TempFolder folder;
  EXPECT_EQ(NUVOExportSimInput(&input_, folder.path().c_str(), "a/b", "\n", 2), -7101);
  EXPECT_EQ(NUVOExportSimInput(&input_, folder.path().c_str(), "a\\b", "\n", 2), -7101);
  EXPECT_TRUE(folderContent(folder.path()).empty());
  EXPECT_EQ(NUVOExportSimInput(&input_, folder.file("none").c_str(), "rt", "\n", 2), -7100);
}

}  // namespace
