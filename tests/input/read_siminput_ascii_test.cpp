#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "nuvo_siminput.h"
#include "param_file.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

using nuvo::test::TempStream;
using nuvo_test::parameterFileText;
using nuvo_test::Token;

class ReadSimInputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    NUVOInitSimInputASCII(&si_);
    tokens_ = nuvo_test::parameterFileTokens(folder_);
  }
  void TearDown() override { NUVOFreeSimInputASCII(&si_); }

  // Reads text into a fresh record; *line (if given) gets the line where the
  // reader stopped.
  int read(const std::string &text, int *line = nullptr) {
    NUVOFreeSimInputASCII(&si_);
    TempStream stream(text);
    int rc = NUVOReadSimInputASCII(&si_, stream.get());
    if (line != nullptr) *line = NUVOStreamLineNumber(stream.get());
    return rc;
  }

  // The whole file with token k replaced by text.
  std::string with(std::size_t k, const std::string &text) const {
    std::vector<Token> tokens = tokens_;
    tokens[k].text = text;
    return parameterFileText(tokens);
  }

  // The first token written as text, the token after the comment.
  std::size_t indexOf(const std::string &text) const { return find(&Token::text, text); }
  std::size_t after(const std::string &comment) const { return find(&Token::comment, comment); }
  std::size_t find(std::string Token::*field, const std::string &value) const {
    auto it = std::find_if(tokens_.begin(), tokens_.end(),
                           [&](const Token &t) { return t.*field == value; });
    return static_cast<std::size_t>(it - tokens_.begin());
  }

  nuvo_test::TempFolder folder_;
  std::vector<Token> tokens_;
  nuvo_simInputASCII si_;
};

// The export round trip catches fields read into the wrong slot; this samples
// the values the export writes differently (formats, output names) or not at all.
TEST_F(ReadSimInputTest, ReadsACompleteFile) {
  ASSERT_EQ(read(parameterFileText(tokens_)), 0);
  EXPECT_EQ(si_.simGridOx, 10.0);
  EXPECT_STREQ(si_.formatStringVar[0], "%.3f");
  // An output flag 0 stands for the default format, read or not.
  EXPECT_STREQ(si_.formatStringVar[1], NUVO_DEFAULT_FORMAT_NAME);
  EXPECT_EQ(si_.outputPathIndexFileName, folder_.file("path"));
  EXPECT_EQ(si_.outputErrorFileName, nullptr);
  EXPECT_STREQ(si_.trainImageFileName[0], NUVO_SIM_GRID_AS_TI_NAME);
  EXPECT_EQ(si_.pdfTrainImageFileName, folder_.file("ti.gslib"));
  EXPECT_EQ(si_.homothetyYRatioValue[1], 2.0);
  EXPECT_EQ(si_.pyramidGeneralParametersASCII->factorDistanceThreshold[2], 0.5);
  EXPECT_EQ(si_.nrealization, 3);
}

TEST_F(ReadSimInputTest, AFileCutAfterAnyTokenGivesTheCodeOfTheNextField) {
  for (std::size_t k = 0; k + 1 < tokens_.size(); ++k) {
    const Token &next = tokens_[k + 1];
    EXPECT_EQ(read(parameterFileText(tokens_, k + 1)), next.code) << "cut after token " << k;
    // The end of the file inside a comment is the same failure.
    if (next.comment.empty()) continue;
    std::string cut = parameterFileText(tokens_, k + 1) + next.comment.substr(0, 4);
    EXPECT_EQ(read(cut), next.code) << "cut in the comment before token " << k + 1;
  }
  EXPECT_EQ(read(""), -778);
}

TEST_F(ReadSimInputTest, ASpoiledTokenGivesItsCodeAndTheLineWhereReadingStopped) {
  const std::string tooLong(300, 'n');
  for (std::size_t k = 0; k < tokens_.size(); ++k) {
    const Token &token = tokens_[k];
    const bool isName = token.tooLongCode != 0;
    std::string text = with(k, isName ? tooLong : "@bad@");
    int line = 0;
    EXPECT_EQ(read(text, &line), isName ? token.tooLongCode : token.code) << "token " << k;
    std::string before = parameterFileText(tokens_, k + 1);
    int expectedLine = static_cast<int>(std::count(before.begin(), before.end(), '\n'));
    EXPECT_EQ(line, expectedLine) << "token " << k;
  }
}

