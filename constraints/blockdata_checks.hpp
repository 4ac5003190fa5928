// Checks of the block data against the rest of a simulation input, made when the
// whole input is validated (each block data record is valid on its own already).
//
// For every variable with block data, block by block and node by node, first
// failure wins:
//   -3061 / -3062  an x index below 0 / not below nx (-3063 to -3066 for y and z);
//   -3067  a node where the mask is 0 (not simulated);
//   -3068  a node listed twice in the block;
//   -3071  a target that is the missing value or not a number;
// then -3055 when the normalizing type is not NORMALIZING_LINEAR: block means are
// kept on the values the simulation copies, which only the linear type leaves in
// the units of the targets.
#pragma once

#include "nuvo_siminput.h"

namespace nuvo {

// 0 or the first failure above.
int checkBlockDataWithInput(const nuvo_simInput &si);

}  // namespace nuvo
