#include "analysis_report.hpp"

#include <cmath>
#include <string>

namespace nuvo::cli {

namespace {

std::string lagText(const runfile::Measure &m) {
  return m.lag > 0 ? std::to_string(m.lag) : "";
}

void printNumber(std::FILE *stream, double v) {
  if (std::isnan(v))
    std::fprintf(stream, " %11s", "-");
  else
    std::fprintf(stream, " %11.5g", v);
}

void csvRow(std::FILE *stream, const runfile::Measure &m, const char *source, double v) {
  if (std::isnan(v)) return;
  std::fprintf(stream, "%s,%s,%s,%s,%.10g\n", m.statistic.c_str(), m.category.c_str(),
               lagText(m).c_str(), source, v);
}

}  // namespace

void printReport(std::FILE *stream, const Report &report) {
  std::fprintf(stream, "%-16s %8s %4s %11s %11s %11s %11s %11s\n", "statistic", "category", "lag",
               "ti", "mean", "p05", "p95", "mean-ti");
  for (const runfile::AnalysisRow &row : report.rows) {
    const runfile::Measure &m = row.ti;
    std::fprintf(stream, "%-16s %8s %4s", m.statistic.c_str(),
                 m.category.empty() ? "-" : m.category.c_str(),
                 m.lag > 0 ? lagText(m).c_str() : "-");
    for (double v : {m.value, row.mean, row.p05, row.p95, row.mean - m.value})
      printNumber(stream, v);
    std::fputc('\n', stream);
  }
  if (!std::isnan(report.patternDivergence))
    std::fprintf(stream, "Jensen-Shannon divergence of the 3 x 3 patterns: %.6f bits\n",
                 report.patternDivergence);
}

void writeReportCsv(std::FILE *stream, const Report &report) {
  std::fprintf(stream, "statistic,category,lag,source,value\n");
  for (const runfile::AnalysisRow &row : report.rows) {
    csvRow(stream, row.ti, "ti", row.ti.value);
    csvRow(stream, row.ti, "mean", row.mean);
    csvRow(stream, row.ti, "p05", row.p05);
    csvRow(stream, row.ti, "p95", row.p95);
  }
  csvRow(stream, {"js_divergence_3x3", "", 0, 0.0}, "realizations", report.patternDivergence);
}

}  // namespace nuvo::cli
