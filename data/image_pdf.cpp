// Distributions of values: the distinct informed values of a variable with their
// proportions, for one image or pooled over several images.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "data/values.hpp"
#include "nuvo_image.h"
#include "nuvo_memory.h"

namespace nuvo {
namespace {

// Ascending order in which NaN values (informed, however odd) come last, so that
// the sort always sees a strict weak ordering.
bool ascending(double a, double b) {
  return a < b || (!std::isnan(a) && std::isnan(b));
}

// The pdf of `values` (consumed): missing values are counted and dropped, the rest
// sorted and grouped by exact equality. The arrays are allocated only when at least
// one value is informed.
int pdfOf(std::vector<double> values, int *nvalue, double **value, double **proportion,
          int *nmissing) {
  *nvalue = 0;
  *value = nullptr;
  *proportion = nullptr;
  const std::size_t total = values.size();
  std::erase_if(values, isMissing);
  *nmissing = static_cast<int>(total - values.size());
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end(), ascending);
  std::vector<double> distinct;
  std::vector<int> count;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i == 0 || !(values[i] == values[i - 1])) {
      distinct.push_back(values[i]);
      count.push_back(0);
    }
    ++count.back();
  }
  int err = 0;
  auto *v = static_cast<double *>(NUVOMalloc(distinct.size(), sizeof(double), &err));
  auto *p = static_cast<double *>(NUVOMalloc(distinct.size(), sizeof(double), &err));
  if (v == nullptr || p == nullptr) {
    NUVOFree(v);
    NUVOFree(p);
    return kAllocationFailed;
  }
  *value = v;
  *proportion = p;
  const double ninformed = static_cast<double>(values.size());
  for (std::size_t k = 0; k < distinct.size(); ++k) {
    (*value)[k] = distinct[k];
    (*proportion)[k] = count[k] / ninformed;
  }
  *nvalue = static_cast<int>(distinct.size());
  return 0;
}

// The values of variable iv of every image, one image after the other.
std::vector<double> pooledValues(int nimage, const nuvo_image *const *image, int iv) {
  std::vector<double> values;
  for (int k = 0; k < nimage; ++k) {
    const auto v = variableValues(image[k], iv);
    values.insert(values.end(), v.begin(), v.end());
  }
  return values;
}

int checkImages(int nimage, const nuvo_image *const *image) {
  NUVO_FAIL_IF(nimage < 1, -3);
  for (int k = 1; k < nimage; ++k) NUVO_FAIL_IF(image[k]->nvar != image[0]->nvar, -30);
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOGetNImageOneVarValuePdf(int nimage, const nuvo_image *const *image, int iv, int *nvalue,
                                double **value, double **proportion, int *nmissing) {
  NUVO_TRY(nuvo::checkImages(nimage, image));
  NUVO_FAIL_IF(!nuvo::validVariable(image[0], iv), nuvo::kVariableOutOfRange);
  return nuvo::guardedCall([&] {
    return nuvo::pdfOf(nuvo::pooledValues(nimage, image, iv), nvalue, value, proportion, nmissing);
  });
}

int NUVOGetNImageVarValuePdf(int nimage, const nuvo_image *const *image, int *nvalue,
                             double **value, double **proportion, int *nmissing) {
  NUVO_TRY(nuvo::checkImages(nimage, image));
  const int nvar = image[0]->nvar;
  std::fill(value, value + nvar, nullptr);
  std::fill(proportion, proportion + nvar, nullptr);
  for (int iv = 0; iv < nvar; ++iv)
    NUVO_TRY(NUVOGetNImageOneVarValuePdf(nimage, image, iv, &nvalue[iv], &value[iv],
                                         &proportion[iv], &nmissing[iv]));
  return 0;
}

int NUVOGetImageOneVarValuePdf(const nuvo_image *image, int iv, int *nvalue, double **value,
                               double **proportion, int *nmissing) {
  return NUVOGetNImageOneVarValuePdf(1, &image, iv, nvalue, value, proportion, nmissing);
}

int NUVOGetImageVarValuePdf(const nuvo_image *image, int *nvalue, double **value,
                            double **proportion, int *nmissing) {
  return NUVOGetNImageVarValuePdf(1, &image, nvalue, value, proportion, nmissing);
}

}  // extern "C"
