// Keyword tables of the pyramid enumerations, indexed by value: the one spelling
// shared by the readers, the printers and the parameter-file writer.
#pragma once

#include <array>

namespace nuvo {

inline constexpr std::array<const char *, 4> kPyramidSimulationModeKeywords{
    "PYRAMID_SIM_NONE", "PYRAMID_SIM_HIERARCHICAL", "PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION",
    "PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE"};

inline constexpr std::array<const char *, 2> kPyramidNneighborFactorModeKeywords{
    "PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_DEFAULT", "PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL"};

inline constexpr std::array<const char *, 2> kPyramidThresholdFactorModeKeywords{
    "PYRAMID_THRESHOLD_ADAPTING_FACTOR_DEFAULT", "PYRAMID_THRESHOLD_ADAPTING_FACTOR_MANUAL"};

inline constexpr std::array<const char *, 2> kPyramidMaxScanFractionFactorModeKeywords{
    "PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_DEFAULT",
    "PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_MANUAL"};

inline constexpr std::array<const char *, 5> kPyramidTypeKeywords{
    "PYRAMID_NONE", "PYRAMID_CONTINUOUS", "PYRAMID_CATEGORICAL_AUTO", "PYRAMID_CATEGORICAL_CUSTOM",
    "PYRAMID_CATEGORICAL_TO_CONTINUOUS"};

}  // namespace nuvo
