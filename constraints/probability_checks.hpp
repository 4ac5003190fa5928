// Checks of the probability constraints against the rest of a simulation input,
// made when the whole input is validated (each constraint record is valid on
// its own already).
//
// For every variable with a constraint, first failure wins:
//   -1943  the variable uses a relative distance;
//   -1944  its density of neighboring nodes is not 1.0;
//   local constraint, on the local pdf image:
//   -1945  its grid differs from the simulation grid;
//   -1942  a node has some classes informed and others missing;
//   -1946  a probability is negative; -1947 one is above 1;
//   -1948  the probabilities of a node do not sum to 1 within 0.01 (the bound
//          under which a global pdf is renormalised silently; the simulation
//          divides each node's probabilities by their sum);
//   -1928  an informed training-image value lies in no class (not checked for a
//          rescaled variable, whose training values are only known after
//          rescaling: the simulation's preparation checks them then);
//   -1929  a value of the simulation image or of a data image lies in no class;
//   -1930  a value of a data point set lies in no class.
// Data images and point sets are matched to the variable by name, as the
// conditioning does.
#pragma once

#include "nuvo_siminput.h"

namespace nuvo {

// 0 or the first failure above.
int checkProbabilityConstraintsWithInput(const nuvo_simInput &si);

}  // namespace nuvo
