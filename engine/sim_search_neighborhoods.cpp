// The search neighborhoods of one simulation: distinct lists shared by the
// variables with equal parameters, and their precomputed linear offsets.
#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "foundation/check.hpp"
#include "nuvo_memory.h"
#include "nuvo_simneighborhoods.h"

namespace nuvo {
namespace {

template <typename T>
int allocate(int n, T **p) {
  int err = 0;
  *p = static_cast<T *>(NUVOMalloc(static_cast<std::size_t>(n), sizeof(T), &err));
  return err;
}

// The distinct lists, built in the order of the first variable using each.
int buildDistinct(const nuvo_simInput &in, nuvo_simSearchNeighborhoods *s, nuvo_randContext *ctx) {
  NUVO_TRY(allocate(in.nvar, &s->searchNeighborhood));
  for (int v = 0; v < in.nvar; ++v) NUVOInitSearchNeighborhood(&s->searchNeighborhood[v]);
  NUVO_TRY(allocate(in.nvar, &s->searchNeighborhoodIndex));
  std::vector<int> firstVariable;  // of each distinct list
  for (int v = 0; v < in.nvar; ++v) {
    const nuvo_searchNeighborhoodParameters *p = &in.searchNeighborhoodParameters[v];
    auto same = std::find_if(firstVariable.begin(), firstVariable.end(), [&](int w) {
      return NUVOCmpSearchNeighborhoodParameters(&in.searchNeighborhoodParameters[w], p) == 0;
    });
    s->searchNeighborhoodIndex[v] = static_cast<int>(same - firstVariable.begin());
    if (same != firstVariable.end()) continue;
    firstVariable.push_back(v);
    ++s->nsearchNeighborhood;  // counted first, so that a partly built list is freed
    NUVO_TRY(
        NUVOBuildSearchNeighborhood(p, &s->searchNeighborhood[s->nsearchNeighborhood - 1], ctx));
  }
  return 0;
}

int concatenate(nuvo_simSearchNeighborhoods *s) {
  NUVO_TRY(allocate(s->nsearchNeighborhood, &s->start));
  long long total = 0;
  for (int i = 0; i < s->nsearchNeighborhood; ++i) {
    s->start[i] = static_cast<int>(total);
    total += s->searchNeighborhood[i].size;
  }
  NUVO_FAIL_IF(total > std::numeric_limits<int>::max(), kAllocationFailed);
  s->totalSize = static_cast<int>(total);
  return 0;
}

// Offsets ix + nx*iy + nx*ny*iz of every node of the concatenation, for a grid nx, ny.
int linearOffsets(const nuvo_simSearchNeighborhoods &s, const nuvo_grid &g, int **offset) {
  NUVO_TRY(allocate(s.totalSize, offset));
  long long nx = g.nx, nxy = static_cast<long long>(g.nx) * g.ny;
  for (int i = 0; i < s.nsearchNeighborhood; ++i) {
    const nuvo_searchNeighborhood &sn = s.searchNeighborhood[i];
    int *out = *offset + s.start[i];
    for (int j = 0; j < sn.size; ++j)
      out[j] = static_cast<int>(sn.ix[j] + nx * sn.iy[j] + nxy * sn.iz[j]);
  }
  return 0;
}

int trainingImageOffsets(const nuvo_simInput &in, nuvo_simSearchNeighborhoods *s) {
  if (in.homothetyUsage != 0 || in.rotationUsage != 0) return 0;
  NUVO_TRY(allocate(in.ntrainImage, &s->tiOffset));
  std::fill(s->tiOffset, s->tiOffset + in.ntrainImage, nullptr);
  s->ntiOffset = in.ntrainImage;
  for (int t = 0; t < in.ntrainImage; ++t) {
    const nuvo_grid &g = in.simGridAsTiFlag[t] ? *in.simImage->grid : *in.trainImage[t].grid;
    NUVO_TRY(linearOffsets(*s, g, &s->tiOffset[t]));
  }
  return 0;
}

bool hasInformedEntry(const signed char *row, int nxyz) {
  return std::find(row, row + nxyz, 0) != row + nxyz;
}

int weightFlags(const nuvo_simInput &in, const signed char *simFlag,
                nuvo_simSearchNeighborhoods *s) {
  NUVO_TRY(allocate(in.nvar, &s->weightUnifFlag));
  int nxyz = in.simImage->grid->nxyz;
  for (int v = 0; v < in.nvar; ++v) {
    bool factorApplies = in.conditioningWeightFactor[v] != 1.0 &&
                         hasInformedEntry(simFlag + static_cast<std::ptrdiff_t>(v) * nxyz, nxyz);
    s->weightUnifFlag[v] = in.searchNeighborhoodParameters[v].power == 0.0 && !factorApplies;
  }
  return 0;
}

int prepare(const nuvo_simInput &in, const signed char *simFlag, nuvo_simSearchNeighborhoods *s,
            nuvo_randContext *ctx, nuvo_progressMonitor *pm) {
  NUVO_FAIL_IF(in.nvar <= 0, -3);
  s->nvar = in.nvar;
  NUVO_TRY(buildDistinct(in, s, ctx));
  NUVO_TRY(checkStop(pm));
  NUVO_TRY(concatenate(s));
  NUVO_TRY(checkStop(pm));
  NUVO_TRY(linearOffsets(*s, *in.simImage->grid, &s->simGridOffset));
  NUVO_TRY(checkStop(pm));
  NUVO_TRY(trainingImageOffsets(in, s));
  NUVO_TRY(checkStop(pm));
  return weightFlags(in, simFlag, s);
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitSimSearchNeighborhoods(nuvo_simSearchNeighborhoods *s) {
  *s = nuvo_simSearchNeighborhoods{};
}

void NUVOFreeSimSearchNeighborhoods(nuvo_simSearchNeighborhoods *s) {
  for (int i = 0; i < s->nsearchNeighborhood; ++i)
    NUVOFreeSearchNeighborhood(&s->searchNeighborhood[i]);
  NUVOFree(s->searchNeighborhood);
  NUVOFree(s->start);
  NUVOFree(s->simGridOffset);
  for (int t = 0; t < s->ntiOffset; ++t) NUVOFree(s->tiOffset[t]);
  NUVOFree(s->tiOffset);
  NUVOFree(s->searchNeighborhoodIndex);
  NUVOFree(s->weightUnifFlag);
  NUVOInitSimSearchNeighborhoods(s);
}

int NUVOSimPrepareSearchNeighborhood(const nuvo_simInput *simInput, const signed char *simFlag,
                                     nuvo_simSearchNeighborhoods *s, nuvo_randContext *ctx,
                                     nuvo_progressMonitor *pm) {
  return nuvo::guardedCall([&] { return nuvo::prepare(*simInput, simFlag, s, ctx, pm); });
}

}  // extern "C"
