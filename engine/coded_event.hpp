// The everyday data event, scanned faster: one categorical variable compared on
// one-byte codes, and no constraint term. CodedEvent (uniform weights) and
// WeightedCodedEvent (weights of the search neighbourhood) give every candidate
// exactly the error, and the same acceptance, as DataEvent with the kernel
// mismatches<Uniform, false, true>; only the work per candidate shrinks.
//
// - The nodes are packed into groups whose offsets lie within kGroupBytes
//   bytes of the code image (CodeGroups): one load reads a group at a
//   candidate, compared with the event's codes bytewise (a compiler vector:
//   SSE2 on x86-64, in the default instruction set), and the levels of the
//   differing bytes (1 each with uniform weights) are added up in integers,
//   exactly. The code images end with kCodePadding spare bytes, so a load never
//   leaves them.
// - The groups most likely to cost first: each node counts the training-image
//   nodes not holding its code (all of them for a data value met in no training
//   image), times its level. A candidate is abandoned once its partial sum, a
//   lower bound of the full one, exceeds the limit, so the order of the groups
//   cannot change the outcome, only how soon a candidate is dropped.
// - The first four groups are read without a branch, the limit being checked
//   after them and then after each group: most candidates end there, and the
//   branch on each group would be unpredictable. A smaller event is topped up
//   with empty groups, so the four reads need no test, and the count is inlined
//   into the scan's loop (about 15 % of the channel case; four groups rather
//   than three, another 3 to 6 %).
//
// Uniform weights (CodedEvent). The bound is set once per improvement of the
// best error (bound), not per candidate: with `best` fixed, DataEvent accepts a
// candidate with `count` mismatches when count <= allowedMismatches(best) and
// its error mismatchError(count) is below best. The error grows with the count
// (a product by a positive step, a sum and a maximum are monotonic in floating
// point too), so both conditions hold exactly for the counts 0 .. limit: the
// scan counts up to limit + 1 and reads the error from a table of the n + 1
// errors computed by the same formula.
//
// Weights (WeightedCodedEvent). Each node's term w_i / t is given a level, the
// largest integer q_i with q_i * unit <= w_i / t (unit: the largest term over
// kWeightLevels), and the candidate's sum of levels times unit is a lower bound
// of the sum of its terms. The bound drops a candidate only when that lower
// bound exceeds best + 1 by a margin far above the rounding of any order of the
// sum (1e-9 of the largest possible sum, which rounding misses by n * 1e-16 at
// most), so a dropped candidate's error would have been above best. A
// candidate that is not dropped, rare since the scan soon knows a good best
// error, gets its error from the general kernel itself.
//
// On a 3D training image of at most 15 categories, CodedEvent's prepared event
// is read on two-bit (at most three categories) or four-bit codes instead
// (PackedEvent, packed_event.hpp, which says why that is exact): the same nodes,
// limit and table of errors, in other groups.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <vector>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "engine/pattern_scan.hpp"

namespace nuvo {

// Sixteen bytes, one vector operation (SSE2 on x86-64; a compiler vector).
using ByteVector = std::uint8_t __attribute__((vector_size(16)));

// The sum of the bytes of `v`: one sum of absolute differences with 0 on x86-64,
// which adds each half's bytes into a 16-bit lane.
inline int sumOfBytes(ByteVector v) {
#if defined(__SSE2__)
  const __m128i sums = _mm_sad_epu8(reinterpret_cast<__m128i>(v), _mm_setzero_si128());
  return _mm_cvtsi128_si32(sums) + _mm_extract_epi16(sums, 4);
#else
  int s = 0;
  for (int i = 0; i < 16; ++i) s += v[i];
  return s;
#endif
}

// The nodes of one variable's data event packed into groups of the code image.
class CodeGroups {
 public:
  static constexpr int kGroupBytes = sizeof(ByteVector);
  // The groups read before the first check of the limit: every event has at
  // least as many, empty ones (no level) filling in for a small event.
  static constexpr std::size_t kFirst = 4;

  // Lists the nodes of `ev` by offset, node i counting level[i] when it differs.
  void list(const VariableEvent &ev, const std::vector<int> &level);
  // Packs the listed nodes into the groups that sum reads.
  void group();

  struct Node {
    int offset;
    std::uint8_t code;
    int level;
    long long cost;  // level times the training-image nodes of another code
  };
  // The listed nodes, sorted by offset.
  std::span<const Node> nodes() const { return node_; }

