#include "engine/realization.hpp"

#include <algorithm>
#include <atomic>
#include <cmath>

#include "data/values.hpp"
#include "engine/coded_event.hpp"
#include "engine/constrained_event.hpp"
#include "engine/packed_event.hpp"
#include "engine/pattern_scan.hpp"
#include "engine/realization_stats.hpp"
#include "engine/scan_window.hpp"
#include "foundation/check.hpp"
#include "foundation/random.hpp"
#include "nuvo_random.h"
#include "parallel/threaded_loop.hpp"

namespace nuvo {
namespace {

constexpr int kFlagged = 2;    // state of an entry waiting for post-processing
constexpr int kSimulated = 1;  // state of an entry simulated by a path
constexpr int kPostProcessingSeedStep = 472;
constexpr int kMarginalDrawAttempts = 64;
constexpr int kEmptyWindow = 38;  // warnings: a data event larger than the training image
constexpr int kEmptyWindowPostProcessing = 39;
// A path shorter than this many positions per thread runs on one thread: its
// entries' neighbourhoods overlap so much that the threads would mostly wait
// for one another (30 x 30 grids ran twice as slowly on two threads).
constexpr std::size_t kMinPositionsPerThread = 512;

// Base seed plus entry position, with 32-bit wrap-around.
int entrySeed(int base, int position) {
  return static_cast<int>(static_cast<unsigned int>(base) + static_cast<unsigned int>(position));
}

// The data event of one variable at the current node, in grid offsets.
struct GatheredVariable {
  std::vector<int> dx, dy, dz;
  std::vector<double> value, weight;
  std::vector<std::int8_t> code;  // category codes of the values (coded variables)
  std::vector<int> tiOffset;      // in the chosen training image
  std::vector<int> index;         // positions in the search neighborhood's list
  std::vector<int> node;          // grid nodes, and their distances in the search
  std::vector<double> distance;   //   neighborhood, as gathered (before any transform)
  int count = 0;
};

// Runs the paths of one realization: the scratch buffers live as long as it.
class RealizationRun {
 public:
  RealizationRun(const RealizationSetup &setup, nuvo_image *sim,
                 std::span<const signed char> toSimulate, std::span<unsigned char> informed,
                 const RealizationMaps &maps)
      : setup_(setup),
        sim_(sim),
        grid_(*sim->grid),
        toSimulate_(toSimulate),
        informed_(informed),
        maps_(maps),
        gathered_(setup.nvar),
        stats_(setup.ti.size()) {
    for (int v = 0; v < setup.nvar; ++v) {
      const int size = setup.neighborhood[v]->size;
      GatheredVariable &g = gathered_[v];
      for (auto *a : {&g.dx, &g.dy, &g.dz, &g.tiOffset, &g.index, &g.node}) a->resize(size);
      for (auto *a : {&g.value, &g.weight, &g.distance}) a->resize(size);
      g.code.resize(size);
    }
    targets_.reserve(setup.nvar);
    penalty_.resize(setup.nvar);
    blockBand_.resize(setup.nvar);
    tally_.resize(setup.nvar);
    categoryClass_.resize(setup.nvar);
    for (int v = 0; v < setup.nvar; ++v)
      if (const ProbabilityConstraint *c = setup.constraint(v)) {
        penalty_[v].resize(c->nclass());
        tally_[v] = c->tally();
        if (!setup.categories.empty())
          for (double value : setup.categories[v])
            categoryClass_[v].push_back(static_cast<std::int16_t>(c->classOf(value)));
      }
  }

  // Starts a path: statistics and the empty-window flag reset. With a
  // schedule, the path is shared with other threads (see gather).
  void beginPath(const PathSchedule *schedule);
  // Simulates position k of `path` with `settings`, the same code whether one
  // thread runs the path or several. The initial path writes the maps. The
  // entry ends in state kFlagged in `state` when its error exceeds the
  // settings' tolerance, else in kSimulated.
  void runEntry(int k, std::span<const int> path, const PathSettings &settings, int baseSeed,
                bool initialPath, std::vector<signed char> &state);
  // Adds another thread's statistics and empty-window flag to this run's.
  void merge(const RealizationRun &other);
  // Hands the probability constraints' pending counts over.
  void settle();

  RealizationStats &stats() { return stats_; }
  const RealizationSetup &setup() const { return setup_; }
  bool emptyWindow() const { return emptyWindow_; }
  WaitCounters &waits() { return waits_; }

