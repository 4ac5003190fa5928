// How well realizations reproduce the statistics of their training image, shared
// by `nuvosim analyze` and the Python package: each measure of the training image
// beside the mean and the 5-95 % envelope of the realizations, and for a
// categorical variable the divergence of the 3 x 3 patterns.
#pragma once

#include <optional>
#include <vector>

#include "image_measures.hpp"
#include "pattern_histogram.hpp"

namespace nuvo::runfile {

struct AnalysisRow {
  Measure ti;
  // Over the realizations where the statistic is defined (NaN when it is nowhere):
  // mean, and the 5 % and 95 % quantiles interpolated between ranks.
  double mean, p05, p95;
};

struct AnalysisReport {
  std::vector<AnalysisRow> rows;
  double patternDivergence;  // Jensen-Shannon, bits; NaN for continuous variables
};

// Measures the training image once, then each realization as it is added (one
// realization needs to be in memory at a time).
class Analysis {
 public:
  // Measures variable iv of the training image up to lag maxLag along each axis;
  // the variable is categorical when it holds at most kMaxCategories whole values.
  // Returns 0 or a library code.
  int start(const nuvo_image &ti, int iv, int maxLag);

  // Measures variable iv of one realization. Returns 0 or a library code.
  int add(const nuvo_image &realization, int iv);

  bool categorical() const { return !plan_.categories.empty(); }
  const std::vector<double> &categories() const { return plan_.categories; }
  std::size_t realizationCount() const { return realizations_.size(); }

  AnalysisReport report() const;

 private:
  MeasurePlan plan_{{}, 0};
  std::vector<Measure> ti_;
  std::vector<std::vector<Measure>> realizations_;
  std::optional<PatternHistogram> tiPatterns_, realizationPatterns_;
};

}  // namespace nuvo::runfile
