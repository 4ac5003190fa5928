#include "engine/constrained_event.hpp"

namespace nuvo {

bool ConstrainedCodedEvent::prepare(const DataEvent &event, const std::int8_t *ownCode,
                                    std::span<const double> category,
                                    std::span<const std::int16_t> categoryClass) {
  if (ownCode == nullptr || event.nconstraint > 1 || event.nblockTerm > 1 || event.npattern > 1 ||
      (event.nconstraint == 1 && categoryClass.size() != category.size()))
    return false;
  weighted_ = !coded_.prepareVariable(event);
  if (weighted_ && !weightedEvent_.prepareVariable(event)) return false;
  event_ = &event;
  ownCode_ = ownCode;
  floor = event.floor;
  labelled_ = event.npattern == 1;
  if (labelled_) pattern_ = event.pattern[0];
  stride_ = labelled_ ? static_cast<std::size_t>(pattern_.count) + 1 : 1;
  byCode_ = event.nconstraint + event.nblockTerm > 0;
  const std::size_t ncode = byCode_ ? category.size() : 1;
  base_.clear();
  for (std::size_t code = 0; code < ncode; ++code) {
    double e = 0.0;
    if (event.nconstraint == 1) e += event.constraint[0].penalty[categoryClass[code]];
    if (event.nblockTerm == 1) e += event.blockTerm[0].of(category[code]);
    for (std::size_t broken = 0; broken < stride_; ++broken)
      base_.push_back(labelled_ ? e + pattern_.errorOf(static_cast<int>(broken)) : e);
  }
  limit_.resize(ncode);
  return true;
}

void ConstrainedCodedEvent::bound(double best) {
  const double step = coded_.step();
  for (std::size_t code = 0; code < limit_.size(); ++code) {
    // No broken label: the least base error of the code.
    const double e = base_[code * stride_];
    limit_[code] = weighted_ ? weightedEvent_.levelLimit(best, e)
                             : kernel::mismatchesBelow(best, e, step, coded_.size());
  }
}

}  // namespace nuvo
