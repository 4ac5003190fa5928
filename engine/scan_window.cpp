#include "engine/scan_window.hpp"

#include <algorithm>
#include <cmath>

#include "engine/primes.hpp"

namespace nuvo {
namespace {

// Splits a position of the box into its coordinates, x fastest.
void decompose(const ScanWindow &w, int p, int *x, int *y, int *z) {
  const int nxy = w.nx * w.ny;
  *z = p / nxy;
  *y = (p % nxy) / w.nx;
  *x = p % w.nx;
}

// The size of step the stride should reach for: one gap (N / nscan) in every
// direction in which the box is longer than a gap, so that consecutive positions
// of a partial scan land far apart along every axis of the box.
long long strideTarget(const ScanWindow &w, double gap) {
  double target = 0.0;
  if (w.nx > gap) target += gap;
  if (w.ny > gap) target += gap * w.nx;
  if (w.nz > gap) target += gap * w.nx * w.ny;
  return static_cast<long long>(std::max(target, gap));
}

}  // namespace

bool makeScanWindow(const nuvo_grid &ti, const EventExtent &e, ScanWindow *window) {
  window->nx = ti.nx - (e.xMax - e.xMin);
  window->ny = ti.ny - (e.yMax - e.yMin);
  window->nz = ti.nz - (e.zMax - e.zMin);
  window->x0 = -e.xMin;
  window->y0 = -e.yMin;
  window->z0 = -e.zMin;
  return window->nx > 0 && window->ny > 0 && window->nz > 0;
}

// The stride is drawn from a run of consecutive primes, from the first prime not
// below the target downwards, long enough that their product exceeds N: then at
// least one of them does not divide N, and draws are repeated until one such is
// met. When the run reaches the smallest prime before its product exceeds N, it
// continues upwards from the target instead (a tiny target on a large box).
ScanOrder drawScanOrder(const ScanWindow &window, int nscan, nuvo_randContext *ctx) {
  const int n = window.count();
  ScanOrder order;
  order.start = static_cast<int>(NUVODoubleRand(0, ctx) * n);
  if (n == 1) {
    order.stride = 1;
    return order;
  }
  const long long target = strideTarget(window, static_cast<double>(n) / nscan);
  const auto first = std::lower_bound(kPrimes.begin(), kPrimes.end(), target);
  int top = first == kPrimes.end() ? static_cast<int>(kPrimeCount) - 1
                                   : static_cast<int>(first - kPrimes.begin());
  int bottom = top;
  double product = kPrimes[top];
  while (product <= n && bottom > 0) product *= kPrimes[--bottom];
  while (product <= n) product *= kPrimes[++top];

  int prime;
  do {
    prime = kPrimes[bottom + NUVOIntRand(0, top - bottom + 1, ctx)];
  } while (n % prime == 0);
  order.stride = prime % n;
  return order;
}

ScanWalker::ScanWalker(const ScanWindow &window, const nuvo_grid &ti, ScanOrder order)
    : nx_(window.nx), ny_(window.ny), nz_(window.nz) {
  decompose(window, order.start, &x_, &y_, &z_);
  decompose(window, order.stride, &dx_, &dy_, &dz_);
  const long long nxTi = ti.nx, nxyTi = ti.nxy;
  node_ = (window.x0 + x_) + nxTi * (window.y0 + y_) + nxyTi * (window.z0 + z_);
  step_ = dx_ + nxTi * dy_ + nxyTi * dz_;
  wrapX_ = nxTi - nx_;
  wrapY_ = nxyTi - ny_ * nxTi;
  wrapZ_ = -nz_ * nxyTi;
  x_ -= nx_;
  y_ -= ny_;
  z_ -= nz_;
}

}  // namespace nuvo
