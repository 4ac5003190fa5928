// Distance-guided random paths: entries near the conditioning data tend to come
// first, the more so as the strength s grows from 0 (a random path) to 1.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

#include "engine/path_distance.hpp"
#include "foundation/check.hpp"
#include "nuvo_path.h"

namespace nuvo {
namespace {

constexpr double kFlatRange = 1e-10;

struct Range {
  double min, span;
};

Range rangeOf(const std::vector<double> &d) {
  auto [lo, hi] = std::minmax_element(d.begin(), d.end());
  return {*lo, *hi - *lo};
}

// Weighted draws without replacement, weight a^(d - dmin) with a = 1 + s*(a0 - 1)
// and a0 = 1e-10^(1/R): with s = 1 the farthest entry weighs 1e-10 times the nearest.
int pdfOrder(int n, int *entries, const std::vector<double> &d, double s, nuvo_randContext *ctx) {
  Range r = rangeOf(d);
  if (r.span < kFlatRange) return NUVOPathRandom(n, entries, ctx);
  double a0 = std::clamp(std::pow(kFlatRange, 1.0 / r.span), 1e-10, 10.0);
  double a = 1.0 + s * (a0 - 1.0);
  std::vector<double> cumWeight(static_cast<std::size_t>(n) + 1);
  cumWeight[0] = 0.0;
  for (int i = 0; i < n; ++i) cumWeight[i + 1] = cumWeight[i] + std::pow(a, d[i] - r.min);
  return NUVORandomizeWeightedListOfInt(n, entries, cumWeight.data(), ctx);
}

struct Keyed {
  double key;
  int entry;
};

// Sorts by key, the keys lying in [0, 1]: a counting pass spreads the entries over
// about n/4 buckets of equal width, then each bucket is sorted on its own. Linear
// on average, and never worse than one sort of the whole list.
void sortByKey(std::vector<Keyed> *keyed) {
  std::size_t n = keyed->size();
  std::size_t nbucket = n / 4 + 1;
  auto bucketOf = [nbucket](double key) {
    return std::min(nbucket - 1, static_cast<std::size_t>(key * static_cast<double>(nbucket)));
  };
  std::vector<std::size_t> next(nbucket + 1, 0);
  for (const Keyed &k : *keyed) ++next[bucketOf(k.key) + 1];
  std::partial_sum(next.begin(), next.end(), next.begin());
  std::vector<std::size_t> start(next.begin(), next.end());
  std::vector<Keyed> sorted(n);
  for (const Keyed &k : *keyed) sorted[next[bucketOf(k.key)]++] = k;
  auto byKey = [](const Keyed &x, const Keyed &y) { return x.key < y.key; };
  for (std::size_t b = 0; b < nbucket; ++b)
    if (start[b + 1] - start[b] > 1)
      std::sort(sorted.begin() + start[b], sorted.begin() + start[b + 1], byKey);
  keyed->swap(sorted);
}

// Sort by s*(normalised distance) + (1 - s)*noise, one draw per entry in list order.
int sortOrder(int n, int *entries, const std::vector<double> &d, double s, nuvo_randContext *ctx) {
  Range r = rangeOf(d);
  std::vector<Keyed> keyed(n);
  for (int i = 0; i < n; ++i) {
    double normalised = r.span < kFlatRange ? 0.0 : (d[i] - r.min) / r.span;
    keyed[i] = {s * normalised + (1.0 - s) * NUVODoubleRand(0, ctx), entries[i]};
  }
  sortByKey(&keyed);
  for (int i = 0; i < n; ++i) entries[i] = keyed[i].entry;
  return 0;
}

enum class Metric { kNearest, kSummed };
enum class Order { kPdf, kSort };

struct Guide {
  Metric metric;
  Order order;
  double s, p;
};

int guided(const PathGrid &g, EntryForm form, int n, int *entries, const signed char *simFlag,
           const Guide &guide, nuvo_randContext *ctx) {
  NUVO_TRY(checkPathGrid(g));
  if (n < 2) return 0;
  const PathEntries e{form, n, entries, simFlag};
  return guardedCall([&] {
    std::vector<double> d;
    if (guide.metric == Metric::kNearest) {
      NUVO_TRY(nearestDatumDistances(g, e, ctx, &d));
    } else {
      bool found = false;
      NUVO_TRY(summedDistances(g, e, guide.p, &d, &found));
      if (!found) return NUVOPathRandom(n, entries, ctx);
    }
    return guide.order == Order::kPdf ? pdfOrder(n, entries, d, guide.s, ctx)
                                      : sortOrder(n, entries, d, guide.s, ctx);
  });
}

}  // namespace
}  // namespace nuvo

using nuvo::EntryForm;
using nuvo::Guide;
using nuvo::Metric;
using nuvo::Order;

extern "C" {

int NUVOPathDistancePdfRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                              int nz, int nvar, double sx, double sy, double sz, double s,
                              nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kPdf, s, 0.0}, ctx);
}

int NUVOPathDistanceSortRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                               int nz, int nvar, double sx, double sy, double sz, double s,
                               nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kSort, s, 0.0}, ctx);
}

int NUVOPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                                 int nz, int nvar, double sx, double sy, double sz, double s,
                                 double p, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kPdf, s, p}, ctx);
}

int NUVOPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                                  int nz, int nvar, double sx, double sy, double sz, double s,
                                  double p, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kSort, s, p}, ctx);
}

int NUVOVectorPathDistancePdfRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                                    int nz, int nvar, double sx, double sy, double sz, double s,
                                    nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kPdf, s, 0.0}, ctx);
}

int NUVOVectorPathDistanceSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                     int ny, int nz, int nvar, double sx, double sy, double sz,
                                     double s, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kSort, s, 0.0}, ctx);
}

int NUVOVectorPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag, int nx,
                                       int ny, int nz, int nvar, double sx, double sy, double sz,
                                       double s, double p, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kPdf, s, p}, ctx);
}

int NUVOVectorPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                        int ny, int nz, int nvar, double sx, double sy, double sz,
                                        double s, double p, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kSort, s, p}, ctx);
}

}  // extern "C"
