#include "constraints/pdf_comparison.hpp"

#include <algorithm>
#include <cmath>

namespace nuvo {
namespace {

constexpr double kFloor = 1e-10;                    // KLD and JSD: smallest probability used
constexpr double kVarianceFloor = 1e-16;            // likelihood methods: smallest p (1 - p)
constexpr double kMaxExponent = 50.0;               // likelihood ratio: exp(50) at most
constexpr double kMaxRatio = 1e8;                   // likelihood methods: largest r
constexpr double kLog2e = 1.4426950408889634;       // log2(x) = ln(x) * kLog2e
constexpr double kBisectionTolerance = 1e-10;       // optimal interval: half-width tolerance
constexpr double kInvSqrt2 = 0.7071067811865476;    // 1 / sqrt(2)
constexpr double kInvSqrt2Pi = 0.3989422804014327;  // 1 / sqrt(2 pi)

// The part f_j(q) of class j in the sum behind D, for M counted nodes.
double classTerm(const nuvo_softProbability &sp, double p, double q, double m, double lower) {
  switch (sp.comparingPdfMethod) {
    case NUVO_COMPARING_PDF_MAE:
      return std::fabs(q - p);
    case NUVO_COMPARING_PDF_RMSE:
      return (q - p) * (q - p);
    case NUVO_COMPARING_PDF_KLD: {
      const double pf = std::max(p, kFloor), qf = std::max(q, kFloor);
      return pf * std::log(pf / qf);
    }
    case NUVO_COMPARING_PDF_JSD: {
      if (p < kFloor) return q;
      if (q < kFloor) return p;
      const double mid = (p + q) * 0.5;
      return (p * std::log(p / mid) + q * std::log(q / mid)) * kLog2e;
    }
    default: {  // likelihood ratios
      const double d = q - p;
      const double v = std::max(p * (1.0 - p), kVarianceFloor);
      const double b = sp.constantThreshold;
      const double half = sp.comparingPdfMethod == NUVO_COMPARING_PDF_MLIKROPT
                              ? (d < 0.0 ? lower : 2.0 * b - lower)
                              : b;
      return std::exp(std::min(kMaxExponent, -0.5 * m * (half * half - d * d) / v));
    }
  }
}

// r from the sum of the class terms.
double ratioOf(const nuvo_softProbability &sp, double sum, int nclass, double m) {
  switch (sp.comparingPdfMethod) {
    case NUVO_COMPARING_PDF_MAE:
      return sum / nclass / probabilityThreshold(sp, m);
    case NUVO_COMPARING_PDF_RMSE:
      return std::sqrt(std::max(0.0, sum) / nclass) / probabilityThreshold(sp, m);
    case NUVO_COMPARING_PDF_KLD:
      return sum / probabilityThreshold(sp, m);
    case NUVO_COMPARING_PDF_JSD:
      return 0.5 * sum / probabilityThreshold(sp, m);
    default:
      return std::min(kMaxRatio, sum / nclass);
  }
}

double normalDensity(double x) {
  return kInvSqrt2Pi * std::exp(-0.5 * x * x);
}

}  // namespace

double probabilityThreshold(const nuvo_softProbability &sp, double m) {
  if (sp.probabilityConstraintThresholdType == NUVO_PROBABILITY_THRESHOLD_CONSTANT)
    return sp.constantThreshold;
  const double *d = sp.dynamicThresholdParameters;
  const double m1 = d[0], m2 = d[1], m3 = d[2], t1 = d[3], t2 = d[4], t3 = d[5], w = d[6];
  if (m < m1) return t1;
  if (m < m2) return t2;
  if (m < m3)
    return (t3 - t2) / (std::pow(m3, w) - std::pow(m2, w)) * (std::pow(m, w) - std::pow(m2, w)) +
           t2;
  return t3;
}

void candidatePenalties(const nuvo_softProbability &sp, std::span<const double> target,
                        std::span<const std::int64_t> count, std::span<const double> lowerHalfWidth,
                        std::span<double> penalty) {
  const int nclass = static_cast<int>(target.size());
  const bool optimal = sp.comparingPdfMethod == NUVO_COMPARING_PDF_MLIKROPT;
  std::int64_t counted = 0;
  for (std::int64_t n : count) counted += n;
  const double m = static_cast<double>(counted) + 1.0;
  const auto term = [&](int j, std::int64_t n) {
    return classTerm(sp, target[j], static_cast<double>(n) / m, m,
                     optimal ? lowerHalfWidth[j] : 0.0);
  };
  double total = 0.0;
  for (int j = 0; j < nclass; ++j) total += term(j, count[j]);
  for (int k = 0; k < nclass; ++k) {
    const double sum = total - term(k, count[k]) + term(k, count[k] + 1);
    penalty[k] = std::max(0.0, ratioOf(sp, sum, nclass, m) - 1.0);
  }
}

double truncatedNormalMean(double mu, double s, double lo, double hi) {
  const double alpha = (lo - mu) / s, beta = (hi - mu) / s;
  // The mass between the bounds, from the tail that keeps its precision.
  double mass;
  if (alpha > 0.0)
    mass = 0.5 * (std::erfc(alpha * kInvSqrt2) - std::erfc(beta * kInvSqrt2));
  else if (beta < 0.0)
    mass = 0.5 * (std::erfc(-beta * kInvSqrt2) - std::erfc(-alpha * kInvSqrt2));
  else
    mass = 0.5 * (std::erf(beta * kInvSqrt2) - std::erf(alpha * kInvSqrt2));
  // Far in a tail the law is concentrated at the bound nearer to mu.
  if (!(mass > 1e-300)) return alpha > 0.0 ? lo : hi;
  return mu + s * (normalDensity(alpha) - normalDensity(beta)) / mass;
}

double optimalLowerHalfWidth(double pi, double p, double b) {
  const double width = 2.0 * b;
  if (!(width > kBisectionTolerance)) return b;
  const double s = std::sqrt(std::max(pi * (1.0 - pi), kVarianceFloor));
  const auto excess = [&](double a) {
    return truncatedNormalMean(pi, s, p - a, p - a + width) - p;
  };
  if (excess(0.0) <= 0.0) return 0.0;
  if (excess(width) >= 0.0) return width;
  const int steps =
      static_cast<int>(std::ceil(std::log(width / kBisectionTolerance) / std::log(2.0)));
  double lo = 0.0, hi = width;
  for (int i = 0; i < steps; ++i) {
    const double mid = 0.5 * (lo + hi);
    if (excess(mid) > 0.0)
      lo = mid;
    else
      hi = mid;
  }
  return 0.5 * (lo + hi);
}

std::vector<double> optimalIntervalTable(double pi, double b) {
  std::vector<double> table(kOptimalIntervalEntries);
  for (int i = 0; i < kOptimalIntervalEntries; ++i)
    table[i] = optimalLowerHalfWidth(pi, i / static_cast<double>(kOptimalIntervalEntries - 1), b);
  return table;
}

double lookUpLowerHalfWidth(std::span<const double> table, double p) {
  const int last = kOptimalIntervalEntries - 1;
  const double x = std::clamp(p, 0.0, 1.0) * last;
  const int i = std::min(static_cast<int>(x), last);
  const int upper = std::min(i + 1, last);
  return table[i] + (x - i) * (table[upper] - table[i]);
}

}  // namespace nuvo
