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
// touches of fresh memory as the shuffle's own work. Every group starts on a
// 128-byte boundary and so fills two whole cache lines: the levels above are
// allocated aligned, and level 0 is grouped by slot, position + shift_, where
// shift_ counts the doubles between the boundary before the caller's buffer and
// its start (slots below shift_ stand for no position).
class WeightTree {
 public:
  static constexpr std::size_t kFanout = 16;
  static constexpr int kFanoutBits = 4;

  // Takes over `cumWeight` (n+1 values) as storage for the masses of its n
  // weights. The levels above are allocated before anything is changed.
  WeightTree(std::span<double> cumWeight, const MassScale &scale)
      : mass_(cumWeight.first(cumWeight.size() - 1)), shift_(groupOffset(mass_.data())) {
    allocateLevels();
    double before = cumWeight[0];
    for (std::size_t i = 0; i < mass_.size(); ++i) {
      const double after = cumWeight[i + 1];
      mass_[i] = stored(scale.mass(after - before));
      before = after;
    }
    if (!sums_.empty())
      for (std::size_t i = 0; i < mass_.size(); ++i)
        add(&sums_[0][(i + shift_) >> kFanoutBits], load(mass_[i]));
    for (std::size_t level = 1; level < sums_.size(); ++level)
      for (std::size_t i = 0; i < sums_[level - 1].size(); ++i)
        add(&sums_[level][i >> kFanoutBits], load(sums_[level - 1][i]));
    for (double m : sums_.empty() ? mass_ : sums_.back()) total_ += load(m);
  }

  Mass mass(std::size_t position) const { return load(mass_[position]); }
  Mass total() const { return total_; }

  // Unsigned arithmetic wraps, so a decrease is added as its two's complement;
  // every sum is back in range once the change is complete.
  void set(std::size_t position, Mass value) {
    const Mass delta = value - mass(position);
    mass_[position] = stored(value);
    total_ += delta;
    std::size_t index = position + shift_;
    for (std::span<double> level : sums_) {
      index >>= kFanoutBits;
      add(&level[index], delta);
    }
  }

  // The largest p in [0, n] whose prefix sum (masses of positions 0 ... p-1)
  // does not exceed x: n when x reaches the total.
  std::size_t lastPrefixNotAbove(Mass x) const {
    if (x >= total_) return mass_.size();
    Cursor c = startSearch(x);
    while (c.level > 0) descend(&c);
    return finish(c);
  }

  // Number of levels above the masses.
  std::size_t levels() const { return sums_.size(); }

  // A search made one level at a time: the group it reads next, the list
  // positions under that group and their mass, and x less the mass before them.
  // While x is below the group's mass, the search's answer lies in the group.
  struct Cursor {
    Mass x;
    std::size_t level;
    std::size_t first;       // the group's first entry (slot at level 0)
    std::size_t start, end;  // the positions under the group
    Mass mass;
  };

  Cursor startSearch(Mass x) const { return {x, sums_.size(), 0, 0, mass_.size(), total_}; }

  // Reads the cursor's group and moves it one level down; the cursor must be
  // above level 0. With x below the mass of the group this is the search's
  // path; otherwise it goes on from the group's last entry.
  void descend(Cursor *c) const {
    const Found found = scanGroup(c->level, c->first, c->x);
    c->x -= found.before;
    c->mass = found.mass;
    --c->level;
    aim(c, found.index);
  }

  // Moves a cursor whose x has left its group, below or beyond, to the group
  // beside it at the same level, which must be below the top; false when there
  // is none.
  bool slide(Cursor *c) const {
    const std::span<const double> parents = sums_[c->level];
    std::size_t parent = c->first >> kFanoutBits;
    if (c->x >= kNegative) {
      if (parent == 0) return false;
      c->mass = load(parents[--parent]);
      c->x += c->mass;
    } else {
      if (parent + 1 == parents.size()) return false;
      c->x -= c->mass;
      c->mass = load(parents[++parent]);
    }
    aim(c, parent);
    return true;
  }

  // The position a cursor at level 0 ends on.
  std::size_t finish(const Cursor &c) const { return scanGroup(0, c.first, c.x).index - shift_; }

