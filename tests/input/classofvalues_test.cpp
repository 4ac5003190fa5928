#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nuvo_classofvalues.h"
#include "tests/support/temp_stream.hpp"
#include "tests/support/verdict.hpp"

namespace {

using nuvo::test::printed;
using nuvo::test::TempStream;

class ClassOfValuesTest : public ::testing::Test {
 protected:
  void SetUp() override { NUVOInitClassOfValues(&c_); }
  void TearDown() override { NUVOFreeClassOfValues(&c_); }

  // Reads classes given in the text form; fails the test on a reading error.
  void read(const std::string &text) {
    ASSERT_EQ(NUVOReadClassOfValues(&c_, TempStream(text).get()), 0);
  }

  int validate() { return nuvo_test::verdictOf(NUVOValidateClassOfValues, &c_); }

  nuvo_classOfValues c_;
};

// The copy is exercised by every conversion of a record holding classes.
TEST_F(ClassOfValuesTest, ReadsAndPrints) {
  read("2 // classes\n 2 0 1 /* second */ 3 4.5\n 1 -1 0\n");
  EXPECT_EQ(validate(), 0);
  std::string text = printed([&](FILE *f) { EXPECT_EQ(NUVOPrintClassOfValues(&c_, "# ", f), 0); });
  EXPECT_EQ(
      text,
      "# nclass:   2\n"
      "# class   0: ninterval =   2, class = [  0.000000,   1.000000[ U [  3.000000,   4.500000[\n"
      "# class   1: ninterval =   1, class = [ -1.000000,   0.000000[\n");
}

TEST_F(ClassOfValuesTest, ReadingErrorsNameTheField) {
  struct Case {
    const char *text;
    int code;
  };
  for (const Case &k :
       {Case{"1001", -4035}, Case{"-1", -4035}, Case{"1 1001", -4036}, Case{"2 1 0 1 z", -4036}}) {
    nuvo_classOfValues c;
    NUVOInitClassOfValues(&c);
    EXPECT_EQ(NUVOReadClassOfValues(&c, TempStream(k.text).get()), k.code) << k.text;
    NUVOFreeClassOfValues(&c);  // partly filled records are released cleanly
  }
}

// Overlapping intervals inside one class and touching intervals in two are
// accepted; the same intervals in two classes and the three ways of overlapping
// are not.
TEST_F(ClassOfValuesTest, OverlapIsRefusedAcrossClassesOnly) {
  const auto verdictOf = [&](const char *text) {
    read(text);
    const int verdict = validate();
    NUVOFreeClassOfValues(&c_);
    return verdict;
  };
  for (const char *text : {"1 2 0 2 1 3", "2 1 0 2 1 2 3"}) EXPECT_EQ(verdictOf(text), 0) << text;
  for (const char *text :
       {"2 1 0 2 1 1 3", "2 1 0 2 1 -1 1", "2 1 0 2 1 -1 3", "2 1 0 4 1 1 2", "2 1 0 4 1 0 4"})
    EXPECT_EQ(verdictOf(text), -4046) << text;
}

// The reader refuses 1001 intervals; an in-memory record gets the validation code.
TEST_F(ClassOfValuesTest, ValidationFollowsItsOrder) {
  read("0");  // no class is read but does not validate
  EXPECT_EQ(validate(), -4041);
  c_.nclass = 1001;
  EXPECT_EQ(validate(), -4042);
  c_.nclass = 1;
  EXPECT_EQ(validate(), -4047);

  std::vector<double> inf(1001), sup(1001);
  int ninterval[1] = {1};
  double *infs[1] = {inf.data()};
  double *sups[1] = {sup.data()};
  inf[0] = 1.0;
  c_.ninterval = ninterval;
  EXPECT_EQ(validate(), -4048);
  c_.intervalInf = infs;
  EXPECT_EQ(validate(), -4049);
  c_.intervalSup = sups;
  EXPECT_EQ(validate(), -4045);
  ninterval[0] = 0;
  EXPECT_EQ(validate(), -4043);
  inf[0] = 0.0;
  ninterval[0] = 1001;
  EXPECT_EQ(validate(), -4044);
  ninterval[0] = 1000;
  for (int k = 0; k < 1000; ++k) inf[k] = k, sup[k] = k + 1;
  EXPECT_EQ(validate(), 0);
  NUVOInitClassOfValues(&c_);  // the arrays above belong to the test
}

TEST_F(ClassOfValuesTest, LinearTransformMapsEveryBound) {
  read("2 1 0 1 2 1 2 3 4");
  ASSERT_EQ(NUVOTransformLinearClassOfValues(&c_, 2.0, 1.0), 0);
  EXPECT_EQ(c_.intervalInf[0][0], 1.0);
  EXPECT_EQ(c_.intervalSup[0][0], 3.0);
  EXPECT_EQ(c_.intervalInf[1][1], 7.0);
  EXPECT_EQ(c_.intervalSup[1][1], 9.0);
  // A negative factor swaps the images of the bounds so intervals stay ordered.
  ASSERT_EQ(NUVOTransformLinearClassOfValues(&c_, -1.0, 0.0), 0);
  EXPECT_EQ(c_.intervalInf[0][0], -3.0);
  EXPECT_EQ(c_.intervalSup[0][0], -1.0);
  EXPECT_EQ(validate(), 0);
}

}  // namespace
