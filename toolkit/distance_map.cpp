// Exact distance maps by separable transforms.
//
// Both metrics are sums over the three directions (of squared offsets for the
// Euclidean distance, of absolute offsets for L1), so the distance to the nearest
// informed node can be built one direction at a time: each pass replaces every
// value f(q) of a grid line by min_p f(p) + c(q - p), where c is the squared or the
// absolute offset scaled by the cell size of that direction. Starting from 0 on
// informed nodes and +infinity elsewhere, the three passes give the exact squared
// Euclidean (or the L1) distance; each pass is linear in the length of the line.
// The lines of a pass are independent, so several threads share them (each with
// its own scratch) and the map is the same for any number of threads.
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "foundation/check.hpp"
#include "nuvo_distancemap.h"
#include "toolkit/distance_map.hpp"

namespace nuvo {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool validSpacing(double s) {
  return std::isfinite(s) && s > 0.0;
}

int checkGrid(const nuvo_grid &g) {
  NUVO_FAIL_IF(g.nx < 1, -601);
  NUVO_FAIL_IF(g.ny < 1, -602);
  NUVO_FAIL_IF(g.nz < 1, -603);
  NUVO_FAIL_IF(!validSpacing(g.sx), -604);
  NUVO_FAIL_IF(!validSpacing(g.sy), -605);
  NUVO_FAIL_IF(!validSpacing(g.sz), -606);
  long long nxyz = static_cast<long long>(g.nx) * g.ny * g.nz;
  NUVO_FAIL_IF(nxyz > std::numeric_limits<int>::max(), -610);
  return 0;
}

// A line of n values at first, first + stride, ...; cell size s along it.
struct Line {
  double *first;
  std::ptrdiff_t stride;
  int n;
  double s;
  double &operator[](int i) const { return first[i * stride]; }
};

// Squared Euclidean pass (Felzenszwalb-Huttenlocher): the lower envelope of the
// parabolas (x - x_p)^2 + f(p) rooted at the finite values, then one walk along it.
class ParabolaPass {
 public:
  explicit ParabolaPass(int maxLength)
      : f_(maxLength), site_(maxLength), start_(maxLength + 1), height_(maxLength) {}

  void operator()(const Line &line) {
    int k = -1;
    for (int q = 0; q < line.n; ++q) {
      f_[q] = line[q];
      if (f_[q] == kInfinity) continue;
      double xq = line.s * q;
      double hq = f_[q] + xq * xq;
      double zq = -kInfinity;
      while (k >= 0) {
        zq = (hq - height_[k]) / (2.0 * (xq - line.s * site_[k]));
        if (zq > start_[k]) break;  // start_[0] is -infinity: the first site always stays
        --k;
      }
      ++k;
      site_[k] = q;
      height_[k] = hq;
      start_[k] = zq;
    }
    if (k < 0) return;  // no finite value: the line stays at +infinity
    start_[k + 1] = kInfinity;
    int j = 0;
    for (int q = 0; q < line.n; ++q) {
      double xq = line.s * q;
      while (start_[j + 1] < xq) ++j;
      int p = site_[j];
      double d = line.s * (q - p);
      line[q] = d * d + f_[p];
    }
  }

 private:
  std::vector<double> f_;       // the line before the pass
  std::vector<int> site_;       // nodes whose parabola is on the envelope
  std::vector<double> start_;   // position where each envelope parabola starts
  std::vector<double> height_;  // f(p) + x_p^2 of each envelope parabola
};

// L1 pass: the best site seen so far keeps its lead while the sweep moves on
// (every earlier site gains the same s per step), so one forward and one backward
// sweep give min_p f(p) + s*|q - p|.
class AbsolutePass {
 public:
  explicit AbsolutePass(int maxLength) : f_(maxLength), forward_(maxLength) {}

  void operator()(const Line &line) {
    int best = -1;
    for (int q = 0; q < line.n; ++q) {
      f_[q] = line[q];
      forward_[q] = best < 0 ? kInfinity : f_[best] + line.s * (q - best);
      if (f_[q] <= forward_[q]) {
        best = q;
        forward_[q] = f_[q];
      }
    }
    best = -1;
    for (int q = line.n - 1; q >= 0; --q) {
      double backward = best < 0 ? kInfinity : f_[best] + line.s * (best - q);
      if (f_[q] <= backward) {
        best = q;
        backward = f_[q];
      }
      line[q] = forward_[q] < backward ? forward_[q] : backward;
    }
  }

