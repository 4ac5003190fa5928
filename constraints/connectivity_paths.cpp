#include "constraints/connectivity_paths.hpp"

#include <algorithm>
#include <cstring>

#include "constraints/geobody.hpp"
#include "constraints/probability_constraint.hpp"
#include "data/values.hpp"
#include "foundation/check.hpp"

namespace nuvo {
namespace {

// Translations drawn per group and realization, and binding attempts among those
// that put every node of the group on the group's class in the reference.
constexpr int kPlacementDraws = 4096;
constexpr int kBindAttempts = 8;
constexpr std::int16_t kFree = -2;     // grid node to be simulated
constexpr std::int16_t kBlocked = -1;  // masked, or a datum in no class
constexpr int kWarningUsage1 = 50;
constexpr int kWarningUsage2 = 51;

bool pastesPaths(int usage) {
  return usage == NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER ||
         usage == NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER;
}

// A uniform draw in [lo, hi].
int drawBetween(int lo, int hi, nuvo_randContext *ctx) {
  return lo + NUVOIntRand(0, hi - lo + 1, ctx);
}

}  // namespace

ConnectivityPaths::~ConnectivityPaths() {
  for (Variable &var : variable_) NUVOFreeImage(&var.value);
}

bool ConnectivityPaths::requested(const nuvo_simInput &si) {
  if (si.connectivity == nullptr) return false;
  for (int v = 0; v < si.nvar; ++v)
    if (si.connectivity[v].connectivityConstraintUsage != NUVO_CONNECTIVITY_NONE) return true;
  return false;
}

int ConnectivityPaths::prepare(const nuvo_simInput &si, std::span<const int> label,
                               const nuvo_image &conditioned, const nuvo_image *trainImage,
                               std::span<const signed char> entryFlag) {
  const nuvo_grid &g = *conditioned.grid;
  nx_ = g.nx;
  ny_ = g.ny;
  nz_ = g.nz;
  variable_.resize(static_cast<std::size_t>(si.nvar));
  for (int v = 0; v < si.nvar; ++v)
    NUVO_TRY(prepareVariable(si, v, label, conditioned, trainImage, entryFlag));
  return 0;
}

int ConnectivityPaths::prepareVariable(const nuvo_simInput &si, int v, std::span<const int> label,
                                       const nuvo_image &conditioned, const nuvo_image *trainImage,
                                       std::span<const signed char> entryFlag) {
  Variable &var = variable_[v];
  NUVOInitImage(&var.value);
  if (si.connectivity == nullptr) return 0;
  const nuvo_connectivity &c = si.connectivity[v];
  var.usage = c.connectivityConstraintUsage;
  var.type = c.connectivityType;
  if (var.usage == NUVO_CONNECTIVITY_NONE) return 0;
  const std::size_t nxyz = static_cast<std::size_t>(conditioned.grid->nxyz);
  const auto values = variableValues(&conditioned, v);
  NUVO_TRY(buildGroups(label.subspan(v * nxyz, nxyz), values, *c.classOfValues, &var.groups));
  if (!pastesPaths(var.usage)) return 0;
  for (const ConnectedGroup &group : var.groups)
    var.order.push_back(var.usage == NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER
                            ? sortGroup(var.type, nx_, ny_, group.node)
                            : std::vector<int>{});

  var.gridClass.assign(nxyz, kFree);
  for (std::size_t k = 0; k < nxyz; ++k) {
    if (entryFlag[v * nxyz + k] != 0) continue;
    const int cls = isMissing(values[k]) ? kNoClass : classOfValue(*c.classOfValues, values[k]);
    var.gridClass[k] = cls == kNoClass ? kBlocked : static_cast<std::int16_t>(cls);
  }

  // The reference: the constraint's image (variable 0), else the first training
  // image (variable v), which is absent when the simulation grid stands for it.
  const nuvo_image *ref = c.tiAsRefFlag ? &trainImage[0] : c.refConnectivityImage;
  const int refVar = c.tiAsRefFlag ? v : 0;
  if (c.tiAsRefFlag && si.simGridAsTiFlag[0]) return 0;
  const nuvo_grid &rg = *ref->grid;
  var.rnx = rg.nx;
  var.rny = rg.ny;
  var.rnz = rg.nz;
  var.inPlace = !c.tiAsRefFlag && rg.nx == nx_ && rg.ny == ny_ && rg.nz == nz_;
  const auto refValues = variableValues(ref, refVar);
  var.refClass.resize(refValues.size());
  for (std::size_t k = 0; k < refValues.size(); ++k)
    var.refClass[k] = isMissing(refValues[k])
                          ? kNoClass
                          : static_cast<std::int16_t>(classOfValue(*c.classOfValues, refValues[k]));
  NUVO_TRY(NUVOMallocImage(&var.value, rg.nxyz, 1));
  *var.value.grid = rg;
  var.value.nvar = 1;
  var.value.nxyzv = rg.nxyz;
  std::copy(refValues.begin(), refValues.end(), var.value.var);
  return 0;
}

nuvo_image *ConnectivityPaths::pastedValues(int v) {
  if (variable_.empty()) return nullptr;
  Variable &var = variable_[v];
  return var.value.var == nullptr ? nullptr : &var.value;
}

bool ConnectivityPaths::pastes() const {
  return std::any_of(variable_.begin(), variable_.end(), [](const Variable &var) {
    return pastesPaths(var.usage) && !var.groups.empty();
  });
}

std::span<const ConnectedGroup> ConnectivityPaths::groups(int v) const {
  if (variable_.empty()) return {};
  return variable_[v].groups;
}

int ConnectivityPaths::paste(nuvo_image *work, std::span<signed char> entryFlag,
                             nuvo_randContext *ctx, nuvo_progressMonitor *pm,
                             nuvo_progressCallback callback) {
  const std::size_t nxyz = static_cast<std::size_t>(work->grid->nxyz);
  for (std::size_t v = 0; v < variable_.size(); ++v) {
    const Variable &var = variable_[v];
    if (!pastesPaths(var.usage) || var.groups.empty()) continue;
    grid_ = var.gridClass;
    bool failed = false;
    for (std::size_t i = 0; i < var.groups.size(); ++i) {
      const ConnectedGroup &group = var.groups[i];
      std::vector<int> order = var.order[i];
      if (order.empty()) {
        order.resize(group.node.size());
        for (std::size_t j = 0; j < order.size(); ++j) order[j] = static_cast<int>(j);
        NUVORandomizeListOfInt(static_cast<int>(order.size()), order.data(), ctx);
      }
      if (var.refClass.empty() || !bindGroup(var, group, order, ctx)) {
        failed = true;
        continue;
      }
      double *values = work->var + v * nxyz;
      for (std::size_t j = 0; j < pasted_.size(); ++j) {
        const int k = pasted_[j];
        values[k] = var.value.var[pastedRef_[j]];
        entryFlag[v * nxyz + k] = 0;
        grid_[k] = static_cast<std::int16_t>(group.classId);
      }
    }
    if (failed && pm != nullptr)
      NUVO_TRY(reportWarning(
          pm, callback,
          var.usage == NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER ? kWarningUsage1 : kWarningUsage2));
  }
  return 0;
}

// Tries the translations of the reference; leaves the nodes to paste in pasted_.
bool ConnectivityPaths::bindGroup(const Variable &var, const ConnectedGroup &group,
                                  std::span<const int> order, nuvo_randContext *ctx) {
  if (var.inPlace) return bindAt(var, group, order, 0, 0, 0, ctx);
  const int nxy = nx_ * ny_;
  int x0 = nx_, x1 = 0, y0 = ny_, y1 = 0, z0 = nz_, z1 = 0;
  for (int k : group.node) {
    const int x = k % nx_, y = k % nxy / nx_, z = k / nxy;
    x0 = std::min(x0, x), x1 = std::max(x1, x);
    y0 = std::min(y0, y), y1 = std::max(y1, y);
    z0 = std::min(z0, z), z1 = std::max(z1, z);
  }
  // The translation (sx, sy, sz) puts grid node (x, y, z) on reference node
  // (x + sx, y + sy, z + sz); the group's box must fit in the reference.
  if (x1 - x0 >= var.rnx || y1 - y0 >= var.rny || z1 - z0 >= var.rnz) return false;
  const int rnxy = var.rnx * var.rny;
  int attempts = 0;
  for (int draw = 0; draw < kPlacementDraws && attempts < kBindAttempts; ++draw) {
    const int sx = drawBetween(-x0, var.rnx - 1 - x1, ctx);
    const int sy = drawBetween(-y0, var.rny - 1 - y1, ctx);
    const int sz = drawBetween(-z0, var.rnz - 1 - z1, ctx);
    const bool onClass = std::all_of(group.node.begin(), group.node.end(), [&](int k) {
      const int r = (k % nx_ + sx) + var.rnx * (k % nxy / nx_ + sy) + rnxy * (k / nxy + sz);
      return var.refClass[r] == group.classId;
    });
    if (!onClass) continue;
    ++attempts;
    if (bindAt(var, group, order, sx, sy, sz, ctx)) return true;
  }
  return false;
}

bool ConnectivityPaths::bindAt(const Variable &var, const ConnectedGroup &group,
                               std::span<const int> order, int sx, int sy, int sz,
                               nuvo_randContext *ctx) {
  const int nxy = nx_ * ny_, nxyz = nxy * nz_;
  const int rnxy = var.rnx * var.rny;
  const std::int16_t cls = static_cast<std::int16_t>(group.classId);
  // The reference node under grid node k, or -1 outside the reference.
  const auto refNode = [&](int k) {
    const int x = k % nx_ + sx, y = k % nxy / nx_ + sy, z = k / nxy + sz;
    if (x < 0 || x >= var.rnx || y < 0 || y >= var.rny || z < 0 || z >= var.rnz) return -1;
    return x + var.rnx * y + rnxy * z;
  };
  inside_.assign(static_cast<std::size_t>(nxyz), 0);
  for (int k = 0; k < nxyz; ++k) {
    if (grid_[k] != kFree && grid_[k] != cls) continue;
    const int r = refNode(k);
    inside_[k] = r >= 0 && var.refClass[r] == cls;
  }
  for (int k : group.node) inside_[k] = 1;

  const GeobodyGrid geo(nx_, ny_, nz_, var.type);
  const auto inside = [this](int n) { return inside_[n] != 0; };
  bound_.assign(static_cast<std::size_t>(nxyz), 0);
  body_.assign(1, group.node[order[0]]);
  bound_[body_[0]] = 1;
  for (std::size_t i = 1; i < order.size(); ++i) {
    const int target = group.node[order[i]];
    if (bound_[target]) continue;
    geo.distanceMap(inside, body_, distanceBody_);
    if (distanceBody_[target] < 0) return false;
    const int target1[] = {target};
    geo.distanceMap(inside, target1, distanceNode_);
    // A meeting node drawn uniformly among the nodes of the shortest paths.
    const int shortest = distanceBody_[target];
    int meet = -1, seen = 0;
    for (int k = 0; k < nxyz; ++k) {
      if (distanceBody_[k] < 0 || distanceNode_[k] < 0 ||
          distanceBody_[k] + distanceNode_[k] != shortest)
        continue;
      if (NUVOIntRand(0, ++seen, ctx) == 0) meet = k;
    }
    if (geo.walkBack(distanceBody_, meet, half1_) != 0 ||
        geo.walkBack(distanceNode_, meet, half2_) != 0 || geo.join(half1_, half2_, path_) != 0)
      return false;
    for (int k : path_) {
      if (bound_[k]) continue;
      bound_[k] = 1;
      body_.push_back(k);
    }
  }
  pasted_.clear();
  pastedRef_.clear();
  for (int k : body_)
    if (grid_[k] == kFree) {
      pasted_.push_back(k);
      pastedRef_.push_back(refNode(k));
    }
  return true;
}

}  // namespace nuvo
