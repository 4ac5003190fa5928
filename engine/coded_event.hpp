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
// - The nodes are compared rarest code first (fewest training-image nodes
//   holding it; a data value met in no training image before all): a random
//   candidate mismatches them more often, so it passes its limit after fewer
//   loads. A candidate is abandoned only once its partial count, a lower bound
//   of the full one, exceeds the limit, so the order of the nodes cannot change
//   the outcome, only how soon a candidate is dropped.
// - The first kFirst nodes are compared without a branch, the rest in groups of
//   four, the limit being checked after each group: the branch on a match is
//   unpredictable, the one on the limit less so.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/pattern_scan.hpp"

namespace nuvo {

class CodedEvent {
 public:
  static constexpr double floor = 0.0;  // no constraint term: an error of 0 ends the scan

  // Takes `event` when it is of the everyday kind and returns true, else false
  // (the event must then be scanned as a DataEvent).
  bool prepare(const DataEvent &event);

  // Sets the best error so far, the bound of the candidates that follow.
  void bound(double best);

  // The candidate's error, or kAbandoned when it is not below the bound's best.
  double errorAt(int node, double /*best*/) const {
    constexpr int kFirst = 8;
    const std::int8_t *ti = tiCode_ + node;
    const int n = static_cast<int>(code_.size());
    int count = 0;
    int i = 0;
    if (n >= kFirst) {
      for (; i < kFirst; ++i) count += differs(ti, i);
      if (count > limit_) return kAbandoned;
    }
    for (; i + 4 <= n; i += 4) {
      count += differs(ti, i) + differs(ti, i + 1) + differs(ti, i + 2) + differs(ti, i + 3);
      if (count > limit_) return kAbandoned;
    }
    for (; i < n; ++i) count += differs(ti, i);
    return count > limit_ ? kAbandoned : error_[static_cast<std::size_t>(count)];
  }

 private:
  int differs(const std::int8_t *ti, int i) const {
    return code_[static_cast<std::size_t>(i)] != ti[offset_[static_cast<std::size_t>(i)]] ? 1 : 0;
  }

  struct Node {
    int offset;
    std::int8_t code;
    int holders;  // training-image nodes of its code (-1 for a foreign code)
  };

  const std::int8_t *tiCode_ = nullptr;
  std::vector<int> offset_;  // the nodes, rarest code first
  std::vector<std::int8_t> code_;
  std::vector<Node> node_;     // scratch of prepare
  std::vector<double> error_;  // per count of mismatches, 0 .. n
  double step_ = 0.0;
  int limit_ = 0;  // the most mismatches still accepted
};

}  // namespace nuvo
