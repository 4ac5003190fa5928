#include "constraints/block_constraint.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "constraints/block_sampling.hpp"
#include "data/values.hpp"
#include "foundation/check.hpp"
#include "foundation/random.hpp"

namespace nuvo {
namespace {

constexpr int kTargetBeyondRange = -3073;
constexpr int kLocalStatisticsFailed = -3075;
constexpr int kWarningCategoricalBlocks = 150;
constexpr int kWarningFarTarget = 160;
constexpr double kSmallestTolerance = 1e-12;
// The share of a block's tolerance its running mean is steered into: the rest
// is the block's room, where a deviation costs little (kRoomCost), so the
// patterns choose where the block corrects its mean.
constexpr double kAimedShare = 0.5;
// What using up the whole room costs, in units of a pattern's error
// (1: a distance twice its threshold). Small enough per value that the patterns
// still choose where a block takes its corrections (where a body's edge makes
// either value fit), large enough that the room is not spent while such places
// remain.
constexpr double kRoomCost = 4.0;

double effectiveTolerance(double tolerance, double target) {
  return std::max(tolerance, kSmallestTolerance * (1.0 + std::fabs(target)));
}

}  // namespace

int BlockConstraint::prepare(const nuvo_blockData &bd, int variable,
                             const BlockVariableRange &range,
                             std::span<const nuvo_image *const> trainImage,
                             const nuvo_image &conditioned, nuvo_randContext *ctx,
                             bool *farTarget) {
  variable_ = variable;
  range_ = range;
  const nuvo_grid &g = *conditioned.grid;
  block_.assign(static_cast<std::size_t>(bd.nblock), {});
  first_.assign(static_cast<std::size_t>(g.nxyz) + 1, 0);
  for (int b = 0; b < bd.nblock; ++b) {
    Block &k = block_[b];
    k.nnode = bd.nnode[b];
    k.target = bd.value[b];
    k.tolerance = bd.tolerance[b];
    k.propMin = bd.activatePropMin[b];
    k.propMax = bd.activatePropMax[b];
    NUVO_FAIL_IF(!range.categorical &&
                     (k.target < range.min - k.tolerance || k.target > range.max + k.tolerance),
                 kTargetBeyondRange);
    const std::size_t n = static_cast<std::size_t>(k.nnode);
    const BlockNodes nodes{{bd.ix[b], n}, {bd.iy[b], n}, {bd.iz[b], n}};
    const std::vector<Placement> placements =
        drawPlacements(nodes, k.target, trainImage, variable, ctx);
    NUVO_FAIL_IF(!blockStatistics(placements, k.target, &k.stats), kLocalStatisticsFailed);
    *farTarget =
        *farTarget || std::fabs(k.stats.localMean - k.target) > k.tolerance + k.stats.bandwidth;
    for (int i = 0; i < k.nnode; ++i)
      ++first_[bd.ix[b][i] + g.nx * bd.iy[b][i] + g.nxy * bd.iz[b][i] + 1];
  }
  // Node lists: counts turned into starts, then each block written at its nodes.
  for (std::size_t k = 1; k < first_.size(); ++k) first_[k] += first_[k - 1];
  member_.assign(static_cast<std::size_t>(first_.back()), 0);
  std::vector<int> next(first_.begin(), first_.end() - 1);
  for (int b = 0; b < bd.nblock; ++b)
    for (int i = 0; i < bd.nnode[b]; ++i)
      member_[next[bd.ix[b][i] + g.nx * bd.iy[b][i] + g.nxy * bd.iz[b][i]]++] = b;
  scratch_.reserve(block_.size());
  return 0;
}

void BlockConstraint::beginRealization(const nuvo_image &work) {
  for (Block &k : block_) {
    k.sum = 0.0;
    k.count = 0;
  }
  const int nxyz = work.grid->nxyz;
  const double *values = work.var + static_cast<long long>(variable_) * nxyz;
  for (int node = 0; node < nxyz; ++node)
    if (first_[node] < first_[node + 1] && !isMissing(values[node])) assign(node, values[node]);
}

void BlockConstraint::assign(int node, double value) {
  for (int i = first_[node]; i < first_[node + 1]; ++i) {
    Block &k = block_[member_[i]];
    k.sum += value;
    ++k.count;
  }
}

void BlockConstraint::clear(int node, double value) {
  for (int i = first_[node]; i < first_[node + 1]; ++i) {
    Block &k = block_[member_[i]];
    k.sum -= value;
    --k.count;
  }
}

std::span<const BlockBand> BlockConstraint::bands(int node) {
  scratch_.clear();
  for (int i = first_[node]; i < first_[node + 1]; ++i) {
    const Block &k = block_[member_[i]];
    const double share = static_cast<double>(k.count) / k.nnode;
    if (k.count >= k.nnode || share < k.propMin || share > k.propMax) continue;
    const double n = k.count + 1.0, total = k.nnode;
    const double f = k.nnode > 1 ? std::sqrt((total - n) / (n * (total - 1.0))) : 0.0;
    const double left = kAimedShare * k.tolerance + f * k.stats.spreadLeft;
    const double right = kAimedShare * k.tolerance + f * k.stats.spreadRight;
    const double tolerance = effectiveTolerance(k.tolerance, k.target);
    BlockBand band;
    band.low = n * (k.target - left) - k.sum;
    band.high = n * (k.target + right) - k.sum;
    band.room = (1.0 - kAimedShare) * tolerance * total;
    band.gentle = kRoomCost / band.room;
    band.steep = total / tolerance;
    scratch_.push_back(band);
  }
  return scratch_;
}

// The summed term is convex in the candidate's value and piecewise linear: over
// an interval its least value lies at an end or at a breakpoint, where one
// block's running sum meets the edge of its band or of its room. A categorical
// variable can only take its category values.
double leastBlockTerm(std::span<const BlockBand> bands, const BlockVariableRange &range) {
  const BlockTerm term{nullptr, bands.data(), static_cast<int>(bands.size())};
  if (range.categorical) {
    double least = INFINITY;
    for (double x : range.values) least = std::min(least, term.of(x));
    return least;
  }
  double least = std::min(term.of(range.min), term.of(range.max));
  for (const BlockBand &b : bands)
    for (double edge : {b.low - b.room, b.low, b.high, b.high + b.room})
      least = std::min(least, term.of(std::clamp(edge, range.min, range.max)));
  return least;
}

void BlockConstraint::writeStatistics(FILE *report) const {
  std::fprintf(report, "Block data for variable %d (from the training images):\n", variable_);
  for (std::size_t b = 0; b < block_.size(); ++b) {
    const BlockStatistics &s = block_[b].stats;
    std::fprintf(report,
                 "   block %3zu: blockData_targetValue_localMeanAndSD_allTi = %g %g, "
                 "blockData_bandwidth_allTi = %g, blockData_tolLeftRight_allTi = %g %g\n",
                 b, s.localMean, s.localSd, s.bandwidth, s.spreadLeft, s.spreadRight);
  }
  std::fprintf(report, "%s\n", std::string(80, '=').c_str());
}

int BlockConstraints::prepare(const nuvo_simInput &si, std::span<const nuvo_image> trainImage,
                              const nuvo_image &conditioned,
                              std::span<const BlockVariableRange> range, nuvo_progressMonitor *pm,
                              nuvo_progressCallback callback) {
  constraint_.clear();
  index_.assign(static_cast<std::size_t>(si.nvar), -1);
  if (si.blockData == nullptr) return 0;
  std::vector<const nuvo_image *> images;
  for (int t = 0; t < si.ntrainImage; ++t)
    images.push_back(si.simGridAsTiFlag[t] ? nullptr : &trainImage[t]);
  // The placements are drawn from their own stream, seeded by the simulation's
  // seed, so they do not shift the realizations' draws.
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  seedRandContext(si.seed, &ctx);
  for (int v = 0; v < si.nvar; ++v) {
    const nuvo_blockData &bd = si.blockData[v];
    if (bd.blockDataUsage == NUVO_BLOCK_DATA_NONE) continue;
    if (si.distanceType[v] == 0 && pm != nullptr)
      NUVO_TRY(reportWarning(pm, callback, kWarningCategoricalBlocks));
    index_[v] = static_cast<int>(constraint_.size());
    bool far = false;
    NUVO_TRY(constraint_.emplace_back().prepare(bd, v, range[v], images, conditioned, &ctx, &far));
    if (far && pm != nullptr) NUVO_TRY(reportWarning(pm, callback, kWarningFarTarget));
  }
  if (constraint_.empty()) index_.clear();
  return 0;
}

}  // namespace nuvo
