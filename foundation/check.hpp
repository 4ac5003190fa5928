// Internal helpers for the library's error protocol.
//
// Every operation returns 0 or the negative code of the first failed check.
// NUVO_FAIL_IF and NUVO_TRY keep that "first failure wins" style short;
// guardedCall keeps C++ exceptions from ever crossing the C interface; the
// warning helpers implement the one protocol by which every routine reports a
// warning through the caller's progress monitor.
#pragma once

#include <new>

#include "nuvo_progress.h"

namespace nuvo {

inline constexpr int kAborted = -1000;
inline constexpr int kAllocationFailed = -1;

// Returns `code` (a negative error) from the enclosing function when `cond` holds.
#define NUVO_FAIL_IF(cond, code) \
  do {                           \
    if (cond) return (code);     \
  } while (0)

// Forwards a non-zero result of `expr` from the enclosing function.
#define NUVO_TRY(expr)                                         \
  do {                                                         \
    if (int nuvo_rc_ = (expr); nuvo_rc_ != 0) return nuvo_rc_; \
  } while (0)

// Runs `body` (returning an int code) and turns an escaping exception into -1:
// the library throws nothing itself, so the only exception that can reach the C
// boundary is a failed allocation inside the standard library.
template <typename Body>
int guardedCall(Body &&body) noexcept {
  try {
    return body();
  } catch (...) {
    return kAllocationFailed;
  }
}

// Reports a warning: stores its code in the monitor, calls the callback (if any),
// passes a non-zero result on, returns -1000 when a stop was asked for, and
// clears the code again. Returns 0 when work may go on.
int reportWarning(nuvo_progressMonitor *pm, nuvo_progressCallback callback, int warningCode);

// Calls the callback with the progress already stored in the monitor; a non-zero
// result is passed on, and a stop request gives -1000.
int reportProgress(nuvo_progressMonitor *pm, nuvo_progressCallback callback);

// -1000 when the monitor asks for a stop, else 0: tested between steps of long work.
inline int checkStop(const nuvo_progressMonitor *pm) {
  return (pm != nullptr && pm->stopFlag) ? kAborted : 0;
}

}  // namespace nuvo
