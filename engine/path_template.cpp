// The path template of a simulation: the entries not to be simulated first, then
// those to be simulated, which each realization reorders.
#include "nuvo_path.h"

namespace nuvo {
namespace {

// Writes the kept entries from the front in increasing order and the others from
// the back (so in decreasing order); returns how many were kept at the front.
template <typename Kept>
int split(int n, int *out, Kept kept) {
  int front = 0, back = n - 1;
  for (int e = 0; e < n; ++e) {
    if (kept(e))
      out[front++] = e;
    else
      out[back--] = e;
  }
  return front;
}

bool masked(const nuvo_simInput &in, int k) {
  return in.maskImageFlag && in.maskImage->var[k] == 0.0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOSimPrepareSimulationPath(const nuvo_simInput *simInput, const signed char *simFlag,
                                 int npath, int *path, int *nnotSimulated, int *nsimulated,
                                 int *vectorPath, int *nvectorNotSimulated, int *nvectorSimulated) {
  const nuvo_simInput &in = *simInput;
  const int nxyz = in.simImage->grid->nxyz;
  *nnotSimulated = nuvo::split(
      npath, path, [&](int e) { return simFlag[e] == 0 || nuvo::masked(in, e % nxyz); });
  *nsimulated = npath - *nnotSimulated;
  *nvectorNotSimulated = *nvectorSimulated = 0;
  if (in.simAndPathParameters->simType != SIM_VARIABLE_VECTOR) return 0;
  *nvectorNotSimulated = nuvo::split(nxyz, vectorPath, [&](int k) {
    if (nuvo::masked(in, k)) return true;
    for (int v = 0; v < in.nvar; ++v)
      if (simFlag[static_cast<long long>(v) * nxyz + k] != 0) return false;
    return true;
  });
  *nvectorSimulated = nxyz - *nvectorNotSimulated;
  return 0;
}

}  // extern "C"
