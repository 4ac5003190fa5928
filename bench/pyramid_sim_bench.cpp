// What pyramids buy: one realization of a 400 x 400 channel grid from a generated
// 250 x 250 channel image (channels along x, 8 nodes wide), unconditional,
// threshold 0.05, scan fraction 0.5, no post-processing, single-threaded:
//  - Arg 0: the simulation grid alone with 12 neighbouring nodes within 6 nodes;
//  - Arg 1: the simulation grid alone at the standard case's settings, 30 nodes
//    within 20;
//  - Arg 2: 12 neighbours within 6 nodes through 2 pyramid levels (steps 2 x 2),
//    hierarchical, indicator pyramid, every simulated level keeping its 12
//    neighbours and taking 6 of the coarser level.
// Counters (quality of the last realization against the training image): the
// mean absolute difference of the channels' connectivity along x at lags 20,
// 40, ... 120 (how far the channels run: 0 is the training image's), and the
// channel proportion.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "nuvo_sim.h"
#include "nuvo_synthetic.h"
#include "nuvo_variogram.h"
#include "tests/input/siminput_builder.hpp"

namespace {

using nuvo_test::valuesOf;

std::vector<double> connectivityAlongX(const nuvo_image &image) {
  nuvo_image map;
  NUVOInitImage(&map);
  NUVOImageConnectivityFunction0(&image, &map, 0, 20, 120, 20, 0, 0, 1, 0, 0, 1, 0);
  std::vector<double> v(map.var, map.var + map.grid->nxyz);
  NUVOFreeImage(&map);
  return v;
}

void usePyramid(nuvo_simInput *si) {
  nuvo_pyramidGeneralParameters &g = *si->pyramidGeneralParameters;
  g = {2,
       valuesOf<int>({2, 2}),
       valuesOf<int>({2, 2}),
       valuesOf<int>({0, 0}),
       PYRAMID_SIM_HIERARCHICAL,
       valuesOf<double>({1, 1, 0.5, 1, 1, 1, 0.5, 1, 1}),
       valuesOf<double>({1, 1, 1, 1, 1, 1, 1, 1, 1}),
       valuesOf<double>({1, 4, 16})};
  si->pyramidParameters =
      nuvo_test::initialisedRecords<nuvo_pyramidParameters>(1, NUVOInitPyramidParameters);
  si->pyramidParameters[0] = {2, PYRAMID_CATEGORICAL_AUTO, nullptr};
}

void BM_Channels400Pyramid(benchmark::State &state) {
  nuvo_image ti;
  NUVOInitImage(&ti);
  NUVOGenerateChannelImage(&ti, 250, 250, 1, 0.28, 8.0, 1);
  nuvo_test::OwnedSimInput c;
  nuvo_simInput &si = c.si;
  nuvo_test::buildValidSimInput(&si, ti);
  NUVOFreeImage(si.simImage);
  nuvo_test::makeImage(si.simImage, 400, 400, 1, {"facies"},
                       [](int, int, int, int) { return NUVO_MISSING_VALUE; });
  si.outputSimJob = OUTPUT_SIM_NO_FILE;
  si.outputReportFlag = 0;
  si.npostProcessingPathMax = 0;
  const bool wide = state.range(0) == 1;
  nuvo_searchNeighborhoodParameters &p = si.searchNeighborhoodParameters[0];
  p.rx = p.ry = wide ? 20.0 : 6.0;
  si.nneighboringNode[0] = wide ? 30 : 12;
  if (state.range(0) == 2) usePyramid(&si);

  nuvo_progressMonitor pm;
  NUVOInitProgressMonitor(&pm);
  nuvo_simOutput out;
  NUVOInitSimOutput(&out);
  int seed = 1;
  for (auto _ : state) {
    NUVOFreeSimOutput(&out);
    si.seed = seed++;
    if (NUVOSim(&si, &out, &pm, nullptr) != 0) state.SkipWithError("simulation failed");
  }
  if (out.outputSimImage != nullptr) {
    const std::vector<double> a = connectivityAlongX(*out.outputSimImage);
    const std::vector<double> b = connectivityAlongX(ti);
    double gap = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) gap += std::fabs(a[i] - b[i]) / a.size();
    const nuvo_image &r = *out.outputSimImage;
    state.counters["connectivity gap"] = gap;
    state.counters["channel share"] =
        std::count(r.var, r.var + r.grid->nxyz, 1.0) / static_cast<double>(r.grid->nxyz);
  }
  NUVOFreeSimOutput(&out);
  NUVOFreeImage(&ti);
}
BENCHMARK(BM_Channels400Pyramid)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kSecond)->Iterations(2);

}  // namespace
