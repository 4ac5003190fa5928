#include "engine/coded_event.hpp"

#include <algorithm>

namespace nuvo {

bool CodedEvent::prepare(const DataEvent &event) {
  if (event.nvar != 1 || event.nconstraint != 0 || event.nblockTerm != 0 || event.npattern != 0 ||
      event.kernel[0] != variableKernel(0, true, false, true))
    return false;
  const VariableEvent &ev = event.event[0];
  const int n = ev.count;
  tiCode_ = ev.tiCode;
  step_ = ev.uniformWeight * ev.invThreshold;
  error_.resize(static_cast<std::size_t>(n) + 1);
  for (int c = 0; c <= n; ++c)
    error_[static_cast<std::size_t>(c)] = kernel::mismatchError(0.0, c, step_);

  node_.resize(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    const std::int8_t code = ev.valueCode[i];
    node_[static_cast<std::size_t>(i)] = {
        ev.offset[i], code, code < 0 ? -1 : ev.codeCount[static_cast<std::size_t>(code)]};
  }
  std::stable_sort(node_.begin(), node_.end(),
                   [](const Node &a, const Node &b) { return a.holders < b.holders; });
  offset_.resize(node_.size());
  code_.resize(node_.size());
  for (std::size_t k = 0; k < node_.size(); ++k) {
    offset_[k] = node_[k].offset;
    code_[k] = node_[k].code;
  }
  return true;
}

// DataEvent's running error is 0 when this variable's kernel starts.
void CodedEvent::bound(double best) {
  limit_ = kernel::allowedMismatches(best, 0.0, step_, static_cast<int>(code_.size()));
  while (limit_ >= 0 && !(error_[static_cast<std::size_t>(limit_)] < best)) --limit_;
}

}  // namespace nuvo
