// Search neighborhoods: the grid offsets inside a search ellipsoid, sorted from
// the central node outwards, with their distances and weights.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <vector>

#include "engine/rotation.hpp"
#include "foundation/check.hpp"
#include "nuvo_memory.h"
#include "nuvo_searchneighborhood.h"

namespace nuvo {
namespace {

constexpr int kEmptyNeighborhood = -688;
// Slightly above 1 so that nodes lying exactly on the ellipsoid are kept despite rounding.
constexpr double kEllipsoidTolerance = 1.0000000001;
// Inverse squared radius of an axis of radius 0: only offset 0 passes along it.
constexpr double kFlatAxis = 1e20;
// Distances closer than this count as equal when the tie-break jitter is sized.
constexpr double kDistinctGap = 1e-10;

double inverseSquare(double r) {
  return r > 0.0 ? 1.0 / (r * r) : kFlatAxis;
}

// The angles alone decide: all three exactly 0 means no rotation, whatever the flag.
bool hasRotation(const nuvo_searchNeighborhoodParameters &p) {
  return !(p.angle1 == 0.0 && p.angle2 == 0.0 && p.angle3 == 0.0);
}

Rotation ellipsoidRotation(const nuvo_searchNeighborhoodParameters &p) {
  return rotationOf(p.angle1, p.angle2, p.angle3);
}

// The half-sides of the candidate box, in cells.
struct Box {
  int bx, by, bz;
  std::size_t count() const {
    return static_cast<std::size_t>(2 * bx + 1) * static_cast<std::size_t>(2 * by + 1) *
           static_cast<std::size_t>(2 * bz + 1);
  }
};

int candidateBox(const nuvo_searchNeighborhoodParameters &p, Box *box) {
  double r[3] = {std::trunc(p.rx), std::trunc(p.ry), std::trunc(p.rz)};
  for (double ri : r) NUVO_FAIL_IF(!(ri >= 0.0), kEmptyNeighborhood);  // negative or NaN
  if (hasRotation(p)) r[0] = r[1] = r[2] = std::max({r[0], r[1], r[2]});
  // A box whose node count does not fit in 32 bits could never be allocated.
  double count = (2.0 * r[0] + 1.0) * (2.0 * r[1] + 1.0) * (2.0 * r[2] + 1.0);
  NUVO_FAIL_IF(count > std::numeric_limits<int>::max(), kAllocationFailed);
  *box = {static_cast<int>(r[0]), static_cast<int>(r[1]), static_cast<int>(r[2])};
  return 0;
}

// Offsets, in list order, of the nodes kept in the ellipsoid.
struct Candidates {
  std::vector<int> ix, iy, iz;
  std::vector<double> distance;
  void add(int dx, int dy, int dz, double d) {
    ix.push_back(dx);
    iy.push_back(dy);
    iz.push_back(dz);
    distance.push_back(d);
  }
};

// Every node of the box inside the ellipsoid, the centre first, then the box in
// z, y, x order (x fastest).
void collect(const nuvo_searchNeighborhoodParameters &p, const Box &box, Candidates *c) {
  const double inv[3] = {inverseSquare(p.rx), inverseSquare(p.ry), inverseSquare(p.rz)};
  const bool rotate = hasRotation(p);
  const Rotation rot = ellipsoidRotation(p);
  c->add(0, 0, 0, 0.0);
  for (int dz = -box.bz; dz <= box.bz; ++dz) {
    for (int dy = -box.by; dy <= box.by; ++dy) {
      for (int dx = -box.bx; dx <= box.bx; ++dx) {
        if (dx == 0 && dy == 0 && dz == 0) continue;
        double x = dx, y = dy, z = dz;
        if (rotate) rot.toEllipsoidFrame(dx, dy, dz, &x, &y, &z);
        if (x * x * inv[0] + y * y * inv[1] + z * z * inv[2] > kEllipsoidTolerance) continue;
        double a = x / p.ax, b = y / p.ay, e = z / p.az;
        c->add(dx, dy, dz, std::sqrt(a * a + b * b + e * e));
      }
    }
  }
}

// Half the smallest gap between distinct distances (1 when all are equal): a
// jitter below it reorders only nodes of equal distance.
double jitterAmplitude(std::vector<double> sorted) {
  std::sort(sorted.begin(), sorted.end());
  double span = sorted.back() - sorted.front();
  if (span == 0.0) return 1.0;
  double gap = span;
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    double d = sorted[i] - sorted[i - 1];
    if (d > kDistinctGap && d < gap) gap = d;
  }
  return 0.5 * gap;
}

// List order after the seed-1 jitter: ascending distance, equal distances shuffled
// the same way in every run.
std::vector<int> jitteredOrder(const std::vector<double> &distance, nuvo_randContext *ctx) {
  double h = jitterAmplitude(distance);
  std::size_t n = distance.size();
  std::vector<double> key(n);
  for (std::size_t i = 0; i < n; ++i)
    key[i] = distance[i] + h * NUVODoubleRand(i == 0 ? 1 : 0, ctx);
  std::vector<int> order(n);
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [&](int a, int b) { return key[a] < key[b] || (key[a] == key[b] && a < b); });
  return order;
}

