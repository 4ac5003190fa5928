// The multithreaded simulation entry points.
#include "engine/sim_driver.hpp"
#include "engine/sim_standard.hpp"
#include "foundation/check.hpp"
#include "nuvo_omp.h"

using nuvo::kInvalidThreadCount;

extern "C" int NUVOOMPSim(nuvo_simInput *si, nuvo_simOutput *out, nuvo_progressMonitor *pm,
                          nuvo_progressCallback callback, int nthread) {
  NUVO_FAIL_IF(nthread < 1, kInvalidThreadCount);
  return nuvo::guardedCall([&] { return nuvo::simulate(si, out, pm, callback, nthread); });
}

extern "C" int NUVOOMPSimStandard(const nuvo_simInput *si, nuvo_simOutput *out, FILE *report,
                                  nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                                  int nthread) {
  NUVO_FAIL_IF(nthread < 1, kInvalidThreadCount);
  return nuvo::simulateStandard(*si, out, report, pm, callback, {.nthread = nthread});
}

extern "C" int NUVOOMPValidateSimInput(nuvo_simInput *si, nuvo_progressMonitor *pm,
                                       nuvo_progressCallback callback, int *error, int nthread) {
  NUVO_FAIL_IF(nthread < 1, kInvalidThreadCount);
  return NUVOValidateSimInput(si, pm, callback, error);
}
