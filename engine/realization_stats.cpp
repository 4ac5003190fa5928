#include "engine/realization_stats.hpp"

#include <algorithm>
#include <string>

#include "engine/realization.hpp"

namespace nuvo {
namespace {

void rule(FILE *report, char c) {
  std::fprintf(report, "%s\n", std::string(80, c).c_str());
}

double percent(double part, double whole) {
  return whole > 0 ? 100.0 * part / whole : 0.0;
}

void writeTrainingImage(FILE *r, int t, const TrainingImageStats &s, int tiNodes) {
  std::fprintf(r, "Statistics on nodes simulated using training image %3d:\n", t);
  std::fprintf(r, "#sim. nodes                                 : %9d\n", s.nsim);
  std::fprintf(r, "incl.: #nodes from marginal                 : %9d\n", s.nmarginal);
  if (s.nsim == 0) return;
  std::fprintf(r,
               "#sim. nodes above threshold                 : %9d              (%10.4f%% of sim. "
               "nodes)\n",
               s.nabove, percent(s.nabove, s.nsim));
  std::fprintf(r,
               "                                                                     (%10.4f%% "
               "of sim. nodes excluding nodes from marginal)\n",
               percent(s.nabove, s.nsim - s.nmarginal));
  std::fprintf(r, "with error (relative excess from threshold):\n");
  if (s.nabove > 0) {
    const double mean = s.errorSum / s.nabove;
    std::fprintf(r, "error Min                                   : %22.8E (%10.4f%%)\n", s.errorMin,
                 100.0 * s.errorMin);
    std::fprintf(r, "error Max                                   : %22.8E (%10.4f%%)\n", s.errorMax,
                 100.0 * s.errorMax);
    std::fprintf(r, "error Mean                                  : %22.8E (%10.4f%%)\n", mean,
                 100.0 * mean);
  } else {
    std::fprintf(r, "error Min                                   : --\n");
    std::fprintf(r, "error Max                                   : --\n");
    std::fprintf(r, "error Mean                                  : --\n");
  }
  const double scanMean = static_cast<double>(s.scanSum) / s.nsim;
  std::fprintf(r,
               "#scan it. Min                               : %9d              (%10.4f%% of TI)\n",
               s.scanMin, percent(s.scanMin, tiNodes));
  std::fprintf(r,
               "#scan it. Max                               : %9d              (%10.4f%% of TI)\n",
               s.scanMax, percent(s.scanMax, tiNodes));
  std::fprintf(r, "#scan it. Mean                              : %22.8E (%10.4f%% of TI)\n",
               scanMean, percent(scanMean, tiNodes));
}

}  // namespace

void RealizationStats::record(int ti, bool marginal, bool above, double error, int iterations) {
  TrainingImageStats &s = perTi_[ti];
  ++s.nsim;
  if (marginal) {
    ++s.nmarginal;
    return;
  }
  const bool firstScan = s.nsim - s.nmarginal == 1;
  s.scanMin = firstScan ? iterations : std::min(s.scanMin, iterations);
  s.scanMax = firstScan ? iterations : std::max(s.scanMax, iterations);
  s.scanSum += iterations;
  if (!above) return;
  ++s.nabove;
  s.errorMin = s.nabove == 1 ? error : std::min(s.errorMin, error);
  s.errorMax = s.nabove == 1 ? error : std::max(s.errorMax, error);
  s.errorSum += error;
}

void RealizationStats::merge(const RealizationStats &other) {
  for (std::size_t t = 0; t < perTi_.size(); ++t) {
    TrainingImageStats &s = perTi_[t];
    const TrainingImageStats &o = other.perTi_[t];
    const int scanned = s.nsim - s.nmarginal, otherScanned = o.nsim - o.nmarginal;
    if (otherScanned > 0) {
      s.scanMin = scanned == 0 ? o.scanMin : std::min(s.scanMin, o.scanMin);
      s.scanMax = scanned == 0 ? o.scanMax : std::max(s.scanMax, o.scanMax);
    }
    if (o.nabove > 0) {
      s.errorMin = s.nabove == 0 ? o.errorMin : std::min(s.errorMin, o.errorMin);
      s.errorMax = s.nabove == 0 ? o.errorMax : std::max(s.errorMax, o.errorMax);
    }
    s.nsim += o.nsim;
    s.nmarginal += o.nmarginal;
    s.nabove += o.nabove;
    s.scanSum += o.scanSum;
    s.errorSum += o.errorSum;
  }
}

void writePathStatistics(FILE *r, const RealizationStats &stats, const RealizationSetup &setup,
                         int nflagged) {
  rule(r, '-');
  int total = 0, marginal = 0, above = 0;
  const auto &perTi = stats.perTrainingImage();
  for (std::size_t t = 0; t < perTi.size(); ++t) {
    writeTrainingImage(r, static_cast<int>(t), perTi[t], setup.ti[t]->grid->nxyz);
    total += perTi[t].nsim;
    marginal += perTi[t].nmarginal;
    above += perTi[t].nabove;
  }
  rule(r, '-');
  std::fprintf(r, "Statistics on all simulated nodes:\n");
  std::fprintf(r, "#sim. nodes (tot.)            : %9d\n", total);
  std::fprintf(r,
               "incl.:#nodes (tot.) from marg.: %9d              (%10.4f%% of sim. nodes (tot.))\n",
               marginal, percent(marginal, total));
  std::fprintf(r,
               "#sim. nodes (tot.) ab. thresh.: %9d              (%10.4f%% of sim. nodes (tot.))\n",
               above, percent(above, total));
  std::fprintf(r, "#flagged nodes (for resimul.) : %9d\n", nflagged);
  std::fprintf(r, "CPU time (sec): %10.2f\n", stats.cpuSeconds());
}

void writePostProcessingHeading(FILE *r, int p, int pmax) {
  rule(r, '+');
  std::fprintf(r, "Post-processing path %3d of %3d:\n", p, pmax);
}

}  // namespace nuvo
