// Values of the loaded inputs of a simulation that are not numbers: a NaN or an
// infinity in a training image or in conditioning data would be copied into the
// realizations, so the validation of the input refuses them.
#pragma once

#include "nuvo_siminput.h"

namespace nuvo {

// 0, or -627 for the first NaN and -628 for the first infinity met in the
// training images (not the simulation grid), the data images and the data point
// sets (coordinates and values), in that order.
int checkFiniteValues(const nuvo_simInput &si);

}  // namespace nuvo
