#include "analysis_report.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <tuple>

#include "quantile.hpp"

namespace nuvo::cli {

namespace {

constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();

std::string lagText(const Measure &m) {
  return m.lag > 0 ? std::to_string(m.lag) : "";
}

void printNumber(std::FILE *stream, double v) {
  if (std::isnan(v))
    std::fprintf(stream, " %11s", "-");
  else
    std::fprintf(stream, " %11.5g", v);
}

void csvRow(std::FILE *stream, const Measure &m, const char *source, double v) {
  if (std::isnan(v)) return;
  std::fprintf(stream, "%s,%s,%s,%s,%.10g\n", m.statistic.c_str(), m.category.c_str(),
               lagText(m).c_str(), source, v);
}

}  // namespace

std::vector<ReportRow> summarise(const std::vector<Measure> &ti,
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
  std::vector<ReportRow> rows;
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

void printReport(std::FILE *stream, const Report &report) {
  std::fprintf(stream, "%-16s %8s %4s %11s %11s %11s %11s %11s\n", "statistic", "category", "lag",
               "ti", "mean", "p05", "p95", "mean-ti");
  for (const ReportRow &row : report.rows) {
    const Measure &m = row.ti;
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
  for (const ReportRow &row : report.rows) {
    csvRow(stream, row.ti, "ti", row.ti.value);
    csvRow(stream, row.ti, "mean", row.mean);
    csvRow(stream, row.ti, "p05", row.p05);
    csvRow(stream, row.ti, "p95", row.p95);
  }
  csvRow(stream, {"js_divergence_3x3", "", 0, 0.0}, "realizations", report.patternDivergence);
}

}  // namespace nuvo::cli
