// Distance-guided random paths: entries near the conditioning data tend to come
// first, the more so as the strength s grows from 0 (a random path) to 1.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <span>
#include <vector>

#include "engine/path_guided.hpp"
#include "foundation/check.hpp"
#include "foundation/random.hpp"
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

// a^(d - dmin) for the distances of a whole grid, which take few distinct values
// (square roots of sums of squared offsets): each result is kept in a small table
// indexed by the bits of d and used again while no other distance takes its slot.
class PowerOfDistance {
 public:
  // The slots start on NaN, which equals no distance.
  PowerOfDistance(double a, double dmin)
      : a_(a), dmin_(dmin), slots_(std::size_t{1} << kBits, {kNaN, 0.0}) {}

  double operator()(double d) {
    Slot &slot = slots_[std::bit_cast<std::uint64_t>(d) * 0x9E3779B97F4A7C15u >> (64 - kBits)];
    if (!(slot.d == d)) slot = {d, std::pow(a_, d - dmin_)};
    return slot.weight;
  }

 private:
  static constexpr int kBits = 12;
  static constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  struct Slot {
    double d, weight;
  };
  double a_, dmin_;
  std::vector<Slot> slots_;
};

// Weighted draws without replacement, weight a^(d - dmin) with a = 1 + s*(a0 - 1)
// and a0 = 1e-10^(1/R): with s = 1 the farthest entry weighs 1e-10 times the nearest.
// The distances are turned into the n+1 cumulative weights in place (d has room
// for one more value), sparing a list-long buffer.
int pdfOrder(int n, int *entries, std::vector<double> *d, double s, nuvo_randContext *ctx) {
  Range r = rangeOf(*d);
  if (r.span < kFlatRange) return NUVOPathRandom(n, entries, ctx);
  double a0 = std::clamp(std::pow(kFlatRange, 1.0 / r.span), 1e-10, 10.0);
  double a = 1.0 + s * (a0 - 1.0);
  std::vector<double> &cumWeight = *d;
  cumWeight.push_back(0.0);
  double distance = cumWeight[0];
  cumWeight[0] = 0.0;
  PowerOfDistance weight(a, r.min);
  for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) {
    const double next = cumWeight[i + 1];
    cumWeight[i + 1] = cumWeight[i] + weight(distance);
    distance = next;
  }
  return NUVORandomizeWeightedListOfInt(n, entries, cumWeight.data(), ctx);
}

struct Keyed {
  double key;
  int entry;
};

using Bucketing = std::vector<std::size_t>;

// Stable counting sort of the items 0 ... count-1 by a label in [0, nlabel):
// place(i, slot) puts item i at its slot. `first` receives where each label's
// range starts (nlabel + 1 values).
template <typename Label, typename Place>
void scatterByLabel(std::size_t count, std::size_t nlabel, Label label, Place place,
                    Bucketing *first) {
  first->assign(nlabel + 1, 0);
  for (std::size_t i = 0; i < count; ++i) ++(*first)[label(i) + 1];
  std::partial_sum(first->begin(), first->end(), first->begin());
  Bucketing next(first->begin(), first->end() - 1);
  for (std::size_t i = 0; i < count; ++i) place(i, next[label(i)]++);
}

// Insertion sort for the few entries of a typical bucket; a large bucket (many
// equal or close keys) goes to std::stable_sort. Both keep equal keys in order.
void sortBucket(std::span<Keyed> bucket) {
  auto byKey = [](const Keyed &x, const Keyed &y) { return x.key < y.key; };
  if (bucket.size() > 32) {
    std::stable_sort(bucket.begin(), bucket.end(), byKey);
    return;
  }
  for (std::size_t i = 1; i < bucket.size(); ++i) {
    const Keyed moving = bucket[i];
    std::size_t j = i;
    for (; j > 0 && byKey(moving, bucket[j - 1]); --j) bucket[j] = bucket[j - 1];
    bucket[j] = moving;
  }
}

