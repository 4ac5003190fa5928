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

  Mass mass(double weight) const {
    return static_cast<Mass>(std::llrint(scale_.times(usable(weight))));
  }

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
  static double usable(double weight) {
    return weight > 0.0 && std::isfinite(weight) ? weight : 0.0;
  }

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
inline Mass load(double bits) {
  return std::bit_cast<Mass>(bits);
}
inline double stored(Mass mass) {
  return std::bit_cast<double>(mass);
}

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
    return scanGroup(entries(0), c.first, c.x).index;
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
    const Found found = scanGroup(entries(c->level), c->first, c->x);
    c->x -= found.before;
    c->first = found.index * kFanout;
    --c->level;
  }

 private:
  // The entry of a group in which the running sum of its masses first exceeds
  // x (the group's last entry at the latest), and the mass before that entry.
  struct Found {
    std::size_t index;
    Mass before;
  };

  // The running sums are compared with x all along the group rather than up to
  // the first that exceeds it: the search then takes no branch that depends on
  // the data, and the one chain of additions is all that it waits for.
  static Found scanGroup(std::span<const double> values, std::size_t first, Mass x) {
    const std::size_t count = std::min(kFanout, values.size() - first);
    if (count == kFanout)
      return scan(std::span<const double, kFanout>(&values[first], kFanout), first, x);
    return scan(values.subspan(first, count), first, x);
  }

  template <std::size_t kExtent>
  static Found scan(std::span<const double, kExtent> group, std::size_t first, Mass x) {
    Mass sum = 0, before = 0;
    std::size_t below = 0;  // running sums not above x, the last one left out
    for (std::size_t t = 0; t + 1 < group.size(); ++t) {
      sum += load(group[t]);
      const bool notAbove = sum <= x;
      below += notAbove;
      before = notAbove ? sum : before;
    }
    return {first + below, before};
  }

  std::span<double> mass_;
  std::vector<std::vector<double>> sums_;
  Mass total_ = 0;
};

// On long lists a search waits for memory at the lowest levels of the tree (the
// masses, the level above and the one above that) and for the entry it swaps.
// So the draws are made ahead of their steps, and those that will fall within
// the remaining mass are searched for ahead, one level at a time on the tree as
// it is then, only to prefetch: a search is staged at level 2 when its draw is
// made, taken to level 1 kAhead * 2 searches before its own and to the masses
// kAhead searches before it. The distance counts searches rather than steps,
// since late in the shuffle most draws fall beyond the remaining mass and cost
// next to nothing.
//
// By its step, a draw's answer has moved on by the mass placed in the meantime:
// about the masses of the positions up to that step, which stand first. The
// search ahead adds them to the draw, and fetches the group it ends in and the
// next.
template <typename Draw>
class Lookahead {
  static constexpr std::size_t kAhead = 2;
  static constexpr std::size_t kQueue = 3 * kAhead;
  static constexpr std::size_t kWindow = 4096;  // steps whose draws are made ahead, at most
  static constexpr std::size_t kGroup = WeightTree::kFanout;
  // Below five levels (about a million masses) the tree stays in the cache and
  // the searches ahead would cost more than they save.
  static constexpr std::size_t kStagedLevels = 5;

 public:
  Lookahead(const WeightTree &tree, const int *list, std::size_t steps, Draw draw)
      : tree_(tree),
        list_(list),
        steps_(steps),
        draw_(draw),
        staged_(tree.levels() >= kStagedLevels) {}

  // The draw of step k, with the searches ahead taken on by one level.
  Mass take(std::size_t k) {
    if (made_ == k) make();
    const Mass x = draws_[k % kWindow];
    window_ -= tree_.mass(k);
    if (head_ < tail_ && queue_[head_ % kQueue].step == k) {
      ++head_;
      advance(head_ + kAhead - 1, 1);
      advance(head_ + 2 * kAhead - 1, 2);
    }
    return x;
  }

  // After step k, which changed the mass of position j by `change` (wrapping),
  // the draws of the coming steps are made.
  void stepped(std::size_t k, std::size_t j, Mass change) {
    if (j > k && j < made_) window_ += change;
    while (staged_ && made_ < steps_ && made_ <= k + kWindow && tail_ - head_ < kQueue) make();
  }

 private:
  struct Staged {
    std::size_t step;
    WeightTree::Cursor search;
  };

  void make() {
    const std::size_t step = made_++;
    const Mass x = draw_();
    draws_[step % kWindow] = x;
    const Mass expected = x + window_;  // below 2^64: x is at most 2^63, the window below 2^61
    window_ += tree_.mass(step);
    if (!staged_ || expected >= tree_.total()) return;
    Staged &s = queue_[tail_++ % kQueue];
    s = {step, tree_.startSearch(expected)};
    while (s.search.level > 2) tree_.descend(&s.search);
    fetch(s.search);
  }

  // Takes the search numbered `a` one level down from `level`, if it is there
  // (the first searches, staged late, are left where they are).
  void advance(std::size_t a, std::size_t level) {
    if (a >= tail_) return;
    Staged &s = queue_[a % kQueue];
    if (s.search.level != level) return;
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
  Draw draw_;
  bool staged_;           // the tree is tall enough to leave the cache
  std::size_t made_ = 0;  // steps whose draws are made
  Mass draws_[kWindow];   // by step, a ring over the window
  Mass window_ = 0;       // masses of the positions from the next step up to made_
  std::size_t head_ = 0;  // searches staged and taken, counted from the start
  std::size_t tail_ = 0;
  Staged queue_[kQueue];
};

int weightedShuffle(int n, int *list, double *cumWeight, nuvo_randContext *ctx) {
  const std::size_t size = static_cast<std::size_t>(n);
  const std::size_t steps = size - 1;
  const double total = cumWeight[size];
  const MassScale scale(std::span<const double>(cumWeight, size + 1));
  WeightTree tree(std::span<double>(cumWeight, size + 1), scale);
  DrawStream draws(ctx);
  Lookahead ahead(tree, list, steps, [&] { return scale.target(draws.next() * total); });
  for (std::size_t k = 0; k < steps; ++k) {
    const Mass x = ahead.take(k);
    // A draw beyond the remaining mass falls on the last position; placed
    // positions hold no mass, so a draw within it falls at k or after.
    const std::size_t j = std::min(tree.lastPrefixNotAbove(x), size - 1);
    std::swap(list[k], list[j]);
    // The entry that was at k moves to j; position k is placed and leaves the tree.
    const Mass moving = tree.mass(k);
    const Mass change = moving - tree.mass(j);
    if (j != k) tree.set(j, moving);
    tree.set(k, 0);
    ahead.stepped(k, j, change);
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
