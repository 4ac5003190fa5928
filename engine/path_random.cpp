// The random path: a uniform shuffle of the entries.
#include "nuvo_path.h"

extern "C" {

int NUVOPathRandom(int n, int *entries, nuvo_randContext *ctx) {
  return NUVORandomizeListOfInt(n, entries, ctx);
}

}  // extern "C"
