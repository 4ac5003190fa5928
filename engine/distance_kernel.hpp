// The error of a candidate location: the hot loop of the whole simulation.
//
// For each variable v, with data-event values a_i and training-image values b_i at
// the candidate plus the node offsets, the normalised distance c_v is divided by
// the variable's threshold t_v, and the candidate error is the sum over the
// variables of max(0, c_v - 1): 0 when every variable is within its threshold.
//
//   type 0 (categorical)  c = sum_i w_i [a_i != b_i] / t
//   type 1 (L1)           c = sum_i w_i |d_i| / t
//   type 2 (L2)           c = sqrt(sum_i w_i d_i^2) / t
//   type 3 (Lp)           c = (sum_i w_i |d_i|^p)^(1/p) / t
//   type 4 (L-infinity)   c = max_i |d_i| / t        (weights do not apply)
//
// with w_i = 1/n (uniform weights) or the normalised neighbourhood weights, and
// d_i = a_i - b_i, or with relative distance (a_i - mean a) - (b_i - mean b).
//
// The running error is checked after every node and the candidate is abandoned as
// soon as it must end above the best error so far. For types 2 and 3 the check is
// made on the inner sum against a bound computed once per variable, so no root or
// power is taken per node; the bound carries a relative margin of 1e-12 so that
// abandoning never rejects a candidate the exact formula would keep, and the
// error of a surviving candidate is always computed by the formula itself.
//
// A training-image node holding the missing value needs no special case: for
// types 1 to 4 its huge difference abandons the candidate at once, for type 0 it
// counts as a mismatch.
//
// Kernels are templates on the distance type, the weight mode and the relative
// flag; the caller picks one per variable and data event (variableKernel), never
// per candidate or per node.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <span>

