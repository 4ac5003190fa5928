// Whole simulations, the measure users feel: one realization of the standard
// cases, single-threaded.
//
// - channels 2D: the 250 x 250 binary channel image (read from the shared data
//   folder next to the project when present, else the project's own generated
//   channel image of the same size) simulated on a 200 x 200 grid, 30
//   neighbouring nodes, threshold 0.05, scan fraction 0.5, no post-processing;
// - the same conditioned on 150 points sampled from the training image;
// - lenses 3D: a 100 x 100 x 30 grid from a generated 150 x 150 x 40 lens image,
//   scanning at most 2 % of the training image per node (close matches of a
//   30-node 3D pattern are rare, and a larger fraction mostly buys full scans);
//   the same with nodes weighed by the inverse of their distance; facies 3D:
//   the same with six facies, the lenses cut by 3D channels.
//
// - channels 2D under a probability constraint: the unconditional channel case
//   with a global target of 45 % of channel nodes (MAE, threshold 0.02), or a
//   local channel probability rising from 0.1 to 0.6 across x (MAE, threshold
//   0.05, "COMPLETE" current pdf within a support radius of 10), or a global
//   target equal to the training image's own proportion (MAE, threshold 0.02):
//   the last one measures the constraint's own cost, the first two add the
//   longer scans of steering far from the training image.
//
// - channels 2D under block data: the unconditional channel case with three
//   blocks of 900 to 1800 nodes asking for 60 %, 10 % and 45 % of channel nodes
//   (tolerance 0.03, the blocks of examples/channels2d/blocks.in), or the whole
//   grid cut into 16 blocks of 50 x 50 nodes each asking for the training
//   image's own proportion within 0.03 (steering everywhere: the means of such
//   blocks spread by about 0.1 in the training image) or within 0.1 (the
//   constraint's own cost at every node, with little steering).
// - channels 2D with connected wells: the channel case conditioned on 60 points
//   sampled from the training image, the channel points taken three by three in
//   order of y as groups to connect (label variable "well"); without constraint
//   (the plain run), then connecting paths bound in random order and by distance
//   (first training image as reference, 4 neighbours), then the pattern of labels
//   checked during the scan (threshold 0.05, no deactivation distance).
//
// - channels 2D on a 400 x 400 grid: the unconditional case on four times as
//   many nodes, whose time per node must stay that of the 200 x 200 grid.
//
// Counters: seconds per realization, simulated nodes per second, candidates
// scanned per node (read back from the report's scan statistics), nanoseconds
// per scanned candidate, and the process's peak resident memory in MiB so far
// (getrusage: run one case alone with --benchmark_filter for its own peak).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <sys/resource.h>

#include "bench/sim_cases.hpp"
#include "nuvo_blockdata.h"
#include "nuvo_imagefile.h"
#include "nuvo_sim.h"
#include "nuvo_synthetic.h"
#include "tests/input/siminput_builder.hpp"

