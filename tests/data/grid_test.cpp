#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nuvo_grid.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/verdict.hpp"

namespace {

using nuvo::test::makeGrid;
using nuvo::test::TempStream;

TEST(GridNumbering, CoordToIdAndBackRoundTripsEveryNodeAndVariable) {
  const nuvo_grid g = makeGrid(3, 4, 5);
  int expected = 0;
  for (int iv = 0; iv < 2; ++iv)
    for (int iz = 0; iz < 5; ++iz)
      for (int iy = 0; iy < 4; ++iy)
        for (int ix = 0; ix < 3; ++ix) {
          int id = -1;
          ASSERT_EQ(NUVOGridCoordToId(&g, ix, iy, iz, iv, &id), 0);
          ASSERT_EQ(id, expected++);  // x fastest, then y, z, variable
          int jx = -1, jy = -1, jz = -1, jv = -1;
          ASSERT_EQ(NUVOGridIdToCoord(&g, id, &jx, &jy, &jz, &jv), 0);
          ASSERT_EQ(std::vector<int>({jx, jy, jz, jv}), std::vector<int>({ix, iy, iz, iv}));
        }
}

TEST(GridCompare, ReportsTheFirstDifferingFieldWithItsSign) {
  const nuvo_grid a = makeGrid(3, 4, 5);
  nuvo_grid b = a;
  EXPECT_EQ(NUVOCmpGrid(&a, &b), 0);
  b.oy = 0.5;
  EXPECT_EQ(NUVOCmpGrid(&a, &b), -8);
  EXPECT_EQ(NUVOCmpGrid(&b, &a), 8);
  b.sx = 1.0 + 1e-15;  // an earlier field wins, doubles compare exactly
  EXPECT_EQ(NUVOCmpGrid(&a, &b), -4);
  b = a;
  b.nxyz = 61;  // the stored counts are compared last
  EXPECT_EQ(NUVOCmpGrid(&a, &b), -11);
}

TEST(GridValidate, ReportsTheFirstFailureInOrder) {
  struct Case {
    int nx, ny, nz;
    double sx, sy, sz;
    int verdict;
  };
  const Case cases[] = {
      {2, 2, 2, 1, 1, 1, 0},        {0, 2, 2, 1, 0, 1, -601},  // nx before sy
      {2, 0, 2, 1, 1, 1, -602},     {2, 2, -1, 1, 1, 1, -603},
      {2, 2, 2, 1e-16, 1, 1, -604}, {2, 2, 2, 1, -1, 1, -605},
      {2, 2, 2, 1, 1, 0, -606},     {65536, 65536, 2, 1, 1, 1, -610},  // 2^32 nodes per section
  };
  for (const Case &c : cases) {
    // The origin is free; the stored counts are not looked at.
    const nuvo_grid g{c.nx, c.ny, c.nz, c.sx, c.sy, c.sz, -1e300, 0, 0, 0, 0};
    EXPECT_EQ(nuvo_test::verdictOf(NUVOValidateGrid, &g), c.verdict) << c.nx << " " << c.sx;
  }
}

// Comments may come before and between the values; a failure names the value that
// could not be read.
TEST(GridRead, ReadsNineValuesBetweenComments) {
  const std::vector<std::pair<std::string, int>> cases = {
      {"// grid\n 10 /* ny */ 20\n 3 // nz\n0.5 0.25 /* a\n block */ 2.0 -1.5 100 1e3 tail", 0},
      {"", -711},
      {"x 2 3", -711},
      {"1 2", -713},            // the stream ends before nz
      {"1 2 3 /* open", -714},  // the skipper fails inside a comment
      {"1 2 3 1 1 one 0 0 0", -716},
      {"1 2 3 1 1 1 0 0", -719},
      {"100000 100000 1 1 1 1 0 0 0", -610},  // a node count beyond an int
  };
  for (const auto &[text, code] : cases) {
    TempStream in(text);
    nuvo_grid g;
    NUVOInitGrid(&g);
    EXPECT_EQ(NUVOReadGrid(&g, in.get()), code) << text;
    const nuvo_grid expected{10, 20, 3, 0.5, 0.25, 2.0, -1.5, 100.0, 1000.0, 200, 600};
    if (code == 0) {
      EXPECT_EQ(NUVOCmpGrid(&g, &expected), 0);
    }
  }
}

TEST(GridPrint, WritesFiveFormattedLines) {
  nuvo_grid g = makeGrid(3, 40, 500, 0.5, -2.25);
  g.oz = 1234567.125;
  TempStream out;
  ASSERT_EQ(NUVOPrintGrid(&g, "## ", out.get()), 0);
  EXPECT_EQ(out.contents(),
            "## Size   :       3             40            500\n"
            "## Spacing:       0.500000       0.500000       0.500000\n"
            "## Origin :      -2.250000      -2.250000 1234567.125000\n"
            "## Number of nodes in a xy-section:      120\n"
            "## Total number of nodes          :    60000\n");
}

}  // namespace
