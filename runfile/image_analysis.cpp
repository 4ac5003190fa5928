#include "image_analysis.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <tuple>

#include "quantile.hpp"

namespace nuvo::runfile {

namespace {

constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();

// One row per measure of the training image, matched by statistic, category and
// lag with the measures of each realization.
std::vector<AnalysisRow> summarise(const std::vector<Measure> &ti,
                                   const std::vector<std::vector<Measure>> &realizations) {
  std::map<std::tuple<std::string, std::string, int>, std::size_t> rowOf;
  for (std::size_t r = 0; r < ti.size(); ++r)
    rowOf[{ti[r].statistic, ti[r].category, ti[r].lag}] = r;
  std::vector<std::vector<double>> values(ti.size());
  for (const auto &measures : realizations)
    for (const Measure &m : measures) {
      const auto row = rowOf.find({m.statistic, m.category, m.lag});
      if (row != rowOf.end() && !std::isnan(m.value)) values[row->second].push_back(m.value);
    }
  std::vector<AnalysisRow> rows;
  for (std::size_t r = 0; r < ti.size(); ++r) {
    std::vector<double> &v = values[r];
    if (v.empty()) {
      rows.push_back({ti[r], kUndefined, kUndefined, kUndefined});
      continue;
    }
    std::sort(v.begin(), v.end());
    double sum = 0.0;
    for (double x : v) sum += x;
    rows.push_back(
        {ti[r], sum / static_cast<double>(v.size()), quantile(v, 0.05), quantile(v, 0.95)});
  }
  return rows;
}

}  // namespace

int Analysis::start(const nuvo_image &ti, int iv, int maxLag) {
  plan_ = {{}, maxLag};
  ti_.clear();
  realizations_.clear();
  if (const int rc = findCategories(ti, iv, &plan_.categories); rc != 0) return rc;
  tiPatterns_.emplace(plan_.categories);
  realizationPatterns_.emplace(plan_.categories);
  if (const int rc = measureImage(ti, iv, plan_, &ti_); rc != 0) return rc;
  if (categorical()) tiPatterns_->add(ti, iv);
  return 0;
}

int Analysis::add(const nuvo_image &realization, int iv) {
  std::vector<Measure> &measures = realizations_.emplace_back();
  if (const int rc = measureImage(realization, iv, plan_, &measures); rc != 0) return rc;
  if (categorical()) realizationPatterns_->add(realization, iv);
  return 0;
}

AnalysisReport Analysis::report() const {
  return {summarise(ti_, realizations_),
          categorical() ? PatternHistogram::jensenShannonBits(*tiPatterns_, *realizationPatterns_)
                        : kUndefined};
}

}  // namespace nuvo::runfile
