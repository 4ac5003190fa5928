// The everyday data event under constraints: one categorical variable compared
// on one-byte codes with uniform weights (CodedEvent) or weights
// (WeightedCodedEvent), plus the simulated variable's probability constraint,
// block data and pattern of labels (at most one of each). It gives every
// candidate exactly the error, and the same acceptance, as DataEvent.
//
// - The probability and block terms of a candidate depend only on its own
//   value, one of the variable's categories, whose code the code image gives;
//   the label term depends only on the number of broken labelled nodes. The base
//   error of each (code, broken count) pair is computed once per event in
//   DataEvent's order (probability, block data, labels, each added to the
//   running sum from 0), so it is the same double.
// - With the best error fixed, a candidate of base error E and `count`
//   mismatches is kept when count <= limit(E), the limit found as in CodedEvent
//   with E as the running error. The error grows with E, so the limit falls as
//   E grows: a code whose base alone reaches the best drops its candidates on
//   one look-up (without such terms every code is as the first), and the limit
//   of no broken node bounds every candidate of the code, so the labels, a
//   look-up per labelled node, are read only for the few candidates whose count
//   passes it. Their error, from the formula, is then compared with the best by
//   the scan itself.
// - With weights, the limit is the weighted event's bound on the sum of levels
//   from the code's least base error, and a candidate within it gets its error
//   from DataEvent itself.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/coded_event.hpp"

namespace nuvo {

class ConstrainedCodedEvent {
 public:
  double floor = 0.0;  // as DataEvent's

  // Takes `event` when its variable is of the everyday kind and its terms are
  // those of the one simulated variable, whose codes in the scanned training
  // image are `ownCode`, its category values `category` and, under a
  // probability constraint, their classes `categoryClass`. Else returns false.
  bool prepare(const DataEvent &event, const std::int8_t *ownCode, std::span<const double> category,
               std::span<const std::int16_t> categoryClass);

  // Sets the best error so far, the bound of the candidates that follow.
  void bound(double best);

  // The candidate's error when it is below the bound's best; else kAbandoned or
  // an error not below the best.
  double errorAt(int node, double best) const {
    const std::size_t code = byCode_ ? static_cast<std::size_t>(ownCode_[node]) : 0;
    const int limit = limit_[code];
    if (limit < 0) return kAbandoned;
    if (weighted_) return weightedEvent_.levelSum(node, limit) > limit ? kAbandoned
                                                                      : event_->errorAt(node, best);
    const int count = coded_.mismatchCount(node, limit);
    if (count > limit) return kAbandoned;
    std::size_t b = code * stride_;
    if (labelled_) b += static_cast<std::size_t>(pattern_.broken(node));
    return kernel::mismatchError(base_[b], count, coded_.step());
  }

 private:
  CodedEvent coded_;
  WeightedCodedEvent weightedEvent_;
  bool weighted_ = false;
  const DataEvent *event_ = nullptr;
  const std::int8_t *ownCode_ = nullptr;
  bool byCode_ = false;  // whether the base error depends on the code (else: one code)
  bool labelled_ = false;
  LabelTerm pattern_;
  std::size_t stride_ = 1;    // base errors per code: one per broken count
  std::vector<double> base_;  // per code and broken count
  std::vector<int> limit_;    // per code: the most mismatches (or levels) still accepted
};

}  // namespace nuvo
