#include "engine/variable_transforms.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "channel_simulation.hpp"

namespace {

nuvo::VariableMeasure measure(std::vector<double> value, std::vector<std::int64_t> count) {
  nuvo::VariableMeasure m;
  m.value = std::move(value);
  m.count = std::move(count);
  return m;
}

// Uniform: each value sits inside its step; normal: the quantile of each step's
// midpoint. A single value is 0 in both.
TEST(NormalizationTable, UniformAndNormalForms) {
  const nuvo::VariableMeasure three = measure({1.0, 2.0, 3.0}, {1, 2, 1});
  EXPECT_EQ(nuvo::normalizedValues(measure({2.0, 7.0}, {9, 1}), NORMALIZING_UNIFORM),
            (std::vector<double>{0.0, 1.0}));
  // proportions 0.25, 0.5, 0.25: 0, 0.25 + 0.5 * 0.5, 1
  EXPECT_EQ(nuvo::normalizedValues(three, NORMALIZING_UNIFORM),
            (std::vector<double>{0.0, 0.5, 1.0}));
  const std::vector<double> y = nuvo::normalizedValues(three, NORMALIZING_NORMAL);
  ASSERT_EQ(y.size(), 3u);
  EXPECT_NEAR(y[0], -1.1503493803760079, 1e-14);  // quantile of 0.125
  EXPECT_EQ(y[1], 0.0);
  EXPECT_EQ(y[2], -y[0]);
  for (int type : {NORMALIZING_UNIFORM, NORMALIZING_NORMAL})
    EXPECT_EQ(nuvo::normalizedValues(measure({5.0}, {4}), type), (std::vector<double>{0.0}));
}

TEST(NormalQuantile, InvertsTheNormalDistributionAcrossBothRegions) {
  for (double p : {1e-13, 1e-6, 0.0241, 0.0243, 0.1, 0.3, 0.5, 0.7, 0.9, 0.97, 1.0 - 1e-9}) {
    const double x = nuvo::standardNormalQuantile(p);
    const double back = 0.5 * std::erfc(-x / std::sqrt(2.0));
    EXPECT_NEAR(back / p, 1.0, 1e-13) << p;
  }
  EXPECT_NEAR(nuvo::standardNormalQuantile(0.975), 1.959963984540054, 1e-14);
  EXPECT_EQ(nuvo::standardNormalQuantile(0.0), -HUGE_VAL);
  EXPECT_EQ(nuvo::standardNormalQuantile(1.0), HUGE_VAL);
}

// A 30 x 30 simulation of a continuous variable from a 40 x 40 continuous image.
class TransformedSimulation : public nuvo_test::InMemorySimulation {
 protected:
  void SetUp() override {
    build([](nuvo_image *ti) { return NUVOGenerateContinuousImage(ti, 40, 40, 1, 6.0, 3); }, 30);
    si_.distanceType[0] = 1;
    si_.nrealization = 2;
    const nuvo_image &t = si_.trainImage[0];
    training_.assign(t.var, t.var + t.nxyzv);
    std::sort(training_.begin(), training_.end());
  }
  bool isTrainingValue(double x) const {
    return std::binary_search(training_.begin(), training_.end(), x);
  }

  std::vector<double> training_;  // the training image's values, sorted
};

TEST_F(TransformedSimulation, NormalizationsGiveBackTrainingAndConditioningValuesExactly) {
  const double inBetween = 0.5 * (training_[100] + training_[101]);
  const double below = training_.front() - 0.01 * (training_.back() - training_.front());
  si_.trainValueRangeExtensionMax = 0.1;
  for (int type : {NORMALIZING_UNIFORM, NORMALIZING_NORMAL}) {
    SCOPED_TRACE(type);
    si_.normalizingType = type;
    si_.simImage->var[10] = training_[700];
    si_.simImage->var[500] = inBetween;  // not a training value
    si_.simImage->var[800] = below;      // beyond the training range
    const std::vector<double> untouched = training_;
    ASSERT_EQ(simulate(), 0);
    for (int r = 0; r < 2; ++r) {
      const std::vector<double> v = realization(r);
      EXPECT_EQ(v[10], training_[700]);
      EXPECT_EQ(v[500], inBetween);
      EXPECT_EQ(v[800], below);
      for (int k = 0; k < static_cast<int>(v.size()); ++k) {
        if (k == 500 || k == 800) continue;
        ASSERT_TRUE(isTrainingValue(v[k])) << k;
      }
    }
    std::vector<double> ti(si_.trainImage->var, si_.trainImage->var + si_.trainImage->nxyzv);
    std::sort(ti.begin(), ti.end());
    EXPECT_EQ(ti, untouched);  // the caller's training image is left as it was
  }
}

TEST_F(TransformedSimulation, MinMaxRescalingMapsTheTrainingRangeOntoTheTarget) {
  si_.rescalingMode[0] = RESCALING_MIN_MAX;
  si_.rescalingTargetMin[0] = 100.0;
  si_.rescalingTargetMax[0] = 110.0;
  si_.simImage->var[0] = 105.0;
  si_.nrealization = 1;
  ASSERT_EQ(simulate(), 0);
  const std::vector<double> v = realization(0);
  EXPECT_EQ(v[0], 105.0);
  const double a = 10.0 / (training_.back() - training_.front());
  for (double x : v) {
    EXPECT_GE(x, 100.0 - 1e-9);
    EXPECT_LE(x, 110.0 + 1e-9);
  }
  // every simulated value is a training value carried onto the target interval
  for (int k = 1; k < static_cast<int>(v.size()); ++k) {
    const double original = training_.front() + (v[k] - 100.0) / a;
    const auto near = std::lower_bound(training_.begin(), training_.end(), original - 1e-9);
    ASSERT_NE(near, training_.end());
    EXPECT_NEAR(*near, original, 1e-9) << k;
  }
}

// The min-max map is checked through the simulation above.
TEST_F(TransformedSimulation, MeanLengthRescalingSendsTheTrainingStatisticsOntoTheTargets) {
  si_.rescalingMode[0] = RESCALING_MEAN_LENGTH;
  si_.rescalingTargetMean[0] = 50.0;
  si_.rescalingTargetLength[0] = 4.0;
  const nuvo::LinearMap mean = nuvo::rescalingMap(si_, si_.trainImage, 0);
  double sum = 0.0;
  for (double x : training_) sum += x;
  EXPECT_NEAR(mean.a * (sum / training_.size()) + mean.b, 50.0, 1e-9);
  EXPECT_NEAR(mean.a * (training_.back() - training_.front()), 4.0, 1e-12);
}

}  // namespace
