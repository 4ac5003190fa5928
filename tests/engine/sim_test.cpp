#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "channel_simulation.hpp"
#include "nuvo_imagefile.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/temp_folder.hpp"

namespace {

namespace fs = std::filesystem;

// A valid two-realization simulation of a 30 x 30 grid from a 60 x 60 channel
// image, writing into a scratch folder.
class Simulation : public nuvo_test::InMemorySimulation {
 protected:
  void SetUp() override {
    build([](nuvo_image *ti) { return NUVOGenerateChannelImage(ti, 60, 60, 1, 0.3, 5.0, 2); }, 30);
    si_.outputSimJob = OUTPUT_SIM_ALL_IN_ONE_FILE;
    si_.outputReportFlag = 1;
    setName(si_.outputSimImageFileName[0], "sim.gslib");
    setName(si_.outputReportFileName, "report.txt");
    si_.nrealization = 2;
  }
  void setName(char *slot, const char *name) {
    std::snprintf(slot, NUVO_FILE_NAME_MAX + 1, "%s", at(name).c_str());
  }
  fs::path at(const char *name) const { return folder_.file(name); }

  nuvo_test::TempFolder folder_;
};

TEST_F(Simulation, RunsEndToEndWithReportAndFiles) {
  si_.simImage->var[0] = 1.0;
  si_.simImage->var[465] = 0.0;
  ASSERT_EQ(simulate(), 0);
  ASSERT_EQ(out_.nreal, 2);
  ASSERT_EQ(out_.nvarSimPerReal, 1);
  EXPECT_STREQ(out_.outputSimImage->varName[1], "facies_real00001");
  for (int r = 0; r < 2; ++r) {
    const std::vector<double> v = realization(r);
    for (double x : v) ASSERT_TRUE(x == 0.0 || x == 1.0);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[465], 0.0);
    const double ones = std::count(v.begin(), v.end(), 1.0) / static_cast<double>(v.size());
    EXPECT_NEAR(ones, 0.3, 0.15);
  }
  EXPECT_NE(realization(0), realization(1));
  EXPECT_TRUE(fs::exists(at("sim.gslib")));
  const std::string report = nuvo_test::fileText(at("report.txt"));
  EXPECT_EQ(report.rfind("NUVO 3.2 / TOLVE-KARNASHIRION-20210930\nVERSION: SERIAL\n", 0), 0u);
  EXPECT_NE(report.find("---PARAMETERS DETAILS---"), std::string::npos);
  EXPECT_NE(report.find("Realization     2 of     2:"), std::string::npos);
  EXPECT_NE(report.find("Statistics on nodes simulated using training image   0:\n"
                        "#sim. nodes                                 :       898\n"),
            std::string::npos);
  EXPECT_NE(report.find("Post-processing path   1 of   1:\n"), std::string::npos);
  EXPECT_NE(report.find("CPU time (sec) for all realizations          :"), std::string::npos);
}

TEST_F(Simulation, RealizationRunAloneEqualsItsPlaceInALongerRun) {
  si_.nrealization = 3;
  si_.seed = 5;
  si_.seedIncrement = 7;
  ASSERT_EQ(simulate(), 0);
  const std::vector<double> third = realization(2);
  si_.nrealization = 1;
  si_.seed = 5 + 2 * 7;
  ASSERT_EQ(simulate(), 0);
  EXPECT_EQ(realization(0), third);
}

TEST_F(Simulation, ConsoleModeWritesFilesOnlyAndMapsFollowTheRequest) {
  si_.consoleAppFlag = 1;
  si_.outputSimJob = OUTPUT_SIM_ONE_FILE_PER_REALIZATION;
  setName(si_.outputSimImageFileName[0], "real");
  si_.outputErrorFlag = 1;
  si_.outputErrorFileName = nuvo_test::ownedText(at("err").c_str());
  ASSERT_EQ(simulate(), 0);
  EXPECT_EQ(out_.outputSimImage, nullptr);
  EXPECT_TRUE(fs::exists(at("real_real00001.gslib")));
  EXPECT_TRUE(fs::exists(at("err_real00001.gslib")));

  // One file per variable holds every realization.
  si_.outputSimJob = OUTPUT_SIM_ONE_FILE_PER_VARIABLE;
  setName(si_.outputSimImageFileName[0], "facies.gslib");
  ASSERT_EQ(simulate(), 0);
  nuvo::test::EmptyImage back;
  nuvo::test::TempStream file(nuvo_test::fileText(at("facies.gslib")));
  EXPECT_EQ(NUVOReadImage(&back.image, 0, file.get()), 0);
  EXPECT_EQ(back->nvar, 2);
  EXPECT_STREQ(back->varName[1], "facies_real00001");
}

TEST_F(Simulation, KeepsAdditionalMapsInTheOutput) {
  si_.outputSimJob = OUTPUT_SIM_NO_FILE;
  si_.outputReportFlag = 0;
  si_.outputTiIndexFlag = 1;
  si_.outputTiIndexFileName = nuvo_test::ownedText(at("ti").c_str());
  ASSERT_EQ(simulate(), 0);
  ASSERT_NE(out_.outputTiIndexImage, nullptr);
  EXPECT_EQ(out_.nvarTiIndexPerReal, 1);
  EXPECT_EQ(out_.outputTiIndexImage->nvar, 2);
  EXPECT_STREQ(out_.outputTiIndexImage->varName[1], "tiIndex_var00_real00001");
  EXPECT_EQ(out_.outputPathIndexImage, nullptr);
  EXPECT_FALSE(fs::exists(at("sim.gslib")));
}

TEST_F(Simulation, FailsCleanlyOnBadReportOrStopRequest) {
  setName(si_.outputReportFileName, "missing-folder/report.txt");
  EXPECT_EQ(simulate(), -110);
  setName(si_.outputReportFileName, "report.txt");
  nuvo_progressMonitor pm;
  NUVOInitProgressMonitor(&pm);
  pm.stopFlag = 1;
  EXPECT_EQ(NUVOSim(&si_, &out_, &pm, nullptr), -1000);
  si_.distanceThreshold[0] = 2.0;
  EXPECT_EQ(simulate(), -673);
}

}  // namespace
