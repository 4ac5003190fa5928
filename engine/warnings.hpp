// Warnings of the simulation preparation, reported through the caller's monitor.
#pragma once

#include "foundation/check.hpp"

namespace nuvo {

inline constexpr int kWarningCategoricalDatumNotInTraining = 1;
inline constexpr int kWarningContinuousDatumBeyondTraining = 2;
inline constexpr int kWarningDataRemovedByMask = 40;
inline constexpr int kWarningPointSetConflict = 41;
inline constexpr int kWarningPointSetOutside = 42;
inline constexpr int kWarningPointSetUnknownVariable = 43;
inline constexpr int kWarningDataImageUnknownVariable = 44;
inline constexpr int kWarningDataImageConflict = 45;

// Reports warning `code` when `happened`; with no monitor there is no one to tell.
inline int warnIf(bool happened, nuvo_progressMonitor *pm, nuvo_progressCallback callback,
                  int code) {
  return happened && pm != nullptr ? reportWarning(pm, callback, code) : 0;
}

}  // namespace nuvo