 private:
  std::vector<double> f_;
  std::vector<double> forward_;
};

// Runs the pass over every line of each direction longer than one node, on
// nthread threads, each taking a block of consecutive lines. Lines next to each
// other in memory are taken one after the other so that the strided y and z
// lines reuse the cache lines their neighbours brought in. The threads' scratch
// is allocated before they start, so that nothing inside them can fail.
template <typename Pass>
void runPasses(const nuvo_grid &g, double *map, int nthread) {
  std::vector<Pass> scratch(static_cast<std::size_t>(nthread),
                            Pass(std::max(g.nx, std::max(g.ny, g.nz))));
  const std::ptrdiff_t nx = g.nx;
  const std::ptrdiff_t nxy = nx * g.ny;
  const std::ptrdiff_t nyz = static_cast<std::ptrdiff_t>(g.ny) * g.nz;
#pragma omp parallel num_threads(nthread)
  {
    Pass &pass = scratch[static_cast<std::size_t>(omp_get_thread_num())];
    if (g.nx > 1) {
#pragma omp for schedule(static)
      for (std::ptrdiff_t iyz = 0; iyz < nyz; ++iyz) pass(Line{map + iyz * nx, 1, g.nx, g.sx});
    }
    if (g.ny > 1) {
#pragma omp for schedule(static)
      for (std::ptrdiff_t izx = 0; izx < nx * g.nz; ++izx)
        pass(Line{map + izx / nx * nxy + izx % nx, nx, g.ny, g.sy});
    }
    if (g.nz > 1) {
#pragma omp for schedule(static)
      for (std::ptrdiff_t ixy = 0; ixy < nxy; ++ixy) pass(Line{map + ixy, nxy, g.nz, g.sz});
    }
  }
}

template <typename Informed>
void seed(int nxyz, Informed informed, double *map) {
  for (int i = 0; i < nxyz; ++i) map[i] = informed(i) ? 0.0 : kInfinity;
}

template <typename Informed>
int euclidean(const nuvo_grid &g, Informed informed, double *distance, int nthread) {
  NUVO_TRY(checkGrid(g));
  int nxyz = g.nx * g.ny * g.nz;
  return guardedCall([&] {
    seed(nxyz, informed, distance);
    runPasses<ParabolaPass>(g, distance, nthread);
#pragma omp parallel for num_threads(nthread) schedule(static)
    for (int i = 0; i < nxyz; ++i) distance[i] = std::sqrt(distance[i]);
    return 0;
  });
}

template <typename Informed>
int cityBlock(const nuvo_grid &g, Informed informed, double *distance) {
  NUVO_TRY(checkGrid(g));
  int nxyz = g.nx * g.ny * g.nz;
  return guardedCall([&] {
    seed(nxyz, informed, distance);
    runPasses<AbsolutePass>(g, distance, 1);
    return 0;
  });
}

// Informed nodes of one variable of an image: those not holding the missing value.
struct DefinedValues {
  const double *values;
  bool operator()(int i) const { return values[i] != NUVO_MISSING_VALUE; }
};

struct NonZeroBytes {
  const signed char *mask;
  bool operator()(int i) const { return mask[i] != 0; }
};

int imageVariable(const nuvo_image *image, int iv, DefinedValues *values) {
  NUVO_FAIL_IF(iv < 0 || iv >= image->nvar, -1100);
  values->values = image->var + static_cast<std::ptrdiff_t>(iv) * image->grid->nxyz;
  return 0;
}

}  // namespace

int euclideanDistanceMap(const nuvo_grid &grid, const signed char *informed, double *distance,
                         int nthread) {
  return euclidean(grid, NonZeroBytes{informed}, distance, nthread);
}

}  // namespace nuvo

extern "C" {

int NUVOEuclideanDistanceMap(const nuvo_grid *grid, const signed char *informed, double *distance) {
  return nuvo::euclideanDistanceMap(*grid, informed, distance, 1);
}

int NUVOL1DistanceMap(const nuvo_grid *grid, const signed char *informed, double *distance) {
  return nuvo::cityBlock(*grid, nuvo::NonZeroBytes{informed}, distance);
}

int NUVOImageEuclideanDistanceMap(const nuvo_image *image, int iv, double *distance) {
  nuvo::DefinedValues values{};
  NUVO_TRY(nuvo::imageVariable(image, iv, &values));
  return nuvo::euclidean(*image->grid, values, distance, 1);
}

int NUVOImageL1DistanceMap(const nuvo_image *image, int iv, double *distance) {
  nuvo::DefinedValues values{};
  NUVO_TRY(nuvo::imageVariable(image, iv, &values));
  return nuvo::cityBlock(*image->grid, values, distance);
}

}  // extern "C"
