// Continuous field as a sum of random cosine waves.
//
// With K waves of random direction and frequency k ~ N(0, 1/L^2) per axis and a
// random phase, sqrt(2/K) * sum cos(k.x + phase) has mean 0, variance 1 and the
// Gaussian covariance exp(-|h|^2 / (2 L^2)) in the limit of many waves; 64 waves
// give a field that looks and behaves like it at a cost of 64 cosines per node.
#include <cmath>
#include <numbers>
#include <vector>

#include "foundation/check.hpp"
#include "nuvo_synthetic.h"
#include "toolkit/synthetic_common.hpp"

namespace nuvo::synthetic {
namespace {

constexpr int kWaves = 64;

struct Wave {
  double kx, ky, kz, phase;
};

}  // namespace
}  // namespace nuvo::synthetic

extern "C" int NUVOGenerateContinuousImage(nuvo_image *image, int nx, int ny, int nz,
                                           double correlationLength, int seed) {
  using namespace nuvo::synthetic;
  if (!(correlationLength > 0.0)) return -4302;
  if (int rc = makeSingleVariableImage(image, nx, ny, nz, "value", 0.0); rc != 0) return rc;
  return nuvo::guardedCall([&] {
    Draws draws(seed);
    std::vector<Wave> waves(kWaves);
    for (Wave &w : waves) {
      w.kx = draws.normal() / correlationLength;
      w.ky = ny > 1 ? draws.normal() / correlationLength : 0.0;
      w.kz = nz > 1 ? draws.normal() / correlationLength : 0.0;
      w.phase = draws.uniform(0.0, 2.0 * std::numbers::pi);
    }
    const double scale = std::sqrt(2.0 / kWaves);
    double *v = image->var;
    for (int iz = 0; iz < nz; ++iz)
      for (int iy = 0; iy < ny; ++iy)
        for (int ix = 0; ix < nx; ++ix) {
          double sum = 0.0;
          for (const Wave &w : waves) sum += std::cos(w.kx * ix + w.ky * iy + w.kz * iz + w.phase);
          *v++ = scale * sum;
        }
    return 0;
  });
}
