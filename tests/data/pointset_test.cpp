#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "nuvo_imagefile.h"
#include "nuvo_pointset.h"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::FullStream;
using nuvo::test::imageValues;
using nuvo::test::kMissing;
using nuvo::test::makeGrid;
using nuvo::test::TempStream;
using nuvo::test::TestImage;
using nuvo::test::TestPointSet;
using PointSet = nuvo::test::EmptyPointSet;

// Node index along x of points on the x axis of a 4 x 1 x 1 grid of unit cells
// starting at `ox` (-1 outside).
std::vector<int> nodesAlongX(const std::vector<double> &x, double ox = 0.0) {
  const std::vector<double> zero(x.size(), 0.5);
  TestPointSet p(x, zero, zero, {"v"}, std::vector<double>(x.size(), 1.0));
  nuvo_grid g = makeGrid(4, 1, 1);
  g.ox = ox;
  std::vector<int> index(x.size(), -7);
  EXPECT_EQ(NUVOGetIndexInGridForPointSet(&p.ps, &g, index.data(), 1), 0);
  return index;
}

// Both grid ends belong to the grid; a half-way point goes to the node nearer the
// origin (t = x - 0.5: 1.5 ties between nodes 1 and 2, a hair more goes to node 2).
TEST(PointNode, GridEndsAndTiesAlongX) {
  EXPECT_EQ(nodesAlongX({0.0, 4.0, -1e-9, 4.0 + 1e-9, 2.0, 2.0000001, 1.0, 0.5}),
            std::vector<int>({0, 3, -1, -1, 1, 2, 0, 0}));
  EXPECT_EQ(nodesAlongX({-2.0, 2.0, 2.0000001}, -2.0), std::vector<int>({0, 3, -1}));
}

TEST(PointNode, GivesNodeCoordinatesAndIndicesOnEveryAxis) {
  TestPointSet p({0.1, 2.9, 9.0}, {3.9, 0.0, 0.0}, {1.5, 0.2, 0.0}, {"v"}, {1, 2, 3});
  const nuvo_grid g = makeGrid(3, 4, 2);
  int ix[3], iy[3], iz[3], index[3];
  ASSERT_EQ(NUVOGetXYZIndexInGridForPointSet(&p.ps, &g, ix, iy, iz, 1), 0);
  EXPECT_EQ(std::vector<int>({ix[0], iy[0], iz[0]}), std::vector<int>({0, 3, 1}));
  EXPECT_EQ(std::vector<int>({ix[1], iy[1], iz[1]}), std::vector<int>({2, 0, 0}));
  EXPECT_EQ(std::vector<int>({ix[2], iy[2], iz[2]}), std::vector<int>({-1, -1, -1}));
  ASSERT_EQ(NUVOGetIndexInGridForPointSet(&p.ps, &g, index, 1), 0);
  EXPECT_EQ(std::vector<int>(index, index + 3), std::vector<int>({0 + 3 * 3 + 12 * 1, 2, -1}));
  EXPECT_EQ(NUVOGetIndexInGridForPointSet(&p.ps, &g, index, 0), -161);
  EXPECT_EQ(NUVOGetXYZIndexInGridForPointSet(&p.ps, &g, ix, iy, iz, 0), -161);
}

TEST(PointSetValidate, ReportsTheFirstFailure) {
  TestPointSet p({0}, {0}, {0}, {"a", "b"}, {1, 2});
  const auto verdict = [&p] {
    int v = 1;
    NUVOValidatePointSet(&p.ps, &v);
    return v;
  };
  EXPECT_EQ(verdict(), 0);
  std::strcpy(p.ps.varName[1], "a");
  EXPECT_EQ(verdict(), -644);
  std::memset(p.ps.varName[0], 'n', 128);  // no terminating zero in the slot
  EXPECT_EQ(verdict(), -643);
  p.ps.nvar = 101;
  EXPECT_EQ(verdict(), -642);
  p.ps.nvar = 0;
  EXPECT_EQ(verdict(), -641);
  p.ps.nvar = 2;
}

// Point set to image ----------------------------------------------------------

struct Counts {
  int ignored = -1, outside = -1, conflict = -1;
};

int toImage(const nuvo_pointSet &ps, nuvo_image &image, int mode, Counts &c,
            int ignoreUnknownVar = 1, int ignoreOutside = 1) {
  return NUVOPointSetToImage(&ps, &image, ignoreUnknownVar, ignoreOutside, mode, &c.ignored,
                             &c.outside, &c.conflict);
}

TEST(PointSetToImage, ResolvesTwoPointsInOneNodeByMode) {
  // Points 0 and 1 share node 1; point 2 lands on a node the image already holds.
  const std::vector<double> x = {1.2, 1.8, 2.5};
  const std::vector<double> yz = {0.5, 0.5, 0.5};
  TestPointSet p(x, yz, yz, {"a"}, {10, 20, 30});
  struct Case {
    int mode;
    int rc;
    int nConflict;
    std::vector<double> result;
  };
  const std::vector<Case> cases = {
      {0, -162, 0, {kMissing, 10, 5}},
      {1, 0, 2, {kMissing, 10, 5}},
      {2, 0, 2, {kMissing, 20, 30}},
  };
  for (const Case &c : cases) {
    TestImage t(3, 1, 1, {"a"}, {kMissing, kMissing, 5});
    Counts counts;
    EXPECT_EQ(toImage(p.ps, t.image, c.mode, counts), c.rc);
    EXPECT_EQ(counts.conflict, c.nConflict) << "mode " << c.mode;
    EXPECT_EQ(imageValues(t.image), c.result) << "mode " << c.mode;
  }
}