  // Asks for the cursor's group and, at level 0, for the list entries beside it.
  [[gnu::always_inline]] void fetch(const Cursor &c, const int *list) const {
    if (c.level > 0) {
      const std::span<const double> level = sums_[c.level - 1];
      prefetchRange(level.data(), c.first, kFanout, level.size());
      return;
    }
    prefetchRange(mass_.data(), c.start, c.end - c.start, mass_.size());
    prefetchRange(list, c.start, c.end - c.start, mass_.size());
  }

 private:
  // Differences of masses wrap around 2^64 (see set), so a negative x is one at
  // or above 2^63, which no mass reaches.
  static constexpr Mass kNegative = Mass{1} << 63;

  static void add(double *sum, Mass mass) { *sum = stored(load(*sum) + mass); }

  // Doubles from the 128-byte boundary at or before `at` up to `at`.
  static std::size_t groupOffset(const double *at) {
    return reinterpret_cast<std::uintptr_t>(at) / sizeof(double) % kFanout;
  }

  // One buffer for the levels above the masses, each starting on a group boundary.
  void allocateLevels() {
    std::vector<std::size_t> sizes;
    std::size_t room = kFanout;  // for the alignment of the first level
    for (std::size_t size = mass_.size() + shift_; size > kFanout;) {
      size = (size + kFanout - 1) >> kFanoutBits;
      sizes.push_back(size);
      room += roundUp(size);
    }
    buffer_.assign(room, stored(0));
    double *level = buffer_.data() + (kFanout - groupOffset(buffer_.data())) % kFanout;
    for (std::size_t size : sizes) {
      sums_.emplace_back(level, size);
      level += roundUp(size);
    }
  }

  static std::size_t roundUp(std::size_t size) { return (size + kFanout - 1) / kFanout * kFanout; }

  // Points a cursor at the group under entry `index` of the level above its own.
  void aim(Cursor *c, std::size_t index) const {
    const int bits = kFanoutBits * static_cast<int>(c->level + 1);
    c->first = index << kFanoutBits;
    c->start = std::max(index << bits, shift_) - shift_;
    c->end = std::min((index + 1) << bits, mass_.size() + shift_) - shift_;
  }

  // The entry of a group in which the running sum of its masses first exceeds
  // x (the group's last entry at the latest), its mass and the mass before it.
  struct Found {
    std::size_t index;
    Mass before;
    Mass mass;
  };

  // The group at `first` of `level`; at level 0, the slots of positions within
  // the list.
  Found scanGroup(std::size_t level, std::size_t first, Mass x) const {
    const std::size_t begin = level > 0 ? first : std::max(first, shift_);
    const std::size_t end =
        std::min(first + kFanout, level > 0 ? sums_[level - 1].size() : mass_.size() + shift_);
    const double *values = level > 0 ? &sums_[level - 1][begin] : &mass_[begin - shift_];
    Found found = end - begin == kFanout
                      ? scan(std::span<const double, kFanout>(values, kFanout), x)
                      : scan(std::span<const double>(values, end - begin), x);
    found.index += begin;
    return found;
  }

  // The running sums are compared with x all along the group rather than up to
  // the first that exceeds it: the search then takes no branch that depends on
  // the data, and the one chain of additions is all that it waits for.
  template <std::size_t kExtent>
  static Found scan(std::span<const double, kExtent> group, Mass x) {
    Mass sum = 0, before = 0;
    std::size_t below = 0;  // running sums not above x, the last one left out
    for (std::size_t t = 0; t + 1 < group.size(); ++t) {
      sum += load(group[t]);
      const bool notAbove = sum <= x;
      below += notAbove;
      before = notAbove ? sum : before;
    }
    return {below, before, load(group[below])};
  }

  std::span<double> mass_;
  std::size_t shift_;
  std::vector<double> buffer_;
  std::vector<std::span<double>> sums_;
  Mass total_ = 0;
};

