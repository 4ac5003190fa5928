// The library's random number generator and the draws built on it.
//
// Main sequence: x(n) = (-x(n-64) - 5 x(n-101)) mod M over a ring of 101 doubles
// holding integers below M, so every operation on them is exact in double. Each
// value is combined with an additive sequence u = frac(37 u + 2^-25) on a grid of
// 2^-25, also exact. The table is filled by Wichmann-Hill from the seed.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "foundation/prefetch.hpp"
#include "foundation/random.hpp"
#include "nuvo_random.h"

namespace nuvo {
namespace {

using generator::kModulus;
using generator::kSecondaryUnit;
constexpr int kDiscardedSeedDraws = 10;

// The seeding generator (Wichmann-Hill). Its state is kept in 64 bits so that the
// starting values derived from any 32-bit seed, |INT_MIN| + 1 included, and their
// first products never overflow; after one draw they are below 30323.
class WichmannHill {
 public:
  explicit WichmannHill(int seed) {
    const std::int64_t start = std::abs(static_cast<std::int64_t>(seed)) + 1;
    a_ = start;
    c_ = 2 * start + 1;
    b_ = 3 * start + 1;
  }

  double next() {
    a_ = 171 * a_ % 30269;
    c_ = 172 * c_ % 30307;
    b_ = 170 * b_ % 30323;
    const double sum = static_cast<double>(a_) / 30269.0 + static_cast<double>(c_) / 30307.0 +
                       static_cast<double>(b_) / 30323.0;
    return sum - std::floor(sum);
  }

 private:
  std::int64_t a_;
  std::int64_t c_;
  std::int64_t b_;
};

// Fisher-Yates from the end. Each swap partner is drawn kAhead steps before its
// swap (the draws keep their order) and its entry prefetched, so that on long
// lists the random accesses overlap instead of waiting for memory one by one.
void uniformShuffle(int n, int *list, nuvo_randContext *ctx) {
  constexpr int kAhead = 16;
  int partner[kAhead];
  DrawStream draws(ctx);
  auto draw = [&](int i) {
    const int j = static_cast<int>(draws.next() * (i + 1));
    partner[i % kAhead] = j;
    prefetch(list + j);
  };
  for (int i = n - 1; i >= 1 && i > n - 1 - kAhead; --i) draw(i);
  for (int i = n - 1; i >= 1; --i) {
    const int j = partner[i % kAhead];
    if (i - kAhead >= 1) draw(i - kAhead);
    std::swap(list[i], list[j]);
  }
}

}  // namespace

void seedRandContext(int seed, nuvo_randContext *ctx) {
  WichmannHill wh(seed);
  for (int i = 0; i < kDiscardedSeedDraws; ++i) wh.next();
  for (double &value : ctx->table) value = std::floor(wh.next() * kModulus);
  ctx->u = std::floor(wh.next() * 0x1p25) * kSecondaryUnit;
  ctx->step = kSecondaryUnit;
  ctx->twoM = 2.0 * kModulus;
  ctx->fourM = 4.0 * kModulus;
  ctx->index = 0;
  ctx->needsSeed = 0;
}

}  // namespace nuvo

extern "C" {

void NUVOInitRandContext(nuvo_randContext *ctx) {
  std::memset(ctx, 0, sizeof(*ctx));
  ctx->needsSeed = 1;
}

double NUVODoubleRand(int seed, nuvo_randContext *ctx) {
  if (seed != 0 || ctx->needsSeed) nuvo::seedRandContext(seed, ctx);
  return nuvo::DrawStream(ctx).next();
}

int NUVOIntRand(int seed, int n, nuvo_randContext *ctx) {
  return static_cast<int>(NUVODoubleRand(seed, ctx) * n);
}

int NUVODrawIndexFromPdf(int n, const double *pdf, int *index, nuvo_randContext *ctx) {
  const double r = NUVODoubleRand(0, ctx);
  double sum = 0.0;
  for (int k = 0; k < n - 1; ++k) {
    sum += pdf[k];
    if (sum > r) {
      *index = k;
      return 0;
    }
  }
  *index = n - 1;
  return 0;
}

int NUVORandomizeListOfInt(int n, int *list, nuvo_randContext *ctx) {
  nuvo::uniformShuffle(n, list, ctx);
  return 0;
}

}  // extern "C"
