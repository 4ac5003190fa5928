#include <gtest/gtest.h>

#include <string>

#include "nuvo_error.h"

namespace {

TEST(ErrorMessages, UnknownCodesGiveTheUnknownText) {
  for (int code : {0, -1, 13, 99997, 2147483647})
    EXPECT_STREQ(NUVOGetErrorMessage(code), "ERROR: unknown\n") << code;
}

TEST(ErrorMessages, TextsCarryThePaddedCodeAndALineFeed) {
  EXPECT_STREQ(NUVOGetErrorMessage(1), "ERROR 00001: memory allocation (malloc)\n");
  EXPECT_STREQ(NUVOGetErrorMessage(627), "ERROR 00627: invalid image (NaN encountered)\n");
}

TEST(WarningMessages, TwentySixAndTwentySevenAreCrossed) {
  EXPECT_STREQ(NUVOGetWarningMessage(25),
               "WARNING 00025: search neighborhood: radius in x-direction has been reduced\n");
  EXPECT_STREQ(NUVOGetWarningMessage(26),
               "WARNING 00027: search neighborhood: radius in z-direction has been reduced\n");
  EXPECT_STREQ(NUVOGetWarningMessage(27),
               "WARNING 00026: search neighborhood: radius in y-direction has been reduced\n");
  EXPECT_STREQ(NUVOGetWarningMessage(28), "WARNING: unknown\n");
  EXPECT_STREQ(NUVOGetWarningMessage(0), "WARNING: unknown\n");
}

}  // namespace
