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

constexpr std::int64_t kModulusInt = 1000009711;
constexpr double kModulus = static_cast<double>(kModulusInt);
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
  const int j = i >= kLag ? i - kLag : i + NUVO_RAND_TABLE_SIZE - kLag;
  const double t = ctx->table[i];
  // 4M - x(n-64) - 5 x(n-101), an integer in (-2M, 4M]. Bringing it into [0, M) by
  // adding or subtracting M and 2M is taking its remainder modulo M, done here in
  // integers without branches: every value involved is exact in double and int64.
  const double x = ctx->fourM - ctx->table[j] - 2.0 * t - 2.0 * t - t;
  std::int64_t r = static_cast<std::int64_t>(x) % kModulusInt;
  r += r < 0 ? kModulusInt : 0;
  ctx->table[i] = static_cast<double>(r);
  ctx->index = (i + 1 == NUVO_RAND_TABLE_SIZE) ? 0 : i + 1;
  return ctx->table[i];
}

// u = frac(37 u + 2^-25), again while it is 0. 37 u + 2^-25 is positive, so its
// integer part is its truncation.
void advanceSecondary(nuvo_randContext *ctx) {
  do {
    const double v = 37.0 * ctx->u + ctx->step;
    ctx->u = v - static_cast<double>(static_cast<std::int64_t>(v));
  } while (ctx->u == 0.0);
}

// Asks for the cache line holding `address` ahead of its use; no effect on results.
// The prefetching helpers are forced inline: GCC takes a function that does
// nothing but prefetch for one without effect, and drops the calls to it.
[[gnu::always_inline]] inline void prefetch(const void *address) {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#else
  static_cast<void>(address);
#endif
}

// Sums of the weights by list position in a tree of fanout kFanout: level 0 holds
// the weights themselves, each level above the sums of consecutive groups of
// kFanout entries of the level below, up to a top level of at most kFanout sums.
// Placed positions hold weight 0, so the weights before a position add up to the
// cumulative weight of the unplaced entries before it. A search reads one group
// per level, contiguous in memory: on long lists only the lowest levels leave the
// cache, and a draw beyond all that remains is settled by the top level alone.
class WeightTree {
 public:
  static constexpr std::size_t kFanout = 16;

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
      const std::span<const double> values = entries(level);
      const std::size_t i = scanGroup(values, first, x, &prefix);
      // Everything in this group fits under x (only partly, through rounding,
      // below the top): the answer is the end of the group's positions.
      if (i == groupEnd(values, first))
        return std::min(i * positionsPerEntry(level), weight_.size());
      if (level == 0) return i;
      first = i * kFanout;
    }
  }

  // Number of levels above the weights.
  std::size_t levels() const { return sums_.size(); }

  // The entries of `level`, 0 being the weights.
  std::span<const double> entries(std::size_t level) const {
    return level == 0 ? std::span<const double>(weight_)
                      : std::span<const double>(sums_[level - 1]);
  }

  // A search made one level at a time: the group it reads next, in `level`, and
  // the weight before that group. `alive` turns false when everything fits.
  struct Cursor {
    double x;
    double prefix;
    std::size_t first;
    std::size_t level;
    bool alive;
  };

  Cursor startSearch(double x) const { return {x, 0.0, 0, sums_.size(), true}; }

  // Reads the cursor's group and moves it one level down; the cursor must be alive
  // and above level 0.
  void descend(Cursor *c) const {
    const std::span<const double> values = entries(c->level);
    const std::size_t i = scanGroup(values, c->first, c->x, &c->prefix);
    c->alive = i < groupEnd(values, c->first);
    c->first = i * kFanout;
    --c->level;
  }

 private:
  static std::size_t groupEnd(std::span<const double> values, std::size_t first) {
    return std::min(first + kFanout, values.size());
  }

  // The first entry of the group at `first` with which the running sum from
  // *prefix would exceed x, or the group's end; *prefix becomes the sum before it.
  static std::size_t scanGroup(std::span<const double> values, std::size_t first, double x,
                               double *prefix) {
    const std::size_t end = groupEnd(values, first);
    std::size_t i = first;
    double sum = *prefix;
    while (i < end && sum + values[i] <= x) sum += values[i++];
    *prefix = sum;
    return i;
  }

  // Number of positions one entry of `level` covers.
  static std::size_t positionsPerEntry(std::size_t level) {
    std::size_t s = 1;
    for (; level > 0; --level) s *= kFanout;
    return s;
  }

  std::span<double> weight_;
  std::vector<std::vector<double>> sums_;
};

// Asks for the cache lines of base[from, min(from + count, size)), from < size.
template <typename T>
[[gnu::always_inline]] inline void prefetchRange(const T *base, std::size_t from, std::size_t count,
                                                 std::size_t size) {
  const std::size_t to = std::min(from + count, size);
  for (std::size_t i = from; i < to; i += 64 / sizeof(T)) prefetch(base + i);
  prefetch(base + to - 1);
}

