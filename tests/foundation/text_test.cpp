#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "nuvo_compare.h"
#include "nuvo_text.h"
#include "tests/support/temp_stream.hpp"

namespace {

using nuvo::test::TempStream;

// Skips blanks, line comments and block comments (stars inside included), keeps
// a slash that starts no comment, and reports the end of the stream.
TEST(SkipComments, StopsBeforeTheFirstSignificantCharacter) {
  struct Case {
    const char *text;
    int code;
    const char *rest;
  };
  for (const Case &c : {Case{"  // note\n/* block\n spread */\t\r\n42 rest", 0, "42 rest"},
                        Case{"/** x **/ /5", 0, "/5"}, Case{"/* never closed", -999, ""},
                        Case{"  \n// last line", -999, ""}, Case{"", -999, ""}}) {
    SCOPED_TRACE(c.text);
    TempStream s(c.text);
    EXPECT_EQ(NUVOSkipComments(s.get()), c.code);
    std::string rest;
    for (int ch = std::fgetc(s.get()); ch != EOF; ch = std::fgetc(s.get())) rest += char(ch);
    EXPECT_EQ(rest, c.rest);
  }
}

// The last digits, zero padded; a negative value gives x's, a negative length
// leaves the text alone.
TEST(IntToString, WritesTheLastDigitsZeroPadded) {
  struct Case {
    int value, length;
    const char *text;
  };
  for (const Case &c : {Case{7, 3, "007"}, Case{12345, 3, "345"}, Case{-3, 4, "xxxx"},
                        Case{2147483647, 10, "2147483647"}, Case{5, 0, ""}, Case{5, -1, "keep"}}) {
    char text[16] = "keep";
    NUVOIntToString(c.value, text, c.length);
    EXPECT_STREQ(text, c.text) << c.value << " " << c.length;
  }
  EXPECT_EQ(std::string(
                {NUVODigitToChar(0), NUVODigitToChar(9), NUVODigitToChar(10), NUVODigitToChar(-1)}),
            "09xx");
}

// "All" compares the index then the value, the others the value only; a NaN
// compares equal to anything.
TEST(Comparators, SortAscendingAndCompareLexicographically) {
  nuvo_infoIntValue r[] = {{2, 5}, {1, 5}, {0, 9}};
  std::qsort(r, 3, sizeof r[0], NUVOCmpInfoIntValueAll);
  EXPECT_EQ(std::vector<int>({r[0].index, r[1].index, r[2].index}), std::vector<int>({0, 1, 2}));
  EXPECT_EQ(NUVOCmpInfoIntValue(&r[1], &r[2]), 0);
  double nan = std::nan(""), one = 1.0;
  EXPECT_EQ(NUVOCmpReal(&nan, &one), 0);
  const double u[] = {1, 2, 3}, v[] = {1, 2, 4};
  EXPECT_EQ(NUVOCmpVectorOfReal(u, v, 3), -1);
  EXPECT_EQ(NUVOCmpVectorOfReal(u, v, 2), 0);
  const int8_t a[] = {1, -2}, b[] = {1, -3};
  EXPECT_EQ(NUVOCmpVectorOfClassId(a, b, 2), 1);
}

}  // namespace
