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
  ASSERT_EQ(NUVOPrintImageInfo(&t.image, "# ", out.file, 1), 0);
  const std::vector<std::string> expected = {
      "# Grid:",
      "#    Size   :       2              1              1",
      "#    Spacing:       1.000000       1.000000       1.000000",
      "#    Origin :       0.000000       0.000000       0.000000",
      "#    Number of nodes in a xy-section:        2",
      "#    Total number of nodes          :        2",
      "# Number of variables:   3",
      "# Grid size * number of variables:   6",
      "# Variable #  0: a",
      "# Variable #  1: b",
      "# Variable #  2: c",
      "# Number of informed nodes for each pair of variables,",
      "# n(i,j) = number of nodes in image where both i-th and j-th variables are informed:",
      "#                     #  0            #  1            #  2",
      "#     #  0               2               1               0",
      "#     #  1               1               1               0",
      "#     #  2               0               0               0",
      "# Variable             min             max            mean             var             std",
      "#     #  0  1.00000000E+00  3.00000000E+00  2.00000000E+00  2.00000000E+00  1.41421356E+00",
      "#     #  1  2.00000000E+00  2.00000000E+00  2.00000000E+00  0.00000000E+00  0.00000000E+00",
      "#     #  2 -9.99999900E+06 -9.99999900E+06 -9.99999900E+06  0.00000000E+00  0.00000000E+00",
      "# Covariance Matrix",
      "#                     #  0            #  1            #  2",
      "#     #  0  2.00000000E+00  0.00000000E+00  0.00000000E+00",
      "#     #  1  0.00000000E+00  0.00000000E+00  0.00000000E+00",
      "#     #  2  0.00000000E+00  0.00000000E+00  0.00000000E+00",
      "# Correlation Matrix",
      "# (warning: cor(i,j) exact if n(i,j) = n(i,i) = n(j,j)",
      "#                     #  0            #  1            #  2",
      "#     #  0  1.00000000E+00             NAN             NAN",
      "#     #  1             NAN             NAN             NAN",
      "#     #  2             NAN             NAN             NAN",
      "# Variable #  0:",
      "#    Proportion of nodes having a missing value:     0.0000 %",
      "#    Number of different values:   2",
      "#    No detail",
      "# Variable #  1:",
      "#    Proportion of nodes having a missing value:    50.0000 %",
      "#    Number of different values:   1",
      "#    Pdf (ignoring missing value):",
      "#                 Value   Proportion in grid (%)",
      "#    #  0:       2.0000     100.0000",
      "# Variable #  2:",
      "#    Proportion of nodes having a missing value:   100.0000 %",
      "#    Number of different values:   0",
  };
  const std::vector<std::string> lines = out.lines();
  ASSERT_EQ(lines.size(), expected.size());
  for (std::size_t k = 0; k < lines.size(); ++k) EXPECT_EQ(lines[k], expected[k]) << "line " << k;
}

TEST(ImageInfo, ListsThePdfUpToTheDetailLimit) {
  TestImage t(4, 1, 1, {"facies"}, {0, 1, 1, 2});
  TempStream out;
  ASSERT_EQ(NUVOPrintImageInfo(&t.image, "", out.file, 3), 0);
  const std::vector<std::string> lines = out.lines();
  const std::vector<std::string> tail(lines.end() - 5, lines.end());
  EXPECT_EQ(tail, std::vector<std::string>({
                      "   Pdf (ignoring missing value):",
                      "                Value   Proportion in grid (%)",
                      "   #  0:       0.0000      25.0000",
                      "   #  1:       1.0000      50.0000",
                      "   #  2:       2.0000      25.0000",
                  }));
}

}  // namespace
