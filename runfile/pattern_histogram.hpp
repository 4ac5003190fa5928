// Histograms of the 3 x 3 patterns of categories (x by y, every layer) of
// training images and realizations, and the Jensen-Shannon divergence between two
// of them.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "nuvo_image.h"

namespace nuvo::runfile {

class PatternHistogram {
 public:
  // `categories` are the values that take part in patterns; any other informed
  // value counts as one further symbol, so a realization holding a value unknown
  // to the training image shows in its patterns.
  explicit PatternHistogram(std::vector<double> categories);

  // Counts every 3 x 3 window of variable iv of `image` whose nine nodes are all
  // informed. Adding several images pools their patterns.
  void add(const nuvo_image &image, int iv);

  long long total() const { return total_; }

  // Jensen-Shannon divergence of the two pattern distributions, in bits: with
  // M = (P + Q) / 2, JS = (KL(P, M) + KL(Q, M)) / 2, between 0 (the same
  // distribution) and 1 (no pattern in common). NaN when either has no pattern.
  static double jensenShannonBits(const PatternHistogram &p, const PatternHistogram &q);

 private:
  std::vector<double> categories_;
  std::unordered_map<std::uint64_t, long long> counts_;
  long long total_ = 0;
};

}  // namespace nuvo::runfile
