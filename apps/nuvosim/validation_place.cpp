#include "validation_place.hpp"

#include <functional>

#include "nuvo_searchneighborhood.h"

namespace nuvo::cli {

namespace {

struct Section {
  int first;
  int last;
  const char *heading;
};

// Validation codes by section of the parameter file, in the order of the file.
constexpr Section kSections[] = {
    {629, 629, "SIMULATION VARIABLES"},
    {645, 648, "SIMULATION VARIABLES"},
    {651, 652, "OUTPUT SETTINGS FOR SIMULATION"},
    {595, 598, "OUTPUT: ADDITIONAL MAPS"},
    {653, 653, "OUTPUT REPORT"},
    {654, 657, "TRAINING IMAGE"},
    {1650, 1660, "TRAINING IMAGE (pdf of the training images)"},
    {1701, 1799, "HOMOTHETY"},
    {1801, 1899, "ROTATION"},
    {1151, 1151, "CONSISTENCY OF CONDITIONING DATA"},
    {1155, 1155, "NORMALIZATION TYPE"},
    {680, 689, "SEARCH NEIGHBORHOOD PARAMETERS"},
    {663, 664, "MAXIMAL NUMBER OF NEIGHBORING NODES"},
    {665, 666, "MAXIMAL DENSITY OF NEIGHBORING NODES"},
    {2130, 2142, "RESCALING MODE"},
    {710, 710, "RELATIVE DISTANCE FLAG"},
    {667, 669, "DISTANCE TYPE"},
    {670, 670, "WEIGHT FACTOR FOR CONDITIONING DATA"},
    {705, 705, "SIMULATION TYPE"},
    {706, 709, "SIMULATION PATH"},
    {672, 673, "DISTANCE THRESHOLD"},
    {1901, 1999, "PROBABILITY CONSTRAINTS"},
    {2090, 2119, "CONNECTIVITY CONSTRAINTS"},
    {2920, 3075, "BLOCK DATA"},
    {674, 675, "MAXIMAL SCAN FRACTION"},
    {734, 735, "MAXIMAL SCAN FRACTION"},
    {3501, 3691, "PYRAMIDS"},
    {676, 677, "TOLERANCE"},
    {1661, 1677, "POST-PROCESSING"},
    {678, 678, "NUMBER OF REALIZATION(S)"},
    {627, 628, "TRAINING IMAGE or CONDITIONING DATA"},
};

// The first variable for which `broken` holds, or -1.
int firstVariable(const nuvo_simInput &si, const std::function<bool(int)> &broken) {
  for (int v = 0; v < si.nvar; ++v)
    if (broken(v)) return v;
  return -1;
}

bool outside(double value, double low, double high) {
  return !(value >= low && value <= high);
}

// The variable whose value of a per-variable list breaks the rule of `code`, or
// -1; `post` when it is the post-processing list that breaks it.
int variableOf(int code, const nuvo_simInput &si, bool &post) {
  const auto pick = [&](const auto *main, const auto *postList, double low, double high) {
    int v = main ? firstVariable(si, [&](int k) { return outside(main[k], low, high); }) : -1;
    if (v < 0 && postList != nullptr && si.npostProcessingPathMax > 0) {
      v = firstVariable(si, [&](int k) { return outside(postList[k], low, high); });
      post = v >= 0;
    }
    return v;
  };
  switch (code) {
    case 663:
    case 664:
      return pick(si.nneighboringNode, si.postProcessingNneighboringNode, 1, 1000);
    case 665:
    case 666:
      return pick(si.neighboringNodeDensity, si.postProcessingNeighboringNodeDensity, 1e-6, 1);
    case 672:
    case 673:
      return pick(si.distanceThreshold, si.postProcessingDistanceThreshold, 1e-6, 1);
    case 667:
      return firstVariable(si,
                           [&](int v) { return static_cast<unsigned>(si.distanceType[v]) > 4; });
    case 668:
    case 669:
      return firstVariable(si, [&](int v) { return si.distanceType[v] == 3; });
    case 710:
      return firstVariable(
          si, [&](int v) { return si.distanceType[v] == 0 && si.relativeDistanceFlag[v]; });
    case 670:
      return firstVariable(si, [&](int v) { return !(si.conditioningWeightFactor[v] > 0.0); });
    default:
      if (code >= 680 && code <= 689) {
        return firstVariable(si, [&](int v) {
          int error = 0;
          NUVOValidateSearchNeighborhoodParameters(&si.searchNeighborhoodParameters[v], &error);
          return error != 0;
        });
      }
      return -1;
  }
}

// The training image whose scan fraction breaks the rule of `code`, or -1.
int trainImageOf(int code, const nuvo_simInput &si) {
  if (code != 674 && code != 675 && code != 734 && code != 735) return -1;
  for (int t = 0; si.maxScanFraction != nullptr && t < si.ntrainImage; ++t)
    if (outside(si.maxScanFraction[t], 1e-6, 1.0)) return t;
  return -1;
}

}  // namespace

std::string validationPlace(int rc, const nuvo_simInput &input) {
  const int code = -rc;
  for (const Section &section : kSections) {
    if (code < section.first || code > section.last) continue;
    bool post = false;
    std::string place = section.heading;
    const int v = input.simImage != nullptr ? variableOf(code, input, post) : -1;
    if (post) place = std::string("POST-PROCESSING (") + section.heading + ")";
    if (v >= 0) place += std::string(", variable ") + input.simImage->varName[v];
    const int t = trainImageOf(code, input);
    if (t >= 0) place += ", training image " + std::to_string(t);
    return place;
  }
  return {};
}

}  // namespace nuvo::cli
