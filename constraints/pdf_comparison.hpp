// How far the pdf of classes around a simulated node would move from its target
// if a candidate of each class were copied there: the error terms of a
// probability constraint, computed once per node for every candidate class so
// that the scan of the training image costs one table look-up per candidate.
//
// With n_j the counted nodes of class j and M = sum_j n_j + 1 (the candidate
// included), a candidate of class k gives the current pdf q_j = n_j / M for
// j != k and q_k = (n_k + 1) / M. Against the target p, the divergence D is
//
//   MAE       sum_j |q_j - p_j| / nclass
//   RMSE      sqrt(sum_j (q_j - p_j)^2 / nclass)
//   KLD       sum_j P_j ln(P_j / Q_j), P and Q floored at 1e-10
//   JSD       0.5 sum_j [p_j log2(p_j / m_j) + q_j log2(q_j / m_j)], m = (p + q) / 2;
//             a class with p_j < 1e-10 contributes q_j, one with q_j < 1e-10 p_j
//
// and r_k = D / t with t the constant or dynamic threshold. The two likelihood
// methods compare each class indicator with an interval around its target
// instead: with d_j = q_j - p_j, v_j = max(p_j (1 - p_j), 1e-16) and the
// half-width b_j, class j gives the ratio exp(min(50, -M (b_j^2 - d_j^2) / (2 v_j))),
// below 1 inside the interval and above 1 outside, and r_k = min(1e8, mean ratio).
// MLikRsym uses b_j = constantThreshold on both sides; MLikRopt the lower
// half-width a_j of the class's optimal interval below the target (d_j < 0) and
// 2 constantThreshold - a_j above it.
//
// The term a candidate of class k adds to its error is max(0, r_k - 1): the
// relative excess over the threshold, as a variable's distance contributes.
//
// Every D is a sum of per-class terms f_j(q_j), and a candidate changes only its
// own class: the sum over all classes is formed once, and candidate k's sum is
// that total with f_k(n_k / M) replaced by f_k((n_k + 1) / M), so a node costs
// O(nclass), not O(nclass^2).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "nuvo_softprobability.h"

namespace nuvo {

// The threshold t of the constraint for M counted nodes (the candidate included).
// Dynamic: T1 below M1, T2 from M1 to M2, then (T3 - T2) (M^W - M2^W) / (M3^W - M2^W) + T2
// up to M3, and T3 from M3 on.
double probabilityThreshold(const nuvo_softProbability &sp, double m);

// penalty[k] = max(0, r_k - 1) for every class k, from the counts n_j and the
// target p_j. `lowerHalfWidth` holds a_j for MLikRopt and is not read otherwise.
void candidatePenalties(const nuvo_softProbability &sp, std::span<const double> target,
                        std::span<const std::int64_t> count, std::span<const double> lowerHalfWidth,
                        std::span<double> penalty);

// ---- Optimal target intervals (MLikRopt) ----
//
// A class whose training-image proportion is pi tends to be simulated at a
// proportion pulled towards pi. Its proportion around a node is modelled as the
// normal law N(pi, s^2), s = sqrt(max(pi (1 - pi), 1e-16)). The optimal interval
// for a target p is the interval [p - a, p - a + 2 b] of width 2 b (b the
// constant threshold) that this law, truncated to it, has mean exactly p:
//
//   pi + s (phi(alpha) - phi(beta)) / (Phi(beta) - Phi(alpha)) = p,
//   alpha = (p - a - pi) / s,  beta = (p - a + 2 b - pi) / s,
//
// phi and Phi the standard normal density and distribution (written with exp
// and erf). Accepting a candidate while the class proportion stays in such an
// interval gives, on average, the target rather than the training image's
// proportion: the interval leans away from pi. The truncated mean falls as a
// grows, so a is found by bisection on [0, 2 b] with tolerance 1e-10
// (ceil(log2(2 b / 1e-10)) halvings); when no a in [0, 2 b] solves it, the end
// nearer to a solution is taken. For pi = p the interval is symmetric (a = b).

inline constexpr int kOptimalIntervalEntries = 1001;  // targets 0, 0.001, ..., 1

// The lower half-width a for the target p.
double optimalLowerHalfWidth(double pi, double p, double b);

// The table of a for the targets 0, 0.001, ..., 1.
std::vector<double> optimalIntervalTable(double pi, double b);

// a for the target p, interpolated linearly between the table's entries.
double lookUpLowerHalfWidth(std::span<const double> table, double p);

// The mean of N(mu, s^2) truncated to [lo, hi] (the side of the equation above).
double truncatedNormalMean(double mu, double s, double lo, double hi);

}  // namespace nuvo
