#include "engine/coded_event.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "engine/realization.hpp"

namespace nuvo {

static_assert(kCodePadding >= CodeGroups::kGroupBytes - 1, "a group read must stay in the codes");
static_assert(WeightedCodedEvent::kWeightLevels * CodeGroups::kFirst <= 255,
              "the first groups' levels must add up in a byte");

void CodeGroups::list(const VariableEvent &ev, const std::vector<int> &level) {
  const int n = ev.count;
  tiCode_ = ev.tiCode;
  const long long total = std::accumulate(ev.codeCount.begin(), ev.codeCount.end(), 0LL);
  node_.resize(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    const std::int8_t code = ev.valueCode[i];
    const long long misses =
        code < 0 ? total : total - ev.codeCount[static_cast<std::size_t>(code)];
    const int q = level[static_cast<std::size_t>(i)];
    node_[static_cast<std::size_t>(i)] = {ev.offset[i], static_cast<std::uint8_t>(code), q,
                                          misses * q};
  }
  std::sort(node_.begin(), node_.end(),
            [](const Node &a, const Node &b) { return a.offset < b.offset; });
}

// The listed nodes cut into groups of at most kGroupBytes bytes (a node
// repeated, as no data event has, opens a group of its own and counts twice).
void CodeGroups::group() {
  built_.clear();
  int last = 0;
  for (const Node &nd : node_) {
    if (built_.empty() || nd.offset - built_.back().group.start >= kGroupBytes ||
        nd.offset == last) {
      built_.emplace_back();
      built_.back().group.start = nd.offset;
      built_.back().rank = static_cast<int>(built_.size());
    }
    last = nd.offset;
    Group &g = built_.back().group;
    const int at = nd.offset - g.start;
    g.code[at] = nd.code;
    g.level[at] = static_cast<std::uint8_t>(nd.level);
    built_.back().cost += nd.cost;
  }
  // Most costly first, equal costs in offset order: the order of a stable sort,
  // without the buffer that std::stable_sort allocates at every data event.
  std::sort(built_.begin(), built_.end(), [](const Built &a, const Built &b) {
    return a.cost != b.cost ? a.cost > b.cost : a.rank < b.rank;
  });
  group_.assign(std::max(built_.size(), kFirst), Group{});
  for (std::size_t k = 0; k < built_.size(); ++k) group_[k] = built_[k].group;
}

bool CodedEvent::prepare(const DataEvent &event, bool byteGroups) {
  return event.termless() && prepareVariable(event, byteGroups);
}

bool CodedEvent::prepareVariable(const DataEvent &event, bool byteGroups) {
  if (event.nvar != 1 || event.kernel[0] != variableKernel(0, true, false, true)) return false;
  const VariableEvent &ev = event.event[0];
  const int n = ev.count;
  step_ = ev.uniformWeight * ev.invThreshold;
  error_.resize(static_cast<std::size_t>(n) + 1);
  for (int c = 0; c <= n; ++c)
    error_[static_cast<std::size_t>(c)] = kernel::mismatchError(0.0, c, step_);
  ones_.assign(static_cast<std::size_t>(n), 1);
  groups_.list(ev, ones_);
  if (byteGroups) groups_.group();
  return true;
}

// DataEvent's running error is 0 when this variable's kernel starts.
void CodedEvent::bound(double best) {
  limit_ = kernel::mismatchesBelow(best, 0.0, step_, size());
}

bool WeightedCodedEvent::prepare(const DataEvent &event) {
  return event.termless() && prepareVariable(event);
}

bool WeightedCodedEvent::prepareVariable(const DataEvent &event) {
  kernel_ = variableKernel(0, false, false, true);
  if (event.nvar != 1 || event.kernel[0] != kernel_) return false;
  const VariableEvent &ev = event.event[0];
  event_ = &ev;
  double largest = 0.0, sum = 0.0;
  for (int i = 0; i < ev.count; ++i) {
    const double term = ev.weight[i] * ev.invThreshold;
    largest = std::max(largest, term);
    sum += term;
  }
  unit_ = largest / kWeightLevels;
  termSum_ = sum;
  level_.resize(static_cast<std::size_t>(ev.count));
  for (int i = 0; i < ev.count; ++i) {
    const double q =
        unit_ > 0.0 ? std::floor(ev.weight[i] * ev.invThreshold / unit_ * (1.0 - 1e-9)) : 0.0;
    level_[static_cast<std::size_t>(i)] = static_cast<int>(std::clamp(q, 0.0, 1.0 * kWeightLevels));
  }
  groups_.list(ev, level_);
  groups_.group();
  return true;
}

// A candidate whose sum of levels exceeds the limit has terms adding up to more
// than best + 1 - e + margin / 2 in exact arithmetic, so an error above best: the
// margin, 2e-9 of the magnitudes the sums reach, is far above their rounding.
int WeightedCodedEvent::levelLimit(double best, double e) const {
  constexpr double kUnbounded = 1 << 30;
  if (e > best) return -1;
  if (unit_ <= 0.0) return static_cast<int>(kUnbounded);
  const double margin = 2e-9 * (1.0 + termSum_ + std::fabs(best) + e);
  const double levels = std::floor((best + 1.0 - e + margin) / unit_);
  return static_cast<int>(std::min(levels, kUnbounded));
}

}  // namespace nuvo
