// Flattened lenses of two facies in a background.
//
// Lenses are axis-aligned ellipsoids, long along x, narrower along y and thin
// along z (a tenth of the grid's height or so). Sand lenses (facies 1) are placed first until they
// cover their target share of the grid, then shale lenses (facies 2), which may cut through sand.
#include <algorithm>
#include <cmath>

#include "nuvo_synthetic.h"
#include "toolkit/synthetic_common.hpp"

namespace nuvo::synthetic {
namespace {

struct Facies {
  double value;
  double proportion;
  double length;  // mean semi-axis along x, as a fraction of nx
};

constexpr Facies kLensFacies[] = {{1.0, 0.25, 0.12}, {2.0, 0.15, 0.08}};

// Paints one ellipsoid and returns the number of nodes that took `value`.
long long paintLens(nuvo_image *image, double value, const double centre[3],
                    const double semiAxis[3]) {
  const nuvo_grid &g = *image->grid;
  const int n[3] = {g.nx, g.ny, g.nz};
  int lo[3], hi[3];
  for (int a = 0; a < 3; ++a) {
    lo[a] = std::max(0, static_cast<int>(std::floor(centre[a] - semiAxis[a])));
    hi[a] = std::min(n[a] - 1, static_cast<int>(std::ceil(centre[a] + semiAxis[a])));
  }
  long long added = 0;
  for (int iz = lo[2]; iz <= hi[2]; ++iz) {
    const double dz = n[2] == 1 ? 0.0 : (iz + 0.5 - centre[2]) / semiAxis[2];
    for (int iy = lo[1]; iy <= hi[1]; ++iy) {
      const double dy = (iy + 0.5 - centre[1]) / semiAxis[1];
      for (int ix = lo[0]; ix <= hi[0]; ++ix) {
        const double dx = (ix + 0.5 - centre[0]) / semiAxis[0];
        if (dx * dx + dy * dy + dz * dz > 1.0) continue;
        double &v = image->var[ix + g.nx * iy + static_cast<long long>(g.nxy) * iz];
        if (v != value) {
          v = value;
          ++added;
        }
      }
    }
  }
  return added;
}

}  // namespace
}  // namespace nuvo::synthetic

extern "C" int NUVOGenerateLensImage(nuvo_image *image, int nx, int ny, int nz, int seed) {
  using namespace nuvo::synthetic;
  if (int rc = makeSingleVariableImage(image, nx, ny, nz, "facies", 0.0); rc != 0) return rc;
  Draws draws(seed);
  const double nxyz = image->grid->nxyz;
  for (const Facies &f : kLensFacies) {
    const long long target = std::llround(f.proportion * nxyz);
    long long painted = 0;
    for (int attempt = 0; painted < target && attempt < 100000; ++attempt) {
      const double semiX = std::max(1.0, draws.uniform(0.6, 1.4) * f.length * nx);
      const double semiAxis[3] = {
          semiX, std::max(1.0, draws.uniform(0.4, 0.8) * semiX),
          std::max(1.0, draws.uniform(0.08, 0.16) * nz * semiX / (f.length * nx))};
      const double centre[3] = {draws.uniform(0.0, nx), draws.uniform(0.0, ny),
                                draws.uniform(0.0, nz)};
      painted += paintLens(image, f.value, centre, semiAxis);
    }
  }
  return 0;
}
