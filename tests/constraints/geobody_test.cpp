// Paths inside geobodies and the binding order of a group.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "nuvo_connectivity.h"
#include "nuvo_geobody.h"

namespace {

using DistanceFn = int (*)(int, int, int, const int *, int, const int *, int *);
using WalkFn = int (*)(int, int, int, const int *, int, int *, int *);
using JoinFn = int (*)(int, int, int, int, const int *, int, const int *, int *, int *);
constexpr DistanceFn kDistance[] = {NUVOComputeDistanceConnectivity6InGeobody,
                                    NUVOComputeDistanceConnectivity18InGeobody,
                                    NUVOComputeDistanceConnectivity26InGeobody};
constexpr WalkFn kWalk[] = {NUVOComputePathInDistanceMapGeobody6,
                            NUVOComputePathInDistanceMapGeobody18,
                            NUVOComputePathInDistanceMapGeobody26};
constexpr JoinFn kJoin[] = {NUVOJoinTwoPathInGeobody6, NUVOJoinTwoPathInGeobody18,
                            NUVOJoinTwoPathInGeobody26};

// In a full box the geodesic distance from the corner is the number of moves the
// neighbourhood needs: x + y + z (6), max(x, y, z, ceil((x + y + z) / 2)) (18),
// max(x, y, z) (26); for 18 neighbours (3, 3, 3) is 5 and (4, 1, 1) is 4.
TEST(Geobody, DistancesInAFullBoxCountTheMovesOfEachNeighbourhood) {
  constexpr int n = 6, nxyz = n * n * n;
  const std::vector<int> full(nxyz, 1);
  const int corner[] = {0};
  for (int type = 0; type < 3; ++type) {
    std::vector<int> d(nxyz);
    ASSERT_EQ(kDistance[type](n, n, n, full.data(), 1, corner, d.data()), 0);
    for (int k = 0; k < nxyz; ++k) {
      const int x = k % n, y = k / n % n, z = k / (n * n);
      const int expected = type == 0   ? x + y + z
                           : type == 1 ? std::max({x, y, z, (x + y + z + 1) / 2})
                                       : std::max({x, y, z});
      ASSERT_EQ(d[k], expected) << "type " << type << " node " << k;
    }
  }
}

// A U-shaped body in a 7 x 5 plane: the walk from one arm to the other goes
// round the bottom one neighbour at a time; a node cut off is unreachable; two
// half paths join only where they start together.
TEST(Geobody, WalkFollowsTheBodyAndJoinChecksTheMeetingNode) {
  constexpr int nx = 7, ny = 5;
  std::vector<int> body(nx * ny, 0);
  for (int y = 0; y < ny; ++y) body[y * nx] = body[y * nx + 6] = 1;  // the two arms
  for (int x = 0; x < nx; ++x) body[x] = 1;                          // the bottom
  body[3 + 3 * nx] = 1;                                              // an island
  const int start[] = {4 * nx};                                      // top of the left arm
  for (int type = 0; type < 3; ++type) {
    std::vector<int> d(nx * ny), path(nx * ny);
    ASSERT_EQ(kDistance[type](nx, ny, 1, body.data(), 1, start, d.data()), 0);
    EXPECT_EQ(d[3 + 3 * nx], -1);
    int npath = 0;
    EXPECT_EQ(kWalk[type](nx, ny, 1, d.data(), 3 + 3 * nx, &npath, path.data()), -2205);
    const int target = 6 + 4 * nx;
    ASSERT_EQ(kWalk[type](nx, ny, 1, d.data(), target, &npath, path.data()), 0);
    ASSERT_EQ(npath, d[target] + 1);
    EXPECT_EQ(path[0], target);
    EXPECT_EQ(path[npath - 1], start[0]);
    for (int i = 0; i < npath; ++i) EXPECT_EQ(body[path[i]], 1);
    for (int i = 1; i < npath; ++i) {
      const int dx = std::abs(path[i] % nx - path[i - 1] % nx);
      const int dy = std::abs(path[i] / nx - path[i - 1] / nx);
      EXPECT_TRUE(dx <= 1 && dy <= 1 && dx + dy <= type + 1);
    }
    // The walk cut at its middle node gives two halves starting there, which join
    // back into it.
    const int mid = npath / 2;
    std::vector<int> half1(path.begin(), path.begin() + mid + 1), joined(npath);
    std::reverse(half1.begin(), half1.end());
    std::vector<int> half2(path.begin() + mid, path.begin() + npath);
    int njoined = 0;
    ASSERT_EQ(kJoin[type](nx, ny, 1, static_cast<int>(half1.size()), half1.data(),
                          static_cast<int>(half2.size()), half2.data(), &njoined, joined.data()),
              0);
    EXPECT_EQ(std::vector<int>(joined.begin(), joined.begin() + njoined),
              std::vector<int>(path.begin(), path.begin() + npath));
    EXPECT_EQ(
        kJoin[type](nx, ny, 1, static_cast<int>(half1.size()), half1.data(),
                    static_cast<int>(half2.size()) - 1, half2.data() + 1, &njoined, joined.data()),
        -2207);
  }
  // A node whose map has no step down is refused with the code of the neighbourhood.
  std::vector<int> gap(nx * ny, -1), path(nx * ny);
  gap[0] = 0;
  gap[2] = 2;
  int npath = 0;
  EXPECT_EQ(kWalk[0](nx, ny, 1, gap.data(), 2, &npath, path.data()), -2200);
  EXPECT_EQ(kWalk[2](nx, ny, 1, gap.data(), 2, &npath, path.data()), -2202);
}

// Nodes A (0,0,0), B (3,0,0), C (1,0,0): A-C is the closest pair, then B is
// nearest to C, so the order is A, C, B; a fourth node D (0,5,0) comes last.
TEST(Geobody, GroupOrderFollowsTheClosestPairs) {
  constexpr int nx = 8, ny = 8;
  const int nodes[] = {0, 3, 1, 5 * nx};
  int order[4] = {};
  ASSERT_EQ(NUVOSimConnectivitySortGroup(CONNECT_FACE, nx, ny, 3, nodes, order), 0);
  EXPECT_EQ(std::vector<int>(order, order + 3), (std::vector<int>{0, 2, 1}));
  ASSERT_EQ(NUVOSimConnectivitySortGroup(CONNECT_FACE_EDGE_CORNER, nx, ny, 4, nodes, order), 0);
  EXPECT_EQ(std::vector<int>(order, order + 4), (std::vector<int>{0, 2, 1, 3}));
  EXPECT_EQ(NUVOSimConnectivitySortGroup(3, nx, ny, 3, nodes, order), -2092);
}

}  // namespace
