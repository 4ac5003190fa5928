// Pyramid settings for simulation tests: two levels reducing x and y by 2.
#pragma once

#include <cstdlib>

#include "nuvo_pyramidparams.h"
#include "nuvo_siminput.h"
#include "tests/input/siminput_builder.hpp"

namespace nuvo_test {

// Two levels of steps 2 x 2 x 0 in `mode` for every variable of `si` (pyramid
// type `type`; one class, the values in [0.5, 1.5[, for a custom categorical
// type).
inline void usePyramid(nuvo_simInput *si, int mode, int type) {
  if (si->pyramidGeneralParameters == nullptr)
    si->pyramidGeneralParameters = initialisedRecords<nuvo_pyramidGeneralParameters>(
        1, NUVOInitPyramidGeneralParameters);
  nuvo_pyramidGeneralParameters &g = *si->pyramidGeneralParameters;
  NUVOFreePyramidGeneralParameters(&g);
  const bool oneByOne = mode == PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE;
  g = {2,
       valuesOf<int>({2, 2}),
       valuesOf<int>({2, 2}),
       valuesOf<int>({0, 0}),
       mode,
       oneByOne ? valuesOf<double>({1, 1, 1}) : valuesOf<double>({1, 1, 0.5, 1, 1, 1, 0.5, 1, 1}),
       oneByOne ? valuesOf<double>({1, 1, 1}) : valuesOf<double>({1, 1, 1, 1, 1, 1, 1, 1, 1}),
       valuesOf<double>({1, 4, 16})};
  if (si->pyramidParameters == nullptr)
    si->pyramidParameters =
        initialisedRecords<nuvo_pyramidParameters>(si->nvar, NUVOInitPyramidParameters);
  for (int v = 0; v < si->nvar; ++v) {
    nuvo_pyramidParameters &p = si->pyramidParameters[v];
    NUVOFreePyramidParameters(&p);
    p.nlevel = 2;
    p.pyramidType = type;
    if (type != PYRAMID_CATEGORICAL_CUSTOM) continue;
    p.classOfValues = static_cast<nuvo_classOfValues *>(std::calloc(1, sizeof(nuvo_classOfValues)));
    *p.classOfValues = {1, valuesOf<int>({1}), static_cast<double **>(std::calloc(1, sizeof(double *))),
                        static_cast<double **>(std::calloc(1, sizeof(double *)))};
    p.classOfValues->intervalInf[0] = valuesOf<double>({0.5});
    p.classOfValues->intervalSup[0] = valuesOf<double>({1.5});
  }
}

}  // namespace nuvo_test