// The centre gets half the smallest unit step so that negative powers stay finite.
void setWeights(const nuvo_searchNeighborhoodParameters &p, nuvo_searchNeighborhood *sn) {
  for (int i = 0; i < sn->size; ++i) sn->weight[i] = p.power == 0.0 ? 1.0 : sn->distance[i];
  if (p.power == 0.0) return;
  sn->weight[0] = 0.5 * std::min({1.0 / p.ax, 1.0 / p.ay, 1.0 / p.az});
  if (p.power == 1.0) return;
  for (int i = 0; i < sn->size; ++i) sn->weight[i] = std::pow(sn->weight[i], p.power);
}

void setBoundingBox(nuvo_searchNeighborhood *sn) {
  sn->ixMin = sn->iyMin = sn->izMin = 0;
  sn->ixMax = sn->iyMax = sn->izMax = 0;
  for (int i = 0; i < sn->size; ++i) {
    sn->ixMin = std::min(sn->ixMin, sn->ix[i]);
    sn->iyMin = std::min(sn->iyMin, sn->iy[i]);
    sn->izMin = std::min(sn->izMin, sn->iz[i]);
    sn->ixMax = std::max(sn->ixMax, sn->ix[i]);
    sn->iyMax = std::max(sn->iyMax, sn->iy[i]);
    sn->izMax = std::max(sn->izMax, sn->iz[i]);
  }
}

int build(const nuvo_searchNeighborhoodParameters &p, nuvo_searchNeighborhood *sn,
          nuvo_randContext *ctx) {
  Box box{};
  NUVO_TRY(candidateBox(p, &box));
  Candidates c;
  std::size_t capacity = box.count();
  c.ix.reserve(capacity);
  c.iy.reserve(capacity);
  c.iz.reserve(capacity);
  c.distance.reserve(capacity);
  collect(p, box, &c);
  std::vector<int> order = jitteredOrder(c.distance, ctx);
  NUVO_TRY(NUVOMallocSearchNeighborhood(sn, static_cast<int>(order.size())));
  for (int i = 0; i < sn->size; ++i) {
    sn->ix[i] = c.ix[order[i]];
    sn->iy[i] = c.iy[order[i]];
    sn->iz[i] = c.iz[order[i]];
    sn->distance[i] = c.distance[order[i]];
  }
  setWeights(p, sn);
  setBoundingBox(sn);
  return 0;
}

// Largest |coordinate| along x, y, z of points sampled on the ellipsoid surface:
// latitudes from -pi/2 in 314 steps of 0.01 rad, longitudes from 0 in 157 steps,
// each point taken on both sides of the xz-plane. With the symmetry through the
// centre this covers the surface up to slivers of 0.01 rad.
void sampledExtent(const nuvo_searchNeighborhoodParameters &p, double extent[3]) {
  const Rotation rot = ellipsoidRotation(p);
  constexpr double kHalfPi = 1.5707963267948966;
  double largest[3] = {0.0, 0.0, 0.0};
  for (int i = 0; i < 314; ++i) {
    double latitude = -kHalfPi + 0.01 * i;
    for (int j = 0; j < 157; ++j) {
      double longitude = 0.01 * j;
      double y = p.ry * std::cos(latitude) * std::sin(longitude);
      for (double side : {y, -y}) {
        double e[3] = {p.rx * std::cos(latitude) * std::cos(longitude), side,
                       p.rz * std::sin(latitude)};
        double g[3];
        rot.toGridFrame(e, g);
        for (int a = 0; a < 3; ++a) largest[a] = std::max(largest[a], std::fabs(g[a]));
      }
    }
  }
  for (int a = 0; a < 3; ++a) extent[a] = largest[a];
}

