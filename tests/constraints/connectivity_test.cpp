#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "constraints/connectivity_pattern.hpp"
#include "nuvo_connectivity.h"
#include "tests/constraints/test_files.hpp"
#include "tests/data/data_builders.hpp"
#include "tests/support/verdict.hpp"

namespace {

using nuvo::test::printed;
using nuvo::test::TempStream;
using nuvo::test::TestImage;
using nuvo_test::newClasses;
using nuvo_test::newImage;
using nuvo_test::newText;
using nuvo_test::TempFolder;

// A reference image of three nodes and two variables, "facies" and "poro".
constexpr char kReferenceImage[] = "3 1 1\n2\nfacies\nporo\n1 0.1\n0 0.2\n1 0.3\n";

class ConnectivityTest : public ::testing::Test {
 protected:
  int read(const std::string &text) { return ascii_.read(NUVOReadConnectivityASCII, text); }
  int convert() {
    NUVOFreeConnectivity(&c_);
    return NUVOConnectivityASCIIToConnectivity(&ascii_, &c_);
  }
  int validate() { return nuvo_test::verdictOf(NUVOValidateConnectivity, &c_); }

  // A valid pattern-of-labels constraint in c_.
  void makePattern() {
    ASSERT_EQ(read("3 CONNECT_FACE_EDGE_CORNER 1 1 0.5 1.5 label 2.0 0.1"), 0);
    ASSERT_EQ(convert(), 0);
  }

