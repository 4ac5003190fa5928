// Distances of path entries to the conditioning data.
//
// Each distance "map" is attached to a set of conditioning nodes: one per variable
// in the one-by-one form (the variable's informed entries), a single one in the
// vector form (the nodes whose variables are all informed). A map is first known
// per node, then turned into one distance per entry.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "engine/path_distance.hpp"
#include "foundation/check.hpp"
#include "toolkit/distance_map.hpp"

namespace nuvo {
namespace {

// Conditioning nodes of every map: nmap masks of nxyz bytes, 1 for a conditioning
// node, laid out as the entries of the one-by-one form.
struct Conditioning {
  int nmap = 0;
  std::vector<signed char> mask;
  std::vector<int> count;  // conditioning nodes per map

  bool empty() const {
    for (int c : count)
      if (c > 0) return false;
    return true;
  }
};

Conditioning perVariable(const PathGrid &g, const signed char *simFlag) {
  Conditioning c;
  c.nmap = g.nvar;
  std::size_t nxyz = g.nxyz();
  c.mask.resize(nxyz * g.nvar);
  c.count.assign(g.nvar, 0);
  for (int v = 0; v < g.nvar; ++v)
    for (std::size_t k = 0; k < nxyz; ++k) {
      std::size_t e = v * nxyz + k;
      c.mask[e] = simFlag[e] == 0;
      c.count[v] += c.mask[e];
    }
  return c;
}

// A node conditions the vector path when every variable is informed there, the
// variables informed everywhere (nothing to simulate) being left out of the test.
Conditioning perNode(const PathGrid &g, const signed char *simFlag) {
  std::size_t nxyz = g.nxyz();
  std::vector<const signed char *> tested;
  for (int v = 0; v < g.nvar; ++v) {
    const signed char *flag = simFlag + v * nxyz;
    for (std::size_t k = 0; k < nxyz; ++k)
      if (flag[k] != 0) {
        tested.push_back(flag);
        break;
      }
  }
  Conditioning c;
  c.nmap = 1;
  c.mask.resize(nxyz);
  c.count.assign(1, 0);
  for (std::size_t k = 0; k < nxyz; ++k) {
    bool informed = true;
    for (const signed char *flag : tested) informed = informed && flag[k] == 0;
    c.mask[k] = informed;
    c.count[0] += informed;
  }
  return c;
}

Conditioning conditioningOf(const PathGrid &g, const PathEntries &e) {
  return e.form == EntryForm::kOneByOne ? perVariable(g, e.simFlag) : perNode(g, e.simFlag);
}

// One distance per entry from the per-node maps (nmap*nxyz values). In the
// one-by-one form the entry's own variable counts fully and the others for 1/nvar.
// The distances are appended to the caller's reserved buffer, which is not
// written twice.
void entryDistances(const PathGrid &g, const PathEntries &e, std::span<const double> map,
                    std::vector<double> *distance) {
  distance->clear();
  if (e.form == EntryForm::kVector || g.nvar == 1) {
    for (int i = 0; i < e.n; ++i) distance->push_back(map[e.entries[i]]);
    return;
  }
  const std::size_t nxyz = g.nxyz();
  for (int i = 0; i < e.n; ++i) {
    std::size_t own = 0, k = e.entries[i];
    for (; k >= nxyz; k -= nxyz) ++own;
    double others = 0.0;
    for (std::size_t w = 0; w < static_cast<std::size_t>(g.nvar); ++w)
      if (w != own) others += map[w * nxyz + k];
    distance->push_back(map[own * nxyz + k] + others / g.nvar);
  }
}

// Room for nmap per-node maps. The maps of sets without any conditioning node
// are 0 everywhere; the others are left for their distances to fill.
std::unique_ptr<double[]> mapsFor(const Conditioning &c, std::size_t nxyz) {
  auto maps = std::make_unique_for_overwrite<double[]>(nxyz * c.nmap);
  for (int w = 0; w < c.nmap; ++w)
    if (c.count[w] == 0) std::fill_n(maps.get() + w * nxyz, nxyz, 0.0);
  return maps;
}

// Conditioning nodes of one map as contiguous coordinates, scaled by the cell sizes.
struct Points {
  std::vector<double> x, y, z;
};

Points pointsOf(const PathGrid &g, const signed char *mask) {
  Points p;
  for (int k = 0; k < g.nxyz(); ++k) {
    if (mask[k] == 0) continue;
    int ix, iy, iz;
    g.coordinates(k, &ix, &iy, &iz);
    p.x.push_back(g.sx * ix);
    p.y.push_back(g.sy * iy);
    p.z.push_back(g.sz * iz);
  }
  return p;
}

// The inner loop of the summed forms: one term of the squared distance per point.
template <typename Term>
double sumOfTerms(const Points &p, double x, double y, double z, Term term) {
  const double *px = p.x.data(), *py = p.y.data(), *pz = p.z.data();
  std::size_t m = p.x.size();
  double sum = 0.0;
  for (std::size_t i = 0; i < m; ++i) {
    double dx = x - px[i], dy = y - py[i], dz = z - pz[i];
    sum += term(dx * dx + dy * dy + dz * dz);
  }
  return sum;
}

// Power mean of the distances of the listed nodes to the points, with the
// exponent handled once outside the loop: p = 2 and p = 1 avoid pow.
void powerMeans(const PathGrid &g, const Points &p, double power, const std::vector<int> &nodes,
                double *map, int nthread) {
  double m = static_cast<double>(p.x.size());
  double half = 0.5 * power, inverse = 1.0 / power;
  const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(nodes.size());
#pragma omp parallel for num_threads(nthread) schedule(static)
  for (std::ptrdiff_t i = 0; i < n; ++i) {
    const int k = nodes[static_cast<std::size_t>(i)];
    int ix, iy, iz;
    g.coordinates(k, &ix, &iy, &iz);
    double x = g.sx * ix, y = g.sy * iy, z = g.sz * iz;
    if (power == 2.0) {
      map[k] = std::sqrt(sumOfTerms(p, x, y, z, [](double d2) { return d2; }) / m);
    } else if (power == 1.0) {
      map[k] = sumOfTerms(p, x, y, z, [](double d2) { return std::sqrt(d2); }) / m;
    } else {
      double sum = sumOfTerms(p, x, y, z, [half](double d2) { return std::pow(d2, half); });
      map[k] = std::pow(sum / m, inverse);
    }
  }
}

// Nodes carrying at least one entry, each once, in increasing order.
std::vector<int> nodesOf(const PathGrid &g, const PathEntries &e) {
  std::vector<signed char> used(g.nxyz(), 0);
  for (int i = 0; i < e.n; ++i) used[e.entries[i] % g.nxyz()] = 1;
  std::vector<int> nodes;
  for (int k = 0; k < g.nxyz(); ++k)
    if (used[k]) nodes.push_back(k);
  return nodes;
}

}  // namespace

int nearestDatumDistances(const PathGrid &g, const PathEntries &e, nuvo_randContext *ctx,
                          std::vector<double> *distance, int nthread) {
  return guardedCall([&] {
    Conditioning c = conditioningOf(g, e);
    if (c.empty()) {
      int j = NUVOIntRand(0, e.n, ctx);
      int seedEntry = e.entries[j < e.n ? j : e.n - 1];
      c.mask[seedEntry] = 1;
      ++c.count[e.form == EntryForm::kOneByOne ? seedEntry / g.nxyz() : 0];
    }
    const nuvo_grid grid{g.nx, g.ny, g.nz, g.sx, g.sy, g.sz, 0.0, 0.0, 0.0, g.nxy(), g.nxyz()};
    std::size_t nxyz = g.nxyz();
    std::unique_ptr<double[]> map = mapsFor(c, nxyz);
    for (int w = 0; w < c.nmap; ++w)
      if (c.count[w] > 0)
        NUVO_TRY(
            euclideanDistanceMap(grid, c.mask.data() + w * nxyz, map.get() + w * nxyz, nthread));
    entryDistances(g, e, std::span(map.get(), nxyz * c.nmap), distance);
    return 0;
  });
}

int summedDistances(const PathGrid &g, const PathEntries &e, double p,
                    std::vector<double> *distance, bool *found, int nthread) {
  return guardedCall([&] {
    Conditioning c = conditioningOf(g, e);
    *found = !c.empty();
    if (!*found) return 0;
    std::size_t nxyz = g.nxyz();
    std::vector<int> nodes = nodesOf(g, e);
    std::unique_ptr<double[]> map = mapsFor(c, nxyz);
    for (int w = 0; w < c.nmap; ++w)
      if (c.count[w] > 0)
        powerMeans(g, pointsOf(g, c.mask.data() + w * nxyz), p, nodes, map.get() + w * nxyz,
                   nthread);
    entryDistances(g, e, std::span(map.get(), nxyz * c.nmap), distance);
    return 0;
  });
}

}  // namespace nuvo
