// The progress monitor and its four ready-made callbacks.
#include <cstdio>

#include "foundation/check.hpp"
#include "nuvo_error.h"
#include "nuvo_progress.h"

namespace nuvo {
namespace {

enum class LineForm { PerRealization, Overall };

// The pattern shared by the four callbacks: stop, else warning, else progress line.
int printProgress(const nuvo_progressMonitor *pm, LineForm form, const char *prefix) {
  if (pm->stopFlag) return kAborted;
  if (pm->warningNumber != 0) {
    std::printf("%s", NUVOGetWarningMessage(pm->warningNumber));
    return 0;
  }
  if (pm->nrealization == 0) return 0;
  if (form == LineForm::PerRealization) {
    double overall = static_cast<double>(pm->ireal * 100 + pm->progress) / pm->nrealization;
    std::printf("%sSimulating progress realization %5d of %5d: %3d %%, over all: %7.3f %%\n",
                prefix, pm->ireal + 1, pm->nrealization, pm->progress, overall);
  } else {
    std::printf("%sSimulating progress: %3d %%     /     Realization(s) done: %5d of %5d\n", prefix,
                pm->progressTotal, pm->ireal, pm->nrealization);
  }
  return 0;
}

}  // namespace

int reportWarning(nuvo_progressMonitor *pm, nuvo_progressCallback callback, int warningCode) {
  pm->warningNumber = warningCode;
  int rc = callback != nullptr ? callback(pm) : 0;
  if (rc != 0) return rc;
  if (pm->stopFlag) return kAborted;
  pm->warningNumber = 0;
  return 0;
}

int reportProgress(nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  int rc = callback != nullptr ? callback(pm) : 0;
  if (rc != 0) return rc;
  return pm->stopFlag ? kAborted : 0;
}

}  // namespace nuvo

extern "C" {

void NUVOInitProgressMonitor(nuvo_progressMonitor *pm) {
  *pm = nuvo_progressMonitor{};
}

int NUVOUpdateProgressMonitorStdout(nuvo_progressMonitor *pm) {
  return nuvo::printProgress(pm, nuvo::LineForm::PerRealization, "");
}

int NUVOUpdateProgressMonitorAllStdout(nuvo_progressMonitor *pm) {
  return nuvo::printProgress(pm, nuvo::LineForm::Overall, "");
}

int NUVOUpdateProgressMonitorQX(nuvo_progressMonitor *pm) {
  return nuvo::printProgress(pm, nuvo::LineForm::PerRealization, "QX: ");
}

int NUVOUpdateProgressMonitorAllQX(nuvo_progressMonitor *pm) {
  return nuvo::printProgress(pm, nuvo::LineForm::Overall, "QX: ");
}

}  // extern "C"
