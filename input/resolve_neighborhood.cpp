// Radius and anisotropy modes of a search neighborhood turned into numbers, and
// the warnings that tell when a neighborhood is large for the training images.
#include "input/resolve_neighborhood.hpp"

#include <algorithm>
#include <array>

#include "foundation/check.hpp"
#include "input/transform_checks.hpp"
#include "nuvo_memory.h"
#include "nuvo_variogram.h"

namespace nuvo {
namespace {

// Warning codes; the y and z (or xz and yz) variants follow each first code.
constexpr int kRadiusReducedX = 25;
constexpr int kManyCategories = 80;
constexpr int kLargeAlongX = 30;
constexpr int kLargeInXySection = 33;
constexpr int kLargeInVolume = 36;

// More distinct values than this make the categorical range computation long
// (one variogram pass per category).
constexpr int kManyCategoriesThreshold = 20;

using Extents = std::array<int, 3>;
using Radii = std::array<double, 3>;

// Reports a warning through the monitor; without a monitor it has nowhere to go.
int warn(nuvo_progressMonitor *pm, nuvo_progressCallback callback, int code) {
  return pm == nullptr ? 0 : reportWarning(pm, callback, code);
}

Extents extentsOf(const nuvo_grid &g) {
  return {g.nx, g.ny, g.nz};
}

Extents smallestTrainingExtents(const nuvo_simInput &si) {
  Extents n{};
  for (int t = 0; t < si.ntrainImage; ++t) {
    const Extents e = extentsOf(isSimGridTi(si, t) ? *si.simImage->grid : *si.trainImage[t].grid);
    for (int a = 0; a < 3; ++a) n[a] = t == 0 ? e[a] : std::min(n[a], e[a]);
  }
  return n;
}

// Largest radius along each axis that lets a data event spanning the whole
// neighborhood (2 r + 1 nodes) fit in every training image.
int manualRadiusBound(int extent) {
  return (extent - 1) / 2;
}

int reduceManualRadii(Radii &r, const Extents &n, nuvo_progressMonitor *pm,
                      nuvo_progressCallback callback) {
  for (int a = 0; a < 3; ++a) {
    const int bound = manualRadiusBound(n[a]);
    if (r[a] <= bound) continue;
    r[a] = bound;
    NUVO_TRY(warn(pm, callback, kRadiusReducedX + a));
  }
  return 0;
}

// A quarter of the smallest extent: a full neighborhood then leaves at least half
// of each extent as candidate positions.
Radii largeDefaultRadii(const Extents &n) {
  return {static_cast<double>(n[0] / 4), static_cast<double>(n[1] / 4),
          static_cast<double>(n[2] / 4)};
}

int warnManyCategories(const nuvo_simInput &si, int iv, nuvo_progressMonitor *pm,
                       nuvo_progressCallback callback) {
  for (int t = 0; t < si.ntrainImage; ++t) {
    int nvalue = 0, nmissing = 0;
    double *value = nullptr, *proportion = nullptr;
    const int rc =
        NUVOGetImageOneVarValuePdf(&si.trainImage[t], iv, &nvalue, &value, &proportion, &nmissing);
    NUVOFree(value);
    NUVOFree(proportion);
    NUVO_TRY(rc);
    if (nvalue > kManyCategoriesThreshold) return warn(pm, callback, kManyCategories);
  }
  return 0;
}

// The largest approximate variogram range of variable iv over the training
// images, along each axis.
int rangeRadii(const nuvo_simInput &si, int iv, nuvo_progressMonitor *pm,
               nuvo_progressCallback callback, Radii &r, int *error) {
  const signed char categorical = si.distanceType[iv] == 0;
  if (categorical) NUVO_TRY(warnManyCategories(si, iv, pm, callback));
  r = {0.0, 0.0, 0.0};
  for (int t = 0; t < si.ntrainImage; ++t) {
    NUVO_TRY(checkStop(pm));
    Radii range{};
    const int rc = NUVOComputeVariogramRangeApprox(&si.trainImage[t], iv, categorical, &range[0],
                                                   &range[1], &range[2]);
    if (rc == kAllocationFailed) return rc;
    if (rc != 0) {
      *error = rc;
      return 0;
    }
    for (int a = 0; a < 3; ++a) r[a] = std::max(r[a], range[a]);
  }
  return 0;
}

// The largest ratio of a homothety axis (its upper bound with tolerance) over
// its values or the informed nodes of its image; 1 when it has none above 0
// (the parameters are checked after the neighbourhoods).
double largestRatio(const TransformParameters &h, int axis) {
  const int last = h.usage - 1;
  double largest = 0.0;
  if (!h.imageFlag[axis]) {
    if (h.value[axis] != nullptr) largest = h.value[axis][last];
  } else if (const nuvo_image *im = h.image[axis];
             im != nullptr && im->grid != nullptr && im->var != nullptr && im->nvar > last) {
    const double *v = im->var + static_cast<long long>(last) * im->grid->nxyz;
    for (int k = 0; k < im->grid->nxyz; ++k)
      if (v[k] != NUVO_MISSING_VALUE) largest = std::max(largest, v[k]);
  }
  return largest > 0.0 ? largest : 1.0;
}

// Whether a rotation angle may differ from 0 somewhere.
bool angleInUse(const TransformParameters &r, int angle) {
  if (r.imageFlag[angle]) return true;
  const double *v = r.value[angle];
  return v != nullptr && std::any_of(v, v + r.usage, [](double a) { return a != 0.0; });
}

// TI_RANGE_DEFAULT turns the training images' ranges into ranges on the
// simulation grid: each grows by the largest homothety ratio of its axis, and
// the axes a rotation turns into each other (azimuth: x and y, dip: y and z,
// plunge: x and z) take the larger range of the two, except along an axis the
// simulation grid does not extend in.
void accountForTransforms(const nuvo_simInput &si, Radii &r) {
  const TransformParameters h = homothetyParameters(si);
  if (h.usage == 1 || h.usage == 2)
    for (int a = 0; a < 3; ++a) r[a] *= largestRatio(h, a);
  const TransformParameters rot = rotationParameters(si);
  if (rot.usage != 1 && rot.usage != 2) return;
  const Extents simExtent = extentsOf(*si.simImage->grid);
  constexpr std::array<std::array<int, 2>, 3> kTurnedAxes{{{0, 1}, {1, 2}, {0, 2}}};
  for (int angle = 0; angle < 3; ++angle) {
    if (!angleInUse(rot, angle)) continue;
    const auto [a, b] = kTurnedAxes[angle];
    const double larger = std::max(r[a], r[b]);
    for (int axis : {a, b})
      if (simExtent[axis] > 1) r[axis] = larger;
  }
}

// Sets the radii named by a TI_RANGE_XY, _XZ, _YZ or _XYZ mode to the largest of them.
void tieRadii(int radiusMode, Radii &r) {
  const auto tie = [&r](int a, int b) { r[a] = r[b] = std::max(r[a], r[b]); };
  switch (radiusMode) {
    case SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XY:
      tie(0, 1);
      break;
    case SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XZ:
      tie(0, 2);
      break;
    case SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_YZ:
      tie(1, 2);
      break;
    case SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XYZ:
      r[0] = r[1] = r[2] = std::max({r[0], r[1], r[2]});
      break;
    default:
      break;
  }
}

// A ratio taken from a radius; along an axis of radius 0 only offset 0 passes,
// so its ratio does not matter but must not be 0 (distances would be undefined).
double ratioOf(double radius) {
  return radius > 0.0 ? radius : 1.0;
}

void resolveAnisotropy(nuvo_searchNeighborhoodParameters &p) {
  Radii a{p.rx, p.ry, p.rz};
  switch (p.anisotropyRatioMode) {
    case SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL:
      return;
    case SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE:
      a = {1.0, 1.0, 1.0};
      break;
    case SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XY:
      tieRadii(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XY, a);
      break;
    case SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XZ:
      tieRadii(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XZ, a);
      break;
    case SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_YZ:
      tieRadii(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_YZ, a);
      break;
    case SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XYZ:
      tieRadii(SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XYZ, a);
      break;
    default:  // SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS
      break;
  }
  p.ax = ratioOf(a[0]);
  p.ay = ratioOf(a[1]);
  p.az = ratioOf(a[2]);
}

// Warnings 30-36. A data event spans at most e = min(2 b, m - 1) nodes beyond
// its first along an axis (b the neighborhood's bound, m the simulation grid's
// extent), which leaves w = n - e candidate positions along it in a TI of extent
// n. The neighborhood counts as large when fewer than half of the positions
// remain along an axis, a quarter in a section, an eighth in the volume.
int warnLargeNeighborhood(const nuvo_simInput &si, const nuvo_searchNeighborhoodParameters &p,
                          const Extents &n, nuvo_progressMonitor *pm,
                          nuvo_progressCallback callback) {
  int b[3];
  NUVOSearchNeighborhoodApproxBound(&p, &b[0], &b[1], &b[2]);
  const Extents m = extentsOf(*si.simImage->grid);
  // Products of up to three extents of one valid grid stay exact in a double.
  std::array<double, 3> w{}, nd{};
  for (int a = 0; a < 3; ++a) {
    const long long span = std::min(2LL * b[a], m[a] - 1LL);
    w[a] = static_cast<double>(std::max(0LL, n[a] - span));
    nd[a] = n[a];
  }
  for (int a = 0; a < 3; ++a)
    if (2.0 * w[a] < nd[a]) NUVO_TRY(warn(pm, callback, kLargeAlongX + a));
  constexpr int kSections[3][2] = {{0, 1}, {0, 2}, {1, 2}};
  for (int k = 0; k < 3; ++k) {
    const int i = kSections[k][0], j = kSections[k][1];
    if (4.0 * w[i] * w[j] < nd[i] * nd[j]) NUVO_TRY(warn(pm, callback, kLargeInXySection + k));
  }
  if (8.0 * w[0] * w[1] * w[2] < nd[0] * nd[1] * nd[2])
    NUVO_TRY(warn(pm, callback, kLargeInVolume));
  return 0;
}

}  // namespace

int resolveSearchNeighborhood(nuvo_simInput &si, int iv, nuvo_progressMonitor *pm,
                              nuvo_progressCallback callback, int *error) {
  nuvo_searchNeighborhoodParameters &p = si.searchNeighborhoodParameters[iv];
  const Extents n = smallestTrainingExtents(si);
  Radii r{p.rx, p.ry, p.rz};
  switch (p.radiusMode) {
    case SEARCHNEIGHBORHOOD_RADIUS_MANUAL:
      NUVO_TRY(reduceManualRadii(r, n, pm, callback));
      break;
    case SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT:
      r = largeDefaultRadii(n);
      break;
    default:  // the TI_RANGE modes
      NUVO_TRY(rangeRadii(si, iv, pm, callback, r, error));
      if (*error != 0) return 0;
      tieRadii(p.radiusMode, r);
      if (p.radiusMode == SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_DEFAULT) accountForTransforms(si, r);
      break;
  }
  p.rx = r[0];
  p.ry = r[1];
  p.rz = r[2];
  resolveAnisotropy(p);
  return warnLargeNeighborhood(si, p, n, pm, callback);
}

}  // namespace nuvo
