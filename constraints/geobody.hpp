// Paths inside geobodies (the C entry points are in nuvo_geobody.h): a geodesic
// distance map grown breadth-first from a set of start nodes, the walk back down
// such a map, and the join of two half paths meeting at a node.
//
// The connecting paths of the connectivity constraints call these on the
// simulation grid once per node to bind, so they reuse the caller's buffers.
#pragma once

#include <span>
#include <vector>

namespace nuvo {

// A grid of nx x ny x nz nodes and one of the three neighbourhoods:
// 0 face (6), 1 face or edge (18), 2 face, edge or corner (26).
class GeobodyGrid {
 public:
  GeobodyGrid(int nx, int ny, int nz, int connectivityType);

  int nxyz() const { return nx_ * ny_ * nz_; }
  bool neighbours(int a, int b) const;

  // Fills distance (resized to nxyz) as NUVOComputeDistanceConnectivity6InGeobody
  // describes, `inside` saying whether a node belongs to the geobody. Start
  // nodes must be nodes of the grid.
  template <typename Inside>
  void distanceMap(Inside inside, std::span<const int> start, std::vector<int> &distance) const;

  // The walk from target down to a node of distance 0 (path[0] = target).
  // Returns 0, -2205 (target not reached) or -2200 / -2201 / -2202.
  int walkBack(std::span<const int> distance, int target, std::vector<int> &path) const;

  // The nodes of path1 reversed, then those of path2 after its first node.
  // Returns 0 or -2207.
  int join(std::span<const int> path1, std::span<const int> path2, std::vector<int> &path) const;

  // Calls visit(n) for every neighbour n of node inside the grid.
  template <typename Visit>
  void forEachNeighbour(int node, Visit visit) const;

 private:
  int nx_, ny_, nz_, type_;
  mutable std::vector<int> front_, next_;
};

// The breadth-first growth; the front buffers are kept between calls.
template <typename Inside>
void GeobodyGrid::distanceMap(Inside inside, std::span<const int> start,
                              std::vector<int> &distance) const {
  distance.assign(static_cast<std::size_t>(nxyz()), -1);
  front_.clear();
  for (int s : start) {
    if (distance[s] == 0) continue;
    distance[s] = 0;
    front_.push_back(s);
  }
  for (int step = 1; !front_.empty(); ++step) {
    next_.clear();
    for (int node : front_)
      forEachNeighbour(node, [&](int n) {
        if (distance[n] != -1 || !inside(n)) return;
        distance[n] = step;
        next_.push_back(n);
      });
    front_.swap(next_);
  }
}

template <typename Visit>
void GeobodyGrid::forEachNeighbour(int node, Visit visit) const {
  const int nxy = nx_ * ny_;
  const int x = node % nx_, y = node % nxy / nx_, z = node / nxy;
  for (int dz = -1; dz <= 1; ++dz) {
    if (z + dz < 0 || z + dz >= nz_) continue;
    for (int dy = -1; dy <= 1; ++dy) {
      if (y + dy < 0 || y + dy >= ny_) continue;
      for (int dx = -1; dx <= 1; ++dx) {
        const int moved = (dx != 0) + (dy != 0) + (dz != 0);
        if (moved == 0 || moved > type_ + 1 || x + dx < 0 || x + dx >= nx_) continue;
        visit(node + dx + nx_ * dy + nxy * dz);
      }
    }
  }
}

}  // namespace nuvo
