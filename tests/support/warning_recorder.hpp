// A progress monitor whose callback writes down every warning it is called with,
// answers with `answer`, and raises the stop flag after its call when `stopAfter`
// is set. The monitor is the first member, so the callback finds the recorder
// from the pointer it is given.
#pragma once

#include <array>
#include <type_traits>
#include <vector>

#include "nuvo_progress.h"

namespace nuvo::test {

struct WarningRecorder {
  nuvo_progressMonitor pm{};
  std::array<int, 16> seen{};
  int nseen = 0;
  int answer = 0;
  bool stopAfter = false;

  static int callback(nuvo_progressMonitor *pm) {
    auto *self = reinterpret_cast<WarningRecorder *>(pm);
    self->seen.at(self->nseen++) = pm->warningNumber;
    if (self->stopAfter) pm->stopFlag = 1;
    return self->answer;
  }
  std::vector<int> warnings() const { return {seen.begin(), seen.begin() + nseen}; }
};
static_assert(std::is_standard_layout_v<WarningRecorder>);

}  // namespace nuvo::test
