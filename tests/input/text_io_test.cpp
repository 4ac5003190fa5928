#include <gtest/gtest.h>

#include <array>
#include <string>

#include "input/text_io.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

using nuvo::test::printed;
using nuvo::test::TempStream;

constexpr std::array<const char *, 3> kColors{"COLOR_RED", "COLOR_GREEN", "COLOR_BLUE"};

TEST(TextRead, NumbersEndAtWhiteSpaceOrAComment) {
  TempStream s(" 42//note\n -7 +3 2.5e1/* c */-0.125 1.5");
  int i = 0;
  double d = 0.0;
  for (int expected : {42, -7, 3}) {
    ASSERT_EQ(nuvo::readInt(s.get(), &i, -10), 0);
    EXPECT_EQ(i, expected);
  }
  for (double expected : {25.0, -0.125, 1.5}) {
    ASSERT_EQ(nuvo::readDouble(s.get(), &d, -11), 0);
    EXPECT_EQ(d, expected);
  }
}

// A number that is only the start of its token is refused at the token, not
// read in part leaving the rest to the next field.
TEST(TextRead, ANumberMustFillItsWholeToken) {
  int i = 7;
  for (const char *text : {"1.0 2", "5e1 2", "1e308 2", "12x 2", "3/4 2"}) {
    TempStream s(text);
    EXPECT_EQ(nuvo::readInt(s.get(), &i, -10), -10) << text;
    EXPECT_EQ(std::ftell(s.get()), 0) << text;
  }
  EXPECT_EQ(i, 7);
  double d = 0.0;
  TempStream s("0.5x 1");
  EXPECT_EQ(nuvo::readDouble(s.get(), &d, -11), -11);
  EXPECT_EQ(std::ftell(s.get()), 0);
}

// Missing and malformed tokens give the field code in the parameter-file tests;
// here the values out of range, which leave the target untouched.
TEST(TextRead, ValuesOutOfRangeGiveTheFieldCode) {
  int i = 5;
  EXPECT_EQ(nuvo::readInt(TempStream("99999999999").get(), &i, -10), -10);
  EXPECT_EQ(i, 5);
  signed char flag = 0;
  EXPECT_EQ(nuvo::readFlag(TempStream("2").get(), &flag, -12), -12);
  ASSERT_EQ(nuvo::readFlag(TempStream("1").get(), &flag, -12), 0);
  EXPECT_EQ(flag, 1);
}

// The length limits of words are checked through the parameter file.
TEST(TextRead, ASlashNotStartingACommentStartsAWord) {
  char word[128];
  ASSERT_EQ(nuvo::readWord(TempStream("/x//c\n").get(), word, 127, -20, -21), 0);
  EXPECT_STREQ(word, "/x//c");
}

TEST(TextRead, KeywordsAreExactAndCaseSensitive) {
  TempStream s("COLOR_BLUE COLOR_green COLOR_RED.");
  int value = -1;
  ASSERT_EQ(nuvo::readKeyword(s.get(), kColors, &value, -30), 0);
  EXPECT_EQ(value, 2);
  EXPECT_EQ(nuvo::readKeyword(s.get(), kColors, &value, -30), -30);
  EXPECT_EQ(nuvo::readKeyword(s.get(), kColors, &value, -30), -30);
  EXPECT_STREQ(nuvo::keywordOf(kColors, 3), "unknown");
  EXPECT_STREQ(nuvo::keywordOf(kColors, -1), "unknown");
}

TEST(TextRead, ATokenThatFailsIsPutBackForTheCallerToLocate) {
  TempStream s("/* c */ x1 // c\n  12345 2 COLOR_PINK");
  int i = 0;
  char word[4];
  signed char flag = 0;
  EXPECT_EQ(nuvo::readInt(s.get(), &i, -10), -10);
  EXPECT_EQ(std::ftell(s.get()), 8);
  ASSERT_EQ(nuvo::readWord(s.get(), word, 3, -20, -21), 0);
  EXPECT_EQ(nuvo::readWord(s.get(), word, 3, -20, -21), -21);
  EXPECT_EQ(std::ftell(s.get()), 18);
  ASSERT_EQ(nuvo::readInt(s.get(), &i, -10), 0);
  EXPECT_EQ(nuvo::readFlag(s.get(), &flag, -12), -12);
  EXPECT_EQ(std::ftell(s.get()), 24);
  ASSERT_EQ(nuvo::readInt(s.get(), &i, -10), 0);
  EXPECT_EQ(nuvo::readKeyword(s.get(), kColors, &i, -30), -30);
  EXPECT_EQ(std::ftell(s.get()), 26);
}

// A record printer of the shape the nested helpers take.
int printPair(const int *pair, const char *prefix, FILE *stream) {
  std::fprintf(stream, "%sfirst: %d\n%ssecond: %d\n", prefix, pair[0], prefix, pair[1]);
  return pair[0] < 0 ? -7 : 0;
}

// The printed forms of the fields are checked in the simulation input's dump;
// here the code of a nested printer.
TEST(FieldPrinter, NestedPrintersPassTheirCodeOn) {
  const int good[2] = {1, 2}, bad[2] = {-1, 0};
  printed([&](FILE *f) {
    nuvo::FieldPrinter out(f, "");
    EXPECT_EQ(nuvo::printNested(out, "good", good, printPair), 0);
    EXPECT_EQ(nuvo::printNested(out, "bad", bad, printPair), -7);
  });
}

}  // namespace
