// The error term of one block at one node, in the form the pattern search reads
// per candidate: how far the block's running sum with the candidate's value
// included lies outside the band that applies at the block's current count
// (block_constraint.hpp gives the rules).
#pragma once

#include <algorithm>

namespace nuvo {

struct BlockBand {
  double low = 0.0, high = 0.0;  // the candidate values that keep the running sum in the band
  double room = 1.0;             // how far the sum may leave it while the final mean holds
  double gentle = 1.0;           // 1 / room: the cost of a unit of excess within the room
  double steep = 1.0;            // its cost beyond the room: N / the block's tolerance

  double error(double x) const {
    const double excess = std::max({0.0, low - x, x - high});
    return excess * gentle + std::max(0.0, excess - room) * steep;
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
