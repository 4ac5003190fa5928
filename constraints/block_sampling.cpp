#include "constraints/block_sampling.hpp"

#include <algorithm>
#include <cmath>

#include "data/values.hpp"

namespace nuvo {
namespace {

constexpr double kSilvermanFactor = 0.9;
constexpr double kIqrToSd = 1.349;  // the interquartile range of a standard normal

// Origin along one axis: uniform among the positions where a box of `extent`
// nodes fits in `n`, or anywhere when it does not (the box then wraps).
int drawOrigin(int n, int extent, nuvo_randContext *ctx) {
  return NUVOIntRand(0, extent <= n ? n - extent + 1 : n, ctx);
}

double quantile(const std::vector<double> &sorted, double p) {
  const double pos = p * static_cast<double>(sorted.size() - 1);
  const std::size_t i = static_cast<std::size_t>(pos);
  if (i + 1 >= sorted.size()) return sorted.back();
  return sorted[i] + (pos - static_cast<double>(i)) * (sorted[i + 1] - sorted[i]);
}

}  // namespace

std::vector<Placement> drawPlacements(const BlockNodes &nodes, double target,
                                      std::span<const nuvo_image *const> trainImage, int v,
                                      nuvo_randContext *ctx) {
  const auto [x0, x1] = std::minmax_element(nodes.ix.begin(), nodes.ix.end());
  const auto [y0, y1] = std::minmax_element(nodes.iy.begin(), nodes.iy.end());
  const auto [z0, z1] = std::minmax_element(nodes.iz.begin(), nodes.iz.end());
  const int bx = *x0, by = *y0, bz = *z0;
  const int ex = *x1 - bx + 1, ey = *y1 - by + 1, ez = *z1 - bz + 1;
  const std::size_t nnode = nodes.ix.size();
  std::vector<Placement> out;
  for (const nuvo_image *ti : trainImage) {
    if (ti == nullptr) continue;
    const nuvo_grid &g = *ti->grid;
    const double *values = ti->var + static_cast<long long>(v) * g.nxyz;
    for (int k = 0; k < kPlacementsPerTrainImage; ++k) {
      const int ox = drawOrigin(g.nx, ex, ctx), oy = drawOrigin(g.ny, ey, ctx),
                oz = drawOrigin(g.nz, ez, ctx);
      Placement p;
      bool informed = true;
      for (std::size_t i = 0; i < nnode && informed; ++i) {
        const int x = (nodes.ix[i] - bx + ox) % g.nx, y = (nodes.iy[i] - by + oy) % g.ny,
                  z = (nodes.iz[i] - bz + oz) % g.nz;
        const double value = values[x + g.nx * y + g.nxy * z];
        informed = !isMissing(value);
        const double d = value - target;
        p.mean += value;
        p.meanSquare += value * value;
        if (d < 0.0) {
          p.lowSquares += d * d;
          ++p.nlow;
        } else {
          p.highSquares += d * d;
          ++p.nhigh;
        }
      }
      if (!informed) continue;
      p.mean /= static_cast<double>(nnode);
      p.meanSquare /= static_cast<double>(nnode);
      out.push_back(p);
    }
  }
  return out;
}

double computeIQRofReal(std::vector<double> values) {
  if (values.size() < 2) return 0.0;
  std::sort(values.begin(), values.end());
  return quantile(values, 0.75) - quantile(values, 0.25);
}

bool blockStatistics(std::span<const Placement> placements, double target, BlockStatistics *out) {
  const std::size_t n = placements.size();
  if (n == 0) return false;
  std::vector<double> means;
  double sum = 0.0, nearest = INFINITY;
  for (const Placement &p : placements) {
    means.push_back(p.mean);
    sum += p.mean;
    nearest = std::min(nearest, std::fabs(p.mean - target));
  }
  const double average = sum / static_cast<double>(n);
  double squares = 0.0;
  for (double m : means) squares += (m - average) * (m - average);
  const double sd = std::sqrt(squares / static_cast<double>(n));
  const double iqr = computeIQRofReal(means) / kIqrToSd;
  const double spread = sd > 0.0 && iqr > 0.0 ? std::min(sd, iqr) : std::max(sd, iqr);
  const double h = kSilvermanFactor * spread * std::pow(static_cast<double>(n), -0.2);

  double w = 0.0, wMean = 0.0, wSquare = 0.0, low = 0.0, nlow = 0.0, high = 0.0, nhigh = 0.0;
  for (const Placement &p : placements) {
    const double d = p.mean - target;
    const double weight = h > 0.0 ? std::exp(-(d * d - nearest * nearest) / (2.0 * h * h)) : 1.0;
    w += weight;
    wMean += weight * p.mean;
    wSquare += weight * p.meanSquare;
    low += weight * p.lowSquares;
    nlow += weight * p.nlow;
    high += weight * p.highSquares;
    nhigh += weight * p.nhigh;
  }
  BlockStatistics s;
  s.bandwidth = h;
  s.localMean = wMean / w;
  s.localSd = std::sqrt(std::max(0.0, wSquare / w - s.localMean * s.localMean));
  s.spreadLeft = std::sqrt(low / (nlow + nhigh));
  s.spreadRight = std::sqrt(high / (nlow + nhigh));
  if (!std::isfinite(s.localMean) || !std::isfinite(s.localSd) || !std::isfinite(s.spreadLeft) ||
      !std::isfinite(s.spreadRight))
    return false;
  *out = s;
  return true;
}

}  // namespace nuvo
