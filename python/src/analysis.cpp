#include "analysis.hpp"

#include <stdexcept>
#include <string>

#include "image_analysis.hpp"
#include "library_error.hpp"
#include "records.hpp"

namespace nuvo::python {

namespace {

// The array as an image on a unit grid, its variables named V0, V1, ...
void arrayImage(const Values &values, int variable, nuvo_image &image) {
  if (values.ndim() != 4 || variable < 0 || variable >= values.shape(0))
    throw std::invalid_argument("an image of shape (nvar, nz, ny, nx) holding variable " +
                                std::to_string(variable) + " is needed");
  std::vector<std::string> names;
  for (py::ssize_t v = 0; v < values.shape(0); ++v) names.push_back("V" + std::to_string(v));
  buildImage(image, values, {1.0, 1.0, 1.0}, {0.0, 0.0, 0.0}, names);
}

}  // namespace

py::tuple analyze(const Values &ti, const std::vector<Values> &realizations, int variable,
                  int lags) {
  runfile::Analysis analysis;
  Image tiImage;
  arrayImage(ti, variable, *tiImage.get());
  // The measures work on the library's images only: other Python threads may run.
  const auto withoutGil = [](auto &&measure) {
    const py::gil_scoped_release released;
    return measure();
  };
  if (const int rc = withoutGil([&] { return analysis.start(*tiImage.get(), variable, lags); });
      rc != 0)
    throw LibraryError(rc, "training image");
  for (std::size_t r = 0; r < realizations.size(); ++r) {
    Image image;
    arrayImage(realizations[r], variable, *image.get());
    if (const int rc = withoutGil([&] { return analysis.add(*image.get(), variable); }); rc != 0)
      throw LibraryError(rc, "realization " + std::to_string(r));
  }
  const runfile::AnalysisReport report = analysis.report();
  py::list rows;
  for (const runfile::AnalysisRow &row : report.rows)
    rows.append(py::make_tuple(row.ti.statistic, row.ti.category, row.ti.lag, row.ti.value,
                               row.mean, row.p05, row.p95));
  return py::make_tuple(analysis.categorical(), rows, report.patternDivergence);
}

}  // namespace nuvo::python
