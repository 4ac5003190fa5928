// Block data during a simulation: a target mean value of a variable over each of
// a set of grid nodes (a block), kept by an error term in the pattern search.
//
// Running sums. Every grid node knows the blocks that hold it. Per realization
// (beginRealization) each block's sum and count of informed values start from
// the grid as the realization starts (conditioning data and any pasted
// connecting paths); while the realization runs, the engine reports every
// value it copies (assign) and every value post-processing empties (clear), so
// they always cover exactly the informed nodes of the block. There is no initial
// simulation of block nodes: the constraint acts on every simulated node.
//
// Preparation, once per simulation, from the training images (the simulation
// grid used as a training image is not sampled: its values are not known yet).
// For each block, placements of the block's shape (its nodes, translated) are
// drawn at random in each training image, 200 per image, the origin uniform
// among the positions where the block's bounding box fits (a box longer than the
// image along an axis wraps around along that axis); placements meeting a
// missing value are dropped. Each kept placement gives its block mean M_i, and
// the mean square of its values and the squared deviations of its values below
// and above the target T. Over the kept placements:
//   - bandwidth h (Silverman's rule): 0.9 min(s, IQR / 1.349) n^(-1/5), with s
//     the standard deviation and IQR the interquartile range of the M_i (either
//     alone when the other is 0);
//   - kernel weights w_i = exp(-((M_i - T)^2 - d^2) / (2 h^2)), d the smallest
//     |M_i - T| (so the nearest placement weighs 1; all weigh 1 when h is 0): the
//     placements whose block mean resembles the target;
//   - local mean and standard deviation of the target: the w-weighted mean and
//     standard deviation of the values of the placements;
//   - left and right spreads sL, sR: the w-weighted root mean squared deviation
//     from T of the values, counting only the values below T for sL and only
//     those above it for sR (sL^2 + sR^2 is the mean squared deviation from T):
//     how far single values of a block with mean T lie on each side of T.
// The report lists them per block as blockData_targetValue_localMeanAndSD_allTi,
// blockData_bandwidth_allTi and blockData_tolLeftRight_allTi (sL and sR, the
// part of the left and right tolerances below that comes from the training
// images).
// Errors: -3075 when no placement could be kept (or the statistics are not
// finite), -3073 when a continuous variable's target lies beyond its range
// (the training range widened to the conditioning data) by more than the
// block's tolerance. Warnings: 150 once for a categorical variable (distance
// type 0) with block data, whose target is then a proportion-weighted mean of
// category values; 160 once per variable when some target is farther than
// tolerance + h from its local mean (the training images rarely show such a
// block mean).
//
// Error term. At a node to simulate, a block of N nodes holding n informed
// values of sum S applies when its informed share n / N lies within
// [activatePropMin, activatePropMax]: the proportions say in which part of the
// block's simulation the constraint is switched on (0 and 1: always; a larger
// minimum lets the first values follow the patterns alone; a maximum below 1
// frees the last ones, so the final mean may leave the tolerance). With the
// candidate's value x the running mean is m = (S + x) / (n + 1). As the nodes
// of a block are visited in random order, the running mean of n + 1 of its N
// values spreads around the final mean by the sampling factor
// f = sqrt((N - n - 1) / ((n + 1)(N - 1))) (0 for the last node, 1 for the
// first). The left and right tolerances at this count are
//   tolLeft = tolerance / 2 + f sL,  tolRight = tolerance / 2 + f sR:
// the running mean is steered into [T - tolLeft, T + tolRight], a band that
// narrows to half the block's tolerance as the block fills. Its excess e is how
// far the running sum S + x lies outside the band's sums, n + 1 times its edges.
// The other half of the tolerance is the block's room, R = tolerance N / 2 in
// sums: while e stays within it, the final mean can still end within the
// tolerance. The term is
//   4 e / R + max(0, e - R) N / tolerance
// (a zero tolerance is taken as 1e-12 (1 + |T|)). Within the room a deviation is
// cheap: the patterns still choose where a block takes its corrections, at the
// edges of bodies where either value fits, rather than forcing a value on a node
// whose neighbours all hold another one (an excess of the whole room costs 4,
// the error of a pattern at five times its threshold). Beyond the room each unit
// of excess costs N / tolerance, a wall no pattern's error outweighs, so the
// final mean keeps within the tolerance. The terms of all blocks holding
// the node are added to the candidate's error before the distances of the
// variables.
#pragma once

