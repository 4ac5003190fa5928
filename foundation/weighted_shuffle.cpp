// The weighted shuffle: each position in turn receives an entry drawn by weight
// among the entries not yet placed, with the draws scaled by the initial total.
//
// The weights are taken as whole numbers of a small unit (see MassScale), so that
// every sum of them is exact in 64-bit integers. The position a draw falls on is
// then the exact one, whatever order the sums are formed in, which leaves the
// data structure free: a tree of partial sums with a staged look-ahead that hides
// the memory latency of long lists.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "foundation/check.hpp"
#include "foundation/prefetch.hpp"
#include "foundation/random.hpp"
#include "nuvo_random.h"

namespace nuvo {
namespace {

using Mass = std::uint64_t;

// Multiplication by 2^e, |e| up to 2000, as two factors that are both normal
// doubles. Scaling by them in turn is exact wherever scaling by 2^e at
// once is; where it is not, the result is below the smallest normal double.
class PowerOfTwo {
 public:
  explicit PowerOfTwo(int e) : factor_{std::ldexp(1.0, e / 2), std::ldexp(1.0, e - e / 2)} {}
  double times(double v) const { return v * factor_[0] * factor_[1]; }
  double over(double v) const { return v / factor_[0] / factor_[1]; }

 private:
  double factor_[2];
};

// Weights and draws as integer masses: a weight w becomes w * 2^s rounded to the
// nearest integer, with s chosen so that all the weights together come to less
// than 2^61 units. Every prefix sum, and the total while an entry moves, then
// stays below 2^63. The unit is at most 2^-60 of the total weight, finer than
// the 2^-52 of the total to which cumulative weights in double are known.
// Negative and non-finite weights count as zero.
class MassScale {
 public:
  explicit MassScale(std::span<const double> cumWeight) : scale_(exponentFor(cumWeight)) {}

  Mass mass(double weight) const { return static_cast<Mass>(std::llrint(scale_.times(usable(weight)))); }

  // The draw x in units, rounded down: a position's prefix sum exceeds x exactly
  // when it exceeds this. Draws at or beyond 2^63 units, which no total reaches,
  // and NaN map to kBeyond; draws below zero to 0.
  Mass target(double x) const {
    const double units = scale_.times(x);
    if (!(units < 0x1p63)) return kBeyond;
    return units > 0.0 ? static_cast<Mass>(units) : 0;
  }

  double weight(Mass mass) const { return scale_.over(static_cast<double>(mass)); }

  static constexpr Mass kBeyond = Mass{1} << 63;

 private:
  static double usable(double weight) { return weight > 0.0 && std::isfinite(weight) ? weight : 0.0; }

  // 61 less the exponent of the total weight, found without overflow or
  // underflow: the weights are summed as fractions of a power of two above the
  // largest. Lies in [-995, 1134]; 0 when there is no weight at all.
  static int exponentFor(std::span<const double> cumWeight) {
    double largest = 0.0;
    for (std::size_t i = 0; i + 1 < cumWeight.size(); ++i)
      largest = std::max(largest, usable(cumWeight[i + 1] - cumWeight[i]));
    if (largest == 0.0) return 0;
    int largestExponent = 0;
    std::frexp(largest, &largestExponent);
    const PowerOfTwo down(-largestExponent);
    double fractions = 0.0;
    for (std::size_t i = 0; i + 1 < cumWeight.size(); ++i)
      fractions += down.times(usable(cumWeight[i + 1] - cumWeight[i]));
    int fractionExponent = 0;
    std::frexp(fractions, &fractionExponent);
    return 61 - largestExponent - fractionExponent;
  }

  PowerOfTwo scale_;
};

// A mass kept in the bits of a double (see WeightTree).
inline Mass load(double bits) { return std::bit_cast<Mass>(bits); }
inline double stored(Mass mass) { return std::bit_cast<double>(mass); }

// Sums of the masses by list position in a tree of fanout kFanout: level 0 holds
// the masses themselves, each level above the sums of consecutive groups of
// kFanout entries of the level below, up to a top level of at most kFanout sums.
// Placed positions hold mass 0, so the masses before a position add up to the
// mass of the unplaced entries before it. A search reads one group per level,
// contiguous in memory: on long lists only the lowest levels leave the cache.
//
// Every level keeps its masses in the bits of doubles, so that level 0 can take
// over the caller's cumulative weights, which are no longer needed once turned
// into masses: a second list-long buffer would cost as much again in first
// touches of fresh memory as the shuffle's own work.
class WeightTree {
 public:
  static constexpr std::size_t kFanout = 16;

