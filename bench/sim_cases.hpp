// The simulation cases the benchmarks share: the channel and lens inputs.
#pragma once

#include <cstdio>
#include <filesystem>

#include "nuvo_imagefile.h"
#include "nuvo_synthetic.h"
#include "tests/input/siminput_builder.hpp"

namespace nuvo_bench {

namespace fs = std::filesystem;

// The shared channel image when it is there, else a generated one.
inline void loadChannelImage(nuvo_image *ti) {
  const fs::path shared = fs::path(NUVO_SHARED_DATA_DIR) / "ti_strebelle_250x250.gslib";
  if (FILE *f = std::fopen(shared.c_str(), "r")) {
    const int rc = NUVOReadImage(ti, 0, f);
    std::fclose(f);
    if (rc == 0) return;
    NUVOFreeImage(ti);
  }
  NUVOGenerateChannelImage(ti, 250, 250, 1, 0.28, 8.0, 1);
}

struct Case : nuvo_test::OwnedSimInput {
  fs::path report;
};

// Turns the test input (30 x 30 x 1, one categorical variable) into a case on an
// nx x ny x nz grid with the given radii.
inline void configure(Case *c, const nuvo_image &ti, int nx, int ny, int nz, double rx, double ry,
                      double rz, double scanFraction) {
  nuvo_test::buildValidSimInput(&c->si, ti);
  nuvo_simInput &si = c->si;
  NUVOFreeImage(si.simImage);
  nuvo_test::makeImage(si.simImage, nx, ny, nz, {"facies"},
                       [](int, int, int, int) { return NUVO_MISSING_VALUE; });
  si.outputSimJob = OUTPUT_SIM_NO_FILE;
  si.consoleAppFlag = 1;
  c->report = fs::temp_directory_path() / "nuvo_sim_bench_report.txt";
  std::snprintf(si.outputReportFileName, NUVO_FILE_NAME_MAX + 1, "%s", c->report.c_str());
  nuvo_searchNeighborhoodParameters &p = si.searchNeighborhoodParameters[0];
  p.rx = rx;
  p.ry = ry;
  p.rz = rz;
  p.anisotropyRatioMode = SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS;
  si.nneighboringNode[0] = 30;
  si.distanceThreshold[0] = 0.05;
  si.maxScanFraction[0] = scanFraction;
  si.npostProcessingPathMax = 0;
}

// The channel training image simulated on a 200 x 200 grid; `ti` keeps the image.
inline void configureChannels2D(Case *c, nuvo_image *ti) {
  NUVOInitImage(ti);
  loadChannelImage(ti);
  configure(c, *ti, 200, 200, 1, 20.0, 20.0, 0.0, 0.5);
}

}  // namespace nuvo_bench
