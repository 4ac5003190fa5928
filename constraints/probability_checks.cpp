#include "constraints/probability_checks.hpp"

#include <cmath>
#include <cstring>
#include <span>

#include "constraints/probability_constraint.hpp"
#include "data/values.hpp"
#include "foundation/check.hpp"

namespace nuvo {
namespace {

constexpr double kLocalSumTolerance = 0.01;

// `failure` when an informed value lies in no class.
int checkValues(const nuvo_classOfValues &classes, std::span<const double> values, int failure) {
  for (double v : values)
    NUVO_FAIL_IF(!isMissing(v) && classOfValue(classes, v) == kNoClass, failure);
  return 0;
}

// The variable of `names` called `name`, or -1.
int variableNamed(char *const *names, int nvar, const char *name) {
  for (int i = 0; i < nvar; ++i)
    if (std::strcmp(names[i], name) == 0) return i;
  return -1;
}

std::span<const double> imageVariable(const nuvo_image &image, int v) {
  const std::size_t n = static_cast<std::size_t>(image.grid->nxyz);
  return {image.var + v * n, n};
}

int checkLocalPdf(const nuvo_simInput &si, const nuvo_softProbability &sp) {
  const nuvo_image &pdf = *sp.localPdfImage;
  NUVO_FAIL_IF(NUVOCmpGrid(pdf.grid, si.simImage->grid) != 0, -1945);
  const int nclass = sp.classOfValues->nclass;
  const long long nxyz = pdf.grid->nxyz;
  for (long long k = 0; k < nxyz; ++k) {
    int missing = 0;
    double sum = 0.0;
    for (int c = 0; c < nclass; ++c) {
      const double p = pdf.var[c * nxyz + k];
      if (isMissing(p)) {
        ++missing;
        continue;
      }
      NUVO_FAIL_IF(p < 0.0, -1946);
      NUVO_FAIL_IF(p > 1.0, -1947);
      sum += p;
    }
    NUVO_FAIL_IF(missing > 0 && missing < nclass, -1942);
    NUVO_FAIL_IF(missing == 0 && std::fabs(sum - 1.0) > kLocalSumTolerance, -1948);
  }
  return 0;
}

int checkClasses(const nuvo_simInput &si, const nuvo_softProbability &sp, int v) {
  const nuvo_classOfValues &classes = *sp.classOfValues;
  if (si.rescalingMode == nullptr || si.rescalingMode[v] == RESCALING_NONE)
    for (int t = 0; t < si.ntrainImage; ++t)
      if (!si.simGridAsTiFlag[t])
        NUVO_TRY(checkValues(classes, imageVariable(si.trainImage[t], v), -1928));
  NUVO_TRY(checkValues(classes, imageVariable(*si.simImage, v), -1929));
  const char *name = si.simImage->varName[v];
  for (int i = 0; i < si.ndataImage; ++i) {
    const nuvo_image &data = si.dataImage[i];
    const int dv = variableNamed(data.varName, data.nvar, name);
    if (dv >= 0) NUVO_TRY(checkValues(classes, imageVariable(data, dv), -1929));
  }
  for (int i = 0; i < si.ndataPointSet; ++i) {
    const nuvo_pointSet &ps = si.dataPointSet[i];
    const int pv = variableNamed(ps.varName, ps.nvar, name);
    if (pv >= 0)
      NUVO_TRY(checkValues(
          classes,
          {ps.val + static_cast<std::size_t>(pv) * ps.npoint, static_cast<std::size_t>(ps.npoint)},
          -1930));
  }
  return 0;
}

}  // namespace

int checkProbabilityConstraintsWithInput(const nuvo_simInput &si) {
  if (si.softProbability == nullptr) return 0;
  for (int v = 0; v < si.nvar; ++v) {
    const nuvo_softProbability &sp = si.softProbability[v];
    if (sp.probabilityConstraintUsage == NUVO_PROBABILITY_CONSTRAINT_NONE) continue;
    NUVO_FAIL_IF(si.relativeDistanceFlag[v], -1943);
    NUVO_FAIL_IF(si.neighboringNodeDensity[v] != 1.0, -1944);
    if (sp.probabilityConstraintUsage == NUVO_PROBABILITY_CONSTRAINT_LOCAL)
      NUVO_TRY(checkLocalPdf(si, sp));
    NUVO_TRY(checkClasses(si, sp, v));
  }
  return 0;
}

}  // namespace nuvo
