// A generator context seeded by its first draw, as the library's routines take it.
#pragma once

#include "nuvo_random.h"

namespace nuvo_test {

inline nuvo_randContext seededContext(int seed) {
  nuvo_randContext ctx;
  NUVOInitRandContext(&ctx);
  NUVODoubleRand(seed, &ctx);
  return ctx;
}

}  // namespace nuvo_test
