// Labels of the conditioning data put on the simulation grid, the groups they
// form, and the binding order of a group by distance.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <map>
#include <numeric>

#include "constraints/connectivity_groups.hpp"
#include "constraints/probability_constraint.hpp"
#include "data/values.hpp"
#include "nuvo_connectivity.h"

namespace nuvo {
namespace {

constexpr int kPointSetLabelConflict = -180;
constexpr int kLabelWithoutValue = -181;
constexpr int kImageLabelConflict = -182;
constexpr int kSingleNodeLabel = -184;
constexpr int kLabelOutsideClasses = -185;
constexpr int kLabelWithSeveralClasses = -186;
constexpr int kInvalidDataGrid = -150;
constexpr int kUnknownType = -2092;

// The label a value stands for: rounded, clamped to the int range, 0 for none.
int labelOf(double value) {
  if (isMissing(value) || !(value > 0.5)) return 0;
  const double rounded = std::floor(value + 0.5);
  return rounded >= static_cast<double>(INT_MAX) ? INT_MAX : static_cast<int>(rounded);
}

// Writes `value` as the label of `node`; a different label already there fails.
int putLabel(int *label, int node, double value, int conflictCode, int *nlabel) {
  const int l = labelOf(value);
  if (l == 0) return 0;
  NUVO_FAIL_IF(label[node] != 0 && label[node] != l, conflictCode);
  label[node] = l;
  ++*nlabel;
  return 0;
}

int imageLabels(const nuvo_image &image, const char *name, const nuvo_grid &grid, int *label,
                int *nlabel) {
  NUVO_FAIL_IF(image.grid == nullptr || NUVOCmpGrid(image.grid, &grid) != 0, kInvalidDataGrid);
  const int iv = findName(image.varName, image.nvar, name);
  if (iv < 0) return 0;
  const auto values = variableValues(&image, iv);
  for (int k = 0; k < grid.nxyz; ++k)
    NUVO_TRY(putLabel(label, k, values[k], kImageLabelConflict, nlabel));
  return 0;
}

int pointSetLabels(const nuvo_pointSet &ps, const char *name, const nuvo_grid &grid, int *label,
                   int *nlabel) {
  const int iv = findName(ps.varName, ps.nvar, name);
  if (iv < 0 || ps.npoint < 1) return 0;
  std::vector<int> index(static_cast<std::size_t>(ps.npoint));
  NUVO_TRY(NUVOGetIndexInGridForPointSet(&ps, &grid, index.data(), 1));
  for (int p = 0; p < ps.npoint; ++p) {
    if (index[p] < 0) continue;
    NUVO_TRY(putLabel(label, index[p], ps.val[static_cast<std::size_t>(iv) * ps.npoint + p],
                      kPointSetLabelConflict, nlabel));
  }
  return 0;
}

// Grid-step distance between two nodes: the fewest moves of the neighbourhood.
int stepDistance(int type, int a, int b, int c) {
  const int longest = std::max({a, b, c});
  if (type == CONNECT_FACE) return a + b + c;
  if (type == CONNECT_FACE_EDGE) return std::max(longest, (a + b + c + 1) / 2);
  return longest;
}

}  // namespace

int buildGroups(std::span<const int> label, std::span<const double> value,
                const nuvo_classOfValues &classes, std::vector<ConnectedGroup> *groups) {
  std::map<int, ConnectedGroup> byLabel;
  for (std::size_t k = 0; k < label.size(); ++k) {
    if (label[k] == 0) continue;
    NUVO_FAIL_IF(isMissing(value[k]), kLabelWithoutValue);
    const int c = classOfValue(classes, value[k]);
    NUVO_FAIL_IF(c == kNoClass, kLabelOutsideClasses);
    auto [it, fresh] = byLabel.try_emplace(label[k]);
    ConnectedGroup &g = it->second;
    if (fresh) {
      g.label = label[k];
      g.classId = c;
    }
    NUVO_FAIL_IF(g.classId != c, kLabelWithSeveralClasses);
    g.node.push_back(static_cast<int>(k));
  }
  groups->clear();
  for (auto &[l, g] : byLabel) {
    NUVO_FAIL_IF(g.node.size() < 2, kSingleNodeLabel);
    groups->push_back(std::move(g));
  }
  return 0;
}

std::vector<int> sortGroup(int type, int nx, int ny, std::span<const int> node) {
  const int n = static_cast<int>(node.size());
  const int nxy = nx * ny;
  struct Pair {
    int d, i, j;
  };
  std::vector<Pair> pairs;
  pairs.reserve(static_cast<std::size_t>(n) * (n > 0 ? n - 1 : 0) / 2);
  for (int i = 0; i < n; ++i)
    for (int j = i + 1; j < n; ++j) {
      const int a = std::abs(node[i] % nx - node[j] % nx);
      const int b = std::abs(node[i] % nxy / nx - node[j] % nxy / nx);
      const int c = std::abs(node[i] / nxy - node[j] / nxy);
      pairs.push_back({stepDistance(type, a, b, c), i, j});
    }
  std::stable_sort(pairs.begin(), pairs.end(),
                   [](const Pair &p, const Pair &q) { return p.d < q.d; });
  std::vector<int> order;
  if (n == 1) order.push_back(0);
  if (pairs.empty()) return order;
  std::vector<char> placed(static_cast<std::size_t>(n), 0);
  const auto place = [&](int i) {
    placed[i] = 1;
    order.push_back(i);
  };
  place(pairs.front().i);
  place(pairs.front().j);
  // Each pass takes the first pair, in distance order, joining an ordered node
  // to one not yet ordered.
  while (static_cast<int>(order.size()) < n)
    for (const Pair &p : pairs)
      if (placed[p.i] != placed[p.j]) {
        place(placed[p.i] ? p.j : p.i);
        break;
      }
  return order;
}

}  // namespace nuvo

