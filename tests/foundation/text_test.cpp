#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "nuvo_compare.h"
#include "nuvo_text.h"
#include "tests/support/temp_stream.hpp"

namespace {

using nuvo::test::TempStream;

TEST(SkipComments, StopsBeforeTheFirstSignificantCharacter) {
  TempStream s("  // note\n/* block\n spread */\t\r\n42 rest");
  ASSERT_EQ(NUVOSkipComments(s.get()), 0);
  int value = 0;
  ASSERT_EQ(std::fscanf(s.get(), "%d", &value), 1);
  EXPECT_EQ(value, 42);
}

TEST(SkipComments, KeepsALoneSlashAndHandlesStarsInsideBlocks) {
  TempStream s("/** x **/ /5");
  ASSERT_EQ(NUVOSkipComments(s.get()), 0);
  EXPECT_EQ(std::fgetc(s.get()), '/');
  EXPECT_EQ(std::fgetc(s.get()), '5');
}

TEST(SkipComments, ReportsTheEndOfTheStream) {
  EXPECT_EQ(NUVOSkipComments(TempStream("/* never closed").get()), -999);
  EXPECT_EQ(NUVOSkipComments(TempStream("  \n// last line").get()), -999);
  EXPECT_EQ(NUVOSkipComments(TempStream("").get()), -999);
}

TEST(IntToString, WritesTheLastDigitsZeroPadded) {
  char text[16];
  NUVOIntToString(7, text, 3);
  EXPECT_STREQ(text, "007");
  NUVOIntToString(12345, text, 3);
  EXPECT_STREQ(text, "345");
  NUVOIntToString(-3, text, 4);
  EXPECT_STREQ(text, "xxxx");
  NUVOIntToString(2147483647, text, 10);
  EXPECT_STREQ(text, "2147483647");
  NUVOIntToString(5, text, 0);
  EXPECT_STREQ(text, "");
  std::strcpy(text, "keep");
  NUVOIntToString(5, text, -1);
  EXPECT_STREQ(text, "keep");
}

TEST(DigitToChar, MapsDigitsAndMarksTheRest) {
  EXPECT_EQ(NUVODigitToChar(0), '0');
  EXPECT_EQ(NUVODigitToChar(9), '9');
  EXPECT_EQ(NUVODigitToChar(10), 'x');
  EXPECT_EQ(NUVODigitToChar(-1), 'x');
}

TEST(Comparators, SortAscendingAndCompareLexicographically) {
  nuvo_infoIntValue r[] = {{2, 5}, {1, 5}, {0, 9}};
  std::qsort(r, 3, sizeof r[0], NUVOCmpInfoIntValueAll);
  EXPECT_EQ(r[0].index, 0);
  EXPECT_EQ(r[2].index, 2);
  EXPECT_EQ(NUVOCmpInfoIntValue(&r[1], &r[2]), 0);

  double nan = std::nan("");
  double one = 1.0;
  EXPECT_EQ(NUVOCmpReal(&nan, &one), 0);
  nuvo_infoDouValue d[] = {{0, 2.5}, {1, -1.0}};
  EXPECT_EQ(NUVOCmpInfoDouValue(&d[0], &d[1]), 1);

  const double u[] = {1, 2, 3}, v[] = {1, 2, 4};
  EXPECT_EQ(NUVOCmpVectorOfReal(u, v, 3), -1);
  EXPECT_EQ(NUVOCmpVectorOfReal(u, v, 2), 0);
  EXPECT_EQ(NUVOCmpVectorOfReal(u, v, 0), 0);
  const int8_t a[] = {1, -2}, b[] = {1, -3};
  EXPECT_EQ(NUVOCmpVectorOfClassId(a, b, 2), 1);
}

}  // namespace
