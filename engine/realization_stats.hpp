// Statistics of the nodes simulated by one path, and their lines in the report.
#pragma once

#include <cstdio>
#include <ctime>
#include <vector>

namespace nuvo {

struct RealizationSetup;

struct TrainingImageStats {
  int nsim = 0;       // nodes simulated with the image
  int nmarginal = 0;  // of these, drawn from the marginal
  int nabove = 0;     // of these, whose best candidate stayed above the threshold
  double errorMin = 0.0, errorMax = 0.0, errorSum = 0.0;  // over the nodes above
  int scanMin = 0, scanMax = 0;                           // over the scanned nodes
  long long scanSum = 0;
};

class RealizationStats {
 public:
  explicit RealizationStats(std::size_t ntrainImage) : perTi_(ntrainImage) {}

  void reset() {
    for (TrainingImageStats &s : perTi_) s = TrainingImageStats{};
    start_ = std::clock();
  }
  void record(int ti, bool marginal, bool above, double error, int iterations);
  // Adds the nodes recorded by `other` (another thread's share of the same path).
  void merge(const RealizationStats &other);

  const std::vector<TrainingImageStats> &perTrainingImage() const { return perTi_; }
  double cpuSeconds() const { return static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC; }

 private:
  std::vector<TrainingImageStats> perTi_;
  std::clock_t start_ = std::clock();
};

// The statistics block written after a path, ending with the flagged count.
void writePathStatistics(FILE *report, const RealizationStats &stats, const RealizationSetup &setup,
                         int nflagged);

// The heading of post-processing path p of pmax.
void writePostProcessingHeading(FILE *report, int p, int pmax);

}  // namespace nuvo
