// The data preparation of a simulation: after the conditioning data are merged
// into the working simulation image (NUVOSimIntegrateConditioningData), the
// values of the training images are gathered per variable, the data are checked
// against them, and every entry (variable, node) is flagged as informed or to be
// simulated. The realizations read the result, PreparedData.
//
// Training values. Per variable, the informed values of that variable in every
// training image, the working simulation image standing in for a training image
// marked as the simulation grid (its informed values after conditioning).
//
// Continuous variables (distance type other than 0). The training range
// [tmin, tmax] must be at least 1e-10 wide, else -552. Let r = tmax - tmin and
// e = trainValueRangeExtensionMax. A datum d outside [tmin, tmax] is accepted
// when e < 0 (no check), or when tmin - e r <= d <= tmax + e r; otherwise the
// preparation fails with -556. So e = 0 accepts no datum beyond the training
// range and e = 1 a datum up to one range width beyond either end. When some
// datum lies outside, the range used by the simulation is widened to the
// smallest interval holding the training range and every datum, and warning 2
// is raised once for the variable. Training values are never rescaled, so
// warning 3 is not raised here.
//
// Categorical variables (distance type 0). Every datum must equal one of the
// training values, else -555; with e < 0 a datum outside that set is accepted
// instead and warning 1 is raised once for the variable. The set of training
// values is not extended by such a datum. (A pyramid that turns a categorical
// variable into a continuous one checks its data itself, with code 554.)
//
// A variable without any informed training value fails with -552 whatever its
// type: there is nothing to copy from.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "nuvo_image.h"
#include "nuvo_progress.h"
#include "nuvo_siminput.h"

namespace nuvo {

// Entry flags: an informed entry (a conditioning datum) or an entry of a masked
// node is never simulated.
inline constexpr signed char kEntryFixed = 0;
inline constexpr signed char kEntryToSimulate = 1;

// What the training images hold for one variable, and the range the simulation uses.
struct VariableMeasure {
  bool categorical = false;         // distance type 0: values compared by equality
  std::vector<double> value;        // distinct training values, increasing
  std::vector<std::int64_t> count;  // training nodes holding each value
  double min = 0.0;                 // range used by the simulation: the training
  double max = 0.0;                 //   range, widened to the data (continuous only)
  int ndata = 0;                    // conditioning data (informed entries) of the variable
  bool widened = false;             // the range was widened to cover some data

  double trainMin() const { return value.front(); }
  double trainMax() const { return value.back(); }
};

struct PreparedData {
  int nvar = 0;
  int nxyz = 0;
  std::vector<signed char> entryFlag;     // index v * nxyz + k: kEntryFixed or kEntryToSimulate
  std::vector<VariableMeasure> variable;  // one per simulated variable
  int nInformedAllVariables = 0;          // nodes where every variable is informed
  int nMasked = 0;                        // nodes left out of the simulation by the mask

  signed char flag(int v, int k) const { return entryFlag[static_cast<std::size_t>(v) * nxyz + k]; }
};

// Fills `prepared` (any previous content is replaced) from the input `si`, its
// training images `trainImage` (ntrainImage entries; an entry marked in
// simGridAsTiFlag is not read) and the working image `simImage`, conditioned
// and masked by NUVOSimIntegrateConditioningData. The input must have passed
// validation and the conditioning step (every training image has nvar
// variables, the mask is on the simulation grid). Returns 0, -552, -555, -556,
// -1 on allocation failure, -1000 on a stop request or the non-zero result of
// the callback after a warning.
int simPrepareData(const nuvo_simInput &si, std::span<const nuvo_image> trainImage,
                   const nuvo_image &simImage, PreparedData *prepared, nuvo_progressMonitor *pm,
                   nuvo_progressCallback callback);

// The entry flags alone (index v * nxyz + k): to simulate where the value is
// missing and the mask keeps the node, fixed elsewhere.
std::vector<signed char> entryFlags(const nuvo_simInput &si, const nuvo_image &simImage);

}  // namespace nuvo
