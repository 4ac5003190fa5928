// Transforms of the simulated variables applied around the realizations.
//
// Rescaling (rescalingMode of a variable). The values of the training images
// are mapped linearly onto the target interval before anything else, so that
// copied values land there: RESCALING_MIN_MAX maps the training minimum and
// maximum onto rescalingTargetMin and rescalingTargetMax; RESCALING_MEAN_LENGTH
// maps the training mean (over every informed training node) onto
// rescalingTargetMean with the training range stretched to rescalingTargetLength.
// The driver transforms copies of the training images only: conditioning data
// and classes of values are given in the target interval already, and the
// simulated values are left in it.
//
// Normalisation (normalizingType NORMALIZING_UNIFORM or NORMALIZING_NORMAL, for
// the variables with distance type other than 0 and absolute distance). Let the
// n distinct training values be sorted increasingly, p_i the proportion of
// training nodes holding value i and F(i) = p_0 + ... + p_i, F(-1) = 0.
// UNIFORM maps value i to F(i-1) + (i/(n-1)) p_i (so 0 for the smallest, exactly
// 1 for the largest); NORMAL maps it to the standard normal quantile of
// F(i-1) + 0.5 p_i. A single distinct value maps to 0. Both maps are strictly
// increasing, so the table and its inverse are bijections on the distinct values
// and undo each other exactly.
#pragma once

#include <vector>

#include "engine/prepared_data.hpp"
#include "nuvo_image.h"
#include "nuvo_siminput.h"

namespace nuvo {

// Standard normal quantile of p, computed by Acklam's rational approximation
// (relative error below 1.15e-9) refined by one Halley step on erfc, which
// brings it to about 1e-15 relative. The lower half is computed directly and the
// upper half by symmetry from 1 - p (exact there), so the result is odd about
// 0.5 and increasing. p <= 0 gives -infinity and p >= 1 +infinity; the
// normalisation only calls it inside (0, 1).
double standardNormalQuantile(double p);

// The normalised value of each of the distinct training values of `m` (same
// order) for the normalizingType `type` (NORMALIZING_UNIFORM or NORMALIZING_NORMAL).
std::vector<double> normalizedValues(const VariableMeasure &m, int type);

// Whether variable v is compared on its normalised values.
bool isNormalized(const nuvo_simInput &si, int v);

// The linear map a x + b of variable v's rescaling over the training images
// (ntrainImage entries), or a = 1, b = 0 for RESCALING_NONE.
struct LinearMap {
  double a = 1.0;
  double b = 0.0;
};
LinearMap rescalingMap(const nuvo_simInput &si, const nuvo_image *trainImage, int v);

// Applies the rescaling of every rescaled variable to `copies`, copies of the
// input's training images (entries of the simulation grid are left alone).
// Returns 0 or the code of the transform.
int rescaleTrainCopies(const nuvo_simInput &si, nuvo_image *copies);

}  // namespace nuvo