  nuvo_test::Owned<nuvo_connectivityASCII, NUVOInitConnectivityASCII, NUVOFreeConnectivityASCII>
      ascii_;
  nuvo_test::Owned<nuvo_connectivity, NUVOInitConnectivity, NUVOFreeConnectivity> c_;
};

TEST_F(ConnectivityTest, PathsFromAReferenceFileKeepTheNamedVariable) {
  TempFolder folder;
  const std::string reference = folder.write("ref.gslib", kReferenceImage);
  ASSERT_EQ(read("2 // by distance\nCONNECT_FACE_EDGE\n1 1 0.5 1.5\nlabel\n" + reference + " poro"),
            0);
  const std::string ascii = printed([&](FILE *f) { NUVOPrintConnectivityASCII(&ascii_, "", f); });
  EXPECT_NE(ascii.find("connectivityType:CONNECT_FACE_EDGE (18-neighbors connected by face or "
                       "edge)\nclassOfValues:\n"),
            std::string::npos)
      << ascii;

  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(c_.tiAsRefFlag, 0);
  ASSERT_NE(c_.refConnectivityImage, nullptr);
  const nuvo_image &image = *c_.refConnectivityImage;
  ASSERT_EQ(image.nvar, 1);
  EXPECT_STREQ(image.varName[0], "poro");
  EXPECT_EQ(std::vector<double>(image.var, image.var + 3), (std::vector<double>{0.1, 0.2, 0.3}));
  EXPECT_EQ(validate(), 0);
}

TEST_F(ConnectivityTest, FirstTrainingImageNeedsNoVariableName) {
  TempStream text("1 CONNECT_FACE 1 1 0 1 label _TI_ 7");
  ASSERT_EQ(NUVOReadConnectivityASCII(&ascii_, text.get()), 0);
  EXPECT_EQ(ascii_.refConnectivityVarName, nullptr);
  ASSERT_EQ(convert(), 0);
  EXPECT_EQ(c_.tiAsRefFlag, 1);
  EXPECT_EQ(c_.refConnectivityImage, nullptr);
  EXPECT_EQ(validate(), 0);
  const std::string out = printed([&](FILE *f) { NUVOPrintConnectivity(&c_, "", f); });
  EXPECT_EQ(out.substr(0, out.find('\n')),
            "connectivityConstraintUsage: 1(set connecting path before simulation by "
            "successively binding the nodes to be connected in a random order)");
  EXPECT_NE(out.find("\ntiAsRefFlag: 1\nrefConnectivityImage: NOT ALLOCATED\n"), std::string::npos)
      << out;
}

// A missing or malformed value of each field gives that field's code; the
// parameter-file tests check this for every token of a file holding every
// section. Here: the longest names accepted, 127 and 255 characters.
TEST_F(ConnectivityTest, ReadingAcceptsTheLongestNames) {
  const std::string head = "1 CONNECT_FACE 1 1 0 1 ";
  EXPECT_EQ(read(head + std::string(127, 'v') + " " + std::string(255, 'f') + " " +
                 std::string(127, 'r')),
            0);
  EXPECT_EQ(read(head + std::string(128, 'v')), -2113);
}

TEST_F(ConnectivityTest, ConversionErrors) {
  ASSERT_EQ(read("1 CONNECT_FACE 1 1 0 1 label /nonexistent/ref.gslib v"), 0);
  EXPECT_EQ(convert(), -121);

  TempFolder folder;
  const std::string reference = folder.write("ref.gslib", kReferenceImage);
  const std::string twice = folder.write("twice.gslib", "1 1 1\n2\nv\nv\n1 2\n");
  struct Case {
    std::string file;
    const char *varName;
    int code;
  };
  for (const Case &k : {Case{reference, "", -135}, Case{reference, nullptr, -135},
                        Case{twice, "v", -136}, Case{reference, "perm", -137}}) {
    NUVOFreeConnectivityASCII(&ascii_);
    ascii_.connectivityConstraintUsage = NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER;
    ascii_.refConnectivityImageFileName = newText(k.file, 256);
    if (k.varName != nullptr) ascii_.refConnectivityVarName = newText(k.varName, 128);
    EXPECT_EQ(convert(), k.code) << (k.varName != nullptr ? k.varName : "(null)");
  }
}

// A pattern of labels uses the training image as reference.
TEST_F(ConnectivityTest, PatternRulesInOrder) {
  makePattern();
  EXPECT_EQ(c_.tiAsRefFlag, 1);
  EXPECT_EQ(validate(), 0);
  c_.threshold = 1.5;
  EXPECT_EQ(validate(), -2102);
  c_.threshold = 0.0;
  EXPECT_EQ(validate(), -2101);
  c_.deactivationDistance = -1.0;
  EXPECT_EQ(validate(), -2100);
  // A pattern constraint with its own reference image: the flag must be 1.
  c_.tiAsRefFlag = 0;
  c_.refConnectivityImage = newImage(2, {"r"}, {0, 1});
  EXPECT_EQ(validate(), -2097);
  c_.tiAsRefFlag = 1;
  EXPECT_EQ(validate(), -2098);
}

TEST_F(ConnectivityTest, RecordRulesInOrder) {
  c_.connectivityConstraintUsage = NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER;
  c_.connectivityType = 3;
  c_.varName = newText(std::string(128, 'v'), 129);
  EXPECT_EQ(validate(), -2092);
  c_.connectivityConstraintUsage = 4;
  EXPECT_EQ(validate(), -2091);
  c_.connectivityConstraintUsage = NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER;
  c_.connectivityType = CONNECT_FACE;
  EXPECT_EQ(validate(), -2093);
  c_.classOfValues = newClasses("2 1 0 2 1 1 3");  // overlapping classes
  EXPECT_EQ(validate(), -4046);
  NUVOFreeClassOfValues(c_.classOfValues);
  std::free(c_.classOfValues);
  c_.classOfValues = newClasses("1 1 0 2");
  EXPECT_EQ(validate(), -2094);
  c_.varName[127] = '\0';
  EXPECT_EQ(validate(), -2099);
  c_.refConnectivityImage = newImage(2, {"a", "b"}, {0, 1, 1, 0});
  EXPECT_EQ(validate(), -2096);
  c_.refConnectivityImage->grid->sx = 0.0;  // the image validator's code
  EXPECT_EQ(validate(), -614);
}

// The pattern of labels: the error of a candidate and the labels taken by the
// simulated nodes.

// A row of training nodes 1 1 1 0 1 1 1 0 0 (two sand bodies, 0 to 2 and 4 to 6)
// and a grid of 5 nodes whose nodes 0 and 2 are sand wells labelled 7.
TEST(ConnectivityPattern, LabelledNodesMustShareOneBodyOfTheirClass) {
  constexpr double M = NUVO_MISSING_VALUE;
  nuvo_test::OwnedSimInput input(TestImage(5, 1, 1, {"facies"}, {1, M, 1, M, M}).image, {0});
  nuvo_simInput &si = input.si;
  const TestImage ti(9, 1, 1, {"facies"}, {1, 1, 1, 0, 1, 1, 1, 0, 0});
  nuvo_test::addTrainImage(&si, &ti.image);
  si.connectivity = nuvo_test::initialisedRecords<nuvo_connectivity>(1, NUVOInitConnectivity);
  nuvo_connectivity &c = si.connectivity[0];
  c.connectivityConstraintUsage = NUVO_CONNECTIVITY_PATTERN;
  c.connectivityType = CONNECT_FACE;
  c.classOfValues = nuvo_test::newClasses("2  1 -0.5 0.5  1 0.5 1.5");
  c.threshold = 0.05;
  c.deactivationDistance = 1.5;
  const std::vector<int> label = {7, 0, 7, 0, 0};

  nuvo::ConnectivityPattern pattern;
  ASSERT_EQ(pattern.prepare(si, label, *si.simImage, si.trainImage), 0);
  ASSERT_FALSE(pattern.empty());
  pattern.beginRealization();
  const int event[] = {0, 2}, offset[] = {-1, 1};
  nuvo::LabelTerm term;
  EXPECT_FALSE(pattern.at(0, 1, event, offset, 1.0, &term));  // closer than 1.5
  ASSERT_TRUE(pattern.at(0, 1, event, offset, 2.0, &term));
  // Both wells in one body: no term; across the background or off sand, one of
  // two nodes breaks the pattern: 0.5 / 0.05 - 1.
  EXPECT_EQ(term.error(1), 0.0);
  EXPECT_EQ(term.error(5), 0.0);
  EXPECT_DOUBLE_EQ(term.error(3), 9.0);
  EXPECT_DOUBLE_EQ(term.error(7), 9.0);
  // Background copied at node 1 takes no label; sand of the wells' body does,
  // and the node then counts in the next data event.
  pattern.assign(0, 1, 3);
  const int next[] = {1}, nextOffset[] = {0};
  EXPECT_FALSE(pattern.at(0, 3, next, nextOffset, 2.0, &term));
  ASSERT_TRUE(pattern.at(0, 1, event, offset, 2.0, &term));
  pattern.assign(0, 1, 1);
  EXPECT_TRUE(pattern.at(0, 3, next, nextOffset, 2.0, &term));
  pattern.clear(0, 1);
  EXPECT_FALSE(pattern.at(0, 3, next, nextOffset, 2.0, &term));
}

}  // namespace
