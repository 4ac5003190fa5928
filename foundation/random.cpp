// The library's random number generator and the draws built on it.
//
// Main sequence: x(n) = (-x(n-64) - 5 x(n-101)) mod M over a ring of 101 doubles
// holding integers below M, so every operation on them is exact in double. Each
// value is combined with an additive sequence u = frac(37 u + 2^-25) on a grid of
// 2^-25, also exact. The table is filled by Wichmann-Hill from the seed.
#include <array>
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

// The seeding generator (Wichmann-Hill): three lanes x(k) = m x(k-1) mod p from
// x(0) = |seed| + 1, 2 |seed| + 3 and 3 |seed| + 4, each draw the fractional part
// of the sum of the lanes' x / p. A seeding takes kSeedingDraws draws (the first
// kDiscardedSeedDraws dropped, then one per table value and one for u). The k-th
// state is m^k x(0) mod p: with the powers in a table the draws do not wait on
// one another, and every state fits in 32 bits (x(0) is reduced mod p first).
constexpr int kSeedingDraws = kDiscardedSeedDraws + NUVO_RAND_TABLE_SIZE + 1;

struct SeedLane {
  std::int32_t modulus;
  std::array<std::int32_t, kSeedingDraws> power;  // m^(k+1) mod p for draw k

  // The lane's term of draw k from x(0) = x0 (reduced mod p): x(k+1) / p.
  double term(std::int32_t x0, int k) const {
    return static_cast<double>(power[static_cast<std::size_t>(k)] * x0 % modulus) / modulus;
  }
};

constexpr SeedLane seedLane(std::int32_t multiplier, std::int32_t modulus) {
  SeedLane lane{modulus, {}};
  std::int32_t x = 1;
  for (std::int32_t &p : lane.power) p = x = multiplier * x % modulus;
  return lane;
}

constexpr SeedLane kLaneA = seedLane(171, 30269);
constexpr SeedLane kLaneC = seedLane(172, 30307);
constexpr SeedLane kLaneB = seedLane(170, 30323);

// floor(x) for 0 <= x < 2^31, by truncation: one conversion each way rather than
// a call, as the baseline x86-64 has no rounding instruction.
double wholePart(double x) {
  return static_cast<double>(static_cast<std::int32_t>(x));
}

// The seeding draws from `seed`; any 32-bit seed, |INT_MIN| included, is safe.
std::array<double, kSeedingDraws> seedingDraws(int seed) {
  const std::int64_t start = std::abs(static_cast<std::int64_t>(seed)) + 1;
  const auto reduced = [](std::int64_t x0, const SeedLane &lane) {
    return static_cast<std::int32_t>(x0 % lane.modulus);
  };
  const std::int32_t a0 = reduced(start, kLaneA), c0 = reduced(2 * start + 1, kLaneC),
                     b0 = reduced(3 * start + 1, kLaneB);
  std::array<double, kSeedingDraws> draw;
  for (int k = 0; k < kSeedingDraws; ++k) {
    const double sum = kLaneA.term(a0, k) + kLaneC.term(c0, k) + kLaneB.term(b0, k);
    draw[static_cast<std::size_t>(k)] = sum - wholePart(sum);
  }
  return draw;
}

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
  const std::array<double, kSeedingDraws> draw = seedingDraws(seed);
  for (int i = 0; i < NUVO_RAND_TABLE_SIZE; ++i)
    ctx->table[i] = wholePart(draw[kDiscardedSeedDraws + i] * kModulus);
  ctx->u = wholePart(draw[kSeedingDraws - 1] * 0x1p25) * kSecondaryUnit;
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
