#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "nuvo_siminput.h"
#include "param_file.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

namespace fs = std::filesystem;
using nuvo::test::printed;
using nuvo_test::TempFolder;

// Every file of a folder by name, with its content.
std::map<std::string, std::string> folderContent(const std::string &path) {
  std::map<std::string, std::string> files;
  for (const auto &entry : fs::directory_iterator(path)) {
    std::ostringstream text;
    text << std::ifstream(entry.path()).rdbuf();
    files[entry.path().filename().string()] = text.str();
  }
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
