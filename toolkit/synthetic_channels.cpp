// Sinuous channels running along x.
//
// Each channel is a centre line y = c(x) made of two sine harmonics with random
// amplitude, wavelength and phase; in 3D it also has a random depth z0. A node
// belongs to the channel when it lies inside the elliptic cross-section of
// half-width w/2 (across y) and half-thickness t/2 (along z) around the centre
// line. Channels are added one by one until the target proportion is reached,
// the last one painting past the target by at most one channel's worth.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "nuvo_synthetic.h"
#include "toolkit/synthetic_common.hpp"

namespace nuvo::synthetic {
namespace {

constexpr double kChannel = 1.0;

struct Channel {
  double y0, amplitude, wavelength, phase, phase2;
  double z0;
};

Channel drawChannel(Draws &draws, int nx, int ny, int nz, double width) {
  Channel c;
  c.y0 = draws.uniform(0.0, ny);
  c.amplitude = draws.uniform(0.6, 1.6) * width;
  c.wavelength = draws.uniform(0.35, 0.7) * nx + 5.0 * width;
  c.phase = draws.uniform(0.0, 2.0 * std::numbers::pi);
  c.phase2 = draws.uniform(0.0, 2.0 * std::numbers::pi);
  c.z0 = draws.uniform(0.0, nz);
  return c;
}

double centreLine(const Channel &c, int ix) {
  const double a = 2.0 * std::numbers::pi * (ix + 0.5) / c.wavelength;
  return c.y0 + c.amplitude * (std::sin(a + c.phase) + 0.35 * std::sin(2.0 * a + c.phase2));
}

// Paints one channel and returns the number of nodes that turned to channel.
long long paint(nuvo_image *image, const Channel &c, double width, double thickness) {
  const nuvo_grid &g = *image->grid;
  const double halfWidth = 0.5 * width;
  const double halfThickness = 0.5 * thickness;
  long long added = 0;
  for (int ix = 0; ix < g.nx; ++ix) {
    const double centre = centreLine(c, ix);
    const int iyLo = std::max(0, static_cast<int>(std::floor(centre - halfWidth)));
    const int iyHi = std::min(g.ny - 1, static_cast<int>(std::ceil(centre + halfWidth)));
    for (int iz = 0; iz < g.nz; ++iz) {
      const double dz = g.nz == 1 ? 0.0 : (iz + 0.5 - c.z0) / halfThickness;
      for (int iy = iyLo; iy <= iyHi; ++iy) {
        const double dy = (iy + 0.5 - centre) / halfWidth;
        if (dy * dy + dz * dz > 1.0) continue;
        double &v = image->var[ix + g.nx * iy + static_cast<long long>(g.nxy) * iz];
        if (v != kChannel) {
          v = kChannel;
          ++added;
        }
      }
    }
  }
  return added;
}

}  // namespace
}  // namespace nuvo::synthetic

extern "C" int NUVOGenerateChannelImage(nuvo_image *image, int nx, int ny, int nz,
                                        double channelProportion, double channelWidth, int seed) {
  using namespace nuvo::synthetic;
  if (!(channelProportion > 0.0 && channelProportion < 1.0) || !(channelWidth >= 1.0)) return -4301;
  if (int rc = makeSingleVariableImage(image, nx, ny, nz, "facies", 0.0); rc != 0) return rc;
  const double thickness = std::max(1.0, channelWidth / 3.0);
  const long long target = std::llround(channelProportion * image->grid->nxyz);
  Draws draws(seed);
  long long painted = 0;
  // A channel always paints at least its width at one x, so the loop ends; the
  // cap only guards against pathological sizes.
  for (int attempt = 0; painted < target && attempt < 100000; ++attempt)
    painted += paint(image, drawChannel(draws, nx, ny, nz, channelWidth), channelWidth, thickness);
  return 0;
}
