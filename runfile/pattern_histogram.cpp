#include "pattern_histogram.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace nuvo::runfile {

PatternHistogram::PatternHistogram(std::vector<double> categories)
    : categories_(std::move(categories)) {
  std::sort(categories_.begin(), categories_.end());
}

void PatternHistogram::add(const nuvo_image &image, int iv) {
  const nuvo_grid &g = *image.grid;
  const double *v = image.var + static_cast<long long>(iv) * g.nxyz;
  // Symbol of each node: the category's position, ncategory for another value,
  // -1 when missing. With at most 20 categories a pattern of nine symbols is a
  // number below 21^9, well inside 64 bits.
  const int base = static_cast<int>(categories_.size()) + 1;
  std::vector<int> symbol(static_cast<std::size_t>(g.nxyz));
  for (int i = 0; i < g.nxyz; ++i) {
    const auto at = std::lower_bound(categories_.begin(), categories_.end(), v[i]);
    symbol[i] = v[i] == NUVO_MISSING_VALUE ? -1
                : at != categories_.end() && *at == v[i]
                    ? static_cast<int>(at - categories_.begin())
                    : base - 1;
  }
  for (int z = 0; z < g.nz; ++z)
    for (int y = 0; y + 2 < g.ny; ++y)
      for (int x = 0; x + 2 < g.nx; ++x) {
        std::uint64_t code = 0;
        bool complete = true;
        for (int dy = 0; dy < 3 && complete; ++dy)
          for (int dx = 0; dx < 3; ++dx) {
            const int s = symbol[x + dx + static_cast<long long>(g.nx) * (y + dy) +
                                 static_cast<long long>(g.nxy) * z];
            if (s < 0) {
              complete = false;
              break;
            }
            code = code * base + static_cast<std::uint64_t>(s);
          }
        if (!complete) continue;
        ++counts_[code];
        ++total_;
      }
}

double PatternHistogram::jensenShannonBits(const PatternHistogram &p, const PatternHistogram &q) {
  if (p.total_ == 0 || q.total_ == 0) return std::numeric_limits<double>::quiet_NaN();
  // The counts of both side by side, in the order of the codes, so that the sum
  // does not depend on the order of the hash tables.
  std::vector<std::pair<std::uint64_t, std::pair<long long, long long>>> both;
  both.reserve(p.counts_.size() + q.counts_.size());
  for (const auto &[code, n] : p.counts_) {
    const auto other = q.counts_.find(code);
    both.push_back({code, {n, other == q.counts_.end() ? 0 : other->second}});
  }
  for (const auto &[code, n] : q.counts_)
    if (!p.counts_.contains(code)) both.push_back({code, {0, n}});
  std::sort(both.begin(), both.end());
  const auto term = [](double a, double m) { return a > 0.0 ? a * std::log2(a / m) : 0.0; };
  double js = 0.0;
  for (const auto &[code, n] : both) {
    const double a = static_cast<double>(n.first) / p.total_;
    const double b = static_cast<double>(n.second) / q.total_;
    const double m = 0.5 * (a + b);
    js += 0.5 * (term(a, m) + term(b, m));
  }
  return js;
}

}  // namespace nuvo::runfile
