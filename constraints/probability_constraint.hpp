// Probability constraints during a simulation: the tables the pattern search
// reads and the running state of the realization.
//
// Preparation, once per simulation (the training images do not change between
// realizations): the class index of every training-image node, -1 where the
// value is missing. The classes are those of
// the values the simulation copies, after rescaling and before normalisation. An
// informed training value in no class fails with -1928, a conditioning value in
// none with -1929. For MLikRopt, the optimal interval table of every class from
// its proportion among the informed training values (pdf_comparison.hpp).
//
// Per realization (beginRealization): the class of every grid node is taken from
// the grid as the realization starts (conditioning data and any pasted
// connecting paths), and the running counts per class are recounted from it
// (the global constraint reads them). While the realization runs, the engine reports
// every value it copies (assign) and every value post-processing empties (clear),
// so the counts always cover exactly the informed nodes of the grid. The
// simulation grid used as a training image reads the grid's classes.
//
// Each thread of the node loop keeps its own ConstraintTally: the counts of the
// values it assigned since the last settle, and the scratch of one node. The
// global constraint reads the settled counts plus the thread's own pending ones:
// with one thread, settled only at the end of a path, that is every informed
// node, as above; with several, the engine settles at fixed checkpoints.
//
// At a node (penalties), the counted nodes are: global, every informed node of
// the grid; local "COMPLETE", the informed nodes of the variable's search
// neighborhood within the support radius; local "APPROXIMATE", the nodes of the
// data event within it. The local constraint applies where the local pdf image is
// informed, its probabilities taken divided by their sum at the node (input
// validation accepts sums within 0.01 of 1). The constraint does not apply while
// the farthest node of the variable's data event is closer than the deactivation
// distance; a variable without any informed neighbour is never deactivated.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "nuvo_classofvalues.h"
#include "nuvo_image.h"
#include "nuvo_searchneighborhood.h"
#include "nuvo_siminput.h"

namespace nuvo {

inline constexpr std::int16_t kNoClass = -1;

// The index of the first class holding `value`, or kNoClass.
int classOfValue(const nuvo_classOfValues &classes, double value);

// The data event of the constrained variable at a node, closest node first.
struct EventNodes {
  std::span<const int> node;         // grid nodes
  std::span<const double> distance;  // their distances in the search neighborhood
};

// The grid nodes a thread may read at its current entry (those it waited for,
// and those no other thread writes).
class NodeFilter {
 public:
  virtual bool visible(int node) = 0;

 protected:
  ~NodeFilter() = default;
};

// One thread's share of a constraint's running state (see above).
struct ConstraintTally {
  std::vector<std::int64_t> pending;     // per class: assigned since the last settle
  std::vector<std::int64_t> localCount;  // scratch of one node
  std::vector<double> target, lowerHalfWidth;
};

// The constraint of one simulated variable.
class ProbabilityConstraint {
 public:
  // `trainImage[t]` null marks the simulation grid used as training image t.
  int prepare(const nuvo_softProbability &sp, int variable,
              std::span<const nuvo_image *const> trainImage, const nuvo_image &conditioned);
  // The variable's search neighborhood, read by the "COMPLETE" local pdf.
  void attach(const nuvo_searchNeighborhood &neighborhood) { neighborhood_ = &neighborhood; }

  // Returns 0, or -1929 when a value of `work` is in no class.
  int beginRealization(const nuvo_image &work);
  // A tally sized for this constraint, nothing pending.
  ConstraintTally tally() const;
  // Gives the node class `cls`, counted in `tally` until settled.
  void assign(int node, int cls, ConstraintTally &tally);
  // Adds what `tally` holds pending to the counts.
  void settle(ConstraintTally &tally);
  // Empties a node (settled counts; no thread may hold pending ones).
  void clear(int node);

  // Fills out[k], for every class k, with the error term of a candidate of class
  // k at `node`; false when the constraint does not apply there. The "COMPLETE"
  // local pdf counts only the nodes that `filter` lets through (all of them when
  // it is null).
  bool penalties(int node, EventNodes event, std::span<double> out, ConstraintTally &tally,
                 NodeFilter *filter);

  int variable() const { return variable_; }
  bool global() const {
    return sp_->probabilityConstraintUsage == NUVO_PROBABILITY_CONSTRAINT_GLOBAL;
  }
  int nclass() const { return static_cast<int>(count_.size()); }
  // The class of a training value, as in trainClass.
  int classOf(double value) const { return classOfValue(*sp_->classOfValues, value); }
  // Class index of every node of training image t.
  const std::int16_t *trainClass(int t) const {
    return trainClass_[t].empty() ? gridClass_.data() : trainClass_[t].data();
  }
  const std::int16_t *gridClass() const { return gridClass_.data(); }

 private:
  void countNeighborhood(int node, std::span<std::int64_t> count, NodeFilter *filter) const;
  void countEvent(EventNodes event, std::span<std::int64_t> count) const;

  const nuvo_softProbability *sp_ = nullptr;
  int variable_ = 0;
  const nuvo_grid *grid_ = nullptr;
  const nuvo_searchNeighborhood *neighborhood_ = nullptr;
  std::vector<std::vector<std::int16_t>> trainClass_;  // per training image; empty: the grid's
  std::vector<std::int16_t> gridClass_;                // per grid node, as simulated
  std::vector<std::int64_t> count_;                    // informed grid nodes per class
  std::vector<std::vector<double>> optimalTable_;      // MLikRopt: per class
};

// The constraints of every variable of a simulation.
class ProbabilityConstraints {
 public:
  int prepare(const nuvo_simInput &si, std::span<const nuvo_image> trainImage,
              const nuvo_image &conditioned);
  bool empty() const { return constraint_.empty(); }
  // Variable v's constraint, or null.
  ProbabilityConstraint *of(int v) {
    return index_.empty() || index_[v] < 0 ? nullptr : &constraint_[index_[v]];
  }
  int beginRealization(const nuvo_image &work);

 private:
  std::vector<ProbabilityConstraint> constraint_;
  std::vector<int> index_;  // per variable: its constraint, or -1
};

}  // namespace nuvo
