// Keyword tables of the enumerations of the simulation input, indexed by value.
// Their readers and printers (and the exporter of the parameter file) all take
// the keywords from here.
#pragma once

#include <array>

namespace nuvo {

inline constexpr std::array<const char *, 4> kOutputSimJobKeywords{
    "OUTPUT_SIM_NO_FILE", "OUTPUT_SIM_ALL_IN_ONE_FILE", "OUTPUT_SIM_ONE_FILE_PER_VARIABLE",
    "OUTPUT_SIM_ONE_FILE_PER_REALIZATION"};

inline constexpr std::array<const char *, 3> kNormalizingTypeKeywords{
    "NORMALIZING_LINEAR", "NORMALIZING_UNIFORM", "NORMALIZING_NORMAL"};

inline constexpr std::array<const char *, 3> kRescalingModeKeywords{
    "RESCALING_NONE", "RESCALING_MIN_MAX", "RESCALING_MEAN_LENGTH"};

inline constexpr std::array<const char *, 3> kPostProcessingParametersKeywords{
    "POST_PROCESSING_PARAMETERS_DEFAULT", "POST_PROCESSING_PARAMETERS_SAME",
    "POST_PROCESSING_PARAMETERS_MANUAL"};

inline constexpr std::array<const char *, 8> kRadiusModeKeywords{
    "SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT", "SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_DEFAULT",
    "SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE",      "SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XY",
    "SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XZ",   "SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_YZ",
    "SEARCHNEIGHBORHOOD_RADIUS_TI_RANGE_XYZ",  "SEARCHNEIGHBORHOOD_RADIUS_MANUAL"};

inline constexpr std::array<const char *, 7> kAnisotropyRatioModeKeywords{
    "SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE",
    "SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS",
    "SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XY",
    "SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XZ",
    "SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_YZ",
    "SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_RADIUS_XYZ",
    "SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_MANUAL"};

inline constexpr std::array<const char *, 2> kRotationKeywords{"SEARCHNEIGHBORHOOD_ROTATION_OFF",
                                                               "SEARCHNEIGHBORHOOD_ROTATION_ON"};

inline constexpr std::array<const char *, 2> kSimTypeKeywords{"SIM_ONE_BY_ONE",
                                                              "SIM_VARIABLE_VECTOR"};

inline constexpr std::array<const char *, 6> kPathTypeKeywords{"PATH_RANDOM",
                                                               "PATH_RANDOM_HD_DISTANCE_PDF",
                                                               "PATH_RANDOM_HD_DISTANCE_SORT",
                                                               "PATH_RANDOM_HD_DISTANCE_SUM_PDF",
                                                               "PATH_RANDOM_HD_DISTANCE_SUM_SORT",
                                                               "PATH_UNILATERAL"};

}  // namespace nuvo
