#include "constraints/connectivity_pattern.hpp"

#include <algorithm>

#include "constraints/connectivity_groups.hpp"
#include "constraints/geobody.hpp"
#include "constraints/probability_constraint.hpp"
#include "data/values.hpp"
#include "foundation/check.hpp"

namespace nuvo {
namespace {

// Numbers the components of the nodes of each class (one int16 class per node,
// kNoClass outside): component ids from 1, and the class of each id.
void labelComponents(const nuvo_grid &g, int type, std::span<const std::int16_t> cls,
                     std::vector<int> *component, std::vector<std::int16_t> *componentClass) {
  const GeobodyGrid grid(g.nx, g.ny, g.nz, type);
  component->assign(cls.size(), 0);
  componentClass->assign(1, kNoClass);
  std::vector<int> stack;
  for (std::size_t seed = 0; seed < cls.size(); ++seed) {
    if (cls[seed] == kNoClass || (*component)[seed] != 0) continue;
    const int id = static_cast<int>(componentClass->size());
    componentClass->push_back(cls[seed]);
    (*component)[seed] = id;
    stack.assign(1, static_cast<int>(seed));
    while (!stack.empty()) {
      const int k = stack.back();
      stack.pop_back();
      grid.forEachNeighbour(k, [&](int n) {
        if ((*component)[n] != 0 || cls[n] != cls[seed]) return;
        (*component)[n] = id;
        stack.push_back(n);
      });
    }
  }
}

}  // namespace

int ConnectivityPattern::prepare(const nuvo_simInput &si, std::span<const int> label,
                                 const nuvo_image &conditioned, const nuvo_image *trainImage) {
  variable_.assign(static_cast<std::size_t>(si.nvar), {});
  active_.clear();
  if (si.connectivity == nullptr || si.simGridAsTiFlag[0]) return 0;
  const std::size_t nxyz = static_cast<std::size_t>(conditioned.grid->nxyz);
  for (int v = 0; v < si.nvar; ++v) {
    const nuvo_connectivity &c = si.connectivity[v];
    if (c.connectivityConstraintUsage != NUVO_CONNECTIVITY_PATTERN) continue;
    std::vector<ConnectedGroup> groups;
    NUVO_TRY(buildGroups(label.subspan(v * nxyz, nxyz), variableValues(&conditioned, v),
                         *c.classOfValues, &groups));
    if (groups.empty()) continue;
    Variable &var = variable_[v];
    var.active = true;
    var.deactivationDistance = c.deactivationDistance;
    var.threshold = c.threshold;
    var.baseLabel.assign(nxyz, 0);
    var.baseClass.assign(nxyz, kNoClass);
    for (const ConnectedGroup &group : groups)
      for (int k : group.node) {
        var.baseLabel[k] = group.label;
        var.baseClass[k] = static_cast<std::int16_t>(group.classId);
      }
    const nuvo_image &ti = trainImage[0];
    const auto values = variableValues(&ti, v);
    std::vector<std::int16_t> cls(values.size(), kNoClass);
    for (std::size_t k = 0; k < values.size(); ++k)
      if (!isMissing(values[k]))
        cls[k] = static_cast<std::int16_t>(classOfValue(*c.classOfValues, values[k]));
    labelComponents(*ti.grid, c.connectivityType, cls, &var.component, &var.componentClass);
    active_.push_back(v);
  }
  return 0;
}

void ConnectivityPattern::beginRealization() {
  for (int v : active_) {
    Variable &var = variable_[v];
    var.label = var.baseLabel;
    var.cls = var.baseClass;
    var.node = -1;
  }
}

bool ConnectivityPattern::at(int v, int node, std::span<const int> eventNode,
                             std::span<const int> tiOffset, double farthest, LabelTerm *term) {
  if (variable_.empty() || !variable_[v].active) return false;
  Variable &var = variable_[v];
  var.node = -1;
  if (eventNode.empty() || farthest < var.deactivationDistance) return false;
  var.offset.clear();
  var.lead.clear();
  var.labels.clear();
  var.labelClass.clear();
  for (std::size_t i = 0; i < eventNode.size(); ++i) {
    const int l = var.label[eventNode[i]];
    if (l == 0) continue;
    const auto first = std::find(var.labels.begin(), var.labels.end(), l);
    var.lead.push_back(static_cast<int>(first - var.labels.begin()));
    var.labels.push_back(l);
    var.offset.push_back(tiOffset[i]);
    var.labelClass.push_back(var.cls[eventNode[i]]);
  }
  if (var.labels.empty()) return false;
  var.node = node;
  const int n = static_cast<int>(var.labels.size());
  *term = {n,
           var.offset.data(),
           var.lead.data(),
           var.labelClass.data(),
           var.component.data(),
           var.componentClass.data(),
           1.0 / (n * var.threshold)};
  return true;
}

void ConnectivityPattern::assign(int v, int node, int tiNode) {
  if (variable_.empty() || !variable_[v].active) return;
  Variable &var = variable_[v];
  if (var.node != node) return;
  var.node = -1;
  const int c = var.component[tiNode];
  if (c == 0) return;
  for (std::size_t i = 0; i < var.labels.size(); ++i) {
    if (var.component[tiNode + var.offset[i]] != c || var.componentClass[c] != var.labelClass[i])
      continue;
    var.label[node] = var.labels[i];
    var.cls[node] = var.labelClass[i];
    return;
  }
}

void ConnectivityPattern::clear(int v, int node) {
  if (variable_.empty() || !variable_[v].active) return;
  Variable &var = variable_[v];
  var.label[node] = var.baseLabel[node];
  var.cls[node] = var.baseClass[node];
}

}  // namespace nuvo
