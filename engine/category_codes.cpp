// One-byte codes of the categorical training images, and their packed form.
#include <algorithm>

#include "engine/packed_event.hpp"
#include "engine/realization.hpp"

namespace nuvo {

namespace {

constexpr std::size_t kMaxCodedCategories = 127;

std::int8_t codeOf(const std::vector<double> &categories, double value) {
  if (value == NUVO_MISSING_VALUE) return kMissingCode;
  const auto it = std::lower_bound(categories.begin(), categories.end(), value);
  if (it == categories.end() || *it != value) return kForeignCode;
  return static_cast<std::int8_t>(it - categories.begin());
}

}  // namespace

void codeCategories(RealizationSetup &setup, std::vector<std::vector<double>> categories) {
  const std::size_t nti = setup.ti.size();
  setup.tiCode.assign(nti * setup.nvar, {});
  setup.codeCount.assign(nti * setup.nvar, {});
  setup.tiPacked.assign(nti * setup.nvar, {});
  for (int v = 0; v < setup.nvar; ++v) {
    if (categories[v].size() > kMaxCodedCategories) categories[v].clear();
    if (categories[v].empty()) continue;
    for (std::size_t t = 0; t < nti; ++t) {
      const nuvo_image &ti = *setup.ti[t];
      if (setup.simGridAsTi[t]) continue;
      const int n = ti.grid->nxyz;
      const double *values = ti.var + static_cast<long long>(v) * n;
      std::vector<std::int8_t> &code = setup.tiCode[t * setup.nvar + v];
      code.assign(static_cast<std::size_t>(n) + kCodePadding, kMissingCode);
      std::vector<int> &count = setup.codeCount[t * setup.nvar + v];
      count.assign(categories[v].size(), 0);
      for (int i = 0; i < n; ++i) {
        code[i] = codeOf(categories[v], values[i]);
        if (code[i] >= 0) ++count[static_cast<std::size_t>(code[i])];
      }
      // Packed codes pay where the byte codes outgrow the cache: the scan of a 3D
      // image reads rows far apart. A 2D image's rows are near and few.
      const int bits = packedFieldBits(categories[v].size());
      if (ti.grid->nz > 1 && bits > 0)
        setup.tiPacked[t * setup.nvar + v] =
            packCodes(std::span(code).first(static_cast<std::size_t>(n)), bits);
    }
  }
  setup.categories = std::move(categories);
}

std::int8_t categoryCode(const RealizationSetup &setup, int v, double value) {
  return codeOf(setup.categories[v], value);
}

}  // namespace nuvo
