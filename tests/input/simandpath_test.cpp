#include <gtest/gtest.h>

#include <string>

#include "nuvo_simandpath.h"
#include "tests/support/temp_stream.hpp"
#include "tests/support/verdict.hpp"

namespace {

using nuvo::test::TempStream;

class SimAndPathTest : public ::testing::Test {
 protected:
  void SetUp() override { NUVOInitSimAndPathParameters(&p_); }
  void TearDown() override { NUVOFreeSimAndPathParameters(&p_); }
  int read(const std::string &text) {
    NUVOFreeSimAndPathParameters(&p_);
    return NUVOReadSimAndPathParameters(&p_, TempStream(text).get());
  }
  int error() { return nuvo_test::verdictOf(NUVOValidateSimAndPathParameters, &p_); }
  nuvo_simAndPathParameters p_;
};

TEST_F(SimAndPathTest, ReadsTheParametersOfEachPathAndType) {
  ASSERT_EQ(read("SIM_VARIABLE_VECTOR PATH_RANDOM"), 0);
  EXPECT_EQ(p_.simType, SIM_VARIABLE_VECTOR);
  EXPECT_EQ(p_.unilateralOrder, nullptr);
  ASSERT_EQ(read("SIM_ONE_BY_ONE PATH_RANDOM_HD_DISTANCE_SUM_PDF 2 /* s */ 0.25"), 0);
  EXPECT_EQ(p_.pow, 2.0);
  EXPECT_EQ(p_.strength, 0.25);
  EXPECT_EQ(error(), 0);
  // A vector path orders three axes, a one-by-one path four (x, y, z, variable).
  ASSERT_EQ(read("SIM_VARIABLE_VECTOR PATH_UNILATERAL 0 0 1"), 0);
  EXPECT_EQ(p_.nunilateralOrder, 3);
  EXPECT_EQ(error(), 0);
}

// The parameter-file tests give every other field its code.
TEST_F(SimAndPathTest, ReadingErrorsOfTheHardDataPathsNameTheirField) {
  EXPECT_EQ(read("SIM_ONE_BY_ONE PATH_RANDOM_HD_DISTANCE_PDF"), -893);
  EXPECT_EQ(read("SIM_ONE_BY_ONE PATH_RANDOM_HD_DISTANCE_SUM_SORT 1"), -893);
  EXPECT_EQ(read("SIM_ONE_BY_ONE PATH_RANDOM_HD_DISTANCE_SUM_SORT s"), -894);
}

TEST_F(SimAndPathTest, ValidationFollowsItsOrder) {
  p_.simType = 2;
  p_.pathType = 6;
  EXPECT_EQ(error(), -705);
  p_.simType = SIM_ONE_BY_ONE;
  EXPECT_EQ(error(), -706);
  // pow is checked before the strength, for the summed-distance paths only.
  p_.pathType = PATH_RANDOM_HD_DISTANCE_SUM_PDF;
  p_.strength = 2.0;
  EXPECT_EQ(error(), -709);
  p_.pow = 10.5;
  EXPECT_EQ(error(), -709);
  p_.pow = 10.0;
  EXPECT_EQ(error(), -708);
  p_.pathType = PATH_RANDOM_HD_DISTANCE_PDF;
  p_.pow = 0.0;
  EXPECT_EQ(error(), -708);
  p_.strength = 1.0;
  EXPECT_EQ(error(), 0);
  p_.pathType = PATH_RANDOM;
  p_.strength = -1.0;
  EXPECT_EQ(error(), 0);
  p_.pathType = PATH_UNILATERAL;
  EXPECT_EQ(error(), -707);  // no order at all
}

TEST_F(SimAndPathTest, UnilateralRanksAreDistinctAndBounded) {
  struct Case {
    const char *order;
    int error;
  };
  for (const Case &k : {Case{"0 0 0 0", 0}, Case{"2 1 -3 4", 0}, Case{"1 -1 0 0", -707},
                        Case{"2 0 0 0", -707}, Case{"1 2 3 5", -707}}) {
    ASSERT_EQ(read(std::string("SIM_ONE_BY_ONE PATH_UNILATERAL ") + k.order), 0);
    EXPECT_EQ(error(), k.error) << k.order;
  }
  // The order must have the length of the simulation type.
  ASSERT_EQ(read("SIM_ONE_BY_ONE PATH_UNILATERAL 1 2 3 0"), 0);
  p_.simType = SIM_VARIABLE_VECTOR;
  EXPECT_EQ(error(), -707);
}

}  // namespace