namespace {

namespace fs = std::filesystem;
using nuvo_bench::Case;
using nuvo_bench::configure;
using nuvo_bench::configureChannels2D;

// Mean number of candidates scanned per node, from the report.
double scansPerNode(const fs::path &report) {
  std::ifstream in(report);
  std::string line;
  const std::string label = "#scan it. Mean";
  while (std::getline(in, line))
    if (line.rfind(label, 0) == 0) return std::strtod(line.c_str() + line.find(':') + 1, nullptr);
  return 0.0;
}

void runCase(benchmark::State &state, Case *c) {
  nuvo_progressMonitor pm;
  NUVOInitProgressMonitor(&pm);
  int seed = 1;
  for (auto _ : state) {
    c->si.seed = seed++;
    nuvo_simOutput out;
    NUVOInitSimOutput(&out);
    if (NUVOSim(&c->si, &out, &pm, nullptr) != 0) state.SkipWithError("simulation failed");
    NUVOFreeSimOutput(&out);
  }
  const double nodes = c->si.simImage->grid->nxyz;
  state.counters["s/real"] = benchmark::Counter(
      1.0, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  state.counters["nodes/s"] =
      benchmark::Counter(nodes, benchmark::Counter::kIsIterationInvariantRate);
  const double scans = scansPerNode(c->report);
  state.counters["scans/node"] = scans;
  state.counters["ns/candidate"] =
      benchmark::Counter(nodes * scans * 1e-9, benchmark::Counter::kIsIterationInvariantRate |
                                                   benchmark::Counter::kInvert);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peakMiB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void BM_Channels2D(benchmark::State &state) {
  nuvo_image ti;
  Case c;
  configureChannels2D(&c, &ti);
  if (state.range(0) > 0) {
    nuvo_pointSet ps;
    NUVOInitPointSet(&ps);
    NUVOSampleImage(&ti, static_cast<int>(state.range(0)), 3, &ps);
    for (int k = 0; k < ps.npoint; ++k) {  // into the 200 x 200 grid
      ps.x[k] *= 0.8;
      ps.y[k] *= 0.8;
    }
    nuvo_test::addDataPointSet(&c.si, ps);
    NUVOFreePointSet(&ps);
  }
  NUVOFreeImage(&ti);
  runCase(state, &c);
}
BENCHMARK(BM_Channels2D)->Arg(0)->Arg(150)->Unit(benchmark::kSecond)->Iterations(3);

void BM_Channels2DLarge(benchmark::State &state) {
  nuvo_image ti;
  NUVOInitImage(&ti);
  nuvo_bench::loadChannelImage(&ti);
  Case c;
  configure(&c, ti, 400, 400, 1, 20.0, 20.0, 0.0, 0.5);
  NUVOFreeImage(&ti);
  runCase(state, &c);
}
BENCHMARK(BM_Channels2DLarge)->Unit(benchmark::kSecond)->Iterations(1);

// The same unconditional case in the variable-transform form: channels turned by
// 30 degrees and widened by a ratio drawn per node between 1 and 1.5.
void BM_Channels2DTransformed(benchmark::State &state) {
  nuvo_image ti;
  Case c;
  configureChannels2D(&c, &ti);
  NUVOFreeImage(&ti);
  nuvo_simInput &si = c.si;
  const auto values = [](double a, double b) {
    auto *v = static_cast<double *>(std::malloc(2 * sizeof(double)));
    v[0] = a;
    v[1] = b;
    return v;
  };
  si.rotationUsage = 2;
  si.rotationAzimuthValue = values(30.0, 30.0);
  si.rotationDipValue = values(0.0, 0.0);
  si.rotationPlungeValue = values(0.0, 0.0);
  si.homothetyUsage = 2;
  si.homothetyXRatioValue = values(1.0, 1.5);
  si.homothetyYRatioValue = values(1.0, 1.5);
  si.homothetyZRatioValue = values(1.0, 1.0);
  runCase(state, &c);
}
BENCHMARK(BM_Channels2DTransformed)->Unit(benchmark::kSecond)->Iterations(3);

template <typename T>
T *cArray(std::initializer_list<T> values) {
  auto *a = static_cast<T *>(std::calloc(values.size(), sizeof(T)));
  std::copy(values.begin(), values.end(), a);
  return a;
}

// Background [-0.5, 0.5[ and channel [0.5, 1.5[.
nuvo_classOfValues *channelClasses() {
  auto *c = cArray<nuvo_classOfValues>({{}});
  c->nclass = 2;
  c->ninterval = cArray<int>({1, 1});
  c->intervalInf = cArray<double *>({cArray<double>({-0.5}), cArray<double>({0.5})});
  c->intervalSup = cArray<double *>({cArray<double>({0.5}), cArray<double>({1.5})});
  return c;
}

// The channel classes compared by MAE.
void constrainChannels(nuvo_softProbability *sp, int usage, double threshold) {
  sp->probabilityConstraintUsage = usage;
  sp->classOfValues = channelClasses();
  sp->comparingPdfMethod = NUVO_COMPARING_PDF_MAE;
  sp->constantThreshold = threshold;
}

void BM_Channels2DProbability(benchmark::State &state) {
  nuvo_image ti;
  Case c;
  configureChannels2D(&c, &ti);
  const double tiChannel =
      std::count(ti.var, ti.var + ti.grid->nxyz, 1.0) / static_cast<double>(ti.grid->nxyz);
  NUVOFreeImage(&ti);
  nuvo_softProbability *sp = &c.si.softProbability[0];
  if (state.range(0) == 0) {
    constrainChannels(sp, NUVO_PROBABILITY_CONSTRAINT_GLOBAL, 0.02);
    sp->globalPdf = cArray<double>({0.55, 0.45});
  } else if (state.range(0) == 2) {
    constrainChannels(sp, NUVO_PROBABILITY_CONSTRAINT_GLOBAL, 0.02);
    sp->globalPdf = cArray<double>({1.0 - tiChannel, tiChannel});
  } else {
    constrainChannels(sp, NUVO_PROBABILITY_CONSTRAINT_LOCAL, 0.05);
    sp->localPdfImage = cArray<nuvo_image>({{}});
    const int nx = c.si.simImage->grid->nx;
    nuvo_test::makeImage(sp->localPdfImage, nx, c.si.simImage->grid->ny, 1, {"p0", "p1"},
                         [nx](int x, int, int, int iv) {
                           const double sand = 0.1 + 0.5 * x / (nx - 1);
                           return iv == 1 ? sand : 1.0 - sand;
                         });
    sp->localPdfSupportRadius = cArray<double>({10.0});
  }
  runCase(state, &c);
}
BENCHMARK(BM_Channels2DProbability)
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kSecond)
    ->Iterations(3);

void BM_Channels2DConnectivity(benchmark::State &state) {
  nuvo_image ti;
  Case c;
  configureChannels2D(&c, &ti);
  nuvo_pointSet sample, wells;
  NUVOInitPointSet(&sample);
  NUVOInitPointSet(&wells);
  NUVOSampleImage(&ti, 60, 3, &sample);
  NUVOFreeImage(&ti);
  const int n = sample.npoint;
  NUVOMallocPointSet(&wells, n, 2);
  std::snprintf(wells.varName[0], NUVO_VAR_NAME_MAX + 1, "facies");
  std::snprintf(wells.varName[1], NUVO_VAR_NAME_MAX + 1, "well");
  std::vector<int> order(n);
  for (int k = 0; k < n; ++k) order[k] = k;
  std::sort(order.begin(), order.end(), [&](int a, int b) { return sample.y[a] < sample.y[b]; });
  int channel = 0;
  for (int k = 0; k < n; ++k) {
    const int from = order[k];
    wells.x[k] = sample.x[from] * 0.8;  // into the 200 x 200 grid
    wells.y[k] = sample.y[from] * 0.8;
    wells.z[k] = sample.z[from];
    wells.val[k] = sample.val[from];
    wells.val[n + k] = sample.val[from] == 1.0 ? 1 + channel++ / 3 : 0.0;
  }
  // A last group of fewer than three wells of its own would be a single well: it
  // joins the group before.
  if (channel % 3 == 1)
    for (int k = 0; k < n; ++k)
      if (wells.val[n + k] == 1 + (channel - 1) / 3) wells.val[n + k] -= 1.0;
  nuvo_test::addDataPointSet(&c.si, wells);
  NUVOFreePointSet(&sample);
  NUVOFreePointSet(&wells);
  if (state.range(0) > 0) {
    nuvo_connectivity &con = c.si.connectivity[0];
    con.connectivityConstraintUsage = static_cast<int>(state.range(0));
    con.connectivityType = CONNECT_FACE;
    con.classOfValues = channelClasses();
    con.varName = static_cast<char *>(std::calloc(NUVO_VAR_NAME_MAX + 1, 1));
    std::snprintf(con.varName, NUVO_VAR_NAME_MAX + 1, "well");
    con.tiAsRefFlag = 1;
    con.threshold = 0.05;
  }
  runCase(state, &c);
}
BENCHMARK(BM_Channels2DConnectivity)
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Arg(3)
    ->Unit(benchmark::kSecond)
    ->Iterations(3);

// Argument 1: each node weighs the inverse of its distance, as in the examples
// (the weighted scan, on one-byte codes); 0: equal weights.
void BM_Lenses3D(benchmark::State &state) {
  nuvo_image ti;
  NUVOInitImage(&ti);
  NUVOGenerateLensImage(&ti, 150, 150, 40, 1);
  Case c;
  configure(&c, ti, 100, 100, 30, 10.0, 10.0, 4.0, 0.02);
  c.si.searchNeighborhoodParameters[0].power = state.range(0) == 1 ? -1.0 : 0.0;
  NUVOFreeImage(&ti);
  runCase(state, &c);
}
BENCHMARK(BM_Lenses3D)->Arg(0)->Arg(1)->Unit(benchmark::kSecond)->Iterations(1);

// Six facies: the lenses of the lens case cut by the channels of a 3D channel
// image (lens facies + 3 x channel), simulated as the lens case.
void BM_Facies3D(benchmark::State &state) {
  nuvo_image ti, channels;
  NUVOInitImage(&ti);
  NUVOInitImage(&channels);
  NUVOGenerateLensImage(&ti, 150, 150, 40, 1);
  NUVOGenerateChannelImage(&channels, 150, 150, 40, 0.3, 8.0, 1);
  for (int k = 0; k < ti.grid->nxyz; ++k) ti.var[k] += 3.0 * channels.var[k];
  NUVOFreeImage(&channels);
  Case c;
  configure(&c, ti, 100, 100, 30, 10.0, 10.0, 4.0, 0.02);
  NUVOFreeImage(&ti);
  runCase(state, &c);
}
BENCHMARK(BM_Facies3D)->Unit(benchmark::kSecond)->Iterations(1);

// Block data of rectangles {x0, x1, y0, y1, target} read from their file text.
void setBlocks(nuvo_blockData *bd, const std::vector<std::array<double, 5>> &boxes,
               double tolerance) {
  std::string text = std::to_string(boxes.size()) + "\n";
  for (const auto &[x0, x1, y0, y1, target] : boxes) {
    text += std::to_string(static_cast<int>((x1 - x0) * (y1 - y0))) + " " + std::to_string(target) +
            " " + std::to_string(tolerance) + " 0 1\n";
    for (int y = static_cast<int>(y0); y < y1; ++y)
      for (int x = static_cast<int>(x0); x < x1; ++x)
        text += std::to_string(x) + " " + std::to_string(y) + " 0\n";
  }
  FILE *f = std::tmpfile();
  std::fputs(text.c_str(), f);
  std::rewind(f);
  NUVOFreeBlockData(bd);
  NUVOReadBlockData(bd, f);
  std::fclose(f);
  bd->blockDataUsage = NUVO_BLOCK_DATA_MEAN;
}

void BM_Channels2DBlocks(benchmark::State &state) {
  nuvo_image ti;
  Case c;
  configureChannels2D(&c, &ti);
  const double p =
      std::count(ti.var, ti.var + ti.grid->nxyz, 1.0) / static_cast<double>(ti.grid->nxyz);
  NUVOFreeImage(&ti);
  nuvo_blockData *bd = &c.si.blockData[0];
  if (state.range(0) == 0) {
    setBlocks(bd, {{25, 55, 25, 55, 0.6}, {130, 170, 45, 70, 0.1}, {70, 130, 135, 165, 0.45}},
              0.03);
  } else {
    std::vector<std::array<double, 5>> grid;
    for (double y = 0.0; y < 200.0; y += 50.0)
      for (double x = 0.0; x < 200.0; x += 50.0) grid.push_back({x, x + 50.0, y, y + 50.0, p});
    setBlocks(bd, grid, state.range(0) == 1 ? 0.03 : 0.1);
  }
  runCase(state, &c);
}
BENCHMARK(BM_Channels2DBlocks)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kSecond)->Iterations(3);

}  // namespace
