// Checks of the connectivity constraints against the rest of a simulation input,
// made when the whole input is validated (each record is valid on its own
// already). For every variable with a constraint, first failure wins:
//   -2105  the label variable has the name of a simulated variable;
//   -2107  the variable uses a relative distance;
//   -2108  there are several training images.
// (Pyramids refuse the pattern of labels with -3667 among their own checks.)
#pragma once

#include "nuvo_siminput.h"

namespace nuvo {

// 0 or the first failure above.
int checkConnectivityWithInput(const nuvo_simInput &si);

}  // namespace nuvo
