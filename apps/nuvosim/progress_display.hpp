// What the library's progress monitor reports during a command, shown on stderr:
// warnings as they come and, when stderr is a terminal, a progress bar redrawn in
// place.
#pragma once

#include <chrono>

#include "nuvo_progress.h"

namespace nuvo::cli {

// The progress callback receives only the monitor, so the display that serves it
// is found through a thread-local pointer: a ProgressDisplay makes itself the
// active one from construction to destruction (the library calls the callback on
// the thread that called it). One display is active at a time per thread.
// While a display is active, a first Ctrl-C (SIGINT) or SIGTERM asks the library
// to stop (its operation returns -1000) so that the command can say what it leaves
// behind; a second one ends the program.
class ProgressDisplay {
 public:
  ProgressDisplay(bool showBar, bool showWarnings);
  ~ProgressDisplay();
  ProgressDisplay(const ProgressDisplay &) = delete;
  ProgressDisplay &operator=(const ProgressDisplay &) = delete;

  // The callback to hand to the library with `monitor()`.
  static int callback(nuvo_progressMonitor *pm);
  nuvo_progressMonitor *monitor() { return &monitor_; }

  // Removes the bar from the terminal line, before a message or the summary.
  void clearBar();
  int warningCount() const { return warnings_; }
  // Counts warnings printed by the command itself.
  void addWarnings(int count) { warnings_ += count; }
  // The signal that asked for the stop, or 0.
  static int stopSignal();
  double elapsedSeconds() const;

 private:
  using Clock = std::chrono::steady_clock;

  int report(const nuvo_progressMonitor &pm);
  void drawBar(const nuvo_progressMonitor &pm);

  nuvo_progressMonitor monitor_;
  bool showBar_;
  bool showWarnings_;
  bool barShown_ = false;
  int warnings_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point lastDraw_{};
  ProgressDisplay *previous_;
  void (*previousHandlers_[2])(int);
};

}  // namespace nuvo::cli
