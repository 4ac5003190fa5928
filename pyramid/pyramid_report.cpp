// The pyramid layout a simulation writes to its report before the realizations.
#include <cstdio>

#include "data/values.hpp"
#include "nuvo_pyramidparams.h"
#include "pyramid/keywords.hpp"
#include "pyramid/pyramid_levels.hpp"

namespace nuvo {
namespace {

constexpr const char *kPrefix = "   ";

const char *stepName(const LevelStep &step, bool conditioning, bool oneByOne) {
  if (oneByOne) return conditioning ? "C" : "S";
  if (step.kind == StepKind::kSpread) return conditioning ? "AC" : "AS";
  return conditioning ? "BC" : "BS";
}

// The part of a row of the level table shared by the simulation grid and the
// training images.
void writeGridRow(FILE *report, const char *head, int level, const nuvo_grid &g, const Steps &k,
                  const Steps &shift, int nv, int npp) {
  std::fprintf(report, "%s%3d | %6d x %6d x %6d | %2d x %2d x %2d | %1d x %1d x %1d | %2d | %3d",
               head, level, g.nx, g.ny, g.nz, k[0], k[1], k[2], shift[0], shift[1], shift[2], nv,
               npp);
}

}  // namespace

int countPaths(const PyramidLevels &levels, const nuvo_image &data, PathCounts *counts) {
  const int n = levels.nlevel();
  const auto unmasked = [&levels](int j, long long k) {
    const LevelImage &m = levels.maps(j).mask;
    return m.empty() || m.get()->var[k] == 1.0;
  };
  // Nodes where some pyramid variable is known.
  const auto known = [](const nuvo_image &image, long long k) {
    for (int iv = 0; iv < image.nvar; ++iv)
      if (!isMissing(image.var[iv * static_cast<long long>(image.grid->nxyz) + k])) return true;
    return false;
  };
  counts->assign(static_cast<std::size_t>(n) + 1, {0, 0});
  LevelImage reached;  // what the data reach at the current level
  NUVO_TRY(NUVOCopyImage(&data, reached.get()));
  const bool oneByOne = levels.mode() == PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE;
  for (int j = 0; j <= n; ++j) {
    if (j > 0) {
      LevelImage coarse;
      NUVO_TRY(oneByOne ? sampleToCoarse(*reached.get(), levels.grid(j), levels.step(j - 1),
                                         coarse.get())
                        : levels.carry(*reached.get(), j - 1, j, StepKind::kSpread, levels.grids(),
                                       coarse.get()));
      reached = std::move(coarse);
    }
    long long a = 0, b = 0;
    for (long long k = 0; k < levels.grid(j).nxyz; ++k) {
      if (!unmasked(j, k)) continue;
      const bool in = known(*reached.get(), k);
      a += in && j > 0 && !oneByOne;
      b += !in;
    }
    (*counts)[j] = {a, b};
  }
  return 0;
}

void writePyramidLayout(FILE *report, const nuvo_simInput &si, const PyramidLevels &levels,
                        const PathCounts &counts) {
  const int n = levels.nlevel();
  const int mode = si.pyramidGeneralParameters->pyramidSimulationMode;
  const bool oneByOne = mode == PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE;
  std::fprintf(report, "Number of pyramid levels: %2d\n", n);
  std::fprintf(report, "Lev  = Level (Level 0: original grid (finest))\n");
  std::fprintf(report, "Lev       :  RF\n");
  for (int j = 0; j < n; ++j) {
    const Steps &k = levels.step(j);
    std::fprintf(report, "%3d -> %3d:  %2d x %2d x %2d\n", j, j + 1, k[0], k[1], k[2]);
  }
  std::fprintf(report,
               "Lev | Dimension                | RF           | Shift     | NV | NPP | MSF       "
               "(MSF PP)\n");
  const double *msf = si.pyramidGeneralParameters->factorMaxScanFraction;
  for (int j = 0; j <= n; ++j) {
    const Steps k = j > 0 ? levels.step(j - 1) : Steps{0, 0, 0};
    const Steps shift = j > 0 ? reductionShift(levels.grid(j - 1), k) : Steps{0, 0, 0};
    const int nv = j > 0 ? static_cast<int>(levels.variables().atLevel(j).size()) : si.nvar;
    writeGridRow(report, "SG   : ", j, levels.grid(j), k, shift, nv, si.npostProcessingPathMax);
    std::fprintf(report, " | -\n");
    for (int t = 0; t < si.ntrainImage; ++t) {
      const nuvo_grid *g = levels.trainGrid(t, j);
      if (g == nullptr) continue;
      const Steps tshift = j > 0 ? reductionShift(*levels.trainGrid(t, j - 1), k) : Steps{0, 0, 0};
      char head[24];
      std::snprintf(head, sizeof head, "TI %2d: ", t);
      writeGridRow(report, head, j, *g, k, tshift, nv, si.npostProcessingPathMax);
      const double pp =
          si.npostProcessingPathMax > 0 ? si.postProcessingMaxScanFraction[t] * msf[j] : 0.0;
      std::fprintf(report, " | %4.2E (%4.2E)\n", si.maxScanFraction[t] * msf[j], pp);
    }
  }
  std::fprintf(report, "Pyramid simulation mode: %s\n", kPyramidSimulationModeKeywords[mode]);
  if (oneByOne) {
    std::fprintf(report, "%sStep C = \"conditioning\" level (coarser level)\n", kPrefix);
    std::fprintf(report, "%sStep S = \"simulated\" level\n", kPrefix);
  } else {
    std::fprintf(report, "%sStep AC = from fine to coarse - \"conditioning\" level\n", kPrefix);
    std::fprintf(report, "%sStep AS = from fine to coarse - \"simulated\" level\n", kPrefix);
    std::fprintf(report, "%sStep BC = from coarse to fine - \"conditioning\" level\n", kPrefix);
    if (mode == PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION)
      std::fprintf(
          report,
          "%sStep BS = \"simulated\" level conditioned to expanded variable (from coarser level)\n",
          kPrefix);
    else
      std::fprintf(report, "%sStep BS = from coarse to fine - \"simulated\" level\n", kPrefix);
  }
  std::fprintf(report,
               "%sLev Step  Var (OV):  DT RM | SN | Th         NN        ND        | PP: Th        "
               " NN        ND\n",
               kPrefix);
  long long total = 0;
  for (const LevelStep &step : levels.steps()) {
    const nuvo_simInput &li = step.input->input();
    const std::vector<LevelVariable> &vars = step.input->variables();
    for (int v = 0; v < li.nvar; ++v) {
      const LevelVariable &lv = vars[static_cast<std::size_t>(v)];
      std::fprintf(report, "%s%3d %-4s %3d (%2d):  %2d %2d | %2d | %-10.4E %-9d %-9.4f", kPrefix,
                   step.level, stepName(step, lv.conditioning, oneByOne), v, lv.source,
                   li.distanceType[v], li.relativeDistanceFlag[v], lv.source,
                   li.distanceThreshold[v], li.nneighboringNode[v], li.neighboringNodeDensity[v]);
      if (li.npostProcessingPathMax > 0)
        std::fprintf(report, " | PP: %-10.4E %-9d %-9.4f\n", li.postProcessingDistanceThreshold[v],
                     li.postProcessingNneighboringNode[v],
                     li.postProcessingNeighboringNodeDensity[v]);
      else
        std::fprintf(report, " | PP: -\n");
    }
  }
  // Per level: nodes, entries of its simulated variables, and the nodes that
  // steps A and B simulate.
  for (int j = 0; j <= n; ++j) {
    int nv = 0;
    for (const LevelStep &step : levels.steps())
      if (step.level == j) nv = step.input->nsimulated();
    const long long nxyz = levels.grid(j).nxyz;
    total += counts[j][0] + counts[j][1];
    std::fprintf(report, "%sLevel %2d       :  %12lld | %13lld | %9lld / %9lld\n", kPrefix, j, nxyz,
                 nxyz * nv, counts[j][0], counts[j][1]);
  }
  std::fprintf(report, "Pyramid: Total number of \"simulation steps\": %10lld\n", total);
}

}  // namespace nuvo
