// Pieces shared by the synthetic image generators.
#pragma once

#include <cmath>
#include <numbers>

#include "nuvo_image.h"
#include "nuvo_random.h"

namespace nuvo::synthetic {

inline constexpr int kBadSize = -3;

// (Re)allocates `image` as an nx x ny x nz grid with unit spacing, origin 0 and one
// variable named `name`, every value set to `fill`. Returns 0, -3 or -1.
int makeSingleVariableImage(nuvo_image *image, int nx, int ny, int nz, const char *name,
                            double fill);

// A seeded stream of the library's generator with the draws the generators need.
class Draws {
 public:
  explicit Draws(int seed) {
    NUVOInitRandContext(&ctx_);
    NUVODoubleRand(seed, &ctx_);
  }
  // Uniform in [lo, hi).
  double uniform(double lo, double hi) { return lo + (hi - lo) * next(); }
  // Standard normal (Box-Muller on two uniform draws).
  double normal() {
    double u1 = next();
    double u2 = next();
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * std::numbers::pi * u2);
  }
  // Uniform integer in [0, n).
  int index(int n) { return NUVOIntRand(0, n, &ctx_); }

 private:
  // Draws in (0, 1); the generator's 1e-17 offset never reaches 1 in double.
  double next() { return std::fmin(NUVODoubleRand(0, &ctx_), 1.0 - 1e-16); }
  nuvo_randContext ctx_;
};

}  // namespace nuvo::synthetic
