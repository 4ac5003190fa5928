// The library's random number generator and the draws built on it.
//
// Main sequence: x(n) = (-x(n-64) - 5 x(n-101)) mod M over a ring of 101 doubles
// holding integers below M, so every operation on them is exact in double. Each
// value is combined with an additive sequence u = frac(37 u + 2^-25) on a grid of
// 2^-25, also exact. The table is filled by Wichmann-Hill from the seed.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

#include "foundation/check.hpp"
#include "foundation/random.hpp"
#include "nuvo_random.h"

namespace nuvo {
namespace {

constexpr double kModulus = 1000009711.0;
constexpr double kStep = 0x1p-25;
constexpr int kLag = 64;
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

// Next value of the main sequence, an integer in [0, M) stored as a double.
double nextTableValue(nuvo_randContext *ctx) {
  const int i = ctx->index;
  const int j = (i + NUVO_RAND_TABLE_SIZE - kLag) % NUVO_RAND_TABLE_SIZE;
  const double t = ctx->table[i];
  // 4M - x(n-64) - 5 x(n-101), in (-2M, 4M].
  double x = ctx->fourM - ctx->table[j] - 2.0 * t - 2.0 * t - t;
  if (x <= 0.0) {
    if (x < -kModulus) x += ctx->twoM;
    if (x < 0.0) x += kModulus;
  } else {
    if (x >= ctx->twoM) x -= ctx->twoM;
    while (x >= kModulus) x -= kModulus;
  }
  ctx->table[i] = x;
  ctx->index = (i + 1 == NUVO_RAND_TABLE_SIZE) ? 0 : i + 1;
  return x;
}

void advanceSecondary(nuvo_randContext *ctx) {
  do {
    const double v = 37.0 * ctx->u + ctx->step;
    ctx->u = v - std::floor(v);
  } while (ctx->u == 0.0);
}

// Sums of the weights by list position in a tree of fanout kFanout: level 0 holds
// the weights themselves, each level above the sums of consecutive groups of
// kFanout entries of the level below, up to a top level of at most kFanout sums.
// Placed positions hold weight 0, so the weights before a position add up to the
// cumulative weight of the unplaced entries before it. A search reads one group
// per level, contiguous in memory: on long lists only the lowest levels leave the
// cache, and a draw beyond all that remains is settled by the top level alone.
class WeightTree {
  static constexpr std::size_t kFanout = 16;

 public:
  // Takes over `cumWeight` (n+1 values) as storage: its first n entries become the
  // weights. The levels above are allocated before anything is changed.
  WeightTree(std::size_t n, double *cumWeight) : weight_(cumWeight, n) {
    for (std::size_t size = n; size > kFanout;) {
      size = (size + kFanout - 1) / kFanout;
      sums_.emplace_back(size);
    }
    for (std::size_t i = 0; i < n; ++i) weight_[i] = cumWeight[i + 1] - cumWeight[i];
    std::span<const double> lower(weight_);
    for (std::vector<double> &level : sums_) {
      for (std::size_t i = 0; i < lower.size(); ++i) level[i / kFanout] += lower[i];
      lower = level;
    }
  }

  double weight(std::size_t position) const { return weight_[position]; }

  void set(std::size_t position, double value) {
    const double delta = value - weight_[position];
    weight_[position] = value;
    for (std::vector<double> &level : sums_) {
      position /= kFanout;
      level[position] += delta;
    }
  }

  // The largest p in [0, n] whose prefix sum (weights of positions 0 ... p-1)
  // does not exceed x. A bisection over non-decreasing cumulative weights lands
  // on the same position, except that it never goes past n-1.
  std::size_t lastPrefixNotAbove(double x) const {
    double prefix = 0.0;
    std::size_t first = 0;
    for (std::size_t level = sums_.size();; --level) {
      const std::span<const double> values = level == 0 ? weight_ : std::span(sums_[level - 1]);
      const std::size_t end = std::min(first + kFanout, values.size());
      std::size_t i = first;
      while (i < end && prefix + values[i] <= x) prefix += values[i++];
      // Everything in this group fits under x (only partly, through rounding,
      // below the top): the answer is the end of the group's positions.
      if (i == end) return std::min(end * positionsPerEntry(level), weight_.size());
      if (level == 0) return i;
      first = i * kFanout;
    }
  }

 private:
  // Number of positions one entry of `level` covers.
  static std::size_t positionsPerEntry(std::size_t level) {
    std::size_t s = 1;
    for (; level > 0; --level) s *= kFanout;
    return s;
  }

  std::span<double> weight_;
  std::vector<std::vector<double>> sums_;
};

int weightedShuffle(int n, int *list, double *cumWeight, nuvo_randContext *ctx) {
  const std::size_t size = static_cast<std::size_t>(n);
  const double total = cumWeight[size];
  WeightTree tree(size, cumWeight);
  for (std::size_t k = 0; k + 1 < size; ++k) {
    const double x = NUVODoubleRand(0, ctx) * total;
    // A draw beyond the remaining weight falls on the last position. The lower
    // bound only matters when rounding leaves placed positions not quite empty.
    const std::size_t j = std::clamp(tree.lastPrefixNotAbove(x), k, size - 1);
    std::swap(list[k], list[j]);
    // The entry that was at k moves to j; position k is placed and leaves the tree.
    if (j != k) tree.set(j, tree.weight(k));
    tree.set(k, 0.0);
  }
  // The state the step-by-step update of the cumulative weights ends in.
  cumWeight[size] = tree.weight(size - 1);
  std::fill(cumWeight, cumWeight + size, 0.0);
  return 0;
}

}  // namespace

void seedRandContext(int seed, nuvo_randContext *ctx) {
  WichmannHill wh(seed);
  for (int i = 0; i < kDiscardedSeedDraws; ++i) wh.next();
  for (double &value : ctx->table) value = std::floor(wh.next() * kModulus);
  ctx->u = std::floor(wh.next() * 0x1p25) * kStep;
  ctx->step = kStep;
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
  const double x = nuvo::nextTableValue(ctx);
  nuvo::advanceSecondary(ctx);
  double r = x / nuvo::kModulus + ctx->u;
  if (r >= 1.0) r -= 1.0;
  return r + 1e-17;
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
  for (int i = n - 1; i >= 1; --i) {
    const int j = static_cast<int>(NUVODoubleRand(0, ctx) * (i + 1));
    std::swap(list[i], list[j]);
  }
  return 0;
}

int NUVORandomizeWeightedListOfInt(int n, int *list, double *cumWeight, nuvo_randContext *ctx) {
  if (n < 2) return 0;
  return nuvo::guardedCall([&] { return nuvo::weightedShuffle(n, list, cumWeight, ctx); });
}

}  // extern "C"
