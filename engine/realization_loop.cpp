#include "engine/realization_loop.hpp"

#include <ctime>
#include <string>

#include "foundation/check.hpp"

namespace nuvo {

int runRealizations(const nuvo_simInput &si, FILE *report, nuvo_progressMonitor *pm,
                    OutputWriter &writer, const RealizationFunction &simulate) {
  const std::string stars(80, '*');
  int seed = si.seed;
  for (int r = 0; r < si.nrealization; ++r) {
    if (pm != nullptr) {
      pm->nrealization = si.nrealization;
      pm->ireal = r;
      pm->progress = 0;
    }
    const std::clock_t start = std::clock();
    if (report != nullptr) std::fprintf(report, "Realization %5d of %5d:\n", r + 1, si.nrealization);
    writer.startRealization(r);
    const nuvo_image *result = nullptr;
    NUVO_TRY(simulate(r, seed, &result));
    if (report != nullptr)
      std::fprintf(report, "%s\nCPU time (sec) for realization %5d of %5d: %10.2f\n%s\n",
                   stars.c_str(), r + 1, si.nrealization,
                   static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, stars.c_str());
    NUVO_TRY(writer.finishRealization(r, *result));
    seed = static_cast<int>(static_cast<unsigned int>(seed) +
                            static_cast<unsigned int>(si.seedIncrement));
    NUVO_TRY(checkStop(pm));
  }
  return writer.finish();
}

}  // namespace nuvo
