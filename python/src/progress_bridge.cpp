#include "progress_bridge.hpp"

#include <string>
#include <type_traits>

#include "nuvo_error.h"

namespace nuvo::python {

ProgressBridge::ProgressBridge(py::object progress)
    : progress_(std::move(progress)),
      warn_(py::module_::import("warnings").attr("warn")),
      warningType_(py::module_::import("nuvosim.errors").attr("NuvoWarning")) {
  NUVOInitProgressMonitor(&slot_.monitor);
  slot_.bridge = this;
}

int ProgressBridge::callback(nuvo_progressMonitor *pm) {
  static_assert(std::is_standard_layout_v<Slot>);
  ProgressBridge &self = *reinterpret_cast<Slot *>(pm)->bridge;
  const py::gil_scoped_acquire gil;
  if (self.pending_) return -NUVO_ABORTED;
  try {
    self.report(*pm);
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
  } catch (py::error_already_set &error) {
    self.pending_.emplace(std::move(error));
    return -NUVO_ABORTED;
  }
  return 0;
}

void ProgressBridge::report(const nuvo_progressMonitor &pm) {
  if (pm.warningNumber > 0) {
    std::string text = NUVOGetWarningMessage(pm.warningNumber);
    while (!text.empty() && text.back() == '\n') text.pop_back();
    warn_(text, warningType_, 2);
    return;
  }
  if (progress_.is_none() || pm.nrealization <= 0 || pm.progressTotal == lastTotal_) return;
  lastTotal_ = pm.progressTotal;
  progress_(pm.ireal, pm.nrealization, pm.progress, pm.progressTotal);
}

void ProgressBridge::raisePending() {
  if (!pending_) return;
  py::error_already_set error = std::move(*pending_);
  pending_.reset();
  throw error;
}

}  // namespace nuvo::python
