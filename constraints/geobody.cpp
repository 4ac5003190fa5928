#include "constraints/geobody.hpp"

#include <algorithm>
#include <cstdlib>

#include "foundation/check.hpp"
#include "nuvo_geobody.h"

namespace nuvo {
namespace {

constexpr int kNotAllocated = -20;
constexpr int kBrokenGeobody = -2205;
constexpr int kCannotJoin = -2207;
constexpr int kNoStepDown[] = {-2200, -2201, -2202};

// The grid size codes shared with the distance maps of the toolkit.
int checkSize(int nx, int ny, int nz) {
  NUVO_FAIL_IF(nx < 1, -601);
  NUVO_FAIL_IF(ny < 1, -602);
  NUVO_FAIL_IF(nz < 1, -603);
  NUVO_FAIL_IF(static_cast<long long>(nx) * ny * nz > 2147483647LL, -610);
  return 0;
}

int distanceEntry(int type, int nx, int ny, int nz, const int *geobody, int nstart,
                  const int *start, int *distance) {
  NUVO_TRY(checkSize(nx, ny, nz));
  NUVO_FAIL_IF(geobody == nullptr || distance == nullptr || (nstart > 0 && start == nullptr),
               kNotAllocated);
  const GeobodyGrid grid(nx, ny, nz, type);
  const std::span<const int> starts(start, static_cast<std::size_t>(std::max(nstart, 0)));
  for (int s : starts) NUVO_FAIL_IF(s < 0 || s >= grid.nxyz(), kBrokenGeobody);
  return guardedCall([&] {
    std::vector<int> map;
    grid.distanceMap([geobody](int n) { return geobody[n] != 0; }, starts, map);
    std::copy(map.begin(), map.end(), distance);
    return 0;
  });
}

int walkEntry(int type, int nx, int ny, int nz, const int *distance, int target, int *npath,
              int *path) {
  NUVO_TRY(checkSize(nx, ny, nz));
  NUVO_FAIL_IF(distance == nullptr || npath == nullptr || path == nullptr, kNotAllocated);
  const GeobodyGrid grid(nx, ny, nz, type);
  NUVO_FAIL_IF(target < 0 || target >= grid.nxyz(), kBrokenGeobody);
  return guardedCall([&] {
    std::vector<int> walk;
    NUVO_TRY(
        grid.walkBack(std::span(distance, static_cast<std::size_t>(grid.nxyz())), target, walk));
    std::copy(walk.begin(), walk.end(), path);
    *npath = static_cast<int>(walk.size());
    return 0;
  });
}

int joinEntry(int type, int nx, int ny, int nz, int n1, const int *path1, int n2, const int *path2,
              int *npath, int *path) {
  NUVO_TRY(checkSize(nx, ny, nz));
  NUVO_FAIL_IF(npath == nullptr || path == nullptr, kNotAllocated);
  NUVO_FAIL_IF(n1 < 1 || n2 < 1 || path1 == nullptr || path2 == nullptr, kCannotJoin);
  const GeobodyGrid grid(nx, ny, nz, type);
  return guardedCall([&] {
    std::vector<int> joined;
    NUVO_TRY(grid.join(std::span(path1, static_cast<std::size_t>(n1)),
                       std::span(path2, static_cast<std::size_t>(n2)), joined));
    std::copy(joined.begin(), joined.end(), path);
    *npath = static_cast<int>(joined.size());
    return 0;
  });
}

}  // namespace

GeobodyGrid::GeobodyGrid(int nx, int ny, int nz, int connectivityType)
    : nx_(nx), ny_(ny), nz_(nz), type_(std::clamp(connectivityType, 0, 2)) {}

bool GeobodyGrid::neighbours(int a, int b) const {
  const int nxyz_ = nxyz();
  if (a < 0 || b < 0 || a >= nxyz_ || b >= nxyz_ || a == b) return false;
  const int nxy = nx_ * ny_;
  const int dx = std::abs(a % nx_ - b % nx_), dy = std::abs(a % nxy / nx_ - b % nxy / nx_),
            dz = std::abs(a / nxy - b / nxy);
  return dx <= 1 && dy <= 1 && dz <= 1 && dx + dy + dz <= type_ + 1;
}

int GeobodyGrid::walkBack(std::span<const int> distance, int target, std::vector<int> &path) const {
  path.clear();
  NUVO_FAIL_IF(distance[target] < 0, kBrokenGeobody);
  path.push_back(target);
  for (int node = target; distance[node] > 0;) {
    const int want = distance[node] - 1;
    int down = -1;
    forEachNeighbour(node, [&](int n) {
      if (down < 0 && distance[n] == want) down = n;
    });
    NUVO_FAIL_IF(down < 0, kNoStepDown[type_]);
    path.push_back(down);
    node = down;
  }
  return 0;
}

int GeobodyGrid::join(std::span<const int> path1, std::span<const int> path2,
                      std::vector<int> &path) const {
  NUVO_FAIL_IF(path1.empty() || path2.empty() || path1.front() != path2.front(), kCannotJoin);
  path.assign(path1.rbegin(), path1.rend());
  path.insert(path.end(), path2.begin() + 1, path2.end());
  for (std::size_t i = 1; i < path.size(); ++i)
    NUVO_FAIL_IF(!neighbours(path[i - 1], path[i]), kCannotJoin);
  return 0;
}

}  // namespace nuvo

