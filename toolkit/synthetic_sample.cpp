// Random conditioning samples drawn from an image.
#include <algorithm>
#include <cstring>
#include <vector>

#include "foundation/check.hpp"
#include "nuvo_synthetic.h"
#include "toolkit/synthetic_common.hpp"

extern "C" int NUVOSampleImage(const nuvo_image *image, int npoint, int seed, nuvo_pointSet *ps) {
  if (npoint < 1) return -3;
  return nuvo::guardedCall([&] {
    const nuvo_grid &g = *image->grid;
    std::vector<int> informed;
    for (int i = 0; i < g.nxyz; ++i) {
      bool all = true;
      for (int iv = 0; iv < image->nvar && all; ++iv)
        all = image->var[static_cast<long long>(iv) * g.nxyz + i] != NUVO_MISSING_VALUE;
      if (all) informed.push_back(i);
    }
    if (informed.empty()) return -165;
    // Partial Fisher-Yates: the first n entries become a uniform random subset.
    nuvo::synthetic::Draws draws(seed);
    const int n = std::min<int>(npoint, static_cast<int>(informed.size()));
    for (int k = 0; k < n; ++k) {
      const int j = k + draws.index(static_cast<int>(informed.size()) - k);
      std::swap(informed[k], informed[j]);
    }
    std::sort(informed.begin(), informed.begin() + n);

    NUVOFreePointSet(ps);
    NUVO_TRY(NUVOMallocPointSet(ps, n, image->nvar));
    for (int iv = 0; iv < image->nvar; ++iv) std::strcpy(ps->varName[iv], image->varName[iv]);
    for (int k = 0; k < n; ++k) {
      const int node = informed[k];
      ps->x[k] = g.ox + (node % g.nx + 0.5) * g.sx;
      ps->y[k] = g.oy + (node % g.nxy / g.nx + 0.5) * g.sy;
      ps->z[k] = g.oz + (node / g.nxy + 0.5) * g.sz;
      for (int iv = 0; iv < image->nvar; ++iv)
        ps->val[static_cast<long long>(iv) * n + k] =
            image->var[static_cast<long long>(iv) * g.nxyz + node];
    }
    return 0;
  });
}
