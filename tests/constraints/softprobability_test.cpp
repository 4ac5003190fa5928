#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "constraints/pdf_comparison.hpp"
#include "nuvo_softprobability.h"
#include "tests/constraints/test_files.hpp"
#include "tests/support/verdict.hpp"
#include "tests/support/warning_recorder.hpp"

namespace {

using nuvo::test::printed;
using nuvo::test::TempStream;
using nuvo_test::newClasses;
using nuvo_test::newImage;
using nuvo_test::TempFolder;

// Two classes [0, 1[ and [1, 2[, a global pdf, MAE with a constant threshold.
constexpr char kGlobalText[] =
    "1 // global probability constraint\n"
    "2  1 0 1  1 1 2   /* classes */\n"
    "0.3 0.7\n"
    "0    // comparing method\n"
    "0.5  // deactivation distance\n"
    "0 0.05\n";

class SoftProbabilityTest : public ::testing::Test {
 protected:
  int read(const std::string &text) { return ascii_.read(NUVOReadSoftProbabilityASCII, text); }

  // Validates sp_, the warnings going to rec_.
  int validate() {
    return nuvo_test::verdictOf(NUVOValidateSoftProbability, &sp_, &rec_.pm, rec_.callback);
  }

  // A valid global constraint in sp_, built from kGlobalText.
  void makeGlobal() {
    ASSERT_EQ(read(kGlobalText), 0);
    ASSERT_EQ(NUVOSoftProbabilityASCIIToSoftProbability(&ascii_, &sp_), 0);
  }

  // A valid local constraint in sp_, built in memory: two classes, a two-variable
  // pdf image, radius 3, deactivation distance 1.
  void makeLocal() {
    sp_.probabilityConstraintUsage = NUVO_PROBABILITY_CONSTRAINT_LOCAL;
    sp_.classOfValues = newClasses("2 1 0 1 1 1 2");
    sp_.localPdfImage = newImage(2, {"p0", "p1"}, {0.2, 0.5, 0.8, 0.5});
    sp_.localPdfSupportRadius = nuvo_test::valuesOf<double>({3.0});
    sp_.localCurrentPdfComputation = NUVO_LOCAL_CURRENT_PDF_COMPLETE;
    sp_.comparingPdfMethod = NUVO_COMPARING_PDF_RMSE;
    sp_.deactivationDistance = 1.0;
    sp_.constantThreshold = 0.1;
  }

