// NUVOSim: report header and printed input, validation, then the simulation.
#include <cstdio>
#include <ctime>
#include <string>

#include "foundation/check.hpp"
#include "nuvo_sim.h"
#include "nuvo_version.h"

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

int simulate(nuvo_simInput *si, nuvo_simOutput *out, nuvo_progressMonitor *pm,
             nuvo_progressCallback callback) {
  const std::string rule(80, '=');
  Report report;
  if (si->outputReportFlag) {
    if (si->outputReportFileName == nullptr) return kReportNotOpened;
    report.stream = std::fopen(si->outputReportFileName, "w");
    if (report.stream == nullptr) return kReportNotOpened;
    NUVOPrintVersion(report.stream);
    std::fprintf(report.stream, "VERSION: SERIAL\n%s\nsimInput:\n", rule.c_str());
    NUVO_TRY(NUVOPrintSimInput(si, "   ", report.stream));
    std::fprintf(report.stream, "%s\n", rule.c_str());
  }
  int verdict = 0;
  NUVO_TRY(NUVOValidateSimInput(si, pm, callback, &verdict));
  NUVO_TRY(verdict);

  const std::clock_t start = std::clock();
  const bool pyramid =
      si->pyramidGeneralParameters != nullptr && si->pyramidGeneralParameters->npyramidLevel != 0;
  NUVO_TRY((pyramid ? NUVOSimPyramid : NUVOSimStandard)(si, out, report.stream, pm, callback));
  if (report.stream != nullptr)
    std::fprintf(report.stream, "CPU time (sec) for all realizations          : %10.2f\n%s\n",
                 static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, rule.c_str());
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" int NUVOSim(nuvo_simInput *si, nuvo_simOutput *out, nuvo_progressMonitor *pm,
                       nuvo_progressCallback callback) {
  return nuvo::guardedCall([&] { return nuvo::simulate(si, out, pm, callback); });
}