 private:
  // The probability constraint's view of variable v's nodes.
  class VariableFilter final : public NodeFilter {
   public:
    VariableFilter(RealizationRun &run, int v) : run_(run), v_(v) {}
    bool visible(int node) override { return run_.visible(v_, node); }

   private:
    RealizationRun &run_;
    int v_;
  };

  struct Outcome {
    int ti = 0;
    int tiNode = -1;
    double error = 0.0;
    int iterations = 0;
    bool marginal = false;
    bool emptyWindow = false;  // the data event was larger than the training image
  };

  void simulateEntry(int entry, const PathSettings &settings, nuvo_randContext *ctx,
                     Outcome *outcome);
  void listTargets(int entry);
  bool visible(int v, int node);
  bool gather(int node, const PathSettings &settings);
  void applyConstraints(int node);
  void deformOffsets(int node, nuvo_randContext *ctx);
  int chooseTrainingImage(int node, nuvo_randContext *ctx) const;
  bool usable(const nuvo_image &ti, int tiNode) const;
  bool everyNodeCoded(int t, int v) const;
  int drawMarginalNode(const nuvo_image &ti, nuvo_randContext *ctx) const;
  EventExtent gatheredExtent() const;
  void prepareEvent(int t, const PathSettings &settings);
  int maxScanFor(int t, const PathSettings &settings) const;
  void copy(int t, int tiNode, int node);
  void writeMaps(int entry, int node, int pathIndex, const Outcome &o);
  void flagDataEvent(std::vector<signed char> &state) const;

