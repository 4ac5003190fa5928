// Internal access to the generator's seeding step.
#pragma once

#include "nuvo_random.h"

namespace nuvo {

// Seeds `ctx` with `seed` without drawing. Unlike NUVODoubleRand, a seed of 0 also
// restarts the sequence: the simulation reseeds per path entry with base + k,
// which may wrap to 0.
void seedRandContext(int seed, nuvo_randContext *ctx);

}  // namespace nuvo