TEST(PointSetToImage, SkipsMissingValuesUnknownVariablesAndOutsidePoints) {
  TestPointSet p({0.5, 1.5, 7.0}, {0.5, 0.5, 0.5}, {0.5, 0.5, 0.5}, {"other", "a"},
                 {1, 2, 3, kMissing, 4, 5});
  TestImage t(2, 1, 1, {"a"}, {8, kMissing});
  Counts c;
  ASSERT_EQ(toImage(p.ps, t.image, 0, c), 0);
  EXPECT_EQ(c.ignored, 1);
  EXPECT_EQ(c.outside, 1);
  EXPECT_EQ(c.conflict, 0);  // the missing point value on node 0 is no conflict
  EXPECT_EQ(imageValues(t.image), std::vector<double>({8, 4}));

  EXPECT_EQ(toImage(p.ps, t.image, 2, c, 0, 1), -160);
  EXPECT_EQ(toImage(p.ps, t.image, 2, c, 1, 0), -161);
  p.ps.nvar = 0;
  EXPECT_EQ(toImage(p.ps, t.image, 2, c), -3);
  p.ps.nvar = 2;
}

// Image to point set ----------------------------------------------------------

TEST(ImageToPointSet, KeepsInformedNodesAtTheirCentresAndInformedVariables) {
  TestImage t(2, 2, 1, {"a", "empty", "b"},
              {kMissing, 1, kMissing, kMissing, kMissing, kMissing, kMissing, kMissing, kMissing,
               kMissing, kMissing, 7});
  t.image.grid->ox = 100;
  t.image.grid->sy = 2;
  PointSet r;
  ASSERT_EQ(NUVOImageToPointSet(&t.image, &r.ps), 0);
  ASSERT_EQ(r.ps.npoint, 2);
  ASSERT_EQ(r.ps.nvar, 2);
  EXPECT_STREQ(r.ps.varName[0], "a");
  EXPECT_STREQ(r.ps.varName[1], "b");
  EXPECT_EQ(std::vector<double>({r.ps.x[0], r.ps.y[0], r.ps.z[0]}),
            std::vector<double>({101.5, 1.0, 0.5}));
  EXPECT_EQ(std::vector<double>({r.ps.x[1], r.ps.y[1], r.ps.z[1]}),
            std::vector<double>({101.5, 3.0, 0.5}));
  EXPECT_EQ(std::vector<double>(r.ps.val, r.ps.val + 4),
            std::vector<double>({1, kMissing, kMissing, 7}));

  TestImage empty(2, 2, 2, {"a", "b"});
  PointSet none;
  EXPECT_EQ(NUVOImageToPointSet(&empty.image, &none.ps), -165);
}

// Printouts -------------------------------------------------------------------

TEST(PointSetPrint, WritesCountsAndIndentedNames) {
  TestPointSet p({0, 1}, {0, 1}, {0, 1}, {"facies", "code"}, {1, 2, 3, 4});
  TempStream out;
  ASSERT_EQ(NUVOPrintPointSet(&p.ps, "| ", out.get()), 0);
  EXPECT_EQ(out.contents(),
            "| npoint:        2\n"
            "| nvar:          2\n"
            "| varName\n"
            "|    facies\n"
            "|    code\n");
}

TEST(PointSetInfo, SummarizesCoordinatesAndVariables) {
  TestPointSet p({3, -1, 2}, {0, 5, 1}, {7, 7, 7}, {"a", "b"},
                 {1, kMissing, 2, kMissing, kMissing, kMissing});
  nuvo_pointSetInfo info;
  NUVOInitPointSetInfo(&info);
  ASSERT_EQ(NUVOGetPointSetInfo(&p.ps, &info), 0);
  EXPECT_EQ(info.npoint, 3);
  EXPECT_EQ(std::vector<double>({info.xMin, info.xMax, info.yMin, info.yMax, info.zMin, info.zMax}),
            std::vector<double>({-1, 3, 0, 5, 7, 7}));
  EXPECT_EQ(info.npointWithMissing, 3);
  EXPECT_EQ(std::vector<int>(info.ninformed, info.ninformed + 2), std::vector<int>({2, 0}));
  EXPECT_EQ(std::vector<double>({info.min[1], info.max[1], info.mean[1]}),
            std::vector<double>({kMissing, kMissing, kMissing}));
  NUVOFreePointSetInfo(&info);
  NUVOFreePointSetInfo(&info);  // freeing twice is harmless

  // The printout shows the first variable's statistics.
  TempStream out;
  ASSERT_EQ(NUVOPrintPointSetInfo(&p.ps, "", out.get()), 0);
  const auto lines = out.lines();
  ASSERT_EQ(lines.size(), 12u);
  EXPECT_EQ(lines[0], "Number of points: 3");
  EXPECT_EQ(lines[5], "         x -1.00000000E+00  3.00000000E+00");
  EXPECT_EQ(lines[10],
            "    #  0               2               1  1.00000000E+00  2.00000000E+00"
            "  1.50000000E+00");
}

// Files ---------------------------------------------------------------------

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
