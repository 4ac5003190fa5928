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

// A monitor for whole simulations: its callback keeps the warnings in order and
// passes over the progress calls (warning number 0), however many there are.
struct WarningList {
  nuvo_progressMonitor pm{};
  std::vector<int> seen;

  static int callback(nuvo_progressMonitor *pm) {
    if (pm->warningNumber != 0)
      reinterpret_cast<WarningList *>(pm)->seen.push_back(pm->warningNumber);
    return 0;
  }
};

}  // namespace nuvo::test