  // Takes over `cumWeight` (n+1 values) as storage for the masses of its n
  // weights. The levels above are allocated before anything is changed.
  WeightTree(std::span<double> cumWeight, const MassScale &scale)
      : mass_(cumWeight.first(cumWeight.size() - 1)) {
    for (std::size_t size = mass_.size(); size > kFanout;) {
      size = (size + kFanout - 1) / kFanout;
      sums_.emplace_back(size, stored(0));
    }
    double before = cumWeight[0];
    for (std::size_t i = 0; i < mass_.size(); ++i) {
      const double after = cumWeight[i + 1];
      mass_[i] = stored(scale.mass(after - before));
      before = after;
    }
    std::span<const double> lower(mass_);
    for (std::vector<double> &level : sums_) {
      for (std::size_t i = 0; i < lower.size(); ++i)
        level[i / kFanout] = stored(load(level[i / kFanout]) + load(lower[i]));
      lower = level;
    }
    for (double m : lower) total_ += load(m);
  }

  Mass mass(std::size_t position) const { return load(mass_[position]); }
  Mass total() const { return total_; }

  // Unsigned arithmetic wraps, so a decrease is added as its two's complement;
  // every sum is back in range once the change is complete.
  void set(std::size_t position, Mass value) {
    const Mass delta = value - mass(position);
    mass_[position] = stored(value);
    total_ += delta;
    for (std::vector<double> &level : sums_) {
      position /= kFanout;
      level[position] = stored(load(level[position]) + delta);
    }
  }

  // The largest p in [0, n] whose prefix sum (masses of positions 0 ... p-1)
  // does not exceed x: n when x reaches the total.
  std::size_t lastPrefixNotAbove(Mass x) const {
    if (x >= total_) return mass_.size();
    Cursor c = startSearch(x);
    while (c.level > 0) descend(&c);
    return scanGroup(entries(0), c.first, c.x);
  }

  // Number of levels above the masses.
  std::size_t levels() const { return sums_.size(); }

  // The entries of `level`, 0 being the masses.
  std::span<const double> entries(std::size_t level) const {
    return level == 0 ? std::span<const double>(mass_) : std::span<const double>(sums_[level - 1]);
  }

  // A search made one level at a time: the group it reads next, in `level`, and
  // x less the mass before that group.
  struct Cursor {
    Mass x;
    std::size_t first;
    std::size_t level;
  };

  Cursor startSearch(Mass x) const { return {x, 0, sums_.size()}; }

  // Reads the cursor's group and moves it one level down; the cursor must be
  // above level 0. With x below the mass of the group this is the search's
  // path; otherwise it goes on from the group's last entry.
  void descend(Cursor *c) const {
    const std::span<const double> values = entries(c->level);
    const std::size_t i = scanGroup(values, c->first, c->x);
    for (std::size_t k = c->first; k < i; ++k) c->x -= load(values[k]);
    c->first = i * kFanout;
    --c->level;
  }

 private:
  // The entry of the group at `first` in which the running sum first exceeds x;
  // the group's last entry at the latest (it always is within, x being below
  // the group's mass).
  static std::size_t scanGroup(std::span<const double> values, std::size_t first, Mass x) {
    const std::size_t last = std::min(first + kFanout, values.size()) - 1;
    std::size_t i = first;
    for (Mass sum = load(values[i]); i < last && sum <= x; sum += load(values[++i])) {
    }
    return i;
  }

