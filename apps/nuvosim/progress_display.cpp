#include "progress_display.hpp"

#include <csignal>
#include <cstdio>
#include <string>

#include "nuvo_error.h"

namespace nuvo::cli {

namespace {

constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
constexpr int kBarWidth = 20;
constexpr int kLineWidth = 79;
constexpr int kStopped = -1000;

thread_local ProgressDisplay *activeDisplay = nullptr;

// The signals that stop a command cleanly.
constexpr int kStopSignals[2] = {SIGINT, SIGTERM};

// The first stop signal while a display is active; a second one ends the program.
volatile std::sig_atomic_t interrupted = 0;

extern "C" void onInterrupt(int number) {
  interrupted = number;
  for (const int s : kStopSignals) std::signal(s, SIG_DFL);
}

// "m:ss", or "h:mm:ss" from one hour on.
std::string clockText(double seconds) {
  const long total = seconds > 0.0 ? static_cast<long>(seconds + 0.5) : 0;
  char text[32];
  if (total >= 3600) {
    std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", total / 3600, total / 60 % 60, total % 60);
  } else {
    std::snprintf(text, sizeof text, "%ld:%02ld", total / 60, total % 60);
  }
  return text;
}

}  // namespace

ProgressDisplay::ProgressDisplay(bool showBar, bool showWarnings)
    : showBar_(showBar), showWarnings_(showWarnings), previous_(activeDisplay) {
  NUVOInitProgressMonitor(&monitor_);
  activeDisplay = this;
  interrupted = 0;
  for (int k = 0; k < 2; ++k) {
    previousHandlers_[k] = std::signal(kStopSignals[k], onInterrupt);
    // A program run in the background keeps ignoring what it ignored.
    if (previousHandlers_[k] == SIG_IGN) std::signal(kStopSignals[k], SIG_IGN);
  }
}

ProgressDisplay::~ProgressDisplay() {
  for (int k = 0; k < 2; ++k) {
    std::signal(kStopSignals[k], previousHandlers_[k] == SIG_ERR ? SIG_DFL : previousHandlers_[k]);
  }
  clearBar();
  activeDisplay = previous_;
}

int ProgressDisplay::callback(nuvo_progressMonitor *pm) {
  if (interrupted) pm->stopFlag = 1;
  if (pm->stopFlag) return kStopped;
  return activeDisplay != nullptr ? activeDisplay->report(*pm) : 0;
}

int ProgressDisplay::stopSignal() {
  return interrupted;
}

double ProgressDisplay::elapsedSeconds() const {
  return std::chrono::duration<double>(Clock::now() - start_).count();
}

void ProgressDisplay::clearBar() {
  if (!barShown_) return;
  std::fprintf(stderr, "\r%*s\r", kLineWidth, "");
  std::fflush(stderr);
  barShown_ = false;
}

int ProgressDisplay::report(const nuvo_progressMonitor &pm) {
  if (pm.warningNumber > 0) {
    ++warnings_;
    if (showWarnings_) {
      clearBar();
      std::string text = NUVOGetWarningMessage(pm.warningNumber);
      while (!text.empty() && text.back() == '\n') text.pop_back();
      std::fprintf(stderr, "nuvosim: %s\n", text.c_str());
    }
    return 0;
  }
  if (showBar_ && pm.nrealization > 0) {
    const Clock::time_point now = Clock::now();
    if (now - lastDraw_ >= kRedrawInterval || pm.progressTotal >= 100) {
      lastDraw_ = now;
      drawBar(pm);
    }
  }
  return 0;
}

// "realization 2 of 3  [#########.....]  64 %  elapsed 0:12  remaining 0:07"
void ProgressDisplay::drawBar(const nuvo_progressMonitor &pm) {
  const int total = pm.progressTotal < 0 ? 0 : (pm.progressTotal > 100 ? 100 : pm.progressTotal);
  const double elapsed = elapsedSeconds();
  std::string bar(kBarWidth, '.');
  bar.replace(0, static_cast<std::size_t>(kBarWidth * total / 100), kBarWidth * total / 100, '#');
  const std::string remaining =
      total > 0 ? clockText(elapsed * (100 - total) / total) : std::string("?");
  char line[kLineWidth + 1];
  std::snprintf(line, sizeof line, "realization %d of %d  [%s] %3d %%  elapsed %s  remaining %s",
                pm.ireal + 1, pm.nrealization, bar.c_str(), total, clockText(elapsed).c_str(),
                remaining.c_str());
  std::fprintf(stderr, "\r%-*s", kLineWidth, line);
  std::fflush(stderr);
  barShown_ = true;
}

}  // namespace nuvo::cli
