#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "nuvo_image.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/verdict.hpp"

namespace {

using nuvo::test::imageValues;
using nuvo::test::kMissing;
using nuvo::test::TempStream;
using nuvo::test::TestImage;

int verdictOf(const nuvo_image &image, int nameSuffixLength = 0) {
  return nuvo_test::verdictOf(NUVOValidateImage, &image, nameSuffixLength);
}

// Grid failures come before variable ones; then the count, the names (with the
// suffix to come), the value count and its size.
TEST(ImageValidate, ReportsTheFirstFailure) {
  TestImage t(1, 1, 1, {std::string(120, 'n'), "b"}, {0, kMissing});
  EXPECT_EQ(verdictOf(t.image, 7), 0);
  EXPECT_EQ(verdictOf(t.image, 8), -623);
  std::strcpy(t.image.varName[1], t.image.varName[0]);
  EXPECT_EQ(verdictOf(t.image), -624);
  t.image.grid->sz = 1e-16;
  EXPECT_EQ(verdictOf(t.image), -616);
  t.image.grid->sz = 1.0;
  t.image.grid->nx = t.image.grid->ny = t.image.grid->nz = 2000;
  EXPECT_EQ(verdictOf(t.image), -620);
  t.image.grid->nx = t.image.grid->ny = t.image.grid->nz = 1;
  t.image.varName[1][0] = 'N';  // names are case sensitive
  EXPECT_EQ(verdictOf(t.image), 0);
  t.image.nvar = 101;
  EXPECT_EQ(verdictOf(t.image), -622);
  t.image.nvar = 0;
  EXPECT_EQ(verdictOf(t.image), -621);
  t.image.nvar = 2;
  t.image.nxyzv = 0;
  EXPECT_EQ(verdictOf(t.image), -625);
  t.image.nvar = 100;
  t.image.nxyzv = 100;
  t.image.grid->nxyz = 30000000;  // 3e9 values
  EXPECT_EQ(verdictOf(t.image), -626);
}

TEST(ImageValidate, TheFirstNanOrInfiniteValueDecides) {
  TestImage t(3, 1, 1, {"a"}, {0, 1, 2});
  t.image.var[2] = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(verdictOf(t.image), -627);
  t.image.var[1] = std::numeric_limits<double>::infinity();
  EXPECT_EQ(verdictOf(t.image), -628);
  t.image.var[1] = -std::numeric_limits<double>::infinity();
  t.image.var[2] = 0;
  EXPECT_EQ(verdictOf(t.image), -628);
}

TEST(ImagePrint, WritesTheGridThenCountsAndNamesUnderThePrefix) {
  TestImage t(2, 1, 1, {"facies", "poro"}, {0, 1, 2, 3});
  TempStream out;
  ASSERT_EQ(NUVOPrintImage(&t.image, "> ", out.get()), 0);
  const std::string text = out.contents();
  // The grid lines are the grid printer's, nested under "grid:".
  EXPECT_EQ(text.rfind("> grid:\n>    Size   :       2              1              1\n", 0), 0u);
  EXPECT_EQ(text.substr(text.find("> nvar:")),
            "> nvar:         2\n> nxyzv:        4\n> varName:\n>    facies\n>    poro\n");
}

TEST(ImageInfo, ReportsEverySectionLineByLine) {
  // a on both nodes, b on the second only, c nowhere.
  TestImage t(2, 1, 1, {"a", "b", "c"}, {1, 3, kMissing, 2, kMissing, kMissing});
  TempStream out;
  ASSERT_EQ(NUVOPrintImageInfo(&t.image, "# ", out.get(), 1), 0);
  // The grid block is the grid printer's; from the variables on, a sample of lines.
  const std::vector<std::string> lines = out.lines();
  ASSERT_EQ(lines.size(), 45u);
  const std::pair<std::size_t, std::string> expected[] = {
      {6, "# Number of variables:   3"},
      {10, "# Variable #  2: c"},
      {14, "#     #  0               2               1               0"},
      {18,
       "#     #  0  1.00000000E+00  3.00000000E+00  2.00000000E+00  2.00000000E+00  "
       "1.41421356E+00"},
      {20,
       "#     #  2 -9.99999900E+06 -9.99999900E+06 -9.99999900E+06  0.00000000E+00  "
       "0.00000000E+00"},
      {23, "#     #  0  2.00000000E+00  0.00000000E+00  0.00000000E+00"},
      {29, "#     #  0  1.00000000E+00             NAN             NAN"},
      {34, "#    Number of different values:   2"},
      {35, "#    No detail"},
      {37, "#    Proportion of nodes having a missing value:    50.0000 %"},
      {39, "#    Pdf (ignoring missing value):"},
      {40, "#                 Value   Proportion in grid (%)"},
      {41, "#    #  0:       2.0000     100.0000"},
      {44, "#    Number of different values:   0"},
  };
  for (const auto &[k, line] : expected) EXPECT_EQ(lines[k], line) << "line " << k;
}

// Resize --------------------------------------------------------------------

using Resized = nuvo::test::EmptyImage;

TEST(ImageResize, PadsOnTheLowSideAndShiftsTheOrigin) {
  TestImage t(2, 2, 1, {"a"}, {1, 2, 3, 4});
  t.image.grid->ox = 10.0;
  t.image.grid->sx = 0.5;
  Resized r;
  ASSERT_EQ(NUVOResizeImage(&t.image, &r.image, -1, 1, 0, 1, 0, 0, 0, 0), 0);
  const nuvo_grid grid{3, 2, 1, 0.5, 1.0, 1.0, 9.5, 0.0, 0.0, 6, 6};
  EXPECT_EQ(NUVOCmpGrid(r.image.grid, &grid), 0);
  EXPECT_EQ(r.image.nxyzv, 6);
  EXPECT_STREQ(r.image.varName[0], "a");
  EXPECT_EQ(imageValues(r.image), std::vector<double>({kMissing, 1, 2, kMissing, 3, 4}));
}

TEST(ImageResize, CropsAndAddsNamedMissingVariables) {
  // 3 x 2 x 2 nodes, values 100*iv + node.
  std::vector<double> values;
  for (int iv = 0; iv < 2; ++iv)
    for (int i = 0; i < 12; ++i) values.push_back(100 * iv + i);
  TestImage t(3, 2, 2, {"a", "b"}, values);
  Resized r;
  // Node window x 1..2, y 1, z 1..2 (one layer beyond the top); variables 1..3.
  ASSERT_EQ(NUVOResizeImage(&t.image, &r.image, 1, 2, 1, 1, 1, 2, 1, 3), 0);
  EXPECT_EQ(r.image.grid->nxyz, 4);
  EXPECT_EQ(r.image.grid->oy, 1.0);
  EXPECT_EQ(r.image.grid->oz, 1.0);
  ASSERT_EQ(r.image.nvar, 3);
  EXPECT_STREQ(r.image.varName[0], "b");
  EXPECT_STREQ(r.image.varName[1], "var01");
  EXPECT_STREQ(r.image.varName[2], "var02");
  EXPECT_EQ(std::vector<double>(r.image.var, r.image.var + 4),
            std::vector<double>({110, 111, kMissing, kMissing}));
  for (int i = 4; i < 12; ++i) EXPECT_EQ(r.image.var[i], kMissing);
}

// Windows as x, y, z node ranges then a variable range, and the code.
TEST(ImageResize, RefusesEmptyAndOversizedWindows) {
  TestImage t(2, 2, 2, {"a"}, std::vector<double>(8, 1.0));
  const int cases[][9] = {
      {1, 0, 0, 1, 0, 1, 0, 0, -2001},
      {0, 1, 1, 0, 0, 1, 0, 0, -2002},
      {0, 1, 0, 1, 1, 0, 0, 0, -2003},
      {0, 1, 0, 1, 0, 1, 0, -1, -2004},
      {INT_MIN, INT_MAX, 0, 0, 0, 0, 0, 0, -620},
      {0, 99999, 0, 9999, 0, 0, 0, 9, -626},
  };
  for (const auto &w : cases) {
    Resized r;
    EXPECT_EQ(NUVOResizeImage(&t.image, &r.image, w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7]),
              w[8]);
  }
}

