// The scan of one training image for one data event.
//
// Visits nscan candidate positions in the order of a ScanWalker, skips the
// candidates whose own simulated value is missing in the training image, and
// keeps the first candidate with the smallest error: an equal error never
// replaces an earlier one, and an error of 0 ends the scan at once.
//
// Under probability constraints no candidate can have an error below the sum of
// the smallest term of each constraint (DataEvent::floor), so a candidate that
// reaches it ends the scan too: every later candidate could only tie with it,
// and a tie keeps the earlier one, so the result is the one of the full scan.
// Block data add their least term over the values a candidate can hold.
#pragma once

#include <array>
#include <cstdint>

#include "constraints/block_band.hpp"
#include "constraints/connectivity_pattern.hpp"
#include "engine/distance_kernel.hpp"
#include "engine/scan_window.hpp"
#include "nuvo_image.h"

namespace nuvo {

inline constexpr int kMaxEventVariables = 100;

// The probability constraint of one simulated variable at a node: the error term
// of a candidate is the term of its class, one look-up per candidate.
struct ClassPenalty {
  const std::int16_t *trainClass = nullptr;  // class index of every training-image node
  const double *penalty = nullptr;           // per class
};

// The data event of every variable at one node with the kernel chosen for each,
// and the probability constraints that apply there.
struct DataEvent {
  int nvar = 0;
  std::array<VariableKernel, kMaxEventVariables> kernel{};
  std::array<VariableEvent, kMaxEventVariables> event{};
  int nconstraint = 0;
  std::array<ClassPenalty, kMaxEventVariables> constraint{};
  int nblockTerm = 0;
  std::array<BlockTerm, kMaxEventVariables> blockTerm{};  // block data, per variable
  double floor = 0.0;  // the smallest possible error: the constraints' smallest terms
  int npattern = 0;    // connectivity patterns of labels (their smallest term is 0)
  std::array<LabelTerm, kMaxEventVariables> pattern{};

  // Whether no constraint term applies.
  bool termless() const { return nconstraint == 0 && nblockTerm == 0 && npattern == 0; }

  // Error of the candidate at training-image node `node`, or kAbandoned when it
  // must end above `best`: the constraint terms first (probability, then block
  // data), then the variables in
  // increasing index.
  double errorAt(int node, double best) const {
    double e = 0.0;
    for (int c = 0; c < nconstraint; ++c) {
      e += constraint[c].penalty[constraint[c].trainClass[node]];
      if (e > best) return kAbandoned;
    }
    for (int b = 0; b < nblockTerm; ++b) {
      e += blockTerm[b].at(node);
      if (e > best) return kAbandoned;
    }
    for (int p = 0; p < npattern; ++p) {
      e += pattern[p].error(node);
      if (e > best) return kAbandoned;
    }
    for (int v = 0; v < nvar; ++v) {
      e = kernel[v](event[v], node, e, best);
      if (e > best) return kAbandoned;
    }
    return e;
  }
};

struct ScanResult {
  int tiNode = -1;               // best candidate's node in the training image, -1 if none
  double error = kNoMatchError;  // its error
  int iterations = 0;            // positions visited
};

// `usable(node)` tells whether the candidate's own value(s) to simulate are
// informed in the training image. `event` is a DataEvent, or an event of the
// same errors that is told the best error whenever it improves (bound), such as
// CodedEvent.
template <typename Event, typename Usable>
ScanResult scanTrainingImage(ScanWalker walker, int nscan, Event &event, Usable &&usable) {
  constexpr bool kBounded = requires(Event & ev) {
    ev.bound(0.0);
  };
  ScanResult result;
  if constexpr (kBounded) event.bound(result.error);
  for (int j = 0; j < nscan; ++j, walker.advance()) {
    const int node = walker.tiNode();
    if (!usable(node)) continue;
    const double e = event.errorAt(node, result.error);
    // An abandoned candidate goes straight to the next one: where the event
    // returns the constant, the compiler then drops the comparison with the best.
    if (e == kAbandoned) continue;
    if (e < result.error) {
      result.error = e;
      result.tiNode = node;
      if (e <= event.floor) {
        result.iterations = j + 1;
        return result;
      }
      if constexpr (kBounded) event.bound(e);
    }
  }
  result.iterations = nscan;
  return result;
}

}  // namespace nuvo