#include <cstdio>
#include <span>
#include <vector>

#include "constraints/block_band.hpp"
#include "nuvo_blockdata.h"
#include "nuvo_image.h"
#include "nuvo_progress.h"
#include "nuvo_siminput.h"

namespace nuvo {

// What the simulation knows of one variable's training values.
struct BlockVariableRange {
  bool categorical = false;
  std::span<const double> values;  // categorical: the distinct category values
  double min = 0.0, max = 0.0;     // training range
};

// The statistics of one block drawn from the training images.
struct BlockStatistics {
  double localMean = 0.0, localSd = 0.0;
  double bandwidth = 0.0;
  double spreadLeft = 0.0, spreadRight = 0.0;
};

// The least term of `bands` over the values a candidate of the variable can hold.
double leastBlockTerm(std::span<const BlockBand> bands, const BlockVariableRange &range);

// The block data of one simulated variable.
class BlockConstraint {
 public:
  // `trainImage[t]` null marks the simulation grid used as training image t.
  // Returns 0, -3073, -3075, -1, or a callback's result after warning 160.
  int prepare(const nuvo_blockData &bd, int variable, const BlockVariableRange &range,
              std::span<const nuvo_image *const> trainImage, const nuvo_image &conditioned,
              nuvo_randContext *ctx, bool *farTarget);

  void beginRealization(const nuvo_image &work);
  void assign(int node, double value);
  void clear(int node, double value);

  // The bands of the blocks that apply at `node` (valid until the next call).
  std::span<const BlockBand> bands(int node);
  // A lower bound of the blocks' term over every value a candidate can hold.
  double floor(std::span<const BlockBand> bands) const { return leastBlockTerm(bands, range_); }

  int variable() const { return variable_; }
  void writeStatistics(FILE *report) const;

 private:
  struct Block {
    int nnode = 0;
    double target = 0.0, tolerance = 0.0, propMin = 0.0, propMax = 1.0;
    BlockStatistics stats;
    double sum = 0.0;
    int count = 0;
  };

  int variable_ = 0;
  BlockVariableRange range_;
  std::vector<Block> block_;
  std::vector<int> first_;   // per grid node + 1: start of its blocks in member_
  std::vector<int> member_;  // block indices, node by node
  std::vector<BlockBand> scratch_;
};

// The block data of every variable of a simulation.
class BlockConstraints {
 public:
  // `range[v]` describes variable v's training values. Reports warnings 150 and
  // 160 through the monitor. Returns 0 or the first failure.
  int prepare(const nuvo_simInput &si, std::span<const nuvo_image> trainImage,
              const nuvo_image &conditioned, std::span<const BlockVariableRange> range,
              nuvo_progressMonitor *pm, nuvo_progressCallback callback);
  bool empty() const { return constraint_.empty(); }
  BlockConstraint *of(int v) {
    return index_.empty() || index_[v] < 0 ? nullptr : &constraint_[index_[v]];
  }
  void beginRealization(const nuvo_image &work) {
    for (BlockConstraint &c : constraint_) c.beginRealization(work);
  }
  // The statistics of every block, one line each, for the report.
  void writeStatistics(FILE *report) const {
    for (const BlockConstraint &c : constraint_) c.writeStatistics(report);
  }

 private:
  std::vector<BlockConstraint> constraint_;
  std::vector<int> index_;  // per variable: its constraint, or -1
};

}  // namespace nuvo