// On long lists a search waits for memory at the lowest levels of the tree (the
// weights, the level above and the one above that) and for the entry it swaps.
// So the draws are made ahead, in their order, and searched for ahead, one level
// at a time on the tree as it is then, only to prefetch: kAhead * 3 steps before
// its own search a draw has its group in level 2 fetched, kAhead * 2 steps before
// its group in level 1, and kAhead steps before its groups of weights and list
// entries. Two groups there, since the weights placed in the meantime move the
// answer on by about one group.
class Lookahead {
  static constexpr std::size_t kAhead = 4;
  static constexpr std::size_t kGroup = WeightTree::kFanout;
  // Below five levels (about a million weights) the tree stays in the cache and
  // the searches ahead would cost more than they save.
  static constexpr std::size_t kStagedLevels = 5;

 public:
  static constexpr std::size_t kDepth = 3 * kAhead;

  Lookahead(const WeightTree &tree, const int *list, std::size_t steps, double total)
      : tree_(tree),
        list_(list),
        steps_(steps),
        staged_(tree.levels() >= kStagedLevels),
        remaining_(total),
        margin_(1e-9 * total) {}

  // Starts the search of the draw x, for step k. A draw beyond the weight left
  // (give or take rounding) will be settled at the top: nothing to fetch for it.
  void add(std::size_t k, double x) {
    WeightTree::Cursor &c = ring_[k % kDepth];
    c = tree_.startSearch(x);
    if (!staged_) return;
    c.alive = x <= remaining_ + margin_;
    while (c.alive && c.level > 2) tree_.descend(&c);
    fetch(c);
  }

  // Takes the weight of an entry just placed off the estimate of the weight left.
  void placed(double weight) { remaining_ -= weight; }

  // The draw of step k, after the searches of the later steps have gone on.
  double next(std::size_t k) {
    if (staged_) {
      advance(k + 2 * kAhead, 2);
      advance(k + kAhead, 1);
    }
    return ring_[k % kDepth].x;
  }

 private:
  // Takes the search of `step` one level down from `level` (the first steps,
  // started late, are left where they are).
  void advance(std::size_t step, std::size_t level) {
    if (step >= steps_) return;
    WeightTree::Cursor &c = ring_[step % kDepth];
    if (!c.alive || c.level != level) return;
    tree_.descend(&c);
    fetch(c);
  }

  [[gnu::always_inline]] void fetch(const WeightTree::Cursor &c) const {
    if (!c.alive) return;
    const std::span<const double> values = tree_.entries(c.level);
    if (c.level > 0) {
      prefetchRange(values.data(), c.first, kGroup, values.size());
      return;
    }
    prefetchRange(values.data(), c.first, 2 * kGroup, values.size());
    prefetchRange(list_, c.first, 2 * kGroup, values.size());
  }

  const WeightTree &tree_;
  const int *list_;
  std::size_t steps_;
  bool staged_;  // the tree is tall enough to leave the cache
  double remaining_;
  double margin_;
  WeightTree::Cursor ring_[kDepth];
};

int weightedShuffle(int n, int *list, double *cumWeight, nuvo_randContext *ctx) {
  const std::size_t size = static_cast<std::size_t>(n);
  const std::size_t steps = size - 1;
  const double total = cumWeight[size];
  WeightTree tree(size, cumWeight);
  Lookahead ahead(tree, list, steps, total);
  std::size_t drawn = 0;
  for (; drawn < steps && drawn < Lookahead::kDepth; ++drawn)
    ahead.add(drawn, NUVODoubleRand(0, ctx) * total);
  for (std::size_t k = 0; k < steps; ++k) {
    const double x = ahead.next(k);
    if (drawn < steps) ahead.add(drawn++, NUVODoubleRand(0, ctx) * total);
    // A draw beyond the remaining weight falls on the last position. The lower
    // bound only matters when rounding leaves placed positions not quite empty.
    const std::size_t j = std::clamp(tree.lastPrefixNotAbove(x), k, size - 1);
    ahead.placed(tree.weight(j));
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

// Fisher-Yates from the end. Each swap partner is drawn kAhead steps before its
// swap (the draws keep their order) and its entry prefetched, so that on long
// lists the random accesses overlap instead of waiting for memory one by one.
void uniformShuffle(int n, int *list, nuvo_randContext *ctx) {
  constexpr int kAhead = 16;
  int partner[kAhead];
  auto draw = [&](int i) {
    const int j = static_cast<int>(NUVODoubleRand(0, ctx) * (i + 1));
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
  // r lies in (0, 2): subtracting its integer part is subtracting 1 when r >= 1,
  // without a branch that the random value would make unpredictable.
  r -= static_cast<double>(static_cast<std::int64_t>(r));
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
  nuvo::uniformShuffle(n, list, ctx);
  return 0;
}

int NUVORandomizeWeightedListOfInt(int n, int *list, double *cumWeight, nuvo_randContext *ctx) {
  if (n < 2) return 0;
  return nuvo::guardedCall([&] { return nuvo::weightedShuffle(n, list, cumWeight, ctx); });
}

}  // extern "C"