extern "C" {

int NUVOImageToImageWithConnectivityLabel(const nuvo_image *image, const char *labelName,
                                          const nuvo_grid *grid, int *label, int *nlabel) {
  NUVO_FAIL_IF(image == nullptr || labelName == nullptr || grid == nullptr || label == nullptr ||
                   nlabel == nullptr,
               nuvo::kMemoryNotAllocated);
  return nuvo::imageLabels(*image, labelName, *grid, label, nlabel);
}

int NUVOPointSetToImageWithConnectivityLabel(const nuvo_pointSet *ps, const char *labelName,
                                             const nuvo_grid *grid, int *label, int *nlabel) {
  NUVO_FAIL_IF(ps == nullptr || labelName == nullptr || grid == nullptr || label == nullptr ||
                   nlabel == nullptr,
               nuvo::kMemoryNotAllocated);
  return nuvo::guardedCall(
      [&] { return nuvo::pointSetLabels(*ps, labelName, *grid, label, nlabel); });
}

int NUVOSimConnectivitySortGroup(int connectivityType, int nx, int ny, int n, const int *node,
                                 int *order) {
  NUVO_FAIL_IF(n > 0 && (node == nullptr || order == nullptr), nuvo::kMemoryNotAllocated);
  NUVO_FAIL_IF(nx < 1, -601);
  NUVO_FAIL_IF(ny < 1, -602);
  NUVO_FAIL_IF(connectivityType < CONNECT_FACE || connectivityType > CONNECT_FACE_EDGE_CORNER,
               nuvo::kUnknownType);
  return nuvo::guardedCall([&] {
    const auto sorted = nuvo::sortGroup(connectivityType, nx, ny,
                                        std::span(node, static_cast<std::size_t>(std::max(n, 0))));
    std::copy(sorted.begin(), sorted.end(), order);
    return 0;
  });
}

}  // extern "C"
