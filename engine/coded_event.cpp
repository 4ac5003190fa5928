#include "engine/coded_event.hpp"

#include <algorithm>
#include <numeric>

#include "engine/realization.hpp"

namespace nuvo {

static_assert(kCodePadding >= CodedEvent::kGroupBytes - 1, "a group read must stay in the codes");

bool CodedEvent::prepare(const DataEvent &event) {
  return event.nconstraint == 0 && event.nblockTerm == 0 && event.npattern == 0 &&
         prepareVariable(event);
}

bool CodedEvent::prepareVariable(const DataEvent &event) {
  if (event.nvar != 1 || event.kernel[0] != variableKernel(0, true, false, true)) return false;
  const VariableEvent &ev = event.event[0];
  const int n = ev.count;
  tiCode_ = ev.tiCode;
  step_ = ev.uniformWeight * ev.invThreshold;
  error_.resize(static_cast<std::size_t>(n) + 1);
  for (int c = 0; c <= n; ++c)
    error_[static_cast<std::size_t>(c)] = kernel::mismatchError(0.0, c, step_);

  const long long total = std::accumulate(ev.codeCount.begin(), ev.codeCount.end(), 0LL);
  node_.resize(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    const std::int8_t code = ev.valueCode[i];
    const long long misses =
        code < 0 ? total : total - ev.codeCount[static_cast<std::size_t>(code)];
    node_[static_cast<std::size_t>(i)] = {ev.offset[i], code, misses};
  }
  // The nodes by offset, cut into groups of at most kGroupBytes bytes (a node
  // repeated, as no data event has, opens a group of its own and counts twice).
  std::sort(node_.begin(), node_.end(),
            [](const Node &a, const Node &b) { return a.offset < b.offset; });
  built_.clear();
  int last = 0;
  for (const Node &nd : node_) {
    if (built_.empty() || nd.offset - built_.back().group.start >= kGroupBytes ||
        nd.offset == last) {
      built_.emplace_back();
      built_.back().group.start = nd.offset;
    }
    last = nd.offset;
    Group &g = built_.back().group;
    const int at = nd.offset - g.start;
    g.code[at] = nd.code;
    g.one[at] = 1;
    built_.back().misses += nd.misses;
  }
  // Most misses first.
  std::stable_sort(built_.begin(), built_.end(),
                   [](const Built &a, const Built &b) { return a.misses > b.misses; });
  group_.resize(built_.size());
  for (std::size_t k = 0; k < built_.size(); ++k) group_[k] = built_[k].group;
  return true;
}

// DataEvent's running error is 0 when this variable's kernel starts.
void CodedEvent::bound(double best) {
  limit_ = kernel::mismatchesBelow(best, 0.0, step_, size());
}

}  // namespace nuvo
