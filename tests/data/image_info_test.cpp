#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nuvo_image.h"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::kMissing;
using nuvo::test::TempStream;
using nuvo::test::TestImage;

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

}  // namespace
