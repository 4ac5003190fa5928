// Pyramid kernels, dimension rules and the reduction and expansion of a grid of
// values, over the separable filter.
#include <array>
#include <cstdint>
#include <span>

#include "data/values.hpp"
#include "foundation/check.hpp"
#include "nuvo_pyramid.h"
#include "pyramid/pyramid_filter.hpp"
#include "pyramid/separable_filter.hpp"

namespace nuvo {
namespace {

constexpr double kLeastMinWeight = 1e-10;
constexpr int kEmptyGrid = -3;
constexpr int kGridTooLarge = -620;

// One direction's step and kernel (not read for a step 0).
struct Direction {
  int k;
  const double *w;
};

// The codes by which reduction and expansion refuse their arguments.
struct Codes {
  int negativeStep;
  int smallMinWeight;
};

// Checks the arguments of a reduction or expansion of the n grid onto the nOut
// grid, builds the tap table of each direction with a positive step by
// makeTaps(direction) and filters.
template <typename MakeTaps>
int filterGrid(const double *in, std::array<int, 3> n, const std::array<Direction, 3> &d,
               std::array<int, 3> nOut, double *out, double *outWeight, double minWeight,
               Codes codes, MakeTaps makeTaps, int nthread) {
  bool filtered = false;
  for (const Direction &x : d) {
    NUVO_FAIL_IF(x.k < 0, codes.negativeStep);
    NUVO_FAIL_IF(x.k > 0 && x.w == nullptr, kMemoryNotAllocated);
    filtered = filtered || x.k > 0;
  }
  NUVO_FAIL_IF(filtered && !(minWeight >= kLeastMinWeight), codes.smallMinWeight);
  NUVO_FAIL_IF(in == nullptr || out == nullptr || outWeight == nullptr, kMemoryNotAllocated);
  Dims dims{};
  std::array<TapTable, 3> tables;
  std::array<const TapTable *, 3> taps{};
  for (int a = 0; a < 3; ++a) {
    NUVO_FAIL_IF(n[a] < 1 || nOut[a] < 1 || (d[a].k == 0 && nOut[a] != n[a]), kEmptyGrid);
    dims[a] = static_cast<std::size_t>(n[a]);
    if (d[a].k == 0) continue;
    tables[a] = makeTaps(a);
    taps[a] = &tables[a];
  }
  filterSeparable({in, dims[0] * dims[1] * dims[2]}, dims, taps, out, outWeight, minWeight,
                  nthread);
  return 0;
}

}  // namespace

int pyramidReduce(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                  const double *wx, const double *wy, const double *wz, int shiftx, int shifty,
                  int shiftz, int nxOut, int nyOut, int nzOut, double *out, double *outWeight,
                  double minWeight, int nthread) {
  const std::array<Direction, 3> d{{{kx, wx}, {ky, wy}, {kz, wz}}};
  const std::array<int, 3> n{nx, ny, nz}, nOut{nxOut, nyOut, nzOut}, shift{shiftx, shifty, shiftz};
  return guardedCall([&] {
    return filterGrid(
        in, n, d, nOut, out, outWeight, minWeight, {-3501, -3509},
        [&](int a) { return reductionTaps(n[a], d[a].k, d[a].w, shift[a], nOut[a]); }, nthread);
  });
}

int pyramidExpand(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                  const double *wx, const double *wy, const double *wz, int nxOut, int nyOut,
                  int nzOut, double *out, double *outWeight, double minWeight, int nthread) {
  const std::array<Direction, 3> d{{{kx, wx}, {ky, wy}, {kz, wz}}};
  const std::array<int, 3> n{nx, ny, nz}, nOut{nxOut, nyOut, nzOut};
  return guardedCall([&] {
    return filterGrid(
        in, n, d, nOut, out, outWeight, minWeight, {-3511, -3519},
        [&](int a) { return expansionTaps(n[a], d[a].k, d[a].w, nOut[a]); }, nthread);
  });
}

}  // namespace nuvo

extern "C" {

int NUVOPyramidWeight(int k, double alpha, double *w) {
  if (k < 1) return 0;
  w[k] = 1.0;
  for (int i = 1; i <= k; ++i) w[k - i] = w[k - i + 1] * (2 * k - i + 1) / i;
  const double phase = 1.0 / k;
  for (int d = 1; d <= k / 2; ++d) {
    if (2 * d == k) {
      w[d] = 0.5 / k;
    } else {
      const double scale = phase / (w[d] + w[k - d]);
      w[d] *= scale;
      w[k - d] *= scale;
    }
  }
  if (alpha < 0.0) {
    const double scale = phase / (w[0] + 2.0 * w[k]);
    w[0] *= scale;
    w[k] *= scale;
  } else {
    w[0] = alpha;
    w[k] = (phase - alpha) * 0.5;
  }
  return 0;
}

int NUVOPyramidReduceDimension(int n, int k, int *nOut, int *shift) {
  NUVO_FAIL_IF(k < 0, -3501);
  NUVO_FAIL_IF(k > 0 && n < k + 1, -3505);
  *nOut = k == 0 ? n : (n - 1) / k + 1;
  *shift = k == 0 ? 0 : ((n - 1) % k) / 2;
  return 0;
}

int NUVOPyramidExpandDimension(int n, int k, int *nOut) {
  NUVO_FAIL_IF(k < 0, -3511);
  NUVO_FAIL_IF(k > 0 && n < 2, -3515);
  const std::int64_t size = k == 0 ? n : std::int64_t{n - 1} * k + 1;
  NUVO_FAIL_IF(!nuvo::fitsInInt(size), nuvo::kGridTooLarge);
  *nOut = static_cast<int>(size);
  return 0;
}

int NUVOPyramidReduce(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                      const double *wx, const double *wy, const double *wz, int shiftx, int shifty,
                      int shiftz, int nxOut, int nyOut, int nzOut, double *out, double *outWeight,
                      double minWeight) {
  return nuvo::pyramidReduce(in, nx, ny, nz, kx, ky, kz, wx, wy, wz, shiftx, shifty, shiftz, nxOut,
                             nyOut, nzOut, out, outWeight, minWeight, 1);
}

int NUVOPyramidExpand(const double *in, int nx, int ny, int nz, int kx, int ky, int kz,
                      const double *wx, const double *wy, const double *wz, int nxOut, int nyOut,
                      int nzOut, double *out, double *outWeight, double minWeight) {
  return nuvo::pyramidExpand(in, nx, ny, nz, kx, ky, kz, wx, wy, wz, nxOut, nyOut, nzOut, out,
                             outWeight, minWeight, 1);
}

}  // extern "C"