// Reorders the entries by their keys, which lie in [0, 1]; entries with equal keys
// keep their order in the list. The entries are spread over about n/4 buckets of
// equal width, then each bucket is sorted on its own: linear on average. The
// spreading takes two stable passes, by groups of consecutive buckets and then
// by bucket within each group (in a scratch buffer the size of the group), so
// that each pass writes to at most a few thousand places at a time and stays in
// the cache instead of scattering over the whole list.
void sortByKey(std::span<const double> keys, std::span<int> entries) {
  constexpr std::size_t kMaxGroups = 4096;
  const std::size_t n = keys.size();
  const std::size_t nbucket = n / 4 + 1;
  auto bucketOf = [nbucket](double key) {
    return std::min(nbucket - 1, static_cast<std::size_t>(key * static_cast<double>(nbucket)));
  };
  int shift = 0;  // a group is 2^shift buckets
  while (((nbucket - 1) >> shift) >= kMaxGroups) ++shift;
  const std::size_t ngroup = ((nbucket - 1) >> shift) + 1;
  std::vector<Keyed> grouped(n), scratch;
  Bucketing groupFirst, bucketFirst;
  scatterByLabel(
      n, ngroup, [&](std::size_t i) { return bucketOf(keys[i]) >> shift; },
      [&](std::size_t i, std::size_t slot) {
        grouped[slot] = {keys[i], entries[i]};
      },
      &groupFirst);
  for (std::size_t g = 0; g < ngroup; ++g) {
    const std::span<const Keyed> group =
        std::span(grouped).subspan(groupFirst[g], groupFirst[g + 1] - groupFirst[g]);
    const std::size_t firstBucket = g << shift;
    scratch.resize(group.size());
    scatterByLabel(
        group.size(), std::size_t{1} << shift,
        [&](std::size_t i) { return bucketOf(group[i].key) - firstBucket; },
        [&](std::size_t i, std::size_t slot) { scratch[slot] = group[i]; }, &bucketFirst);
    for (std::size_t b = 0; b + 1 < bucketFirst.size(); ++b)
      sortBucket(std::span(scratch).subspan(bucketFirst[b], bucketFirst[b + 1] - bucketFirst[b]));
    for (std::size_t i = 0; i < scratch.size(); ++i) entries[groupFirst[g] + i] = scratch[i].entry;
  }
}

// Sort by s*(normalised distance) + (1 - s)*noise, one draw per entry in list order.
// The keys take the place of the distances.
int sortOrder(int n, int *entries, std::vector<double> *d, double s, nuvo_randContext *ctx) {
  Range r = rangeOf(*d);
  DrawStream draws(ctx);
  for (double &key : *d) {
    double normalised = r.span < kFlatRange ? 0.0 : (key - r.min) / r.span;
    key = s * normalised + (1.0 - s) * draws.next();
  }
  sortByKey(*d, std::span(entries, static_cast<std::size_t>(n)));
  return 0;
}

}  // namespace

int guided(const PathGrid &g, EntryForm form, int n, int *entries, const signed char *simFlag,
           const Guide &guide, nuvo_randContext *ctx, int nthread) {
  NUVO_TRY(checkPathGrid(g));
  if (n < 2) return 0;
  const PathEntries e{form, n, entries, simFlag};
  return guardedCall([&] {
    std::vector<double> d;
    d.reserve(static_cast<std::size_t>(n) + 1);  // room for the cumulative weights
    if (guide.metric == Metric::kNearest) {
      NUVO_TRY(nearestDatumDistances(g, e, ctx, &d, nthread));
    } else {
      bool found = false;
      NUVO_TRY(summedDistances(g, e, guide.p, &d, &found, nthread));
      if (!found) return NUVOPathRandom(n, entries, ctx);
    }
    return guide.order == Order::kPdf ? pdfOrder(n, entries, &d, guide.s, ctx)
                                      : sortOrder(n, entries, &d, guide.s, ctx);
  });
}

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
                      Guide{Metric::kNearest, Order::kPdf, s, 0.0}, ctx, 1);
}

int NUVOPathDistanceSortRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                               int nz, int nvar, double sx, double sy, double sz, double s,
                               nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kSort, s, 0.0}, ctx, 1);
}

int NUVOPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                                 int nz, int nvar, double sx, double sy, double sz, double s,
                                 double p, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kPdf, s, p}, ctx, 1);
}

int NUVOPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                                  int nz, int nvar, double sx, double sy, double sz, double s,
                                  double p, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kOneByOne, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kSort, s, p}, ctx, 1);
}

int NUVOVectorPathDistancePdfRandom(int n, int *entries, const signed char *simFlag, int nx, int ny,
                                    int nz, int nvar, double sx, double sy, double sz, double s,
                                    nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kPdf, s, 0.0}, ctx, 1);
}

int NUVOVectorPathDistanceSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                     int ny, int nz, int nvar, double sx, double sy, double sz,
                                     double s, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kNearest, Order::kSort, s, 0.0}, ctx, 1);
}

int NUVOVectorPathDistanceSumPdfRandom(int n, int *entries, const signed char *simFlag, int nx,
                                       int ny, int nz, int nvar, double sx, double sy, double sz,
                                       double s, double p, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kPdf, s, p}, ctx, 1);
}

int NUVOVectorPathDistanceSumSortRandom(int n, int *entries, const signed char *simFlag, int nx,
                                        int ny, int nz, int nvar, double sx, double sy, double sz,
                                        double s, double p, nuvo_randContext *ctx) {
  return nuvo::guided({nx, ny, nz, nvar, sx, sy, sz}, EntryForm::kVector, n, entries, simFlag,
                      Guide{Metric::kSummed, Order::kSort, s, p}, ctx, 1);
}

}  // extern "C"
