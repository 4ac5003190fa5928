#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "channel_simulation.hpp"
#include "engine/local_transform.hpp"
#include "nuvo_simtransform.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/random.hpp"

namespace {

using nuvo::test::TestImage;
using nuvo_test::setHomothety;
using nuvo_test::setRotation;

// The offsets tests below see the inverses at work; here the stored forms.
TEST(SimTransformValue, StoresInverseRatiosAndRadiansOrRefuses) {
  double lowerUpper[] = {2.0, 4.0}, fixed[] = {2.0, 2.0};
  ASSERT_EQ(NUVOSimTransformHomothetyValue(2, lowerUpper, fixed, nullptr), 0);
  EXPECT_EQ(lowerUpper[0], 0.25);  // 1/4, then the width 1/2 - 1/4
  EXPECT_EQ(lowerUpper[1], 0.25);
  EXPECT_EQ(fixed[1], 0.0);

  double range[] = {-30.0, 60.0};
  ASSERT_EQ(NUVOSimTransformRotationValue(2, nullptr, range, nullptr), 0);
  EXPECT_DOUBLE_EQ(range[0], -M_PI / 6);
  EXPECT_DOUBLE_EQ(range[1], M_PI / 2);

  // What would not invert is refused, and nothing is changed.
  double ok[] = {2.0}, zero[] = {0.0};
  EXPECT_EQ(NUVOSimTransformHomothetyValue(1, ok, zero, nullptr), -1716);
  EXPECT_EQ(ok[0], 2.0);
  double reversed[] = {3.0, 1.0};
  EXPECT_EQ(NUVOSimTransformHomothetyValue(2, nullptr, nullptr, reversed), -1727);
  EXPECT_EQ(NUVOSimTransformRotationValue(2, reversed, nullptr, nullptr), -1807);
  EXPECT_EQ(NUVOSimTransformRotationValue(3, nullptr, nullptr, nullptr), -1801);
  EXPECT_EQ(NUVOSimTransformHomothetyValue(-1, nullptr, nullptr, nullptr), -1701);
}

TEST(SimTransformImage, ConvertsOnlyTheNodesInUse) {
  // Node 2 has no lower bound; node 1 is masked out.
  TestImage ratio(3, 1, 1, {"lower", "upper"}, {1, 2, NUVO_MISSING_VALUE, 4, 4, 4});
  TestImage mask(3, 1, 1, {"mask"}, {1, 0, 1});
  TestImage wrong(3, 1, 1, {"ratio"}, {2, 2, 2});
  EXPECT_EQ(NUVOSimTransformHomothetyImage(2, &mask.image, nullptr, &ratio.image, &wrong.image),
            -1724);
  EXPECT_EQ(ratio.image.var[0], 1.0);  // checked before anything is converted
  ASSERT_EQ(NUVOSimTransformHomothetyImage(2, &mask.image, nullptr, &ratio.image, nullptr), 0);
  // (1, 4): lower 1/4, width 1 - 1/4.
  EXPECT_EQ(nuvo::test::imageValues(ratio.image),
            (std::vector<double>{0.25, 2, NUVO_MISSING_VALUE, 0.75, 4, 4}));
}

// The offsets a transform with constant parameters gives at any node.
std::vector<int> mapped(int homothetyUsage, std::initializer_list<double> ratio, int rotationUsage,
                        std::initializer_list<double> azimuth, int dx, int dy, int dz) {
  nuvo_test::OwnedSimInput in;
  if (homothetyUsage != 0) nuvo_test::setHomothety(&in.si, homothetyUsage, ratio, ratio, ratio);
  if (rotationUsage != 0) nuvo_test::setRotation(&in.si, rotationUsage, azimuth, {0, 0}, {0, 0});
  nuvo::LocalTransform transform;
  EXPECT_EQ(transform.prepare(in.si), 0);
  nuvo_randContext ctx = nuvo_test::seededContext(5);
  transform.at(0, &ctx).apply(&dx, &dy, &dz);
  return {dx, dy, dz};
}

TEST(LocalTransform, ScalesTurnsAndRoundsOffsets) {
  using V = std::vector<int>;
  // Ratio 2: offsets halved, halves rounded upwards.
  EXPECT_EQ(mapped(1, {2.0}, 0, {}, 3, -3, 4), (V{2, -1, 2}));
  // Azimuth 90 degrees: an east step of the simulation is a north step of the
  // training image, a north step a west one.
  EXPECT_EQ(mapped(0, {}, 1, {90.0}, 1, 0, 0), (V{0, 1, 0}));
  EXPECT_EQ(mapped(0, {}, 1, {90.0}, 0, 5, 0), (V{-5, 0, 0}));
  // Both: turned, then scaled in the turned frame.
  EXPECT_EQ(mapped(1, {0.5}, 1, {90.0}, 0, 3, 1), (V{-6, 0, 2}));
  // A tiny ratio sends neighbours beyond any grid, and no further.
  EXPECT_EQ(mapped(1, {1e-12}, 0, {}, 3, 0, -1), (V{1 << 29, 0, -(1 << 29)}));
  // With tolerance the ratio lies between its bounds: 1/4 to 1/2 of 8.
  const V tolerant = mapped(2, {2.0, 4.0}, 0, {}, 8, 0, 0);
  EXPECT_GE(tolerant[0], 2);
  EXPECT_LE(tolerant[0], 4);
}

// A training image of channels along x, and simulations of it with homothety
// or rotation, compared by simple statistics of the channel facies.
class TransformedChannels : public nuvo_test::InMemorySimulation {
 protected:
  static constexpr int kSim = 64;
  void SetUp() override {
    build([](nuvo_image *ti) { return NUVOGenerateChannelImage(ti, 120, 120, 1, 0.3, 4.0, 5); },
          kSim);
    const nuvo_image &ti = si_.trainImage[0];
    tiFacies_.assign(ti.var, ti.var + ti.nxyzv);
    si_.npostProcessingPathMax = 0;
    nuvo_searchNeighborhoodParameters &p = si_.searchNeighborhoodParameters[0];
    p.rx = p.ry = p.ax = p.ay = 10.0;
    si_.nneighboringNode[0] = 30;
    si_.maxScanFraction[0] = 0.3;
  }