// On long lists a search waits for memory at the lowest levels of the tree (the
// masses, the level above and the one above that) and for the entry it swaps.
// So the draws are made ahead of their steps, and those that will fall within
// the remaining mass are searched for ahead, one level at a time, each group
// fetched well before it is read: a search is staged at level 2 when its draw is
// made, taken to level 1 kAhead * 2 searches before its own and to the masses
// kAhead searches before it. The distance counts searches rather than steps,
// since late in the shuffle most draws fall beyond the remaining mass and cost
// next to nothing.
//
// A search ahead is made on the tree as it is then, for the draw plus the mass
// of the positions to be placed before its step (the window), and is kept exact
// up to its step. While its group starts at or after its step, the placements in
// between take mass from both the target and what stands before the group, so
// they leave x as it is: only a change at a position between the step and the
// group (moving x) or within the group (changing its mass) needs following, and
// a search that leaves its group slides to the group beside it. At its step the
// search reads the one group that holds its answer. Searches whose group reaches
// back before their step, or onto the last position, where every draw beyond the
// remaining mass moves an entry, are not kept and are made again at their step.
template <typename Draw>
class Lookahead {
  static constexpr std::size_t kAhead = 2;
  static constexpr std::size_t kQueue = 3 * kAhead;
  static constexpr std::size_t kWindow = 4096;  // steps whose draws are made ahead, at most
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

  // The position the draw of step k falls on; the searches ahead are taken on by
  // one level.
  std::size_t take(std::size_t k) {
    if (made_ == k) make();
    const Mass x = draws_[k % kWindow];
    window_ -= tree_.mass(k);
    if (head_ < tail_ && queue_[head_ % kQueue].step == k) {
      const Staged s = queue_[head_++ % kQueue];
      advance(head_ + kAhead - 1, 1);
      advance(head_ + 2 * kAhead - 1, 2);
      if (s.kept && s.search.level == 0 && s.search.x < s.search.mass)
        return tree_.finish(s.search);
    }
    // A draw beyond the remaining mass falls on the last position; placed
    // positions hold no mass, so a draw within it falls at k or after.
    return std::min(tree_.lastPrefixNotAbove(x), steps_);
  }

  // After step k, which changed the mass of position j by `change` (wrapping),
  // the searches ahead are kept exact and the draws of the coming steps made.
  void stepped(std::size_t k, std::size_t j, Mass change) {
    if (j > k && j < made_) window_ += change;
    if (j != k && j != steps_) follow(j, change);
    while (staged_ && made_ < steps_ && made_ <= k + kWindow && tail_ - head_ < kQueue) make();
  }

 private:
  struct Staged {
    std::size_t step;
    WeightTree::Cursor search;
    bool kept;
  };

  void make() {
    const std::size_t step = made_++;
    const Mass x = draw_();
    draws_[step % kWindow] = x;
    const Mass target = x + window_;  // below 2^64: x is at most 2^63, the window below 2^61
    window_ += tree_.mass(step);
    if (!staged_ || target >= tree_.total()) return;
    Staged &s = queue_[tail_++ % kQueue];
    s = {step, tree_.startSearch(target), false};
    while (s.search.level > 2) tree_.descend(&s.search);
    s.kept = keepable(s);
    fetch(s.search);
  }

  bool keepable(const Staged &s) const {
    return s.search.start >= s.step && s.search.end <= steps_;
  }

  // Follows a change of mass at position j in the searches kept.
  void follow(std::size_t j, Mass change) {
    for (std::size_t a = head_; a < tail_; ++a) {
      Staged &s = queue_[a % kQueue];
      WeightTree::Cursor &c = s.search;
      // Where j falls is as good as random, so the change is applied through masks
      // rather than branches. Each range test is one unsigned comparison: start <= j
      // < end, and step <= j < start (a kept search's group starts at its step or after).
      const Mass kept = s.kept ? ~Mass{0} : 0;
      const Mass inGroup = j - c.start < c.end - c.start ? kept : 0;
      const Mass between = j - s.step < c.start - s.step ? kept : 0;
      c.mass += change & inGroup;
      c.x -= change & between;
      if (c.x < c.mass || !s.kept) [[likely]]
        continue;
      s.kept = tree_.slide(&c) && keepable(s);
      if (s.kept) fetch(c);
    }
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

  [[gnu::always_inline]] void fetch(const WeightTree::Cursor &c) const { tree_.fetch(c, list_); }

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
    const std::size_t j = ahead.take(k);
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
