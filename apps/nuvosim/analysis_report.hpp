// The result of `nuvosim analyze` printed as a table or written as a tidy CSV file.
#pragma once

#include <cstdio>

#include "image_analysis.hpp"

namespace nuvo::cli {

using Report = runfile::AnalysisReport;

// The table printed on standard output.
void printReport(std::FILE *stream, const Report &report);

// Header "statistic,category,lag,source,value", then one row per statistic, lag
// and source (ti, mean, p05, p95; the pattern divergence has the source
// realizations). Undefined values are left out; lag is empty where there is none.
void writeReportCsv(std::FILE *stream, const Report &report);

}  // namespace nuvo::cli
