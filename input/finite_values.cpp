#include "input/finite_values.hpp"

#include <cmath>
#include <cstddef>
#include <span>

#include "foundation/check.hpp"

namespace nuvo {
namespace {

constexpr int kNaN = -627;
constexpr int kInfinite = -628;

int verdictOf(std::span<const double> values) {
  for (const double v : values) {
    if (std::isnan(v)) return kNaN;
    if (std::isinf(v)) return kInfinite;
  }
  return 0;
}

int imageVerdict(const nuvo_image &image) {
  if (image.var == nullptr || image.nxyzv <= 0) return 0;
  return verdictOf({image.var, static_cast<std::size_t>(image.nxyzv)});
}

int pointSetVerdict(const nuvo_pointSet &ps) {
  if (ps.npoint <= 0) return 0;
  const auto n = static_cast<std::size_t>(ps.npoint);
  for (const double *values : {ps.x, ps.y, ps.z})
    if (values != nullptr) NUVO_TRY(verdictOf({values, n}));
  if (ps.val == nullptr || ps.nvar <= 0) return 0;
  return verdictOf({ps.val, n * static_cast<std::size_t>(ps.nvar)});
}

}  // namespace

int checkFiniteValues(const nuvo_simInput &si) {
  for (int t = 0; si.trainImage != nullptr && t < si.ntrainImage; ++t)
    if (si.simGridAsTiFlag == nullptr || !si.simGridAsTiFlag[t])
      NUVO_TRY(imageVerdict(si.trainImage[t]));
  for (int k = 0; si.dataImage != nullptr && k < si.ndataImage; ++k)
    NUVO_TRY(imageVerdict(si.dataImage[k]));
  for (int k = 0; si.dataPointSet != nullptr && k < si.ndataPointSet; ++k)
    NUVO_TRY(pointSetVerdict(si.dataPointSet[k]));
  return 0;
}

}  // namespace nuvo
