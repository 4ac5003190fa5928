// NUVOSim and its multithreaded twin: report header and printed input,
// validation, then the simulation.
#include "engine/sim_driver.hpp"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>

#include "engine/sim_standard.hpp"
#include "foundation/check.hpp"
#include "nuvo_omp.h"
#include "nuvo_sim.h"
#include "nuvo_version.h"
#include "parallel/omp_warnings.hpp"

namespace nuvo {
namespace {

constexpr int kReportNotOpened = -110;

// Closes the report, if any, when the simulation returns.
struct Report {
  FILE *stream = nullptr;
  ~Report() {
    if (stream != nullptr) std::fclose(stream);
  }
};

}  // namespace

int simulate(nuvo_simInput *si, nuvo_simOutput *out, nuvo_progressMonitor *pm,
             nuvo_progressCallback callback, int nthread) {
  const std::string rule(80, '=');
  Report report;
  if (si->outputReportFlag) {
    if (si->outputReportFileName == nullptr) return kReportNotOpened;
    report.stream = std::fopen(si->outputReportFileName, "w");
    if (report.stream == nullptr) return kReportNotOpened;
    NUVOPrintVersion(report.stream);
    if (nthread == 0)
      std::fprintf(report.stream, "VERSION: SERIAL\n");
    else
      std::fprintf(report.stream, "VERSION: OPENMP: %d threads\n", nthread);
    std::fprintf(report.stream, "%s\nsimInput:\n", rule.c_str());
    NUVO_TRY(NUVOPrintSimInput(si, "   ", report.stream));
    std::fprintf(report.stream, "%s\n", rule.c_str());
  }
  int verdict = 0;
  NUVO_TRY(NUVOValidateSimInput(si, pm, callback, &verdict));
  NUVO_TRY(verdict);
  if (nthread > 0) NUVO_TRY(reportReproducibilityWarnings(*si, pm, callback));

  const std::clock_t start = std::clock();
  const int threads = std::max(1, nthread);
  const bool pyramid =
      si->pyramidGeneralParameters != nullptr && si->pyramidGeneralParameters->npyramidLevel != 0;
  NUVO_TRY(pyramid ? NUVOOMPSimPyramid(si, out, report.stream, pm, callback, threads)
                   : simulateStandard(*si, out, report.stream, pm, callback, {.nthread = threads}));
  if (report.stream != nullptr)
    std::fprintf(report.stream, "CPU time (sec) for all realizations          : %10.2f\n%s\n",
                 static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, rule.c_str());
  return 0;
}

}  // namespace nuvo

extern "C" int NUVOSim(nuvo_simInput *si, nuvo_simOutput *out, nuvo_progressMonitor *pm,
                       nuvo_progressCallback callback) {
  return nuvo::guardedCall([&] { return nuvo::simulate(si, out, pm, callback, 0); });
}
