// The error term of one block at one node, in the form the pattern search reads
// per candidate: the block's running mean with the candidate's value included,
// against the target and the left and right tolerances that apply at the
// block's current count (block_constraint.hpp gives the rules).
#pragma once

namespace nuvo {

struct BlockBand {
  double sum = 0.0;       // sum of the block's informed values
  double invCount = 1.0;  // 1 / (informed count + 1): the candidate's node counted
  double target = 0.0;
  double left = 0.0;          // tolerance below the target at this count
  double right = 0.0;         // tolerance above it
  double scale = 1.0;         // (informed count + 1) / the block's own tolerance

  // How far the running sum with a candidate of value x lies outside the sums
  // of the running means [target - left, target + right], in units of the
  // block's tolerance.
  double error(double x) const {
    const double d = (sum + x) * invCount - target;
    const double excess = d < 0.0 ? -d - left : d - right;
    return excess > 0.0 ? excess * scale : 0.0;
  }
};

// The blocks of one simulated variable that apply at a node, read on the values
// of that variable in the scanned training image.
struct BlockTerm {
  const double *ti = nullptr;
  const BlockBand *band = nullptr;
  int nband = 0;

  double at(int tiNode) const { return of(ti[tiNode]); }
  // The term of a candidate of value x.
  double of(double x) const {
    double e = 0.0;
    for (int b = 0; b < nband; ++b) e += band[b].error(x);
    return e;
  }
};

}  // namespace nuvo