extern "C" {

int NUVOComputeDistanceConnectivity6InGeobody(int nx, int ny, int nz, const int *geobody,
                                              int nstart, const int *start, int *distance) {
  return nuvo::distanceEntry(0, nx, ny, nz, geobody, nstart, start, distance);
}
int NUVOComputeDistanceConnectivity18InGeobody(int nx, int ny, int nz, const int *geobody,
                                               int nstart, const int *start, int *distance) {
  return nuvo::distanceEntry(1, nx, ny, nz, geobody, nstart, start, distance);
}
int NUVOComputeDistanceConnectivity26InGeobody(int nx, int ny, int nz, const int *geobody,
                                               int nstart, const int *start, int *distance) {
  return nuvo::distanceEntry(2, nx, ny, nz, geobody, nstart, start, distance);
}

int NUVOComputePathInDistanceMapGeobody6(int nx, int ny, int nz, const int *distance, int target,
                                         int *npath, int *path) {
  return nuvo::walkEntry(0, nx, ny, nz, distance, target, npath, path);
}
int NUVOComputePathInDistanceMapGeobody18(int nx, int ny, int nz, const int *distance, int target,
                                          int *npath, int *path) {
  return nuvo::walkEntry(1, nx, ny, nz, distance, target, npath, path);
}
int NUVOComputePathInDistanceMapGeobody26(int nx, int ny, int nz, const int *distance, int target,
                                          int *npath, int *path) {
  return nuvo::walkEntry(2, nx, ny, nz, distance, target, npath, path);
}

int NUVOJoinTwoPathInGeobody6(int nx, int ny, int nz, int n1, const int *path1, int n2,
                              const int *path2, int *npath, int *path) {
  return nuvo::joinEntry(0, nx, ny, nz, n1, path1, n2, path2, npath, path);
}
int NUVOJoinTwoPathInGeobody18(int nx, int ny, int nz, int n1, const int *path1, int n2,
                               const int *path2, int *npath, int *path) {
  return nuvo::joinEntry(1, nx, ny, nz, n1, path1, n2, path2, npath, path);
}
int NUVOJoinTwoPathInGeobody26(int nx, int ny, int nz, int n1, const int *path1, int n2,
                               const int *path2, int *npath, int *path) {
  return nuvo::joinEntry(2, nx, ny, nz, n1, path1, n2, path2, npath, path);
}

}  // extern "C"
