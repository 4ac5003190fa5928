#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "constraints/pdf_comparison.hpp"

namespace {

nuvo_softProbability constraint(int method, double threshold) {
  nuvo_softProbability sp{};
  sp.comparingPdfMethod = method;
  sp.probabilityConstraintThresholdType = NUVO_PROBABILITY_THRESHOLD_CONSTANT;
  sp.constantThreshold = threshold;
  return sp;
}

// The divergence of the current pdf q from p written out directly, one candidate
// class at a time (no shared sum), for the methods of constant thresholds.
double directPenalty(const nuvo_softProbability &sp, const std::vector<double> &p,
                     const std::vector<std::int64_t> &n, const std::vector<double> &lower, int k) {
  const int nclass = static_cast<int>(p.size());
  double m = 1.0;
  for (auto c : n) m += static_cast<double>(c);
  std::vector<double> q(nclass);
  for (int j = 0; j < nclass; ++j) q[j] = (n[j] + (j == k ? 1 : 0)) / m;
  double d = 0.0;
  for (int j = 0; j < nclass; ++j) {
    const double pj = p[j], qj = q[j];
    switch (sp.comparingPdfMethod) {
      case 0:
        d += std::fabs(qj - pj) / nclass;
        break;
      case 1:
        d += (qj - pj) * (qj - pj) / nclass;
        break;
      case 2:
        d += std::max(pj, 1e-10) * std::log(std::max(pj, 1e-10) / std::max(qj, 1e-10));
        break;
      case 3: {
        const double mid = 0.5 * (pj + qj);
        d += 0.5 * (pj < 1e-10   ? qj
                    : qj < 1e-10 ? pj
                                 : pj * std::log2(pj / mid) + qj * std::log2(qj / mid));
        break;
      }
      default: {
        const double b = sp.comparingPdfMethod == 4 ? sp.constantThreshold
                         : qj - pj < 0          ? lower[j]
                                                : 2 * sp.constantThreshold - lower[j];
        const double v = std::max(pj * (1 - pj), 1e-16);
        d += std::exp(std::min(50.0, -0.5 * m * (b * b - (qj - pj) * (qj - pj)) / v)) / nclass;
      }
    }
  }
  if (sp.comparingPdfMethod == 1) d = std::sqrt(d);
  const double r = sp.comparingPdfMethod >= 4 ? std::min(1e8, d) : d / sp.constantThreshold;
  return std::max(0.0, r - 1.0);
}

TEST(PdfComparison, PenaltiesOfEveryMethodMatchTheDirectFormula) {
  const std::vector<double> target = {0.2, 0.45, 0.0, 0.35};
  const std::vector<double> lower = {0.01, 0.03, 0.02, 0.025};
  for (const std::vector<std::int64_t> &count :
       {std::vector<std::int64_t>{3, 1, 0, 4}, {0, 0, 0, 0}, {40, 2, 1, 17}}) {
    for (int method = 0; method <= 5; ++method) {
      const nuvo_softProbability sp = constraint(method, method >= 4 ? 0.02 : 0.05);
      std::vector<double> penalty(4);
      nuvo::candidatePenalties(sp, target, count, lower, penalty);
      for (int k = 0; k < 4; ++k)
        EXPECT_NEAR(penalty[k], directPenalty(sp, target, count, lower, k),
                    1e-9 * (1 + penalty[k]))
            << "method " << method << " class " << k;
    }
  }
}

TEST(PdfComparison, DynamicThresholdFollowsItsFourPieces) {
  nuvo_softProbability sp = constraint(0, 0.0);
  double params[7] = {10, 100, 1000, 0.5, 0.2, 0.05, 0.5};
  sp.probabilityConstraintThresholdType = NUVO_PROBABILITY_THRESHOLD_DYNAMIC;
  sp.dynamicThresholdParameters = params;
  EXPECT_EQ(nuvo::probabilityThreshold(sp, 9), 0.5);
  EXPECT_EQ(nuvo::probabilityThreshold(sp, 10), 0.2);
  EXPECT_EQ(nuvo::probabilityThreshold(sp, 100), 0.2);
  EXPECT_NEAR(nuvo::probabilityThreshold(sp, 400),
              (0.05 - 0.2) / (std::sqrt(1000) - 10) * (20 - 10) + 0.2, 1e-15);
  EXPECT_EQ(nuvo::probabilityThreshold(sp, 1000), 0.05);
}

// The mean of N(mu, s^2) truncated to [lo, hi] by Simpson's rule: an independent
// check of the equation the optimal intervals solve.
double integratedTruncatedMean(double mu, double s, double lo, double hi) {
  const int n = 2000;
  const double h = (hi - lo) / n;
  double mass = 0.0, moment = 0.0;
  for (int i = 0; i <= n; ++i) {
    const double x = lo + i * h, w = (i == 0 || i == n) ? 1 : (i % 2 ? 4 : 2);
    const double f = std::exp(-0.5 * ((x - mu) / s) * ((x - mu) / s));
    mass += w * f;
    moment += w * f * x;
  }
  return moment / mass;
}

TEST(PdfComparison, OptimalIntervalsCentreTheTruncatedLawOnTheTarget) {
  for (double pi : {0.1, 0.3, 0.5, 0.8}) {
    for (double b : {0.02, 0.1}) {
      const std::vector<double> table = nuvo::optimalIntervalTable(pi, b);
      ASSERT_EQ(table.size(), 1001u);
      const double s = std::sqrt(pi * (1 - pi));
      for (int i = 0; i <= 1000; i += 50) {
        const double p = i / 1000.0, a = table[i];
        ASSERT_GE(a, 0.0);
        ASSERT_LE(a, 2 * b);
        const double mean = integratedTruncatedMean(pi, s, p - a, p - a + 2 * b);
        if (a > 1e-9 && a < 2 * b - 1e-9)
          EXPECT_NEAR(mean, p, 1e-8) << "pi " << pi << " b " << b << " p " << p;
        else  // no interval of the width reaches p: the nearest one
          EXPECT_TRUE(a <= 1e-9 ? mean <= p + 1e-8 : mean >= p - 1e-8);
        // The interval leans away from the training proportion.
        if (p > pi + 1e-9) {
          EXPECT_LT(a, b + 1e-9);
        }
        if (p < pi - 1e-9) {
          EXPECT_GT(a, b - 1e-9);
        }
      }
      EXPECT_NEAR(nuvo::optimalLowerHalfWidth(pi, pi, b), b, 1e-9);
      // Between entries the table is interpolated linearly.
      EXPECT_NEAR(nuvo::lookUpLowerHalfWidth(table, 0.3005), 0.5 * (table[300] + table[301]),
                  1e-12);
    }
  }
}

}  // namespace
