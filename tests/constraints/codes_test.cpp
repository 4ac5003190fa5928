// Every code that the constraint records return has a message of its own.
#include <gtest/gtest.h>

#include <string>

#include "nuvo_error.h"

namespace {

constexpr int kCodes[] = {
    // probability constraints: reading, conversion, validation
    920, 930, 935, 936, 940, 945, 950, 955, 960, 965, 966, 967, 970, 120, 1920, 1921, 1922, 1931,
    1932, 1933, 1941, 1951, 1961, 1971, 1975, 1977, 1980, 1981, 1982, 1985, 1991, 1995, 1996, 1997,
    1999,
    // connectivity constraints
    2110, 2111, 2112, 2113, 2114, 2115, 2116, 2117, 2118, 2119, 121, 135, 136, 137, 2091, 2092,
    2093, 2094, 2096, 2097, 2098, 2099, 2100, 2101, 2102,
    // block data
    3001, 3006, 2980, 2960, 2920, 2941, 2942, 2951, 2952, 2953, 2954};

TEST(ConstraintCodesTest, EveryCodeHasAMessage) {
  for (int code : kCodes) {
    const std::string text = NUVOGetErrorMessage(code);
    EXPECT_NE(text, "ERROR: unknown\n") << code;
  }
  // The text of 2953 states the converse of the rule it refuses, and is kept so.
  EXPECT_STREQ(NUVOGetErrorMessage(2953),
               "ERROR 02953: block data: activatePropMin less than activatePropMax in one block\n");
  EXPECT_STREQ(NUVOGetWarningMessage(120),
               "WARNING 00120: use of local probability constraint: deactivation distance greater "
               "or equal to support radius for local pdf\n");
}

}  // namespace
