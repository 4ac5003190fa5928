// The library's progress monitor seen from Python, while the library works
// without the GIL: each call of the callback takes the GIL, passes a warning to
// Python's warnings module (category nuvosim.NuvoWarning) or a change of the
// overall percentage to the caller's progress function, and runs Python's signal
// handlers, so that Ctrl-C (or an exception of the progress function, or a
// warning turned into an error) stops the library at its next report. The Python
// exception is kept and raised again once the library has returned.
#pragma once

#include <pybind11/pybind11.h>

#include <optional>

#include "nuvo_progress.h"

namespace nuvo::python {

namespace py = pybind11;

class ProgressBridge {
 public:
  // `progress` is None or a callable of (realization, nrealization, percent of
  // the realization, percent of the job). Construct and destroy with the GIL held.
  explicit ProgressBridge(py::object progress);
  ProgressBridge(const ProgressBridge &) = delete;
  ProgressBridge &operator=(const ProgressBridge &) = delete;

  nuvo_progressMonitor *monitor() { return &slot_.monitor; }
  static int callback(nuvo_progressMonitor *pm);

  // Raises the Python exception that stopped the library, if any (GIL held).
  void raisePending();

 private:
  // The monitor handed to the library comes first, so the callback finds the
  // bridge from the monitor's address.
  struct Slot {
    nuvo_progressMonitor monitor;
    ProgressBridge *bridge;
  };

  void report(const nuvo_progressMonitor &pm);

  Slot slot_;
  py::object progress_;
  py::object warn_;
  py::object warningType_;
  int lastTotal_ = -1;
  std::optional<py::error_already_set> pending_;
};

}  // namespace nuvo::python
