#include <gtest/gtest.h>

#include <string>

#include "foundation/check.hpp"
#include "nuvo_error.h"
#include "nuvo_progress.h"

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

// A callback that records the warning it saw and answers with a chosen result.
struct Recorder {
  static inline int seen = 0;
  static inline int answer = 0;
  static inline bool stopAfter = false;
  static int callback(nuvo_progressMonitor *pm) {
    seen = pm->warningNumber;
    if (stopAfter) pm->stopFlag = 1;
    return answer;
  }
};

TEST(WarningProtocol, ReportsClearsAndPassesResultsOn) {
  nuvo_progressMonitor pm;
  NUVOInitProgressMonitor(&pm);
  Recorder::answer = 0;
  Recorder::stopAfter = false;
  EXPECT_EQ(nuvo::reportWarning(&pm, Recorder::callback, 41), 0);
  EXPECT_EQ(Recorder::seen, 41);
  EXPECT_EQ(pm.warningNumber, 0);

  Recorder::answer = -7;
  EXPECT_EQ(nuvo::reportWarning(&pm, Recorder::callback, 42), -7);

  Recorder::answer = 0;
  Recorder::stopAfter = true;
  EXPECT_EQ(nuvo::reportWarning(&pm, Recorder::callback, 43), -1000);
  EXPECT_EQ(nuvo::checkStop(&pm), -1000);
  EXPECT_EQ(nuvo::reportWarning(&pm, nullptr, 44), -1000);
}

}  // namespace
