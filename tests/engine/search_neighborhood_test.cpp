#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "manual_neighborhood.hpp"
#include "nuvo_searchneighborhood.h"
#include "tests/constraints/test_files.hpp"
#include "tests/support/temp_stream.hpp"

namespace {

using nuvo::test::printed;
using nuvo_test::manualNeighborhood;

void setAngles(nuvo_searchNeighborhoodParameters *p, double a1, double a2, double a3) {
  p->rotationFlag = SEARCHNEIGHBORHOOD_ROTATION_ON;
  p->angle1 = a1, p->angle2 = a2, p->angle3 = a3;
}

class SearchNeighborhood : public ::testing::Test {
 protected:
  void SetUp() override { NUVOInitRandContext(&ctx_); }

  // Builds into a fresh record, keeping it in sn_.
  int build(const nuvo_searchNeighborhoodParameters &p) {
    NUVOFreeSearchNeighborhood(&sn_);
    return NUVOBuildSearchNeighborhood(&p, &sn_, &ctx_);
  }

  using Node = std::tuple<int, int, int>;
  std::vector<Node> nodes() const {
    std::vector<Node> out;
    for (int i = 0; i < sn_.size; ++i) out.emplace_back(sn_.ix[i], sn_.iy[i], sn_.iz[i]);
    return out;
  }

