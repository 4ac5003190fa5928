#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

#include "nuvo_imagefile.h"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::FullStream;
using nuvo::test::TempStream;

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
      {"two", -771},
      {"2\n", -772},
      {"2 -4", -630},
      {"2\n2\nx y\n", -630},
      {"0\n4\nx y z v\n", -3},
      {"-5\n4\nx y z v\n", -3},
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
  for (const char *rows : {"1 2 3 4\n5 6 7", "1 2 3 4\n5 6 7 x", "1 2 3 4 5 6 - 8", ""}) {
    PointSet ps;
    EXPECT_EQ(readPoints(ps, std::string("2 4\nx y z v\n") + rows), -731) << rows;
  }
  PointSet huge;
  EXPECT_EQ(readPoints(huge, "100000000 4\nx y z v\n1 2 3 4\n"), -731);
  EXPECT_EQ(huge->x, nullptr);
}

TEST(PointSetFile, WritesOneRowPerPointWithItsFormats) {
  PointSet ps;
  ASSERT_EQ(NUVOMallocPointSet(&ps.ps, 2, 3), 0);
  const double coords[] = {1.25, -2.7, 0.0};
  for (int k = 0; k < 2; ++k) {
    ps->x[k] = coords[0] + k;
    ps->y[k] = coords[1] - k;
    ps->z[k] = coords[2];
  }
  const char *names[] = {"a", "b", "c"};
  for (int iv = 0; iv < 3; ++iv) std::strcpy(ps->varName[iv], names[iv]);
  const double values[] = {2.7, -2.7, 0.5, 1.5, 7.9, NUVO_MISSING_VALUE};
  std::copy(std::begin(values), std::end(values), ps->val);

  TempStream file;
  ASSERT_EQ(NUVOWritePointSet(&ps.ps, "%.1f;;%d", ";%i;%.2f", file.get()), 0);
  EXPECT_EQ(file.contents(),
            "2\n6\nx\ny\nz\na\nb\nc\n"
            "1.2 -2 0.0 2 0.50 7\n"
            "2.2 -3 0.0 -2 1.50 -9999999\n");
}

TEST(PointSetFile, FormatsAreCheckedBeforeWriting) {
  PointSet ps;
  ASSERT_EQ(NUVOMallocPointSet(&ps.ps, 1, 1), 0);
  ps->x[0] = ps->y[0] = ps->z[0] = ps->val[0] = 1.0;
  std::strcpy(ps->varName[0], "v");
  for (auto [coord, var] : {std::pair<const char *, const char *>{"", "%g"},
                            {"%g", ";;"},
                            {nullptr, "%g"},
                            {"%g", "%s"}}) {
    TempStream file;
    EXPECT_EQ(NUVOWritePointSet(&ps.ps, coord, var, file.get()), -1021);
    EXPECT_EQ(file.contents(), "");
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
  ASSERT_EQ(copy->npoint, original->npoint);
  ASSERT_EQ(copy->nvar, original->nvar);
  for (int iv = 0; iv < copy->nvar; ++iv) EXPECT_STREQ(copy->varName[iv], original->varName[iv]);
  auto bits = [](const double *v, int n) {
    return std::string(reinterpret_cast<const char *>(v), static_cast<std::size_t>(n) * 8);
  };
  EXPECT_EQ(bits(copy->x, 2), bits(original->x, 2));
  EXPECT_EQ(bits(copy->y, 2), bits(original->y, 2));
  EXPECT_EQ(bits(copy->z, 2), bits(original->z, 2));
  EXPECT_EQ(bits(copy->val, 4), bits(original->val, 4));
}

}  // namespace
