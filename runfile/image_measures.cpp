#include "image_measures.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>

#include "nuvo_memory.h"
#include "nuvo_text.h"
#include "nuvo_variogram.h"
#include "quantile.hpp"
#include "records.hpp"

namespace nuvo::runfile {

namespace {

constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();
constexpr const char *kAxisName[3] = {"x", "y", "z"};

using LagMap = int (*)(const nuvo_image *, nuvo_image *, int, int, int, int, int, int, int, int,
                       int, int, signed char);

std::string categoryName(double category) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f", category);
  return text;
}

// The values of `function` at lags 1 to maxLag (cut to the grid) along each axis,
// as measures "<name>_x", "<name>_y", "<name>_z".
int measureAlongAxes(const nuvo_image &image, int iv, int maxLag, LagMap function, const char *name,
                     const std::string &category, std::vector<Measure> *out) {
  const nuvo_grid &g = *image.grid;
  const int size[3] = {g.nx, g.ny, g.nz};
  for (int axis = 0; axis < 3; ++axis) {
    const int last = std::min(maxLag, size[axis] - 1);
    if (last < 1) continue;
    int box[3][2] = {{0, 0}, {0, 0}, {0, 0}};
    box[axis][0] = 1;
    box[axis][1] = last;
    Image map;
    if (const int rc = function(&image, map.get(), iv, box[0][0], box[0][1], 1, box[1][0],
                                box[1][1], 1, box[2][0], box[2][1], 1, 0);
        rc != 0)
      return rc;
    const std::string statistic = std::string(name) + "_" + kAxisName[axis];
    for (int k = 0; k < last; ++k) {
      const double v = map->var[k];
      out->push_back({statistic, category, k + 1, v == NUVO_MISSING_VALUE ? kUndefined : v});
    }
  }
  return 0;
}

// An image of one indicator variable per category: 1 where variable iv holds the
// category, 0 where it holds another value, missing where it is missing.
int makeIndicators(const nuvo_image &image, int iv, const std::vector<double> &categories,
                   nuvo_image *indicators) {
  const int n = image.grid->nxyz, ncat = static_cast<int>(categories.size());
  if (const int rc = NUVOMallocImage(indicators, n, ncat); rc != 0) return rc;
  *indicators->grid = *image.grid;
  indicators->nvar = ncat;
  indicators->nxyzv = n * ncat;
  const double *v = image.var + static_cast<long long>(iv) * n;
  for (int k = 0; k < ncat; ++k) {
    std::snprintf(indicators->varName[k], NUVO_VAR_NAME_MAX + 1, "category%d", k);
    double *ind = indicators->var + static_cast<long long>(k) * n;
    for (int i = 0; i < n; ++i)
      ind[i] = v[i] == NUVO_MISSING_VALUE ? NUVO_MISSING_VALUE : v[i] == categories[k];
  }
  return 0;
}

// The share of the informed nodes that hold `category` while every informed face
// neighbour (at least one) holds another value: the single-node specks that a
// simulation adds where its patterns do not fit.
double isolatedShare(const nuvo_image &image, int iv, double category) {
  const nuvo_grid &g = *image.grid;
  const double *v = image.var + static_cast<long long>(iv) * g.nxyz;
  const auto at = [&](int x, int y, int z) { return v[x + g.nx * y + g.nxy * z]; };
  long long informed = 0, isolated = 0;
  for (int z = 0; z < g.nz; ++z)
    for (int y = 0; y < g.ny; ++y)
      for (int x = 0; x < g.nx; ++x) {
        const double c = at(x, y, z);
        if (c == NUVO_MISSING_VALUE) continue;
        ++informed;
        if (c != category) continue;
        const double face[6] = {
            x > 0 ? at(x - 1, y, z) : NUVO_MISSING_VALUE,
            x + 1 < g.nx ? at(x + 1, y, z) : NUVO_MISSING_VALUE,
            y > 0 ? at(x, y - 1, z) : NUVO_MISSING_VALUE,
            y + 1 < g.ny ? at(x, y + 1, z) : NUVO_MISSING_VALUE,
            z > 0 ? at(x, y, z - 1) : NUVO_MISSING_VALUE,
            z + 1 < g.nz ? at(x, y, z + 1) : NUVO_MISSING_VALUE};
        int neighbours = 0, same = 0;
        for (double f : face) {
          neighbours += f != NUVO_MISSING_VALUE;
          same += f == c;
        }
        isolated += neighbours > 0 && same == 0;
      }
  return informed == 0 ? kUndefined : static_cast<double>(isolated) / informed;
}

int measureCategorical(const nuvo_image &image, int iv, const MeasurePlan &plan,
                       std::vector<Measure> *out) {
  Image indicators;
  if (const int rc = makeIndicators(image, iv, plan.categories, indicators.get()); rc != 0)
    return rc;
  for (int k = 0; k < indicators->nvar; ++k) {
    const std::string category = categoryName(plan.categories[k]);
    double proportion;
    if (const int rc = NUVOGetImageOneVarValueMean(indicators.get(), k, &proportion); rc != 0)
      return rc;
    out->push_back(
        {"proportion", category, 0, proportion == NUVO_MISSING_VALUE ? kUndefined : proportion});
  }
  for (double category : plan.categories)
    out->push_back({"isolated", categoryName(category), 0, isolatedShare(image, iv, category)});
  for (int k = 0; k < indicators->nvar; ++k) {
    const std::string category = categoryName(plan.categories[k]);
    if (const int rc = measureAlongAxes(*indicators.get(), k, plan.maxLag, NUVOImageVariogram,
                                        "variogram", category, out);
        rc != 0)
      return rc;
    if (const int rc =
            measureAlongAxes(*indicators.get(), k, plan.maxLag, NUVOImageConnectivityFunction0,
                             "connectivity", category, out);
        rc != 0)
      return rc;
  }
  return 0;
}

int measureContinuous(const nuvo_image &image, int iv, const MeasurePlan &plan,
                      std::vector<Measure> *out) {
  const int n = image.grid->nxyz;
  const double *v = image.var + static_cast<long long>(iv) * n;
  std::vector<double> values;
  std::copy_if(v, v + n, std::back_inserter(values),
               [](double x) { return x != NUVO_MISSING_VALUE; });
  std::sort(values.begin(), values.end());
  double mean = kUndefined, sd = kUndefined;
  if (!values.empty()) {
    if (const int rc = NUVOGetImageOneVarValueMean(&image, iv, &mean); rc != 0) return rc;
    if (const int rc = NUVOGetImageOneVarValueSD(&image, iv, &mean, &sd); rc != 0) return rc;
  }
  const auto q = [&](double p) { return values.empty() ? kUndefined : quantile(values, p); };
  out->push_back({"mean", "", 0, mean});
  out->push_back({"sd", "", 0, sd});
  out->push_back({"min", "", 0, q(0.0)});
  out->push_back({"quartile1", "", 0, q(0.25)});
  out->push_back({"median", "", 0, q(0.5)});
  out->push_back({"quartile3", "", 0, q(0.75)});
  out->push_back({"max", "", 0, q(1.0)});
  return measureAlongAxes(image, iv, plan.maxLag, NUVOImageVariogram, "variogram", "", out);
}

}  // namespace

int findCategories(const nuvo_image &image, int iv, std::vector<double> *categories) {
  int nvalue = 0, nmissing = 0;
  double *value = nullptr, *proportion = nullptr;
  const int rc = NUVOGetImageOneVarValuePdf(&image, iv, &nvalue, &value, &proportion, &nmissing);
  categories->clear();
  if (rc == 0 && nvalue <= kMaxCategories &&
      std::all_of(value, value + nvalue, [](double x) { return x == std::floor(x); }))
    categories->assign(value, value + nvalue);
  NUVOFree(value);
  NUVOFree(proportion);
  return rc;
}

int measureImage(const nuvo_image &image, int iv, const MeasurePlan &plan,
                 std::vector<Measure> *out) {
  return plan.categories.empty() ? measureContinuous(image, iv, plan, out)
                                 : measureCategorical(image, iv, plan, out);
}

}  // namespace nuvo::runfile
