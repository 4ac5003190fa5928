#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/check.hpp"
#include "nuvo_error.h"
#include "nuvo_progress.h"
#include "tests/support/warning_recorder.hpp"

namespace {

using Callback = int (*)(nuvo_progressMonitor *);

std::string printed(Callback callback, nuvo_progressMonitor *pm, int *rc) {
  testing::internal::CaptureStdout();
  *rc = callback(pm);
  return testing::internal::GetCapturedStdout();
}

TEST(ProgressCallbacks, StopFlagWinsOverEverything) {
  for (Callback cb : {NUVOUpdateProgressMonitorStdout, NUVOUpdateProgressMonitorAllStdout,
                      NUVOUpdateProgressMonitorQX, NUVOUpdateProgressMonitorAllQX}) {
    nuvo_progressMonitor pm;
    NUVOInitProgressMonitor(&pm);
    pm.stopFlag = 1;
    pm.warningNumber = 20;
    pm.nrealization = 3;
    int rc = 0;
    EXPECT_EQ(printed(cb, &pm, &rc), "");
    EXPECT_EQ(rc, -1000);
  }
}

TEST(ProgressCallbacks, PrintTheWarningOrTheProgressLine) {
  nuvo_progressMonitor pm;
  NUVOInitProgressMonitor(&pm);
  int rc = 1;
  pm.warningNumber = 26;
  EXPECT_EQ(printed(NUVOUpdateProgressMonitorStdout, &pm, &rc), NUVOGetWarningMessage(26));
  EXPECT_EQ(rc, 0);

  pm.warningNumber = 0;
  EXPECT_EQ(printed(NUVOUpdateProgressMonitorStdout, &pm, &rc), "");

  pm.ireal = 3;
  pm.nrealization = 10;
  pm.progress = 50;
  pm.progressTotal = 35;
  EXPECT_EQ(printed(NUVOUpdateProgressMonitorStdout, &pm, &rc),
            "Simulating progress realization     4 of    10:  50 %, over all:  35.000 %\n");
  EXPECT_EQ(printed(NUVOUpdateProgressMonitorQX, &pm, &rc),
            "QX: Simulating progress realization     4 of    10:  50 %, over all:  35.000 %\n");
  EXPECT_EQ(printed(NUVOUpdateProgressMonitorAllStdout, &pm, &rc),
            "Simulating progress:  35 %     /     Realization(s) done:     3 of    10\n");
  EXPECT_EQ(printed(NUVOUpdateProgressMonitorAllQX, &pm, &rc),
            "QX: Simulating progress:  35 %     /     Realization(s) done:     3 of    10\n");
}

TEST(WarningProtocol, ReportsClearsAndPassesResultsOn) {
  nuvo::test::WarningRecorder rec;
  NUVOInitProgressMonitor(&rec.pm);
  EXPECT_EQ(nuvo::reportWarning(&rec.pm, rec.callback, 41), 0);
  EXPECT_EQ(rec.warnings(), std::vector<int>{41});
  EXPECT_EQ(rec.pm.warningNumber, 0);

  rec.answer = -7;
  EXPECT_EQ(nuvo::reportWarning(&rec.pm, rec.callback, 42), -7);

  rec.answer = 0;
  rec.stopAfter = true;
  EXPECT_EQ(nuvo::reportWarning(&rec.pm, rec.callback, 43), -1000);
  EXPECT_EQ(nuvo::checkStop(&rec.pm), -1000);
  EXPECT_EQ(nuvo::reportWarning(&rec.pm, nullptr, 44), -1000);
}

}  // namespace
