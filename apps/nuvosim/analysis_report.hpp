// The result of `nuvosim analyze`: each statistic of the training image beside
// the mean and the 5-95 % envelope of the realizations, printed as a table or
// written as a tidy CSV file.
#pragma once

#include <cstdio>
#include <vector>

#include "image_measures.hpp"

namespace nuvo::cli {

struct ReportRow {
  Measure ti;
  // Over the realizations where the statistic is defined (NaN when it is nowhere):
  // mean, and the 5 % and 95 % quantiles interpolated between ranks.
  double mean, p05, p95;
};

struct Report {
  std::vector<ReportRow> rows;
  double patternDivergence;  // Jensen-Shannon, bits; NaN for continuous variables
};

// One row per measure of the training image, matched by statistic, category and
// lag with the measures of each realization.
std::vector<ReportRow> summarise(const std::vector<Measure> &ti,
                                 const std::vector<std::vector<Measure>> &realizations);

// The table printed on standard output.
void printReport(std::FILE *stream, const Report &report);

// Header "statistic,category,lag,source,value", then one row per statistic, lag
// and source (ti, mean, p05, p95; the pattern divergence has the source
// realizations). Undefined values are left out; lag is empty where there is none.
void writeReportCsv(std::FILE *stream, const Report &report);

}  // namespace nuvo::cli