  std::span<double> mass_;
  std::vector<std::vector<double>> sums_;
  Mass total_ = 0;
};

// On long lists a search waits for memory at the lowest levels of the tree (the
// masses, the level above and the one above that) and for the entry it swaps.
// So the draws are made ahead, in their order, and searched for ahead, one level
// at a time on the tree as it is then, only to prefetch: kAhead * 3 steps before
// its own search a draw has its group in level 2 fetched, kAhead * 2 steps before
// its group in level 1, and kAhead steps before its groups of masses and list
// entries. Two groups there, since the masses placed in the meantime move the
// answer on by about one group.
class Lookahead {
  static constexpr std::size_t kAhead = 4;
  static constexpr std::size_t kGroup = WeightTree::kFanout;
  // Below five levels (about a million masses) the tree stays in the cache and
  // the searches ahead would cost more than they save.
  static constexpr std::size_t kStagedLevels = 5;

 public:
  static constexpr std::size_t kDepth = 3 * kAhead;

  Lookahead(const WeightTree &tree, const int *list, std::size_t steps)
      : tree_(tree), list_(list), steps_(steps), staged_(tree.levels() >= kStagedLevels) {}

  // Starts the search of the draw x, for step k. A draw at or beyond the mass
  // left now stays beyond it (the mass left only shrinks): nothing to fetch.
  void add(std::size_t k, Mass x) {
    Slot &s = ring_[k % kDepth];
    s.draw = x;
    s.alive = staged_ && x < tree_.total();
    if (!s.alive) return;
    s.search = tree_.startSearch(x);
    while (s.search.level > 2) tree_.descend(&s.search);
    fetch(s.search);
  }

  // The draw of step k, after the searches of the later steps have gone on.
  Mass next(std::size_t k) {
    if (staged_) {
      advance(k + 2 * kAhead, 2);
      advance(k + kAhead, 1);
    }
    return ring_[k % kDepth].draw;
  }

 private:
  struct Slot {
    Mass draw;
    bool alive;
    WeightTree::Cursor search;
  };

  // Takes the search of `step` one level down from `level` (the first steps,
  // started late, are left where they are). The tree has changed since the
  // search began, so it may now end in a neighbouring group: only a prefetch.
  void advance(std::size_t step, std::size_t level) {
    if (step >= steps_) return;
    Slot &s = ring_[step % kDepth];
    if (!s.alive || s.search.level != level) return;
    tree_.descend(&s.search);
    fetch(s.search);
  }

  [[gnu::always_inline]] void fetch(const WeightTree::Cursor &c) const {
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
  Slot ring_[kDepth];
};

int weightedShuffle(int n, int *list, double *cumWeight, nuvo_randContext *ctx) {
  const std::size_t size = static_cast<std::size_t>(n);
  const std::size_t steps = size - 1;
  const double total = cumWeight[size];
  const MassScale scale(std::span<const double>(cumWeight, size + 1));
  WeightTree tree(std::span<double>(cumWeight, size + 1), scale);
  Lookahead ahead(tree, list, steps);
  std::size_t drawn = 0;
  DrawStream draws(ctx);
  auto draw = [&] { return scale.target(draws.next() * total); };
  for (; drawn < steps && drawn < Lookahead::kDepth; ++drawn) ahead.add(drawn, draw());
  for (std::size_t k = 0; k < steps; ++k) {
    const Mass x = ahead.next(k);
    if (drawn < steps) ahead.add(drawn++, draw());
    // A draw beyond the remaining mass falls on the last position; placed
    // positions hold no mass, so a draw within it falls at k or after.
    const std::size_t j = std::min(tree.lastPrefixNotAbove(x), size - 1);
    std::swap(list[k], list[j]);
    // The entry that was at k moves to j; position k is placed and leaves the tree.
    if (j != k) tree.set(j, tree.mass(k));
    tree.set(k, 0);
  }
  // The state the step-by-step update of the cumulative weights ends in.
  cumWeight[size] = scale.weight(tree.mass(size - 1));
  std::fill(cumWeight, cumWeight + size, 0.0);
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" int NUVORandomizeWeightedListOfInt(int n, int *list, double *cumWeight,
                                              nuvo_randContext *ctx) {
  if (n < 2) return 0;
  return nuvo::guardedCall([&] { return nuvo::weightedShuffle(n, list, cumWeight, ctx); });
}
