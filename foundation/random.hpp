// Internal access to the generator: its seeding step, and a stream of draws for
// the loops that make millions of them in a row.
#pragma once

#include <cstdint>

#include "nuvo_random.h"

namespace nuvo {

// Seeds `ctx` with `seed` without drawing. Unlike NUVODoubleRand, a seed of 0 also
// restarts the sequence: the simulation reseeds per path entry with base + k,
// which may wrap to 0.
void seedRandContext(int seed, nuvo_randContext *ctx);

namespace generator {

inline constexpr std::int64_t kModulusInt = 1000009711;
inline constexpr double kModulus = static_cast<double>(kModulusInt);
inline constexpr int kLag = 64;
inline constexpr double kSecondaryUnit = 0x1p-25;
inline constexpr std::int64_t kSecondaryMask = (std::int64_t{1} << 25) - 1;

// Replaces table[index] by the next value of the main sequence, an integer in
// [0, M) stored as a double, and returns it.
inline double nextTableValue(double *table, int index) {
  const int lagged = index >= kLag ? index - kLag : index + NUVO_RAND_TABLE_SIZE - kLag;
  const double t = table[index];
  // 4M - x(n-64) - 5 x(n-101), an integer in (-2M, 4M]. Bringing it into [0, M) by
  // adding or subtracting M and 2M is taking its remainder modulo M, done here in
  // integers without branches: every value involved is exact in double and int64.
  const double x = 4.0 * kModulus - table[lagged] - 2.0 * t - 2.0 * t - t;
  std::int64_t r = static_cast<std::int64_t>(x) % kModulusInt;
  r += r < 0 ? kModulusInt : 0;
  table[index] = static_cast<double>(r);
  return table[index];
}

// The secondary sequence u = frac(37 u + 2^-25), again while it is 0. u stays on
// the grid of 2^-25 (the seeding puts it there), so with u = m 2^-25 the step is
// m = (37 m + 1) mod 2^25, exact in integers as it is in double.
inline std::int64_t nextSecondary(std::int64_t m) {
  do {
    m = (37 * m + 1) & kSecondaryMask;
  } while (m == 0);
  return m;
}

// One draw from the main value x and the secondary u: x/M + u less its integer
// part (r lies in (0, 2), and no branch on the random value), plus 1e-17 to stay
// away from 0.
inline double combine(double x, double u) {
  double r = x / kModulus + u;
  r -= static_cast<double>(static_cast<std::int64_t>(r));
  return r + 1e-17;
}

}  // namespace generator

// The draws NUVODoubleRand(0, ctx) would give, in the same order, for loops that
// make many: the position in the table and the secondary sequence are kept in
// locals between draws instead of going through the record each time, and the
// record is brought up to date when the stream ends. Nothing else may draw from
// ctx while a stream on it is open.
class DrawStream {
 public:
  explicit DrawStream(nuvo_randContext *ctx) : ctx_(ctx) {
    if (ctx->needsSeed) seedRandContext(0, ctx);
    index_ = ctx->index;
    secondary_ = static_cast<std::int64_t>(ctx->u / generator::kSecondaryUnit);
  }
  ~DrawStream() {
    ctx_->index = index_;
    ctx_->u = static_cast<double>(secondary_) * generator::kSecondaryUnit;
  }
  DrawStream(const DrawStream &) = delete;
  DrawStream &operator=(const DrawStream &) = delete;

  double next() {
    const double x = generator::nextTableValue(ctx_->table, index_);
    index_ = index_ + 1 == NUVO_RAND_TABLE_SIZE ? 0 : index_ + 1;
    secondary_ = generator::nextSecondary(secondary_);
    return generator::combine(x, static_cast<double>(secondary_) * generator::kSecondaryUnit);
  }

 private:
  nuvo_randContext *ctx_;
  int index_;
  std::int64_t secondary_;
};

}  // namespace nuvo
