#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "constraints/block_constraint.hpp"
#include "nuvo_blockdata.h"
#include "tests/constraints/test_files.hpp"
#include "tests/support/verdict.hpp"

namespace {

using nuvo::test::printed;
using nuvo::test::TempStream;
using nuvo_test::TempFolder;

// Two blocks: three nodes with target 0.5, one node with target 2.25.
constexpr char kTwoBlocks[] =
    "2\n"
    "3 0.5 0.1 0.2 0.8\n"
    "0 0 0\n1 0 0\n2 3 4\n"
    "1 2.25 0 0.4 0.4\n"
    "5 6 7\n";

class BlockDataTest : public ::testing::Test {
 protected:
  int readFile(const std::string &text) { return bd_.read(NUVOReadBlockData, text); }
  int validate() { return nuvo_test::verdictOf(NUVOValidateBlockData, &bd_, nullptr, nullptr); }
  void makeTwoBlocks() {
    ASSERT_EQ(readFile(kTwoBlocks), 0);
    bd_.blockDataUsage = NUVO_BLOCK_DATA_MEAN;
  }

  using BlockData = nuvo_test::Owned<nuvo_blockData, NUVOInitBlockData, NUVOFreeBlockData>;
  nuvo_test::Owned<nuvo_blockDataASCII, NUVOInitBlockDataASCII, NUVOFreeBlockDataASCII> ascii_;
  BlockData bd_, back_;
};

// The print shows every value of the blocks but their node indices.
TEST_F(BlockDataTest, FileRoundTripAndPrint) {
  makeTwoBlocks();
  EXPECT_EQ(bd_.iz[0][2], 4);
  EXPECT_EQ(bd_.ix[1][0], 5);
  EXPECT_EQ(printed([&](FILE *f) { EXPECT_EQ(NUVOPrintBlockData(&bd_, "# ", f), 0); }),
            "# blockDataUsage: 1\n"
            "# nblock:   2\n"
            "# block   0: nnode =     3, value =   5.000000E-01, tolerance =   1.000000E-01, "
            "activatePropMin =   2.000000E-01, activatePropMax =   8.000000E-01\n"
            "# block   1: nnode =     1, value =   2.250000E+00, tolerance =   0.000000E+00, "
            "activatePropMin =   4.000000E-01, activatePropMax =   4.000000E-01\n");

  std::string written = printed([&](FILE *f) { EXPECT_EQ(NUVOWriteBlockData(&bd_, f), 0); });
  EXPECT_EQ(written.substr(0, written.find("0 0 0")),
            "2\n3       0.500000       0.100000       "
            "0.200000       0.800000\n");
  // Read back and written again, the blocks give the same text.
  ASSERT_EQ(NUVOReadBlockData(&back_, TempStream(written).get()), 0);
  EXPECT_EQ(printed([&](FILE *f) { EXPECT_EQ(NUVOWriteBlockData(&back_, f), 0); }), written);
}

TEST_F(BlockDataTest, FileErrors) {
  // The second block lists one index line of the two announced.
  EXPECT_EQ(readFile("2\n1 0.5 0.1 0 1\n0 0 0\n2 0.5 0.1 0 1\n1 1 1\n"), -2980);
  EXPECT_EQ(readFile(""), -2980);
  EXPECT_EQ(readFile("1\n0 0.5 0.1 0 1\n"), -3);

  // A negative count reads and is refused by the validator.
  EXPECT_EQ(readFile("-2"), 0);
  bd_.blockDataUsage = NUVO_BLOCK_DATA_MEAN;
  EXPECT_EQ(validate(), -2941);
}

TEST_F(BlockDataTest, TextFormAndConversion) {
  TempFolder folder;
  const std::string blocks = folder.write("blocks.dat", kTwoBlocks);
  ASSERT_EQ(NUVOReadBlockDataASCII(&ascii_, TempStream("1 " + blocks).get()), 0);
  EXPECT_EQ(printed([&](FILE *f) { NUVOPrintBlockDataASCII(&ascii_, "  ", f); }),
            "  blockDataUsage: 1\n  blockDataFileName: " + blocks + "\n");
  ASSERT_EQ(NUVOBlockDataASCIIToBlockData(&ascii_, &bd_), 0);
  EXPECT_EQ(validate(), 0);

  NUVOFreeBlockDataASCII(&ascii_);
  ASSERT_EQ(NUVOReadBlockDataASCII(&ascii_, TempStream("1 /nonexistent/blocks.dat").get()), 0);
  EXPECT_EQ(NUVOBlockDataASCIIToBlockData(&ascii_, &back_), -2960);

  NUVOFreeBlockDataASCII(&ascii_);
  ASSERT_EQ(NUVOReadBlockDataASCII(&ascii_, TempStream("0").get()), 0);
  EXPECT_EQ(ascii_.blockDataFileName, nullptr);
  EXPECT_EQ(printed([&](FILE *f) { NUVOPrintBlockDataASCII(&ascii_, "", f); }),
            "blockDataUsage: 0\n");
}

TEST_F(BlockDataTest, RulesInOrder) {
  EXPECT_EQ(validate(), 0);  // usage 0
  makeTwoBlocks();
  EXPECT_EQ(validate(), 0);  // activatePropMin == activatePropMax in block 1
  bd_.activatePropMin[1] = 0.6;
  EXPECT_EQ(validate(), -2953);
  bd_.activatePropMax[1] = 1.1;
  EXPECT_EQ(validate(), -2952);
  bd_.activatePropMin[1] = -0.1;
  EXPECT_EQ(validate(), -2951);
  bd_.tolerance[1] = -1.0;
  EXPECT_EQ(validate(), -2954);
  bd_.nnode[1] = 0;
  EXPECT_EQ(validate(), -2942);
  bd_.blockDataUsage = 2;
  EXPECT_EQ(validate(), -2920);
}

// The least term of a few bands over a continuous range lies at one of the
// breakpoints it tries: no value of a fine sweep does better, and the sweep
// comes within its step of it. Over categories, it is the best category.
TEST(BlockTerm, LeastTermOverTheValuesACandidateCanHold) {
  const std::vector<nuvo::BlockBand> bands = {
      {.low = 0.4, .high = 0.9, .room = 0.3, .gentle = 4.0 / 0.3, .steep = 50.0},
      {.low = 1.0, .high = 2.0, .room = 0.5, .gentle = 1.0, .steep = 80.0},
      {.low = -2.0, .high = 1.2, .room = 0.5, .gentle = 8.0, .steep = 30.0}};
  const nuvo::BlockTerm term{nullptr, bands.data(), 3};
  nuvo::BlockVariableRange continuous;
  continuous.min = -1.0;
  continuous.max = 3.0;
  const double least = nuvo::leastBlockTerm(bands, continuous);
  double swept = term.of(-1.0);
  for (int i = 1; i <= 40000; ++i) swept = std::min(swept, term.of(-1.0 + 1e-4 * i));
  EXPECT_LE(least, swept);
  EXPECT_NEAR(least, swept, 1e-4 * 100.0);
  EXPECT_GT(least, 0.0);  // the first two bands do not meet

  const std::vector<double> categories = {0.0, 1.0, 2.0};
  nuvo::BlockVariableRange categorical;
  categorical.categorical = true;
  categorical.values = categories;
  EXPECT_EQ(nuvo::leastBlockTerm(bands, categorical),
            std::min({term.of(0.0), term.of(1.0), term.of(2.0)}));
}

}  // namespace