  const RealizationSetup &setup_;
  nuvo_image *sim_;
  const nuvo_grid &grid_;
  std::span<const signed char> toSimulate_;
  // Per variable and node, 1 when the node's value is informed: the gather
  // reads this small map rather than the values while the grid is sparse.
  std::span<unsigned char> informed_;
  const RealizationMaps &maps_;
  std::vector<GatheredVariable> gathered_;
  std::vector<int> targets_;                  // variables simulated at the current entry
  int node_ = -1;                             // the node of the current entry
  std::vector<int> constrained_;              // targets whose constraint applies at the entry
  std::vector<std::vector<double>> penalty_;  // per variable: the constraint term per class
  std::vector<int> blocked_;                  // targets with block data applying at the entry
  std::vector<std::span<const BlockBand>> blockBand_;  // per variable: its blocks' bands
  std::vector<ConstraintTally> tally_;  // per variable: this thread's constraint counts
  // Per coded variable under a probability constraint: the class of each category.
  std::vector<std::vector<std::int16_t>> categoryClass_;
  DataEvent event_;
  CodedEvent codedEvent_;                   // event_ when of the everyday kind, scanned faster
  PackedEvent<2> twoBitEvent_;              // codedEvent_ on a two-bit image
  PackedEvent<4> fourBitEvent_;             // codedEvent_ on a four-bit image
  WeightedCodedEvent weightedEvent_;        // the same with weights
  ConstrainedCodedEvent constrainedEvent_;  // the same under constraint terms
  std::vector<double> weightScratch_;
  RealizationStats stats_;
  nuvo_randContext ctx_{};
  bool emptyWindow_ = false;
  const PathSchedule *schedule_ = nullptr;  // null when one thread runs the path
  int position_ = 0;                        // path position of the current entry
  WaitCounters waits_;
};

double &valueAt(nuvo_image *image, int v, int node) {
  return image->var[static_cast<long long>(v) * image->grid->nxyz + node];
}
double valueAt(const nuvo_image &image, int v, int node) {
  return image.var[static_cast<long long>(v) * image.grid->nxyz + node];
}

void RealizationRun::listTargets(int entry) {
  targets_.clear();
  if (!setup_.vectorMode) {
    targets_.push_back(entry / grid_.nxyz);
    return;
  }
  for (int v = 0; v < setup_.nvar; ++v)
    if (toSimulate_[static_cast<long long>(v) * grid_.nxyz + entry]) targets_.push_back(v);
}

// Whether the value of variable v at `node` may be read by the current entry.
// Run by one thread, every value may, and so may a value that no path entry
// writes. Shared with other threads, an entry of the path at a later position
// counts as not yet simulated (as it is in the serial loop) and an earlier one
// is waited for.
bool RealizationRun::visible(int v, int node) {
  const long long flag = static_cast<long long>(v) * grid_.nxyz + node;
  if (schedule_ == nullptr || toSimulate_[flag] == 0) return true;
  const int rank = schedule_->rank(setup_.vectorMode ? node : static_cast<int>(flag));
  if (rank < 0) return true;
  if (rank >= position_) return false;
  schedule_->waitFor(rank, waits_);
  return true;
}

// Gathers, for every variable, the informed nodes of its neighbourhood around
// `node`, closest first, up to the variable's limit. Returns false when none is
// informed at all.
bool RealizationRun::gather(int node, const PathSettings &settings) {
  const int x = node % grid_.nx, y = node % grid_.nxy / grid_.nx, z = node / grid_.nxy;
  bool any = false;
  for (int v = 0; v < setup_.nvar; ++v) {
    const nuvo_searchNeighborhood &nb = *setup_.neighborhood[v];
    GatheredVariable &g = gathered_[v];
    const double *values = sim_->var + static_cast<long long>(v) * grid_.nxyz;
    const signed char *simulated = toSimulate_.data() + static_cast<long long>(v) * grid_.nxyz;
    const unsigned char *informed = informed_.data() + static_cast<long long>(v) * grid_.nxyz;
    const int limit = settings.maxNodes[v];
    int n = 0;
    for (int j = 0; j < nb.size && n < limit; ++j) {
      const int xx = x + nb.ix[j], yy = y + nb.iy[j], zz = z + nb.iz[j];
      if (xx < 0 || xx >= grid_.nx || yy < 0 || yy >= grid_.ny || zz < 0 || zz >= grid_.nz)
        continue;
      const int neighbor = xx + grid_.nx * yy + grid_.nxy * zz;
      if (!visible(v, neighbor)) continue;
      // Written in any case and kept when informed: whether a neighbour is
      // informed follows no pattern, so a branch on it would mostly be
      // mispredicted. The kept nodes' values and weights are read below.
      g.index[n] = j;
      g.node[n] = neighbor;
      n += informed[neighbor];
    }
    for (int i = 0; i < n; ++i) {
      const int j = g.index[i], neighbor = g.node[i];
      g.dx[i] = nb.ix[j];
      g.dy[i] = nb.iy[j];
      g.dz[i] = nb.iz[j];
      g.value[i] = values[neighbor];
      g.weight[i] = nb.weight[j] * (simulated[neighbor] ? 1.0 : setup_.conditioningWeight[v]);
      g.distance[i] = nb.distance[j];
    }
    g.count = n;
    any = any || n > 0;
  }
  return any;
}

// The probability constraints and block data of the entry's variables that
// apply at `node`, their terms per candidate class (probability) or the bands
// of the blocks computed once before the scan.
void RealizationRun::applyConstraints(int node) {
  constrained_.clear();
  blocked_.clear();
  for (int v : targets_) {
    if (BlockConstraint *b = setup_.blockConstraint(v)) {
      blockBand_[v] = b->bands(node);
      if (!blockBand_[v].empty()) blocked_.push_back(v);
    }
    ProbabilityConstraint *c = setup_.constraint(v);
    if (c == nullptr) continue;
    const GatheredVariable &g = gathered_[v];
    const std::size_t n = static_cast<std::size_t>(g.count);
    const EventNodes event{std::span(g.node).first(n), std::span(g.distance).first(n)};
    VariableFilter filter(*this, v);
    if (c->penalties(node, event, penalty_[v], tally_[static_cast<std::size_t>(v)],
                     schedule_ != nullptr ? &filter : nullptr))
      constrained_.push_back(v);
  }
}

// Takes the gathered offsets into the training images' frame at `node`, keeping
// the first neighbour of each training-image offset.
void RealizationRun::deformOffsets(int node, nuvo_randContext *ctx) {
  const OffsetMap map = setup_.transform->at(node, ctx);
  for (GatheredVariable &g : gathered_) {
    int kept = 0;
    for (int i = 0; i < g.count; ++i) {
      int dx = g.dx[i], dy = g.dy[i], dz = g.dz[i];
      map.apply(&dx, &dy, &dz);
      bool taken = false;
      for (int j = 0; j < kept && !taken; ++j)
        taken = g.dx[j] == dx && g.dy[j] == dy && g.dz[j] == dz;
      if (taken) continue;
      g.dx[kept] = dx;
      g.dy[kept] = dy;
      g.dz[kept] = dz;
      g.value[kept] = g.value[i];
      g.weight[kept] = g.weight[i];
      g.node[kept] = g.node[i];
      g.distance[kept] = g.distance[i];
      ++kept;
    }
    g.count = kept;
  }
}

// With several training images, the first whose running sum of the local
// probabilities at the node exceeds one uniform draw, else the last.
int RealizationRun::chooseTrainingImage(int node, nuvo_randContext *ctx) const {
  const int nti = static_cast<int>(setup_.ti.size());
  if (nti == 1) return 0;
  const double u = NUVODoubleRand(0, ctx);
  double sum = 0.0;
  for (int t = 0; t < nti; ++t) {
    sum += valueAt(*setup_.pdfTrainImage, t, node);
    if (sum > u) return t;
  }
  return nti - 1;
}

// Whether no node of variable v in training image t is missing.
bool RealizationRun::everyNodeCoded(int t, int v) const {
  const std::vector<int> &count = setup_.codeCount[static_cast<std::size_t>(t) * setup_.nvar + v];
  long long coded = 0;
  for (int c : count) coded += c;
  return coded == setup_.ti[t]->grid->nxyz;
}

bool RealizationRun::usable(const nuvo_image &ti, int tiNode) const {
  for (int v : targets_)
    if (isMissing(valueAt(ti, v, tiNode))) return false;
  return true;
}

// A training-image node drawn uniformly among those where the values to
// simulate are informed: a few random draws, then the first usable node after
// the last draw (in node order, wrapping). -1 when there is none.
int RealizationRun::drawMarginalNode(const nuvo_image &ti, nuvo_randContext *ctx) const {
  const int n = ti.grid->nxyz;
  int node = 0;
  for (int attempt = 0; attempt < kMarginalDrawAttempts; ++attempt) {
    node = NUVOIntRand(0, n, ctx);
    if (usable(ti, node)) return node;
  }
  for (int i = 1; i < n; ++i) {
    const int candidate = (node + i) % n;
    if (usable(ti, candidate)) return candidate;
  }
  return -1;
}

EventExtent RealizationRun::gatheredExtent() const {
  EventExtent extent;
  for (const GatheredVariable &g : gathered_)
    for (int i = 0; i < g.count; ++i) extent.include(g.dx[i], g.dy[i], g.dz[i]);
  return extent;
}

// Turns the gathered nodes into the kernels' data event for training image t,
// which the event fits in (so its linear offsets fit in an int).
void RealizationRun::prepareEvent(int t, const PathSettings &settings) {
  const nuvo_image &ti = *setup_.ti[t];
  const nuvo_grid &tg = *ti.grid;
  event_.nvar = 0;
  for (int v = 0; v < setup_.nvar; ++v) {
    GatheredVariable &g = gathered_[v];
    if (g.count == 0) continue;
    double mean = 0.0, weightSum = 0.0;
    for (int i = 0; i < g.count; ++i) {
      g.tiOffset[i] = g.dx[i] + tg.nx * g.dy[i] + tg.nxy * g.dz[i];
      mean += g.value[i];
      weightSum += g.weight[i];
    }
    if (setup_.relativeDistance[v]) {
      mean /= g.count;
      for (int i = 0; i < g.count; ++i) g.value[i] -= mean;
    }
    const bool uniform = setup_.uniformWeights[v];
    if (!uniform)
      for (int i = 0; i < g.count; ++i) g.weight[i] /= weightSum;
    VariableEvent &ev = event_.event[event_.nvar];
    ev.count = g.count;
    ev.offset = g.tiOffset.data();
    ev.value = g.value.data();
    ev.weight = g.weight.data();
    ev.uniformWeight = 1.0 / g.count;
    ev.invThreshold = settings.invThreshold[v];
    ev.power = setup_.power[v];
    ev.invPower = setup_.invPower[v];
    ev.ti = ti.var + static_cast<long long>(v) * tg.nxyz;
    const std::int8_t *tiCode = setup_.codes(t, v);
    if (tiCode != nullptr) {
      for (int i = 0; i < g.count; ++i) g.code[i] = categoryCode(setup_, v, g.value[i]);
      ev.valueCode = g.code.data();
      ev.tiCode = tiCode;
      ev.codeCount = setup_.codeCount[static_cast<std::size_t>(t) * setup_.nvar + v];
      ev.packedBits = packedFieldBits(setup_.categories[v].size());
    }
    ev.tiPacked = tiCode != nullptr ? setup_.packedCodes(t, v) : nullptr;
    event_.kernel[event_.nvar] = variableKernel(setup_.distanceType[v], uniform,
                                                setup_.relativeDistance[v] != 0, tiCode != nullptr);
    ++event_.nvar;
  }
  event_.nconstraint = 0;
  event_.floor = 0.0;
  for (int v : constrained_) {
    event_.constraint[event_.nconstraint++] = {setup_.constraint(v)->trainClass(t),
                                               penalty_[v].data()};
    event_.floor += *std::min_element(penalty_[v].begin(), penalty_[v].end());
  }
  event_.nblockTerm = 0;
  for (int v : blocked_) {
    const std::span<const BlockBand> bands = blockBand_[v];
    event_.blockTerm[event_.nblockTerm++] = {ti.var + static_cast<long long>(v) * tg.nxyz,
                                             bands.data(), static_cast<int>(bands.size())};
    event_.floor += setup_.blockConstraint(v)->floor(bands);
  }
  event_.npattern = 0;
  if (setup_.pattern == nullptr) return;
  for (int v : targets_) {
    const GatheredVariable &g = gathered_[v];
    const std::size_t n = static_cast<std::size_t>(g.count);
    if (n > 0 &&
        setup_.pattern->at(v, node_, std::span(g.node).first(n), std::span(g.tiOffset).first(n),
                           g.distance[n - 1], &event_.pattern[event_.npattern]))
      ++event_.npattern;
  }
}

// The scan limit of the entry: its variable's, or in vector mode the largest of
// the variables simulated at the node.
int RealizationRun::maxScanFor(int t, const PathSettings &settings) const {
  int limit = 1;
  for (int v : targets_) limit = std::max(limit, settings.maxScan[t * setup_.nvar + v]);
  return limit;
}

// Copies the values of training image t at tiNode to the node, keeping the
// constraints' classes and block sums of the grid up to date.
void RealizationRun::copy(int t, int tiNode, int node) {
  const nuvo_image &ti = *setup_.ti[t];
  for (int v : targets_) {
    const double value = valueAt(ti, v, tiNode);
    valueAt(sim_, v, node) = value;
    informed_[static_cast<std::size_t>(v) * grid_.nxyz + node] = isMissing(value) ? 0 : 1;
    if (ProbabilityConstraint *c = setup_.constraint(v))
      c->assign(node, c->trainClass(t)[tiNode], tally_[static_cast<std::size_t>(v)]);
    if (BlockConstraint *b = setup_.blockConstraint(v)) b->assign(node, value);
    if (setup_.pattern != nullptr) setup_.pattern->assign(v, node, tiNode);
  }
}

void RealizationRun::writeMaps(int entry, int node, int pathIndex, const Outcome &o) {
  const auto put = [&](nuvo_image *map, double value) {
    if (map == nullptr) return;
    if (setup_.vectorMode)
      map->var[node] = value;
    else
      map->var[entry] = value;
  };
  put(maps_.pathIndex, pathIndex);
  put(maps_.error, o.error);
  put(maps_.tiGridNodeIndex, o.tiNode);
  put(maps_.tiIndex, o.ti);
}

void RealizationRun::simulateEntry(int entry, const PathSettings &settings, nuvo_randContext *ctx,
                                   Outcome *o) {
  const int node = setup_.vectorMode ? entry : entry % grid_.nxyz;
  node_ = node;
  listTargets(entry);
  const bool informed = gather(node, settings);
  if (informed) applyConstraints(node);
  if (informed && setup_.transform != nullptr) deformOffsets(node, ctx);
  o->ti = chooseTrainingImage(node, ctx);
  const nuvo_image &ti = *setup_.ti[o->ti];
  ScanWindow window;
  if (informed) {
    if (makeScanWindow(*ti.grid, gatheredExtent(), &window)) {
      prepareEvent(o->ti, settings);
      const int nscan = std::min(window.count(), maxScanFor(o->ti, settings));
      const ScanOrder order = drawScanOrder(window, nscan, ctx);
      const ScanWalker walker(window, *ti.grid, order);
      ScanResult r;
      const std::int8_t *ownCode =
          targets_.size() == 1 ? setup_.codes(o->ti, targets_[0]) : nullptr;
      if (ownCode != nullptr) {
        const int v = targets_[0];
        const std::int8_t *own = ownCode;
        const auto usableCode = [own](int tiNode) { return own[tiNode] != kMissingCode; };
        const bool everyUsable = everyNodeCoded(o->ti, v);
        const auto scanCoded = [&](auto &event) {
          return everyUsable ? scanTrainingImage(walker, nscan, event, [](int) { return true; })
                             : scanTrainingImage(walker, nscan, event, usableCode);
        };
        // The event's variable may be another than the simulated one.
        const VariableEvent &ev = event_.event[0];
        const std::uint8_t *packed = ev.tiPacked;
        if (codedEvent_.prepare(event_, packed == nullptr)) {
          if (packed != nullptr && ev.packedBits == 2) {
            twoBitEvent_.prepare(codedEvent_, packed);
            r = scanCoded(twoBitEvent_);
          } else if (packed != nullptr) {
            fourBitEvent_.prepare(codedEvent_, packed);
            r = scanCoded(fourBitEvent_);
          } else {
            r = scanCoded(codedEvent_);
          }
        } else if (weightedEvent_.prepare(event_)) {
          r = scanCoded(weightedEvent_);
        } else if (constrainedEvent_.prepare(event_, own, setup_.categories[v],
                                             categoryClass_[v])) {
          r = scanCoded(constrainedEvent_);
        } else {
          r = scanTrainingImage(walker, nscan, event_, usableCode);
        }
      } else if (targets_.size() == 1) {
        const double *own = ti.var + static_cast<long long>(targets_[0]) * ti.grid->nxyz;
        r = scanTrainingImage(walker, nscan, event_,
                              [own](int tiNode) { return !isMissing(own[tiNode]); });
      } else {
        r = scanTrainingImage(walker, nscan, event_,
                              [&](int tiNode) { return usable(ti, tiNode); });
      }
      o->tiNode = r.tiNode;
      o->error = r.error;
      o->iterations = r.iterations;
      o->marginal = false;
      if (r.tiNode >= 0) copy(o->ti, r.tiNode, node);
      return;
    }
    o->emptyWindow = true;
  }
  // No informed neighbour, or a data event larger than the training image: a
  // node of the training image is taken at random.
  o->marginal = true;
  o->iterations = 0;
  o->error = 0.0;
  o->tiNode = drawMarginalNode(ti, ctx);
  if (o->tiNode >= 0) copy(o->ti, o->tiNode, node);
}

void RealizationRun::beginPath(const PathSchedule *schedule) {
  NUVOInitRandContext(&ctx_);
  stats_.reset();
  emptyWindow_ = false;
  schedule_ = schedule;
}

void RealizationRun::runEntry(int k, std::span<const int> path, const PathSettings &settings,
                              int baseSeed, bool initialPath, std::vector<signed char> &state) {
  const int entry = path[k];
  position_ = k;
  seedRandContext(entrySeed(baseSeed, k), &ctx_);
  Outcome o;
  simulateEntry(entry, settings, &ctx_, &o);
  const bool above = !o.marginal && o.error > 0.0;
  stats_.record(o.ti, o.marginal, above, o.error, o.iterations);
  emptyWindow_ = emptyWindow_ || o.emptyWindow;
  if (initialPath) writeMaps(entry, setup_.vectorMode ? entry : entry % grid_.nxyz, k, o);
  const bool flag = o.error > settings.tolerance || o.tiNode < 0;
  state[entry] = flag ? kFlagged : kSimulated;
  if (flag && !o.marginal) flagDataEvent(state);
}

// A node simulated early, from few and distant neighbours, may hold a value that
// its later neighbours cannot continue: they match poorly, while it matched
// within the threshold and would never be simulated again, leaving a single
// node of its category among others. So the path entries of the data event
// that a path simulated (state kSimulated; conditioning data have no such state)
// are flagged with the poorly matched entry. Threads may flag one entry at the
// same time (each entry's own state is written before any later entry reads
// it), hence the atomic access; the set flagged does not depend on their order.
void RealizationRun::flagDataEvent(std::vector<signed char> &state) const {
  for (int v = 0; v < setup_.nvar; ++v) {
    const GatheredVariable &g = gathered_[v];
    for (int i = 0; i < g.count; ++i) {
      const int e = setup_.vectorMode ? g.node[i] : v * grid_.nxyz + g.node[i];
      std::atomic_ref<signed char> s(state[static_cast<std::size_t>(e)]);
      signed char expected = kSimulated;
      s.compare_exchange_strong(expected, kFlagged, std::memory_order_relaxed);
    }
  }
}

void RealizationRun::settle() {
  for (int v = 0; v < setup_.nvar; ++v)
    if (ProbabilityConstraint *c = setup_.constraint(v))
      c->settle(tally_[static_cast<std::size_t>(v)]);
}

void RealizationRun::merge(const RealizationRun &other) {
  stats_.merge(other.stats_);
  emptyWindow_ = emptyWindow_ || other.emptyWindow_;
}

// A path's share of the work and its progress: reports the initial path's
// percentage whenever it grows.
class PathRun final : public PathWork {
 public:
  PathRun(std::span<RealizationRun> runs, std::span<const int> path, const PathSettings &settings,
          int baseSeed, bool initialPath, std::vector<signed char> &state, nuvo_progressMonitor *pm,
          nuvo_progressCallback callback)
      : runs_(runs),
        path_(path),
        settings_(settings),
        baseSeed_(baseSeed),
        initialPath_(initialPath),
        state_(state),
        pm_(pm),
        callback_(callback) {}

