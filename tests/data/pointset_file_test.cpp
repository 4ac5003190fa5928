#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "nuvo_imagefile.h"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::FullStream;
using nuvo::test::TempStream;
using nuvo::test::TestPointSet;

using PointSet = nuvo::test::EmptyPointSet;

int readPoints(PointSet &ps, const std::string &content) {
  TempStream file(content);
  return NUVOReadPointSet(&ps.ps, file.get());
}

const char *const kTwoPoints =
    "2\n5\nX\nY\nZ\nfacies\nporosity\n"
    "1.5 2 3 1 0.25\n"
    "-4 5 6e1 -9999999 0.5\n";

TEST(PointSetFile, ReadsVariablesByColumnWhateverTheCoordinateNames) {
  PointSet ps;
  ASSERT_EQ(readPoints(ps, kTwoPoints), 0);
  ASSERT_EQ(ps->nvar, 2);
  EXPECT_STREQ(ps->varName[1], "porosity");
  EXPECT_EQ(ps->z[1], 60.0);
  const double values[] = {1.0, NUVO_MISSING_VALUE, 0.25, 0.5};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(ps->val[i], values[i]);

  PointSet coordinatesOnly;
  ASSERT_EQ(readPoints(coordinatesOnly, "1 3 x_utm y z_depth 1 2 3"), 0);
  EXPECT_EQ(coordinatesOnly->nvar, 0);
  // Coordinate names may be long; a variable name up to 127 characters.
  const std::string name(127, 'v');
  PointSet longNames;
  ASSERT_EQ(
      readPoints(longNames, "1 4\nx" + std::string(200, '_') + " y z " + name + "\n1 2 3 4\n"), 0);
  EXPECT_EQ(std::string(longNames->varName[0]), name);
}

TEST(PointSetFile, HeaderFailures) {
  const std::string longName(128, 'v');
  struct Case {
    std::string content;
    int code;
  };
  const Case cases[] = {
      {"", -771},
      {"2\n", -772},
      {"2 -4", -630},
      {"0\n4\nx y z v\n", -3},
      {"1000000 3000\nx y z\n", -772},
      {"1 4\n", -773},
      {"1 4\neast north depth v\n1 2 3 4\n", -631},
      {"1 4\nx\n", -774},
      {"1 4\nx north z v\n1 2 3 4\n", -632},
      {"1 4\nx y\n", -775},
      {"1 4\nx y depth v\n1 2 3 4\n", -633},
      {"1 5\nx y z v\n", -776},
      {"1 4\nx y z " + longName + "\n1 2 3 4\n", -777},
  };
  for (const Case &c : cases) {
    PointSet ps;
    EXPECT_EQ(readPoints(ps, c.content), c.code) << c.content.substr(0, 40);
  }
}

TEST(PointSetFile, MissingOrUnreadableNumbersGive731) {
  for (const char *rows : {"1 2 3 4\n5 6 7", "1 2 3 4 5 6 - 8"}) {
    PointSet ps;
    EXPECT_EQ(readPoints(ps, std::string("2 4\nx y z v\n") + rows), -731) << rows;
  }
  PointSet huge;
  EXPECT_EQ(readPoints(huge, "100000000 4\nx y z v\n1 2 3 4\n"), -731);
  EXPECT_EQ(huge->x, nullptr);
}

TEST(PointSetFile, WritesOneRowPerPointWithItsFormats) {
  TestPointSet ps({1.25, 2.25}, {-2.7, -3.7}, {0, 0}, {"a", "b", "c"},
                  {2.7, -2.7, 0.5, 1.5, 7.9, NUVO_MISSING_VALUE});
  TempStream file;
  ASSERT_EQ(NUVOWritePointSet(&ps.ps, "%.1f;;%d", ";%i;%.2f", file.get()), 0);
  EXPECT_EQ(file.contents(),
            "2\n6\nx\ny\nz\na\nb\nc\n"
            "1.2 -2 0.0 2 0.50 7\n"
            "2.2 -3 0.0 -2 1.50 -9999999\n");
  // Formats are checked before anything is written.
  for (auto [coord, var] : {std::pair<const char *, const char *>{"", "%g"},
                            {"%g", ";;"},
                            {nullptr, "%g"},
                            {"%g", "%s"}}) {
    TempStream refused;
    EXPECT_EQ(NUVOWritePointSet(&ps.ps, coord, var, refused.get()), -1021);
    EXPECT_EQ(refused.contents(), "");
  }
  FullStream full(5);
  EXPECT_EQ(NUVOWritePointSet(&ps.ps, "%g", "%g", full.get()), -110);
}

TEST(PointSetFile, RoundTripKeepsEveryNumber) {
  PointSet original;
  ASSERT_EQ(readPoints(original, kTwoPoints), 0);
  original->x[0] = 0.1;
  original->val[3] = 1e-300;
  TempStream file;
  ASSERT_EQ(NUVOWritePointSet(&original.ps, "%.17g", "%.17g", file.get()), 0);
  std::rewind(file.get());
  PointSet copy;
  ASSERT_EQ(NUVOReadPointSet(&copy.ps, file.get()), 0);
  ASSERT_EQ(copy->npoint, 2);
  ASSERT_EQ(copy->nvar, 2);
  EXPECT_STREQ(copy->varName[1], original->varName[1]);
  for (auto member : {&nuvo_pointSet::x, &nuvo_pointSet::y, &nuvo_pointSet::z})
    EXPECT_EQ(std::memcmp(copy.ps.*member, original.ps.*member, 2 * sizeof(double)), 0);
  EXPECT_EQ(std::memcmp(copy->val, original->val, 4 * sizeof(double)), 0);
}

}  // namespace