TEST_F(ReadSimInputTest, OnlyTheExactWordEndClosesTheFile) {
  const std::size_t end = indexOf("END");
  EXPECT_EQ(read(with(end, "end")), -870);
  EXPECT_EQ(read(with(end, "ENDS")), -870);
  // Comments may stand before it, and nothing needs to follow it.
  EXPECT_EQ(read(with(end, "/* last */ // word\nEND")), 0);
  // A line comment that runs into the end of the file ends it before "END".
  std::string text = parameterFileText(tokens_, end) + "// no line feed";
  EXPECT_EQ(read(text), -870);
}

TEST_F(ReadSimInputTest, CountsFlagsAndUsagesOutOfRangeAreRefused) {
  EXPECT_EQ(read(with(after("/* SIMULATION VARIABLES */"), "0")), -629);
  EXPECT_EQ(read(with(after("/* DATA IMAGE FILE FOR SG */"), "-1")), -799);
  EXPECT_EQ(read(with(indexOf("facies") + 1, "2")), -790);
  EXPECT_EQ(read(with(after("/* HOMOTHETY */"), "3")), -810);
  // A count the rest of the file cannot hold is refused before allocating for it.
  EXPECT_EQ(read(with(after("/* SIMULATION VARIABLES */"), "2000000000")), -788);
  EXPECT_EQ(read(with(after("/* PYRAMID GENERAL PARAMETERS */"), "2000000000")), -3602);
}

TEST_F(ReadSimInputTest, NamesHoldUpTo127CharactersAndFileNamesUpTo255) {
  const std::size_t facies = indexOf("facies");
  ASSERT_EQ(read(with(facies, std::string(127, 'v'))), 0);
  EXPECT_EQ(std::string(si_.simVarName[0]), std::string(127, 'v'));
  EXPECT_EQ(read(with(facies, std::string(128, 'v'))), -789);
  const std::size_t data = indexOf("_DATA_");
  ASSERT_EQ(read(with(data, std::string(255, 'f'))), 0);
  EXPECT_EQ(std::string(si_.trainImageFileName[0]).size(), 255U);
  EXPECT_EQ(read(with(data, std::string(256, 'f'))), -796);
}

TEST_F(ReadSimInputTest, PyramidVariableSectionsAndPostProcessingListsAreOptional) {
  // No pyramid levels: the steps, the mode, the factors and the variable
  // sections are gone; post-processing as the main settings: no lists.
  const std::size_t levels = after("/* PYRAMID GENERAL PARAMETERS */");
  const std::size_t job = indexOf("POST_PROCESSING_PARAMETERS_MANUAL");
  std::vector<Token> tokens(tokens_.begin(), tokens_.begin() + static_cast<long>(levels) + 1);
  tokens.back().text = "0";
  tokens.insert(tokens.end(), tokens_.begin() + static_cast<long>(after("/* TOLERANCE */")),
                tokens_.begin() + static_cast<long>(job) + 1);
  tokens.back().text = "POST_PROCESSING_PARAMETERS_SAME";
  tokens.insert(tokens.end(),
                tokens_.begin() + static_cast<long>(after("/* SEED NUMBER AND SEED INCREMENT */")),
                tokens_.end());
  ASSERT_EQ(read(parameterFileText(tokens)), 0);
  EXPECT_EQ(si_.pyramidGeneralParametersASCII->npyramidLevel, 0);
  EXPECT_EQ(si_.pyramidParameters, nullptr);
  EXPECT_EQ(si_.tolerance, 0.25);
  EXPECT_EQ(si_.postProcessingParametersJob, POST_PROCESSING_PARAMETERS_SAME);
  EXPECT_EQ(si_.postProcessingNneighboringNode, nullptr);
  EXPECT_EQ(si_.seed, 444);
}

}  // namespace