  nuvo_test::Owned<nuvo_softProbabilityASCII, NUVOInitSoftProbabilityASCII,
                   NUVOFreeSoftProbabilityASCII>
      ascii_;
  nuvo_test::Owned<nuvo_softProbability, NUVOInitSoftProbability, NUVOFreeSoftProbability> sp_;
  nuvo::test::WarningRecorder rec_;
};

TEST_F(SoftProbabilityTest, GlobalConstraintReadsConvertsValidatesAndPrints) {
  makeGlobal();
  EXPECT_EQ(validate(), 0);

  EXPECT_EQ(printed([&](FILE *f) { EXPECT_EQ(NUVOPrintSoftProbability(&sp_, "# ", f), 0); }),
            "# probabilityConstraintUsage: 1(global)\n"
            "# classOfValues:\n"
            "#    nclass:   2\n"
            "#    class   0: ninterval =   1, class = [  0.000000,   1.000000[\n"
            "#    class   1: ninterval =   1, class = [  1.000000,   2.000000[\n"
            "# globalPdf:  0.300000  0.700000\n"
            "# comparingPdfMethod: 0(MAE (Mean Absolute Error))\n"
            "# deactivationDistance:   0.500000\n"
            "# probabilityConstraintThresholdType: 0(constant threshold)\n"
            "# constantThreshold:   0.050000\n");
}

TEST_F(SoftProbabilityTest, LocalConstraintLoadsItsImage) {
  TempFolder folder;
  const std::string pdf = folder.write("pdf.gslib", "2 1 1\n2\np0\np1\n0.25 0.75\n1 0\n");
  ASSERT_EQ(read("2  2 1 0 1 1 1 2  " + pdf + " 3.0 1  4  0.5  1  1 2 3  0.3 0.2 0.1  2"), 0);
  // The name of method 4 has always been printed without its opening parenthesis.
  const std::string ascii =
      printed([&](FILE *f) { NUVOPrintSoftProbabilityASCII(&ascii_, "", f); });
  EXPECT_NE(ascii.find("\ncomparingPdfMethod: 4MLikRsym (Mean Likelihood Ratio (over each class "
                       "indicator, symmetric target interval))\n"),
            std::string::npos)
      << ascii;

  ASSERT_EQ(NUVOSoftProbabilityASCIIToSoftProbability(&ascii_, &sp_), 0);
  ASSERT_NE(sp_.localPdfImage, nullptr);
  EXPECT_EQ(sp_.localPdfImage->var[2], 0.75);  // node 0 of the second variable
  EXPECT_EQ(*sp_.localPdfSupportRadius, 3.0);
  // The likelihood-ratio methods refuse a dynamic threshold.
  EXPECT_EQ(validate(), -1977);
}

TEST_F(SoftProbabilityTest, ConversionRefusesAnUnopenableImageOrAPdfWithoutClasses) {
  ASSERT_EQ(read("2 1 1 0 1 /nonexistent/pdf.gslib 3 0 0 0 0 0.1"), 0);
  EXPECT_EQ(NUVOSoftProbabilityASCIIToSoftProbability(&ascii_, &sp_), -120);
  NUVOFreeSoftProbabilityASCII(&ascii_);
  NUVOFreeSoftProbability(&sp_);
  ascii_.probabilityConstraintUsage = NUVO_PROBABILITY_CONSTRAINT_GLOBAL;
  ascii_.globalPdf = nuvo_test::valuesOf<double>({1.0});
  EXPECT_EQ(NUVOSoftProbabilityASCIIToSoftProbability(&ascii_, &sp_), -4041);
}

TEST_F(SoftProbabilityTest, UsageZeroEndsTheSection) {
  TempStream text("0 next");
  ASSERT_EQ(NUVOReadSoftProbabilityASCII(&ascii_, text.get()), 0);
  EXPECT_EQ(ascii_.classOfValues, nullptr);
  EXPECT_EQ(std::fgetc(text.get()), ' ');
  EXPECT_EQ(validate(), 0);
}

// A missing or malformed value of each field gives that field's code; the
// parameter-file tests check this for every token of a file holding every
// section. Here: the values out of range and the length limits.
TEST_F(SoftProbabilityTest, ReadingRefusesUnknownSelectionsAndLongNames) {
  const std::string local = "2 1 1 0 1 ";
  for (auto [text, code] : {std::pair<std::string, int>{"3", -950},
                            {"1 0", -4041},
                            {"1 2 1 0 1 1 1 2 0.5 0.5 0 0 2", -970},
                            {local + std::string(256, 'f'), -936},
                            {local + std::string(255, 'f') + " 3 0 0 0 0 0.1", 0}})
    EXPECT_EQ(read(text), code) << text;
}

TEST_F(SoftProbabilityTest, GlobalRulesInOrder) {
  makeGlobal();
  sp_.globalPdf[0] = 0.304;  // sum 1.004: rescaled
  EXPECT_EQ(validate(), 0);
  EXPECT_DOUBLE_EQ(sp_.globalPdf[0] + sp_.globalPdf[1], 1.0);
  EXPECT_DOUBLE_EQ(sp_.globalPdf[0], 0.304 / 1.004);
  sp_.globalPdf[0] = 0.32;  // sum 1.02
  EXPECT_EQ(validate(), -1933);
  sp_.globalPdf[0] = -0.1;
  EXPECT_EQ(validate(), -1931);
  sp_.globalPdf[0] = 1.1;
  EXPECT_EQ(validate(), -1932);
  sp_.globalPdf[0] = 0.3;

  // The method is checked before the deactivation distance, which comes before
  // the threshold.
  sp_.comparingPdfMethod = 6;
  sp_.deactivationDistance = -1.0;
  sp_.constantThreshold = 0.0;
  EXPECT_EQ(validate(), -1971);
  sp_.comparingPdfMethod = NUVO_COMPARING_PDF_JSD;
  EXPECT_EQ(validate(), -1975);
  sp_.deactivationDistance = 0.0;
  EXPECT_EQ(validate(), -1981);
  sp_.constantThreshold = 1.5;
  EXPECT_EQ(validate(), -1982);

  // The likelihood-ratio methods take any threshold >= 0.
  sp_.comparingPdfMethod = NUVO_COMPARING_PDF_MLIKROPT;
  EXPECT_EQ(validate(), 0);
  sp_.constantThreshold = -0.1;
  EXPECT_EQ(validate(), -1981);

  sp_.comparingPdfMethod = NUVO_COMPARING_PDF_MAE;
  sp_.probabilityConstraintThresholdType = 2;
  EXPECT_EQ(validate(), -1980);
  sp_.probabilityConstraintThresholdType = NUVO_PROBABILITY_THRESHOLD_DYNAMIC;
  EXPECT_EQ(validate(), -1999);

  // On a valid constraint again: the usage and the classes come before the pdf.
  NUVOFreeSoftProbability(&sp_);
  makeGlobal();
  sp_.probabilityConstraintUsage = 3;
  EXPECT_EQ(validate(), -1920);
  sp_.probabilityConstraintUsage = NUVO_PROBABILITY_CONSTRAINT_GLOBAL;
  NUVOFreeClassOfValues(sp_.classOfValues);  // no class: the class validator's code
  EXPECT_EQ(validate(), -4041);
  std::free(sp_.classOfValues);
  sp_.classOfValues = nullptr;
  EXPECT_EQ(validate(), -1991);
  sp_.classOfValues = newClasses("2 1 0 1 1 1 2");
  std::free(sp_.globalPdf);
  sp_.globalPdf = nullptr;
  EXPECT_EQ(validate(), -1995);
}

TEST_F(SoftProbabilityTest, DynamicThresholdParameters) {
  makeGlobal();
  sp_.probabilityConstraintThresholdType = NUVO_PROBABILITY_THRESHOLD_DYNAMIC;
  // T1 < T2 < T3 is accepted: the order of the thresholds is not checked.
  sp_.dynamicThresholdParameters = nuvo_test::valuesOf<double>({0, 10, 20, 0.1, 0.2, 0.3, 1});
  EXPECT_EQ(validate(), 0);
  double *p = sp_.dynamicThresholdParameters;
  for (auto [index, value] : {std::pair{0, -1.0}, {0, 11.0}, {1, 20.0}, {6, 1e-11}}) {
    const double kept = p[index];
    p[index] = value;
    EXPECT_EQ(validate(), -1985) << index << " " << value;
    p[index] = kept;
  }
}

TEST_F(SoftProbabilityTest, LocalRulesInOrder) {
  makeLocal();
  EXPECT_EQ(validate(), 0);
  sp_.localCurrentPdfComputation = 2;
  EXPECT_EQ(validate(), -1961);
  *sp_.localPdfSupportRadius = 0.0;
  EXPECT_EQ(validate(), -1951);
  std::free(sp_.localPdfSupportRadius);
  sp_.localPdfSupportRadius = nullptr;
  EXPECT_EQ(validate(), -1997);
  sp_.localPdfImage->nvar = 1;
  sp_.localPdfImage->nxyzv = 2;
  EXPECT_EQ(validate(), -1941);
  sp_.localPdfImage->grid->nx = 0;  // the image validator's code
  EXPECT_EQ(validate(), -611);
  NUVOFreeImage(sp_.localPdfImage);
  std::free(sp_.localPdfImage);
  sp_.localPdfImage = nullptr;
  EXPECT_EQ(validate(), -1996);
}

TEST_F(SoftProbabilityTest, DeactivationReachingTheRadiusWarns) {
  makeLocal();
  sp_.deactivationDistance = 2.9;  // below the support radius: no warning
  EXPECT_EQ(validate(), 0);
  EXPECT_TRUE(rec_.warnings().empty());
  sp_.deactivationDistance = 3.0;  // equal to it
  EXPECT_EQ(validate(), 0);
  EXPECT_EQ(rec_.warnings(), std::vector<int>{120});
  EXPECT_EQ(rec_.pm.warningNumber, 0);
  // The warning does not stop the checks that follow it.
  sp_.constantThreshold = 2.0;
  EXPECT_EQ(validate(), -1982);
  // The callback's code and a stop request end the validation.
  rec_.answer = -77;
  int error = 1;
  EXPECT_EQ(NUVOValidateSoftProbability(&sp_, &rec_.pm, rec_.callback, &error), -77);
  rec_.pm.stopFlag = 1;
  EXPECT_EQ(NUVOValidateSoftProbability(&sp_, &rec_.pm, nullptr, &error), -1000);
}

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
                         : qj - pj < 0              ? lower[j]
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
        EXPECT_NEAR(penalty[k], directPenalty(sp, target, count, lower, k), 1e-9 * (1 + penalty[k]))
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