int truncatedBound(double r) {
  double t = std::trunc(std::fabs(r));
  return t < std::numeric_limits<int>::max() ? static_cast<int>(t)
                                             : std::numeric_limits<int>::max();
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitSearchNeighborhood(nuvo_searchNeighborhood *sn) {
  *sn = nuvo_searchNeighborhood{};
}

int NUVOMallocSearchNeighborhood(nuvo_searchNeighborhood *sn, int n) {
  if (n <= 0) return -3;
  int err = 0;
  std::size_t count = static_cast<std::size_t>(n);
  sn->ix = static_cast<int *>(NUVOMalloc(count, sizeof(int), &err));
  if (err == 0) sn->iy = static_cast<int *>(NUVOMalloc(count, sizeof(int), &err));
  if (err == 0) sn->iz = static_cast<int *>(NUVOMalloc(count, sizeof(int), &err));
  if (err == 0) sn->distance = static_cast<double *>(NUVOMalloc(count, sizeof(double), &err));
  if (err == 0) sn->weight = static_cast<double *>(NUVOMalloc(count, sizeof(double), &err));
  if (err == 0) sn->size = n;
  return err;
}

int NUVOReallocSearchNeighborhood(nuvo_searchNeighborhood *sn, int n) {
  if (n <= 0) return -5;
  int err = 0;
  std::size_t count = static_cast<std::size_t>(n);
  sn->ix = static_cast<int *>(NUVORealloc(sn->ix, count, sizeof(int), &err));
  if (err == 0) sn->iy = static_cast<int *>(NUVORealloc(sn->iy, count, sizeof(int), &err));
  if (err == 0) sn->iz = static_cast<int *>(NUVORealloc(sn->iz, count, sizeof(int), &err));
  if (err == 0)
    sn->distance = static_cast<double *>(NUVORealloc(sn->distance, count, sizeof(double), &err));
  if (err == 0)
    sn->weight = static_cast<double *>(NUVORealloc(sn->weight, count, sizeof(double), &err));
  if (err == 0) sn->size = n;
  return err;
}

void NUVOFreeSearchNeighborhood(nuvo_searchNeighborhood *sn) {
  NUVOFree(sn->ix);
  NUVOFree(sn->iy);
  NUVOFree(sn->iz);
  NUVOFree(sn->distance);
  NUVOFree(sn->weight);
  NUVOInitSearchNeighborhood(sn);
}

int NUVOPrintSearchNeighborhood(const nuvo_searchNeighborhood *sn, const char *prefix,
                                FILE *stream) {
  std::fprintf(stream, "%ssize : %10d\n", prefix, sn->size);
  std::fprintf(stream, "%sixMin: %10d\n", prefix, sn->ixMin);
  std::fprintf(stream, "%siyMin: %10d\n", prefix, sn->iyMin);
  std::fprintf(stream, "%sizMin: %10d\n", prefix, sn->izMin);
  std::fprintf(stream, "%sixMax: %10d\n", prefix, sn->ixMax);
  std::fprintf(stream, "%siyMax: %10d\n", prefix, sn->iyMax);
  std::fprintf(stream, "%sizMax: %10d\n", prefix, sn->izMax);
  return 0;
}

int NUVOBuildSearchNeighborhood(const nuvo_searchNeighborhoodParameters *p,
                                nuvo_searchNeighborhood *sn, nuvo_randContext *ctx) {
  return nuvo::guardedCall([&] { return nuvo::build(*p, sn, ctx); });
}

int NUVOSearchNeighborhoodApproxBound(const nuvo_searchNeighborhoodParameters *p, int *bx, int *by,
                                      int *bz) {
  double extent[3] = {p->rx, p->ry, p->rz};
  if (nuvo::hasRotation(*p)) nuvo::sampledExtent(*p, extent);
  *bx = nuvo::truncatedBound(extent[0]);
  *by = nuvo::truncatedBound(extent[1]);
  *bz = nuvo::truncatedBound(extent[2]);
  return 0;
}

}  // extern "C"
