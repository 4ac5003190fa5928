// Keyword tables of the pyramid enumerations, indexed by value: the one spelling
// shared by the readers, the printers and the parameter-file writer.
#pragma once

namespace nuvo {

inline constexpr const char *kPyramidSimulationModeKeywords[] = {
    "PYRAMID_SIM_NONE", "PYRAMID_SIM_HIERARCHICAL", "PYRAMID_SIM_HIERARCHICAL_USING_EXPANSION",
    "PYRAMID_SIM_ALL_LEVEL_ONE_BY_ONE"};

inline constexpr const char *kPyramidNneighborFactorModeKeywords[] = {
    "PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_DEFAULT", "PYRAMID_NNEIGHBOR_ADAPTING_FACTOR_MANUAL"};

inline constexpr const char *kPyramidThresholdFactorModeKeywords[] = {
    "PYRAMID_THRESHOLD_ADAPTING_FACTOR_DEFAULT", "PYRAMID_THRESHOLD_ADAPTING_FACTOR_MANUAL"};

inline constexpr const char *kPyramidMaxScanFractionFactorModeKeywords[] = {
    "PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_DEFAULT",
    "PYRAMID_MAX_SCAN_FRACTION_ADAPTING_FACTOR_MANUAL"};

inline constexpr const char *kPyramidTypeKeywords[] = {
    "PYRAMID_NONE", "PYRAMID_CONTINUOUS", "PYRAMID_CATEGORICAL_AUTO", "PYRAMID_CATEGORICAL_CUSTOM",
    "PYRAMID_CATEGORICAL_TO_CONTINUOUS"};

}  // namespace nuvo