  // The candidate's sum of the levels of its differing nodes, or a sum above
  // `limit` as soon as it exceeds it.
  [[gnu::always_inline]] int sum(int node, int limit) const {
    const std::int8_t *ti = tiCode_ + node;
    const Group *g = group_.data();
    Bytes levels{};
    for (std::size_t j = 0; j < kFirst; ++j) levels += g[j].differing(ti);
    int s = sumOfBytes(levels);
    for (const Group *k = g + kFirst, *end = g + group_.size(); k < end && s <= limit; ++k)
      s += sumOfBytes(k->differing(ti));
    return s;
  }

 private:
  using Bytes = ByteVector;
  struct Group {
    Bytes code{};   // the event's codes at their bytes
    Bytes level{};  // the level of each node at its byte, 0 elsewhere
    int start = 0;  // offset of the first byte read
    // The level of each node that differs from the event, 0 elsewhere.
    Bytes differing(const std::int8_t *ti) const {
      Bytes word;
      std::memcpy(&word, ti + start, sizeof word);
      return level & ~reinterpret_cast<Bytes>(word == code);
    }
  };
  struct Built {
    Group group;
    long long cost = 0;
    int rank = 0;  // its place in offset order
  };

  const std::int8_t *tiCode_ = nullptr;
  std::vector<Group> group_;  // most costly first
  std::vector<Node> node_;
  std::vector<Built> built_;  // scratch of group
};

class CodedEvent {
 public:
  static constexpr double floor = 0.0;  // no constraint term: an error of 0 ends the scan

  // Takes `event` when it is of the everyday kind and returns true, else false
  // (the event must then be scanned as a DataEvent). Without byte groups the
  // event only serves a PackedEvent, which reads its nodes and bound.
  bool prepare(const DataEvent &event, bool byteGroups = true);
  // Takes the variable of an event of one coded variable with uniform weights,
  // whatever its constraint terms (see ConstrainedCodedEvent); false for another.
  bool prepareVariable(const DataEvent &event, bool byteGroups = true);

  // Sets the best error so far, the bound of the candidates that follow.
  void bound(double best);

  // The candidate's error, or kAbandoned when it is not below the bound's best.
  double errorAt(int node, double /*best*/) const {
    const int count = mismatchCount(node, limit_);
    return count > limit_ ? kAbandoned : error_[static_cast<std::size_t>(count)];
  }

  // The candidate's count of mismatches, or a count above `limit` as soon as it
  // exceeds it.
  int mismatchCount(int node, int limit) const { return groups_.sum(node, limit); }

  int size() const { return static_cast<int>(error_.size()) - 1; }
  double step() const { return step_; }

  // What PackedEvent reads of the prepared event: its groups' nodes, the most
  // mismatches accepted under the bound (-1 for none), and the error of
  // `count` mismatches.
  const CodeGroups &groups() const { return groups_; }
  int limit() const { return limit_; }
  double error(int count) const { return error_[static_cast<std::size_t>(count)]; }

 private:
  CodeGroups groups_;
  std::vector<int> ones_;      // scratch: every node's level
  std::vector<double> error_;  // per count of mismatches, 0 .. n
  double step_ = 0.0;
  int limit_ = 0;  // the most mismatches still accepted
};

class WeightedCodedEvent {
 public:
  static constexpr double floor = 0.0;
  static constexpr int kWeightLevels = 63;  // four groups of such bytes add up in a byte

  // Takes `event` when it is one coded variable with weights and no constraint
  // term, else returns false.
  bool prepare(const DataEvent &event);
  // Takes the variable of an event of one coded variable with weights, whatever
  // its constraint terms (see ConstrainedCodedEvent); false for another.
  bool prepareVariable(const DataEvent &event);

  void bound(double best) { limit_ = levelLimit(best, 0.0); }

  // The candidate's error, or kAbandoned when it must end above best.
  double errorAt(int node, double best) const {
    if (levelSum(node, limit_) > limit_) return kAbandoned;
    return kernel_(*event_, node, 0.0, best);
  }

  // The largest sum of levels not proven to end above `best` from the running
  // error `e` (-1 when e alone is above it).
  int levelLimit(double best, double e) const;
  // The candidate's sum of levels, or a sum above `limit` as soon as it exceeds it.
  int levelSum(int node, int limit) const { return groups_.sum(node, limit); }

 private:
  CodeGroups groups_;
  std::vector<int> level_;  // scratch of prepare
  const VariableEvent *event_ = nullptr;
  VariableKernel kernel_ = nullptr;
  double unit_ = 0.0;     // a level's share of the largest term
  double termSum_ = 0.0;  // the sum of every node's term
  int limit_ = 0;         // the largest sum of levels not yet proven above best
};

}  // namespace nuvo