  void simulate(int thread, int k) override {
    runs_[static_cast<std::size_t>(thread)].runEntry(k, path_, settings_, baseSeed_, initialPath_,
                                                     state_);
  }

  void checkpoint() override {
    for (RealizationRun &run : runs_) run.settle();
  }

  int progress(int completed) override {
    if (!initialPath_ || pm_ == nullptr || path_.empty()) return 0;
    const int percent = static_cast<int>(100LL * completed / static_cast<long long>(path_.size()));
    if (percent == lastPercent_) return 0;
    lastPercent_ = percent;
    pm_->progress = percent;
    if (pm_->nrealization > 0)
      pm_->progressTotal = (pm_->ireal * 100 + percent) / pm_->nrealization;
    return reportProgress(pm_, callback_);
  }

 private:
  std::span<RealizationRun> runs_;
  std::span<const int> path_;
  const PathSettings &settings_;
  int baseSeed_;
  bool initialPath_;
  std::vector<signed char> &state_;
  nuvo_progressMonitor *pm_;
  nuvo_progressCallback callback_;
  int lastPercent_ = -1;
};

// Whether some variable has the global probability constraint.
bool globalConstraint(const RealizationSetup &setup) {
  for (int v = 0; v < setup.nvar; ++v)
    if (const ProbabilityConstraint *c = setup.constraint(v); c != nullptr && c->global())
      return true;
  return false;
}

// Simulates `path` with `settings` on as many threads as `runs` has entries
// (one for a short path): one thread runs the positions in order, several share
// them through a
// PathSchedule (with checkpoints of the global probability constraint's
// counts). Reports warning 38 (39 after the initial path) once when a data
// event did not fit in the training image.
int runPath(std::span<RealizationRun> runs, std::span<const int> path, const PathSettings &settings,
            int baseSeed, bool initialPath, std::vector<signed char> &state,
            nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  PathRun work(runs, path, settings, baseSeed, initialPath, state, pm, callback);
  RealizationRun &main = runs[0];
  const int n = static_cast<int>(path.size());
  if (runs.size() == 1 || path.size() < kMinPositionsPerThread * runs.size()) {
    main.beginPath(nullptr);
    for (int k = 0; k < n; ++k) {
      main.runEntry(k, path, settings, baseSeed, initialPath, state);
      NUVO_TRY(work.progress(k + 1));
    }
  } else {
    PathSchedule schedule(path, state.size());
    for (RealizationRun &run : runs) run.beginPath(&schedule);
    const int nthread = static_cast<int>(runs.size());
    const int interval = globalConstraint(main.setup()) ? checkpointInterval(n, nthread) : 0;
    NUVO_TRY(runThreadedPath(schedule, nthread, work, interval));
    for (std::size_t t = 1; t < runs.size(); ++t) main.merge(runs[t]);
  }
  work.checkpoint();
  if (main.emptyWindow() && pm != nullptr)
    return reportWarning(pm, callback, initialPath ? kEmptyWindow : kEmptyWindowPostProcessing);
  return 0;
}

}  // namespace

int pathThreads(const RealizationSetup &setup) {
  bool simGridAsTi = false;
  for (char flag : setup.simGridAsTi) simGridAsTi = simGridAsTi || flag != 0;
  return simGridAsTi || setup.blocks != nullptr || setup.pattern != nullptr
             ? 1
             : std::max(1, setup.nthread);
}

std::vector<int> maxScanTable(const RealizationSetup &setup, std::span<const double> fraction) {
  std::vector<int> table(setup.ti.size() * setup.nvar);
  for (std::size_t t = 0; t < setup.ti.size(); ++t) {
    const nuvo_image &ti = *setup.ti[t];
    const int nxyz = ti.grid->nxyz;
    const double m = nxyz * fraction[t];
    for (int v = 0; v < setup.nvar; ++v) {
      int missing = 0;
      for (int i = 0; i < nxyz; ++i) missing += isMissing(valueAt(ti, v, i));
      double limit = m;
      if (missing > 0 && missing < nxyz) limit = m * nxyz / (nxyz - missing);
      table[t * setup.nvar + v] = std::max(1, static_cast<int>(std::min(limit, 2147483647.0)));
    }
  }
  return table;
}

int simulateRealization(const RealizationSetup &setup, nuvo_image *sim,
                        std::span<const signed char> toSimulate, std::span<const int> path,
                        int baseSeed, const RealizationMaps &maps, FILE *report,
                        nuvo_progressMonitor *pm, nuvo_progressCallback callback) {
  return guardedCall([&] {
    const int nxyz = sim->grid->nxyz;
    std::vector<unsigned char> informed(static_cast<std::size_t>(setup.nvar) * nxyz);
    for (std::size_t k = 0; k < informed.size(); ++k) informed[k] = isMissing(sim->var[k]) ? 0 : 1;
    std::vector<RealizationRun> runs(static_cast<std::size_t>(pathThreads(setup)),
                                     RealizationRun(setup, sim, toSimulate, informed, maps));
    RealizationRun &run = runs[0];
    const std::size_t nentry =
        setup.vectorMode ? nxyz : static_cast<std::size_t>(nxyz) * setup.nvar;
    std::vector<signed char> state(nentry, 0);

    NUVO_TRY(runPath(runs, path, setup.initial, baseSeed, true, state, pm, callback));
    const auto flagged = [&] {
      std::vector<int> entries;
      for (int e : path)
        if (state[e] == kFlagged) entries.push_back(e);
      return entries;
    };
    std::vector<int> again = flagged();
    if (report != nullptr)
      writePathStatistics(report, run.stats(), setup, static_cast<int>(again.size()));

    int base = baseSeed;
    int done = 0;
    for (int p = 1; p <= setup.npostProcessingPathMax && !again.empty(); ++p) {
      base = entrySeed(base, kPostProcessingSeedStep);
      nuvo_randContext ctx;
      NUVOInitRandContext(&ctx);
      seedRandContext(base, &ctx);
      NUVORandomizeListOfInt(static_cast<int>(again.size()), again.data(), &ctx);
      for (int e : again) {
        const int node = setup.vectorMode ? e : e % nxyz;
        for (int v = 0; v < setup.nvar; ++v) {
          const bool target = setup.vectorMode
                                  ? toSimulate[static_cast<long long>(v) * nxyz + e] != 0
                                  : v == e / nxyz;
          if (!target) continue;
          double &value = valueAt(sim, v, node);
          BlockConstraint *b = setup.blockConstraint(v);
          if (b != nullptr && !isMissing(value)) b->clear(node, value);
          value = NUVO_MISSING_VALUE;
          informed[static_cast<std::size_t>(v) * nxyz + node] = 0;
          if (ProbabilityConstraint *c = setup.constraint(v)) c->clear(node);
          if (setup.pattern != nullptr) setup.pattern->clear(v, node);
        }
      }
      NUVO_TRY(runPath(runs, again, setup.postProcessing, base, false, state, pm, callback));
      ++done;
      again = flagged();
      if (report != nullptr) {
        writePostProcessingHeading(report, p, setup.npostProcessingPathMax);
        writePathStatistics(report, run.stats(), setup, static_cast<int>(again.size()));
      }
    }
    if (report != nullptr && setup.npostProcessingPathMax > 0)
      std::fprintf(report, "#post-processing path(s) done: %3d\n", done);
    if (setup.waitTotals != nullptr)
      for (RealizationRun &r : runs) {
        setup.waitTotals->waits += r.waits().waits;
        setup.waitTotals->nanoseconds += r.waits().nanoseconds;
      }
    return checkStop(pm);
  });
}

}  // namespace nuvo