namespace nuvo {

// Error of a node without any valid candidate, and start of every best error.
inline constexpr double kNoMatchError = 1e25;
// What a kernel returns for an abandoned candidate: above any best error.
inline constexpr double kAbandoned = std::numeric_limits<double>::infinity();

// The data event of one variable at one node, prepared once before the scan.
struct VariableEvent {
  int count = 0;                   // n_v nodes
  const int *offset = nullptr;     // linear offsets of the nodes in the training image
  const double *value = nullptr;   // a_i, minus their mean with relative distance
  const double *weight = nullptr;  // w_i (non-uniform weights; they sum to 1)
  double uniformWeight = 0.0;      // 1/n_v (uniform weights)
  double invThreshold = 0.0;       // 1/t_v
  double power = 1.0;              // p of the Lp distance
  double invPower = 1.0;           // 1/p
  const double *ti = nullptr;      // the variable's values in the training image
  // Categorical variables with a coded training image: the codes of a_i and of the
  // training image (see RealizationSetup::tiCode); null otherwise.
  const std::int8_t *valueCode = nullptr;
  const std::int8_t *tiCode = nullptr;
  std::span<const int> codeCount;          // the training image's nodes of each code
  const std::uint8_t *tiPacked = nullptr;  // its packed codes (packed_event.hpp), or null
  int packedBits = 0;                      // their bits per node
};

// Adds variable v's part to the running error `e` of a candidate at training-image
// node `node`; returns the new running error, or kAbandoned when the candidate
// must end above `best`.
using VariableKernel = double (*)(const VariableEvent &ev, int node, double e, double best);

namespace kernel {

template <bool Uniform>
inline double weightOf(const VariableEvent &ev, int i) {
  if constexpr (Uniform)
    return ev.uniformWeight;
  else
    return ev.weight[i];
}

template <bool Relative>
inline double centreOf(const VariableEvent &ev, int node) {
  if constexpr (!Relative) {
    return 0.0;
  } else {
    double sum = 0.0;
    for (int i = 0; i < ev.count; ++i) sum += ev.ti[node + ev.offset[i]];
    return sum / ev.count;
  }
}

// Uniform-weight type 0, whose running error after `count` mismatches of
// `step` = 1 / (n t) each is e - 1 + count * step, never below e: the error
// of a candidate with `count` mismatches added to the running error `e`.
inline double mismatchError(double e, int count, double step) {
  const double d = e - 1.0 + count * step;
  return d > e ? d : e;
}

// The largest count of mismatches (at most n) that a candidate at running error
// `e` may have and not end above `best`, i.e. with count * step <= best + 1 - e;
// -1 when even none is allowed. The quotient is only a first guess, corrected
// by the products themselves, so the count is exact whatever the rounding of
// the division.
inline int allowedMismatches(double best, double e, double step, int n) {
  const double room = best + 1.0 - e;
  if (room < 0.0) return -1;
  const double guess = room / step;
  int allowed = static_cast<int>(guess < n ? guess : n);
  while (allowed < n && (allowed + 1) * step <= room) ++allowed;
  while (allowed > 0 && allowed * step > room) --allowed;
  return allowed * step > room ? -1 : allowed;
}

// The most mismatches a candidate at running error `e` may have and still end
// below `best` (the error grows with the count); -1 when none.
inline int mismatchesBelow(double best, double e, double step, int n) {
  int limit = allowedMismatches(best, e, step, n);
  while (limit >= 0 && !(mismatchError(e, limit, step) < best)) --limit;
  return limit;
}

// Type 0: the count of non-matching nodes, compared on values or, for a coded
// training image, on one-byte category codes (an image of a few tens of
// kilobytes stays in cache while it is scanned). With uniform weights the
// running error is e - 1 + count / (n t), so the loop only counts, and checks
// the bound as an integer.
template <bool Uniform, bool Relative, bool Coded>
double mismatches(const VariableEvent &ev, int node, double e, double best) {
  const double centre = centreOf<Relative>(ev, node);
  const auto differs = [&](int i) {
    if constexpr (Coded)
      return ev.valueCode[i] != ev.tiCode[node + ev.offset[i]];
    else
      return ev.value[i] != ev.ti[node + ev.offset[i]] - centre;
  };
  if constexpr (Uniform) {
    // The largest count allowed, found once, turns the per-node test into an
    // integer comparison, and the count grows without a branch on the
    // (unpredictable) match.
    const double step = ev.uniformWeight * ev.invThreshold;
    const int allowed = allowedMismatches(best, e, step, ev.count);
    if (allowed < 0) return kAbandoned;
    int count = 0;
    for (int i = 0; i < ev.count; ++i) {
      count += differs(i) ? 1 : 0;
      if (count > allowed) return kAbandoned;
    }
    return mismatchError(e, count, step);
  } else {
    double d = e - 1.0;
    for (int i = 0; i < ev.count; ++i) {
      if (differs(i)) {
        d += ev.weight[i] * ev.invThreshold;
        if (d > best) return kAbandoned;
      }
    }
    return d > e ? d : e;
  }
}

// Type 1: the running error grows node by node.
template <bool Uniform, bool Relative>
double absolute(const VariableEvent &ev, int node, double e, double best) {
  const double centre = centreOf<Relative>(ev, node);
  double d = e - 1.0;
  for (int i = 0; i < ev.count; ++i) {
    const double diff = std::fabs(ev.value[i] - (ev.ti[node + ev.offset[i]] - centre));
    d += weightOf<Uniform>(ev, i) * ev.invThreshold * diff;
    if (d > best) return kAbandoned;
  }
  return d > e ? d : e;
}

// Types 2 and 3: the inner sum S grows node by node; c = (S)^(1/p) / t.
template <int Type, bool Uniform, bool Relative>
double powered(const VariableEvent &ev, int node, double e, double best) {
  const double room = best + 1.0 - e;  // the candidate survives while c <= room
  if (room < 0.0) return kAbandoned;
  const double scaled = room / ev.invThreshold;
  const double limit = (Type == 2 ? scaled * scaled : std::pow(scaled, ev.power)) * (1.0 + 1e-12);
  const double centre = centreOf<Relative>(ev, node);
  double sum = 0.0;
  for (int i = 0; i < ev.count; ++i) {
    const double diff = std::fabs(ev.value[i] - (ev.ti[node + ev.offset[i]] - centre));
    sum += weightOf<Uniform>(ev, i) * (Type == 2 ? diff * diff : std::pow(diff, ev.power));
    if (sum > limit) return kAbandoned;
  }
  const double c = (Type == 2 ? std::sqrt(sum) : std::pow(sum, ev.invPower)) * ev.invThreshold;
  const double d = e - 1.0 + c;
  return d > e ? d : e;
}

// Type 4: the largest difference.
template <bool Relative>
double largest(const VariableEvent &ev, int node, double e, double best) {
  const double centre = centreOf<Relative>(ev, node);
  double d = e - 1.0;
  for (int i = 0; i < ev.count; ++i) {
    const double c =
        std::fabs(ev.value[i] - (ev.ti[node + ev.offset[i]] - centre)) * ev.invThreshold;
    if (e - 1.0 + c > d) {
      d = e - 1.0 + c;
      if (d > best) return kAbandoned;
    }
  }
  return d > e ? d : e;
}

template <bool Uniform, bool Relative>
VariableKernel pick(int distanceType) {
  switch (distanceType) {
    case 0:
      return mismatches<Uniform, Relative, false>;
    case 1:
      return absolute<Uniform, Relative>;
    case 2:
      return powered<2, Uniform, Relative>;
    case 3:
      return powered<3, Uniform, Relative>;
    default:
      return largest<Relative>;
  }
}

}  // namespace kernel

// The kernel of a variable: chosen once per data event, called per candidate.
// `coded` selects the comparison on category codes (distance type 0 only).
inline VariableKernel variableKernel(int distanceType, bool uniformWeights, bool relative,
                                     bool coded = false) {
  if (coded)
    return uniformWeights ? kernel::mismatches<true, false, true>
                          : kernel::mismatches<false, false, true>;
  if (uniformWeights)
    return relative ? kernel::pick<true, true>(distanceType)
                    : kernel::pick<true, false>(distanceType);
  return relative ? kernel::pick<false, true>(distanceType)
                  : kernel::pick<false, false>(distanceType);
}

}  // namespace nuvo
