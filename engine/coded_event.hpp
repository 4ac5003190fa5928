// The everyday data event, scanned faster: one categorical variable compared on
// one-byte codes with uniform weights, and no constraint term. It gives every
// candidate exactly the error, and the same acceptance, as DataEvent with the
// kernel mismatches<true, false, true>; only the work per candidate shrinks.
//
// - The bound is set once per improvement of the best error (bound), not per
//   candidate: with `best` fixed, DataEvent accepts a candidate with `count`
//   mismatches when count <= allowedMismatches(best) and its error
//   mismatchError(count) is below best. The error grows with the count (a
//   product by a positive step, a sum and a maximum are monotonic in floating
//   point too), so both conditions hold exactly for the counts 0 .. limit: the
//   scan counts up to limit + 1 and reads the error from a table of the n + 1
//   errors computed by the same formula.
// - The nodes are packed into groups whose offsets lie within kGroupBytes
//   bytes of the code image: one load reads a group at a candidate, compared
//   with the event's codes bytewise (a compiler vector: SSE2 on x86-64, in the
//   default instruction set), and the flags of the differing bytes, 1 each,
//   added up by two multiplications, an exact integer count (at most 24 per
//   half, far from overflowing a byte). The code images end with kCodePadding
//   spare bytes, so a load never leaves them.
// - The groups most likely to mismatch come first: each node counts the
//   training-image nodes not holding its code (all of them for a data value met
//   in no training image). A candidate is abandoned once its partial count, a
//   lower bound of the full one, exceeds the limit, so the order of the groups
//   cannot change the outcome, only how soon a candidate is dropped.
// - The first three groups are read without a branch, the limit being checked
//   after them and then after each group: most candidates end there, and the
//   branch on each group would be unpredictable.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "engine/pattern_scan.hpp"

namespace nuvo {

class CodedEvent {
 public:
  static constexpr int kGroupBytes = 16;
  static constexpr double floor = 0.0;  // no constraint term: an error of 0 ends the scan

  // Takes `event` when it is of the everyday kind and returns true, else false
  // (the event must then be scanned as a DataEvent).
  bool prepare(const DataEvent &event);
  // Takes the variable of an event of one coded variable with uniform weights,
  // whatever its constraint terms (see ConstrainedCodedEvent); false for another.
  bool prepareVariable(const DataEvent &event);

  // Sets the best error so far, the bound of the candidates that follow.
  void bound(double best);

  // The candidate's error, or kAbandoned when it is not below the bound's best.
  double errorAt(int node, double /*best*/) const {
    const int count = mismatchCount(node, limit_);
    return count > limit_ ? kAbandoned : error_[static_cast<std::size_t>(count)];
  }

  // The candidate's count of mismatches, or a count above `limit` as soon as it
  // exceeds it.
  int mismatchCount(int node, int limit) const {
    constexpr std::size_t kFirst = 3;
    const std::int8_t *ti = tiCode_ + node;
    const std::size_t ng = group_.size();
    std::size_t k = ng < kFirst ? ng : kFirst;
    Bytes flags{};
    for (std::size_t j = 0; j < k; ++j) flags += group_[j].mismatches(ti);
    int count = total(flags);
    for (; k < ng && count <= limit; ++k) count += total(group_[k].mismatches(ti));
    return count;
  }

  int size() const { return static_cast<int>(error_.size()) - 1; }
  double step() const { return step_; }

 private:
  using Bytes = std::int8_t __attribute__((vector_size(kGroupBytes)));
  // The sum of the bytes of `flags`, added up within each 8-byte half (at most
  // 255 in each).
  static int total(Bytes flags) {
    std::uint64_t half[2];
    std::memcpy(half, &flags, sizeof half);
    constexpr std::uint64_t kOnes = 0x0101010101010101ull;
    return static_cast<int>(((half[0] * kOnes) >> 56) + ((half[1] * kOnes) >> 56));
  }
  struct Group {
    Bytes code{};   // the event's codes at their bytes
    Bytes one{};    // 1 at the bytes of the group's nodes
    int start = 0;  // offset of the first byte read
    // 1 in each byte of a node that differs from the event, 0 elsewhere.
    Bytes mismatches(const std::int8_t *ti) const {
      Bytes word;
      std::memcpy(&word, ti + start, sizeof word);
      return one & ~(word == code);
    }
  };
  struct Node {
    int offset;
    std::int8_t code;
    long long misses;  // training-image nodes of another code
  };
  struct Built {
    Group group;
    long long misses = 0;  // its nodes' misses added up
  };

  const std::int8_t *tiCode_ = nullptr;
  std::vector<Group> group_;   // most likely to mismatch first
  std::vector<Node> node_;     // scratch of prepare
  std::vector<Built> built_;   // scratch of prepare
  std::vector<double> error_;  // per count of mismatches, 0 .. n
  double step_ = 0.0;
  int limit_ = 0;  // the most mismatches still accepted
};

}  // namespace nuvo
