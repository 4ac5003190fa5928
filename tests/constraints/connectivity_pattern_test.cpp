// The pattern of labels: the error of a candidate and the labels taken by the
// simulated nodes.
#include <gtest/gtest.h>

#include <vector>

#include "constraints/connectivity_pattern.hpp"
#include "tests/constraints/test_files.hpp"
#include "tests/data/data_builders.hpp"

namespace {

using nuvo::test::TestImage;

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
