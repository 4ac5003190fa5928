// Reductions and lifts of images between pyramid levels.
#include "pyramid/level_image.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "data/values.hpp"
#include "engine/owned.hpp"
#include "nuvo_pyramid.h"
#include "pyramid/level_grid.hpp"

namespace nuvo {
namespace {

constexpr double kAlpha = -1.0;  // binomial weights
constexpr double kDegree = 57.29577951308232;

std::array<std::vector<double>, 3> weightsOf(const Steps &k) {
  std::array<std::vector<double>, 3> w;
  for (int a = 0; a < 3; ++a) {
    w[a].resize(static_cast<std::size_t>(std::max(k[a], 0)) + 1);
    NUVOPyramidWeight(k[a], kAlpha, w[a].data());
  }
  return w;
}

// The coarse grid of a reduction and its shifts; the direction's codes on failure.
int coarseGridOf(const nuvo_grid &g, const Steps &k, nuvo_grid *out, Steps *shift) {
  const Steps n{g.nx, g.ny, g.nz};
  Steps nOut{};
  for (int a = 0; a < 3; ++a) NUVO_FAIL_IF(k[a] < 0, -3502 - a);
  for (int a = 0; a < 3; ++a)
    NUVO_FAIL_IF(NUVOPyramidReduceDimension(n[a], k[a], &nOut[a], &(*shift)[a]) != 0, -3506 - a);
  setLevelGrid(g, nOut, out);
  return 0;
}

// Index of the coarse node nearest to fine index i (halves towards the lower node).
int nearestCoarse(int i, int shift, int k, int nCoarse) {
  if (k == 0) return i;
  const int c = static_cast<int>(std::floor((i - shift + (k - 1) / 2) / static_cast<double>(k)));
  return std::clamp(c, 0, nCoarse - 1);
}

}  // namespace

int reduceGrid(const nuvo_grid &grid, const Steps &k, nuvo_grid *out) {
  Steps shift{};
  return coarseGridOf(grid, k, out, &shift);
}

Steps reductionShift(const nuvo_grid &grid, const Steps &k) {
  nuvo_grid coarse;
  Steps shift{};
  coarseGridOf(grid, k, &coarse, &shift);
  return shift;
}

int reduceImage(const nuvo_image &in, const Steps &k, double minWeight, nuvo_image *out) {
  nuvo_grid coarse;
  Steps shift{};
  NUVO_TRY(coarseGridOf(*in.grid, k, &coarse, &shift));
  NUVO_TRY(allocateOnGrid(coarse, in.nvar, out));
  const std::array<std::vector<double>, 3> w = weightsOf(k);
  std::vector<double> weight(static_cast<std::size_t>(coarse.nxyz));
  const nuvo_grid &g = *in.grid;
  for (int iv = 0; iv < in.nvar; ++iv) {
    std::snprintf(out->varName[iv], kNameSlot, "%s", in.varName[iv]);
    NUVO_TRY(NUVOPyramidReduce(variableValues(&in, iv).data(), g.nx, g.ny, g.nz, k[0], k[1], k[2],
                               w[0].data(), w[1].data(), w[2].data(), shift[0], shift[1], shift[2],
                               coarse.nx, coarse.ny, coarse.nz, variableValues(out, iv).data(),
                               weight.data(), minWeight));
  }
  return 0;
}

int reduceAngleImage(const nuvo_image &in, const Steps &k, nuvo_image *out) {
  // Variables 2 iv and 2 iv + 1 hold the cosine and sine of variable iv.
  OwnedImage parts, reduced;
  nuvo_grid grid = *in.grid;
  NUVO_TRY(allocateOnGrid(grid, 2 * in.nvar, &parts.image));
  for (int iv = 0; iv < in.nvar; ++iv) {
    std::span<const double> a = variableValues(&in, iv);
    std::span<double> c = variableValues(&parts.image, 2 * iv);
    std::span<double> s = variableValues(&parts.image, 2 * iv + 1);
    for (std::size_t i = 0; i < a.size(); ++i)
      if (!isMissing(a[i])) {
        c[i] = std::cos(a[i] / kDegree);
        s[i] = std::sin(a[i] / kDegree);
      }
  }
  NUVO_TRY(reduceImage(parts.image, k, 0.6, &reduced.image));
  NUVO_TRY(allocateOnGrid(*reduced.image.grid, in.nvar, out));
  for (int iv = 0; iv < in.nvar; ++iv) {
    std::snprintf(out->varName[iv], kNameSlot, "%s", in.varName[iv]);
    std::span<const double> c = variableValues(&reduced.image, 2 * iv);
    std::span<const double> s = variableValues(&reduced.image, 2 * iv + 1);
    std::span<double> a = variableValues(out, iv);
    for (std::size_t i = 0; i < a.size(); ++i)
      if (!isMissing(c[i])) a[i] = std::atan2(s[i], c[i]) * kDegree;
  }
  return 0;
}

int liftImage(const nuvo_image &coarse, const nuvo_grid &fine, const Steps &k, bool expansion,
              nuvo_image *out) {
  const Steps shift = reductionShift(fine, k);
  const nuvo_grid &cg = *coarse.grid;
  // With expansion, the source is the expanded grid of (n' - 1) k + 1 nodes per
  // direction, whose node e sits on fine node shift + e; else the coarse grid.
  OwnedImage expanded;
  const nuvo_image *source = &coarse;
  Steps n{cg.nx, cg.ny, cg.nz};
  if (expansion) {
    nuvo_grid eg = cg;
    for (int a = 0; a < 3; ++a) NUVO_TRY(NUVOPyramidExpandDimension(n[a], k[a], &n[a]));
    eg.nx = n[0];
    eg.ny = n[1];
    eg.nz = n[2];
    eg.nxy = n[0] * n[1];
    eg.nxyz = eg.nxy * n[2];
    NUVO_TRY(allocateOnGrid(eg, coarse.nvar, &expanded.image));
    const std::array<std::vector<double>, 3> w = weightsOf(k);
    std::vector<double> weight(static_cast<std::size_t>(eg.nxyz));
    for (int iv = 0; iv < coarse.nvar; ++iv)
      NUVO_TRY(NUVOPyramidExpand(variableValues(&coarse, iv).data(), cg.nx, cg.ny, cg.nz, k[0],
                                 k[1], k[2], w[0].data(), w[1].data(), w[2].data(), n[0], n[1],
                                 n[2], variableValues(&expanded.image, iv).data(), weight.data(),
                                 0.6));
    source = &expanded.image;
  }
  NUVO_TRY(allocateOnGrid(fine, coarse.nvar, out));
  const Steps nf{fine.nx, fine.ny, fine.nz};
  std::array<std::vector<int>, 3> from;  // per direction: source index of each fine index
  for (int a = 0; a < 3; ++a)
    for (int i = 0; i < nf[a]; ++i)
      from[a].push_back(expansion ? std::clamp(i - shift[a], 0, n[a] - 1)
                                  : nearestCoarse(i, shift[a], k[a], n[a]));
  for (int iv = 0; iv < coarse.nvar; ++iv) {
    std::snprintf(out->varName[iv], kNameSlot, "%s", coarse.varName[iv]);
    std::span<const double> src = variableValues(source, iv);
    std::span<double> dst = variableValues(out, iv);
    std::size_t i = 0;
    for (int iz = 0; iz < nf[2]; ++iz)
      for (int iy = 0; iy < nf[1]; ++iy)
        for (int ix = 0; ix < nf[0]; ++ix)
          dst[i++] = src[(static_cast<std::size_t>(from[2][iz]) * n[1] + from[1][iy]) * n[0] +
                         from[0][ix]];
  }
  return 0;
}

int sampleToCoarse(const nuvo_image &fine, const nuvo_grid &coarseGrid, const Steps &k,
                   nuvo_image *coarse) {
  const nuvo_grid &g = *fine.grid;
  const Steps shift = reductionShift(g, k);
  const Steps n{coarseGrid.nx, coarseGrid.ny, coarseGrid.nz};
  NUVO_TRY(allocateOnGrid(coarseGrid, fine.nvar, coarse));
  std::vector<long long> best(static_cast<std::size_t>(coarseGrid.nxyz));
  for (int iv = 0; iv < fine.nvar; ++iv) {
    std::snprintf(coarse->varName[iv], kNameSlot, "%s", fine.varName[iv]);
    std::fill(best.begin(), best.end(), std::numeric_limits<long long>::max());
    std::span<const double> src = variableValues(&fine, iv);
    std::span<double> dst = variableValues(coarse, iv);
    std::size_t i = 0;
    for (int iz = 0; iz < g.nz; ++iz)
      for (int iy = 0; iy < g.ny; ++iy)
        for (int ix = 0; ix < g.nx; ++ix, ++i) {
          if (isMissing(src[i])) continue;
          const Steps f{ix, iy, iz};
          Steps c{};
          long long d2 = 0;
          for (int a = 0; a < 3; ++a) {
            c[a] = nearestCoarse(f[a], shift[a], k[a], n[a]);
            const long long d = f[a] - (k[a] == 0 ? c[a] : shift[a] + c[a] * k[a]);
            d2 += d * d;
          }
          const std::size_t j = (static_cast<std::size_t>(c[2]) * n[1] + c[1]) * n[0] + c[0];
          if (d2 < best[j]) {
            best[j] = d2;
            dst[j] = src[i];
          }
        }
  }
  return 0;
}

int gatherVariables(const nuvo_grid &grid, std::span<const VariableSource> sources,
                    nuvo_image *out) {
  NUVO_TRY(allocateOnGrid(grid, static_cast<int>(sources.size()), out));
  for (std::size_t j = 0; j < sources.size(); ++j) {
    const VariableSource &s = sources[j];
    std::snprintf(out->varName[j], kNameSlot, "%s", s.name.c_str());
    std::span<const double> src = variableValues(s.image, s.var);
    std::copy(src.begin(), src.end(), variableValues(out, static_cast<int>(j)).begin());
  }
  return 0;
}

}  // namespace nuvo
