// Training values per variable, the checks of the conditioning data against
// them, and the entry flags (see prepared_data.hpp for the rules).
#include <algorithm>
#include <cassert>

#include "data/values.hpp"
#include "engine/prepared_data.hpp"
#include "engine/warnings.hpp"

namespace nuvo {
namespace {

constexpr double kMinTrainingRange = 1e-10;
constexpr int kTrainingRangeTooSmall = -552;
constexpr int kCategoricalDatumNotInTraining = -555;
constexpr int kContinuousDatumTooFar = -556;

// The distinct informed values of variable v over every training image, with
// their counts.
void gatherTrainingValues(const nuvo_simInput &si, std::span<const nuvo_image> trainImage,
                          const nuvo_image &simImage, int v, VariableMeasure *m) {
  std::vector<double> pool;
  for (int i = 0; i < si.ntrainImage; ++i) {
    const bool isSimGrid = si.simGridAsTiFlag != nullptr && si.simGridAsTiFlag[i];
    for (double x : variableValues(isSimGrid ? &simImage : &trainImage[i], v))
      if (!isMissing(x)) pool.push_back(x);
  }
  std::sort(pool.begin(), pool.end());
  for (std::size_t j = 0; j < pool.size(); ++j) {
    if (j == 0 || pool[j] != pool[j - 1]) {
      m->value.push_back(pool[j]);
      m->count.push_back(0);
    }
    ++m->count.back();
  }
}

int checkContinuousData(const InformedSummary &data, double extensionMax, VariableMeasure *m) {
  const double range = m->trainMax() - m->trainMin();
  NUVO_FAIL_IF(range < kMinTrainingRange, kTrainingRangeTooSmall);
  m->min = m->trainMin();
  m->max = m->trainMax();
  if (data.n == 0 || (data.min >= m->min && data.max <= m->max)) return 0;
  if (extensionMax >= 0.0) {
    const double margin = extensionMax * range;
    NUVO_FAIL_IF(data.min < m->min - margin || data.max > m->max + margin, kContinuousDatumTooFar);
  }
  m->min = std::min(m->min, data.min);
  m->max = std::max(m->max, data.max);
  m->widened = true;
  return 0;
}

// Sets *outside when a datum is not a training value and the input tolerates it.
int checkCategoricalData(std::span<const double> data, double extensionMax, VariableMeasure *m,
                         bool *outside) {
  m->min = m->trainMin();
  m->max = m->trainMax();
  for (double x : data) {
    if (isMissing(x) || std::binary_search(m->value.begin(), m->value.end(), x)) continue;
    NUVO_FAIL_IF(extensionMax >= 0.0, kCategoricalDatumNotInTraining);
    *outside = true;
  }
  return 0;
}

int measureVariable(const nuvo_simInput &si, std::span<const nuvo_image> trainImage,
                    const nuvo_image &simImage, int v, VariableMeasure *m, nuvo_progressMonitor *pm,
                    nuvo_progressCallback callback) {
  m->categorical = si.distanceType[v] == 0;
  gatherTrainingValues(si, trainImage, simImage, v, m);
  NUVO_FAIL_IF(m->value.empty(), kTrainingRangeTooSmall);
  const auto data = variableValues(&simImage, v);
  if (!m->categorical) {
    NUVO_TRY(checkContinuousData(summarizeInformed(data), si.trainValueRangeExtensionMax, m));
    return warnIf(m->widened, pm, callback, kWarningContinuousDatumBeyondTraining);
  }
  bool outside = false;
  NUVO_TRY(checkCategoricalData(data, si.trainValueRangeExtensionMax, m, &outside));
  return warnIf(outside, pm, callback, kWarningCategoricalDatumNotInTraining);
}

// Flags every entry, counts the data per variable, the fully informed nodes and
// the masked ones.
void flagEntries(const nuvo_simInput &si, const nuvo_image &simImage, PreparedData *p) {
  const double *mask = si.maskImageFlag ? si.maskImage->var : nullptr;
  p->entryFlag = entryFlags(si, simImage);
  for (int k = 0; k < p->nxyz; ++k) {
    if (mask != nullptr && mask[k] == 0.0) {
      ++p->nMasked;
      continue;
    }
    bool allInformed = true;
    for (int v = 0; v < p->nvar; ++v) {
      if (p->flag(v, k) == kEntryToSimulate)
        allInformed = false;
      else
        ++p->variable[v].ndata;
    }
    if (allInformed) ++p->nInformedAllVariables;
  }
}

int prepareData(const nuvo_simInput &si, std::span<const nuvo_image> trainImage,
                const nuvo_image &simImage, PreparedData *p, nuvo_progressMonitor *pm,
                nuvo_progressCallback callback) {
  assert(trainImage.size() == static_cast<std::size_t>(si.ntrainImage));
  *p = PreparedData{};
  p->nvar = simImage.nvar;
  p->nxyz = simImage.grid->nxyz;
  p->variable.resize(p->nvar);
  for (int v = 0; v < p->nvar; ++v) {
    NUVO_TRY(checkStop(pm));
    NUVO_TRY(measureVariable(si, trainImage, simImage, v, &p->variable[v], pm, callback));
  }
  flagEntries(si, simImage, p);
  return 0;
}

}  // namespace

std::vector<signed char> entryFlags(const nuvo_simInput &si, const nuvo_image &simImage) {
  const int nxyz = simImage.grid->nxyz;
  const double *mask = si.maskImageFlag ? si.maskImage->var : nullptr;
  std::vector<signed char> flag(static_cast<std::size_t>(simImage.nvar) * nxyz, kEntryFixed);
  for (std::size_t entry = 0; entry < flag.size(); ++entry) {
    const bool masked = mask != nullptr && mask[entry % nxyz] == 0.0;
    if (!masked && isMissing(simImage.var[entry])) flag[entry] = kEntryToSimulate;
  }
  return flag;
}

int simPrepareData(const nuvo_simInput &si, std::span<const nuvo_image> trainImage,
                   const nuvo_image &simImage, PreparedData *prepared, nuvo_progressMonitor *pm,
                   nuvo_progressCallback callback) {
  return guardedCall([&] { return prepareData(si, trainImage, simImage, prepared, pm, callback); });
}

}  // namespace nuvo