// Image to image -------------------------------------------------------------

// Node counts must agree, not spacings or origins; variables match by exact name;
// without merging, missing values are copied too.
TEST(ImageToImage, MatchesVariablesByExactName) {
  TestImage src(2, 1, 1, {"b", "A", "x"}, {kMissing, 2, 3, 4, 5, 6});
  TestImage dst(2, 1, 1, {"a", "b"}, {9, 9, 9, kMissing});
  int nIgnored = -1, nConflict = -1;
  src.image.grid->ny = 2;
  EXPECT_EQ(NUVOImageToImage(&src.image, &dst.image, 1, 0, &nIgnored, &nConflict, 0), -150);
  src.image.grid->ny = 1;
  src.image.grid->sx = 2.0;
  src.image.grid->oz = 5.0;
  EXPECT_EQ(NUVOImageToImage(&src.image, &dst.image, 0, 0, &nIgnored, &nConflict, 0), -151);
  EXPECT_EQ(dst.at(1, 1), 2.0);  // written before the refused variable stays
  EXPECT_EQ(NUVOImageToImage(&src.image, &dst.image, 1, 0, &nIgnored, &nConflict, 0), 0);
  EXPECT_EQ(nIgnored, 2);
  EXPECT_EQ(nConflict, 0);
  EXPECT_EQ(imageValues(dst.image), std::vector<double>({9, 9, kMissing, 2}));
}

TEST(ImageToImage, MergeResolvesConflictsByMode) {
  const std::vector<double> source = {kMissing, 1, 2, 3};
  const std::vector<double> target = {10, kMissing, 12, 3};  // last node: equal values
  struct Case {
    int mode;
    int rc;
    int nConflict;
    std::vector<double> result;
  };
  const std::vector<Case> cases = {
      {0, -152, 0, {10, 1, 12, 3}},  // stops at the first node informed in both
      {1, 0, 2, {10, 1, 12, 3}},
      {2, 0, 2, {10, 1, 2, 3}},
  };
  for (const Case &c : cases) {
    TestImage src(4, 1, 1, {"a"}, source);
    TestImage dst(4, 1, 1, {"a"}, target);
    int nIgnored = -1, nConflict = -1;
    EXPECT_EQ(NUVOImageToImage(&src.image, &dst.image, 0, c.mode, &nIgnored, &nConflict, 1), c.rc);
    EXPECT_EQ(nConflict, c.nConflict) << "mode " << c.mode;
    EXPECT_EQ(imageValues(dst.image), c.result) << "mode " << c.mode;
  }
}

}  // namespace