  nuvo_test::Owned<nuvo_searchNeighborhood, NUVOInitSearchNeighborhood, NUVOFreeSearchNeighborhood>
      sn_;
  nuvo_randContext ctx_;
};

TEST_F(SearchNeighborhood, ZeroRadiiGiveTheCentreAloneAndALineFiveNodesByDistance) {
  ASSERT_EQ(build(manualNeighborhood(0.0, 0.0, 0.0)), 0);
  EXPECT_EQ(nodes(), std::vector<Node>{Node(0, 0, 0)});
  EXPECT_EQ(sn_.weight[0], 1.0);
  nuvo_searchNeighborhoodParameters p = manualNeighborhood(2.0, 0.0, 0.0);
  p.ax = 2.0;
  ASSERT_EQ(build(p), 0);
  ASSERT_EQ(sn_.size, 5);
  std::vector<Node> n = nodes();
  EXPECT_EQ(n[0], Node(0, 0, 0));
  EXPECT_EQ(std::set<Node>(n.begin() + 1, n.begin() + 3), (std::set<Node>{{-1, 0, 0}, {1, 0, 0}}));
  EXPECT_EQ(std::set<Node>(n.begin() + 3, n.end()), (std::set<Node>{{-2, 0, 0}, {2, 0, 0}}));
  EXPECT_EQ(std::vector<double>(sn_.distance, sn_.distance + 5),
            (std::vector<double>{0.0, 0.5, 0.5, 1.0, 1.0}));
  EXPECT_EQ(std::pair(sn_.ixMin, sn_.ixMax), std::pair(-2, 2));
}

TEST_F(SearchNeighborhood, KeepsExactlyTheNodesOfTheEllipsoidNearestFirst) {
  nuvo_searchNeighborhoodParameters p = manualNeighborhood(4.5, 3.0, 2.0);
  p.ax = 4.5, p.ay = 3.0, p.az = 2.0;
  ASSERT_EQ(build(p), 0);
  std::set<Node> expected;
  for (int z = -2; z <= 2; ++z)
    for (int y = -3; y <= 3; ++y)
      for (int x = -4; x <= 4; ++x)
        if (x * x / 20.25 + y * y / 9.0 + z * z / 4.0 <= 1.0) expected.emplace(x, y, z);
  std::vector<Node> n = nodes();
  EXPECT_EQ(std::set<Node>(n.begin(), n.end()), expected);
  EXPECT_EQ(n.size(), expected.size());
  for (int i = 1; i < sn_.size; ++i) EXPECT_LE(sn_.distance[i - 1], sn_.distance[i] + 1e-10);
}

TEST_F(SearchNeighborhood, EqualDistancesAreShuffledTheSameWayWhateverTheContext) {
  nuvo_searchNeighborhoodParameters p = manualNeighborhood(6.0, 5.0, 3.0, 2.0);
  setAngles(&p, 30.0, 10.0, -5.0);
  ASSERT_EQ(build(p), 0);
  std::vector<Node> first = nodes();
  std::vector<double> weights(sn_.weight, sn_.weight + sn_.size);

  NUVODoubleRand(987, &ctx_);
  for (int i = 0; i < 17; ++i) NUVODoubleRand(0, &ctx_);
  ASSERT_EQ(build(p), 0);
  EXPECT_EQ(nodes(), first);
  EXPECT_EQ(std::vector<double>(sn_.weight, sn_.weight + sn_.size), weights);

  // The ties of an isotropic ball do not stay in the order of generation (z, y, x).
  ASSERT_EQ(build(manualNeighborhood(3.0, 3.0, 3.0)), 0);
  std::vector<Node> n = nodes();
  bool shuffled = false;
  for (int i = 2; i < sn_.size; ++i)
    if (sn_.distance[i] == sn_.distance[i - 1] &&
        std::make_tuple(std::get<2>(n[i]), std::get<1>(n[i]), std::get<0>(n[i])) <
            std::make_tuple(std::get<2>(n[i - 1]), std::get<1>(n[i - 1]), std::get<0>(n[i - 1])))
      shuffled = true;
  EXPECT_TRUE(shuffled);
}

TEST_F(SearchNeighborhood, WeightsFollowThePower) {
  nuvo_searchNeighborhoodParameters p = manualNeighborhood(3.0, 2.0, 1.0, 0.0);
  p.ax = 3.0, p.ay = 2.0, p.az = 0.5;
  ASSERT_EQ(build(p), 0);
  for (int i = 0; i < sn_.size; ++i) EXPECT_EQ(sn_.weight[i], 1.0);

  p.power = 1.0;
  ASSERT_EQ(build(p), 0);
  EXPECT_EQ(sn_.weight[0], 0.5 * (1.0 / 3.0));
  for (int i = 1; i < sn_.size; ++i) EXPECT_EQ(sn_.weight[i], sn_.distance[i]);

  p.power = -2.0;
  ASSERT_EQ(build(p), 0);
  EXPECT_DOUBLE_EQ(sn_.weight[0], 36.0);
  for (int i = 1; i < sn_.size; ++i)
    EXPECT_DOUBLE_EQ(sn_.weight[i], 1.0 / (sn_.distance[i] * sn_.distance[i]));
}

TEST_F(SearchNeighborhood, RotationTurnsTheEllipsoidAndKeepsBoundaryNodes) {
  nuvo_searchNeighborhoodParameters p = manualNeighborhood(4.0, 2.5, 1.5, 1.0);
  ASSERT_EQ(build(p), 0);
  const std::vector<Node> plain = nodes();
  p.rotationFlag = SEARCHNEIGHBORHOOD_ROTATION_ON;  // with zero angles: no rotation
  ASSERT_EQ(build(p), 0);
  EXPECT_EQ(nodes(), plain);

  p = manualNeighborhood(5.5, 2.5, 0.0);
  setAngles(&p, 90.0, 0.0, 0.0);
  ASSERT_EQ(build(p), 0);
  EXPECT_EQ(std::pair(sn_.ixMax, sn_.iyMax), std::pair(2, 5));

  // A ball of radius 2 has 33 nodes, the six on its surface along the axes included,
  // also when rounding puts them a hair outside after a rotation.
  p = manualNeighborhood(2.0, 2.0, 2.0);
  setAngles(&p, 90.0, 90.0, 0.0);
  ASSERT_EQ(build(p), 0);
  EXPECT_EQ(sn_.size, 33);
}

TEST_F(SearchNeighborhood, ApproximateBoundsFollowTheBuiltBox) {
  const double angles[][3] = {{0, 0, 0}, {30, 0, 0}, {45, 20, 0}, {-70, 35, 15}, {10, -80, 60}};
  for (const auto &a : angles) {
    nuvo_searchNeighborhoodParameters p = manualNeighborhood(9.5, 4.0, 2.5);
    if (a[0] != 0 || a[1] != 0 || a[2] != 0) setAngles(&p, a[0], a[1], a[2]);
    ASSERT_EQ(build(p), 0);
    int b[3];
    NUVOSearchNeighborhoodApproxBound(&p, &b[0], &b[1], &b[2]);
    EXPECT_NEAR(b[0], sn_.ixMax, 1) << a[0] << " " << a[1] << " " << a[2];
    EXPECT_NEAR(b[1], sn_.iyMax, 1);
    EXPECT_NEAR(b[2], sn_.izMax, 1);
  }
}

TEST_F(SearchNeighborhood, RefusesEmptyBoxesAndSizesAndPrints) {
  EXPECT_EQ(build(manualNeighborhood(-1.0, 2.0, 2.0)), -688);
  EXPECT_EQ(build(manualNeighborhood(2.0, std::nan(""), 2.0)), -688);
  EXPECT_EQ(NUVOMallocSearchNeighborhood(&sn_, 0), -3);
  ASSERT_EQ(NUVOMallocSearchNeighborhood(&sn_, 2), 0);
  EXPECT_EQ(NUVOReallocSearchNeighborhood(&sn_, 0), -5);

  ASSERT_EQ(build(manualNeighborhood(2.0, 1.0, 0.0)), 0);
  EXPECT_EQ(printed([&](FILE *f) { EXPECT_EQ(NUVOPrintSearchNeighborhood(&sn_, "# ", f), 0); }),
            "# size :          7\n# ixMin:         -2\n# iyMin:         -1\n# izMin:          0\n"
            "# ixMax:          2\n# iyMax:          1\n# izMax:          0\n");
}

}  // namespace
