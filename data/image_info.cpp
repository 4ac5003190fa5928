// The report on an image: grid, variables, joint statistics and value distributions.
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "data/c_locale.hpp"
#include "data/values.hpp"
#include "nuvo_image.h"

namespace nuvo {
namespace {

// A square matrix of the variables: a header row of column numbers, then one row
// per variable whose cells `printCell(i, j)` writes (16 characters each).
template <typename PrintCell>
void printMatrix(FILE *stream, const char *prefix, int nvar, PrintCell printCell) {
  std::fprintf(stream, "%s        ", prefix);
  for (int j = 0; j < nvar; ++j) std::fprintf(stream, "            #%3d", j);
  std::fprintf(stream, "\n");
  for (int i = 0; i < nvar; ++i) {
    std::fprintf(stream, "%s    #%3d", prefix, i);
    for (int j = 0; j < nvar; ++j) printCell(i, j);
    std::fprintf(stream, "\n");
  }
}

void printVariables(const nuvo_image &image, const char *prefix, FILE *stream) {
  std::fprintf(stream, "%sGrid:\n", prefix);
  NUVOPrintGrid(image.grid, nestedPrefix(prefix).c_str(), stream);
  std::fprintf(stream, "%sNumber of variables: %3d\n", prefix, image.nvar);
  std::fprintf(stream, "%sGrid size * number of variables: %3d\n", prefix, image.nxyzv);
  for (int iv = 0; iv < image.nvar; ++iv)
    std::fprintf(stream, "%sVariable #%3d: %s\n", prefix, iv, image.varName[iv]);
}

int printJointStatistics(const nuvo_image &image, const char *prefix, FILE *stream) {
  const int nvar = image.nvar;
  std::vector<double> min(nvar), max(nvar), mean(nvar);
  int *npairRaw = nullptr;
  double *covRaw = nullptr;
  const int rc =
      NUVOGetImageVarStats(&image, &npairRaw, min.data(), max.data(), mean.data(), &covRaw);
  const CBlock<int> npair(npairRaw);
  const CBlock<double> cov(covRaw);
  NUVO_TRY(rc);
  auto at = [nvar](int i, int j) { return i * nvar + j; };

  std::fprintf(stream, "%sNumber of informed nodes for each pair of variables,\n", prefix);
  std::fprintf(stream,
               "%sn(i,j) = number of nodes in image where both i-th and j-th variables are "
               "informed:\n",
               prefix);
  printMatrix(stream, prefix, nvar,
              [&](int i, int j) { std::fprintf(stream, " %15d", npair[at(i, j)]); });

  std::fprintf(stream,
               "%sVariable             min             max            mean             var"
               "             std\n",
               prefix);
  std::vector<double> sd(nvar);
  for (int i = 0; i < nvar; ++i) {
    sd[i] = std::sqrt(cov[at(i, i)]);
    std::fprintf(stream, "%s    #%3d %15.8E %15.8E %15.8E %15.8E %15.8E\n", prefix, i, min[i],
                 max[i], mean[i], cov[at(i, i)], sd[i]);
  }

  std::fprintf(stream, "%sCovariance Matrix\n", prefix);
  printMatrix(stream, prefix, nvar,
              [&](int i, int j) { std::fprintf(stream, " %15.8E", cov[at(i, j)]); });

  // The standard deviations come from each variable's own informed nodes, so the
  // ratio is a true correlation only where the pair counts agree; a constant
  // variable has none (printed as NAN).
  std::fprintf(stream, "%sCorrelation Matrix\n", prefix);
  std::fprintf(stream, "%s(warning: cor(i,j) exact if n(i,j) = n(i,i) = n(j,j)\n", prefix);
  printMatrix(stream, prefix, nvar, [&](int i, int j) {
    const double scale = sd[i] * sd[j];
    const double cor =
        scale > 0.0 ? cov[at(i, j)] / scale : std::numeric_limits<double>::quiet_NaN();
    std::fprintf(stream, " %15.8E", cor);
  });
  return 0;
}

int printDistribution(const nuvo_image &image, int iv, const char *prefix, FILE *stream,
                      int maxNumberOfValuesForDetail) {
  int nvalue = 0;
  int nmissing = 0;
  double *valueRaw = nullptr;
  double *proportionRaw = nullptr;
  const int rc =
      NUVOGetImageOneVarValuePdf(&image, iv, &nvalue, &valueRaw, &proportionRaw, &nmissing);
  const CBlock<double> value(valueRaw);
  const CBlock<double> proportion(proportionRaw);
  NUVO_TRY(rc);

  std::fprintf(stream, "%sVariable #%3d:\n", prefix, iv);
  std::fprintf(stream, "%s   Proportion of nodes having a missing value: %10.4f %%\n", prefix,
               100.0 * nmissing / image.grid->nxyz);
  std::fprintf(stream, "%s   Number of different values: %3d\n", prefix, nvalue);
  if (nvalue == 0) return 0;
  if (nvalue > maxNumberOfValuesForDetail) {
    std::fprintf(stream, "%s   No detail\n", prefix);
    return 0;
  }
  std::fprintf(stream, "%s   Pdf (ignoring missing value):\n", prefix);
  std::fprintf(stream, "%s                Value   Proportion in grid (%%)\n", prefix);
  for (int k = 0; k < nvalue; ++k)
    std::fprintf(stream, "%s   #%3d:   %10.4f   %10.4f\n", prefix, k, value[k],
                 100.0 * proportion[k]);
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOPrintImageInfo(const nuvo_image *image, const char *prefix, FILE *stream,
                       int maxNumberOfValuesForDetail) {
  NUVO_FAIL_IF(image->grid == nullptr, nuvo::kNotAllocated);
  return nuvo::guardedCall([&] {
    const nuvo::CNumericLocale numericLocale;
    nuvo::printVariables(*image, prefix, stream);
    NUVO_TRY(nuvo::printJointStatistics(*image, prefix, stream));
    for (int iv = 0; iv < image->nvar; ++iv)
      NUVO_TRY(nuvo::printDistribution(*image, iv, prefix, stream, maxNumberOfValuesForDetail));
    return 0;
  });
}

}  // extern "C"