  std::vector<double> simulated() {
    EXPECT_EQ(simulate(), 0);
    return realization(0);
  }

  // The share of pairs of nodes `lag` apart along x (or y) whose facies differ.
  static double changeRate(const std::vector<double> &f, int n, int lag, bool alongX) {
    int pairs = 0, changes = 0;
    for (int y = 0; y < n - (alongX ? 0 : lag); ++y)
      for (int x = 0; x < n - (alongX ? lag : 0); ++x) {
        const int k = x + n * y, other = alongX ? k + lag : k + n * lag;
        ++pairs;
        changes += f[k] != f[other];
      }
    return static_cast<double>(changes) / pairs;
  }

  std::vector<double> tiFacies_;
};

TEST_F(TransformedChannels, RotationOf90DegreesTurnsChannelsUpright) {
  si_.maxScanFraction[0] = 0.1;  // enough to keep the channels' direction
  const std::vector<double> plain = simulated();
  EXPECT_GT(changeRate(plain, kSim, 6, false), 1.5 * changeRate(plain, kSim, 6, true));

  setRotation(&si_, 1, {90.0}, {0.0}, {0.0});
  const std::vector<double> turned = simulated();
  EXPECT_GT(changeRate(turned, kSim, 6, true), 1.5 * changeRate(turned, kSim, 6, false));
}

// Structures twice as large: the change rate across the channels (along y) at
// lag 2h matches the training image's at lag h.
TEST_F(TransformedChannels, HomothetyOf2DoublesTheChannelWidth) {
  setHomothety(&si_, 1, {2.0}, {2.0}, {1.0});
  const std::vector<double> wide = simulated();
  for (int lag = 1; lag <= 4; ++lag) {
    const double ti = changeRate(tiFacies_, 120, lag, false);
    EXPECT_NEAR(changeRate(wide, kSim, 2 * lag, false), ti, 0.2 * ti) << "lag " << lag;
  }
}

// Patterns shrunk below a node cannot be matched: every node takes its value
// from the training image's marginal, without any fault.
TEST_F(TransformedChannels, ExtremeRatiosFallBackOnTheMarginal) {
  setHomothety(&si_, 1, {4e-320}, {1e-12}, {1.0});  // x: an infinite inverse
  const std::vector<double> v = simulated();
  EXPECT_EQ(std::count(v.begin(), v.end(), 0.0) + std::count(v.begin(), v.end(), 1.0),
            static_cast<long>(v.size()));
}

// A map on the simulation grid of a lower and an upper bound.
nuvo_image *boundsMap(int n, double lower, double upper) {
  return nuvo_test::newImage(n, n, 1, {"lower", "upper"},
                             [=](int, int, int, int iv) { return iv == 0 ? lower : upper; });
}

// Maps holding one value everywhere act as that constant, tolerance draws
// included, and a map without values leaves its axis as it is (a small grid
// shows it as well as a large one).
TEST_F(TransformedChannels, MapsActLikeTheirConstants) {
  constexpr int n = 24;
  nuvo_test::setSimGrid(&si_, n, n, 1);
  setHomothety(&si_, 2, {1.0, 1.5}, {1.0, 1.0}, {1.0, 1.0});
  setRotation(&si_, 2, {20.0, 40.0}, {0.0, 0.0}, {0.0, 0.0});
  const std::vector<double> constants = simulated();

  si_.homothetyXRatioImageFlag = 1;
  si_.homothetyXRatioImage = boundsMap(n, 1.0, 1.5);
  si_.rotationAzimuthImageFlag = 1;
  si_.rotationAzimuthImage = boundsMap(n, 20.0, 40.0);
  si_.homothetyYRatioImageFlag = 1;
  si_.homothetyYRatioImage = boundsMap(n, NUVO_MISSING_VALUE, NUVO_MISSING_VALUE);
  EXPECT_EQ(simulated(), constants);

  for (int k = 0; k < n * n; k += 2)  // every other node may turn further
    si_.rotationAzimuthImage->var[n * n + k] = 80.0;
  EXPECT_NE(simulated(), constants);
}

}  // namespace
