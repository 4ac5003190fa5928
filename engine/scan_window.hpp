// Where and in which order a training image is scanned for one data event.
//
// The candidate centres are the training-image nodes at which every node of the
// data event (and the centre itself) falls inside the image: a box of
// nx x ny x nz nodes, N positions numbered x fastest. The scan visits
// s, s + stride, s + 2 stride, ... (mod N) from a random start s with a random
// prime stride coprime with N, so the visited positions are all different and
// spread over the box, and no list of positions is ever built.
#pragma once

#include "nuvo_grid.h"
#include "nuvo_random.h"

namespace nuvo {

// Extent of a data event: the smallest and largest offset along each axis,
// the centre (0, 0, 0) included.
struct EventExtent {
  int xMin = 0, xMax = 0, yMin = 0, yMax = 0, zMin = 0, zMax = 0;
  void include(int dx, int dy, int dz) {
    if (dx < xMin) xMin = dx;
    if (dx > xMax) xMax = dx;
    if (dy < yMin) yMin = dy;
    if (dy > yMax) yMax = dy;
    if (dz < zMin) zMin = dz;
    if (dz > zMax) zMax = dz;
  }
};

struct ScanWindow {
  int nx = 0, ny = 0, nz = 0;  // box of candidate centres
  int x0 = 0, y0 = 0, z0 = 0;  // training-image coordinates of the box's first node
  int count() const { return nx * ny * nz; }
};

// The box of candidate centres of a data event of extent `e` in a training image
// of grid `ti`; false when it is empty (the event is larger than the image).
bool makeScanWindow(const nuvo_grid &ti, const EventExtent &e, ScanWindow *window);

// The first position and the stride of a scan of `nscan` positions (1 <= nscan <= N)
// of `window`. Draws the start, then the stride, from `ctx`.
struct ScanOrder {
  int start;
  int stride;
};
ScanOrder drawScanOrder(const ScanWindow &window, int nscan, nuvo_randContext *ctx);

// Walks the positions start, start + stride, ... of a window, giving each one's
// node index in the training image. Positions are kept as box coordinates and
// advanced by mixed-radix addition, the node index alongside, so no division or
// product is made per candidate. Each coordinate is held less the box's size
// along its axis, so that it is negative inside the box and the addition that
// moves it also tells whether it carries.
class ScanWalker {
 public:
  ScanWalker(const ScanWindow &window, const nuvo_grid &ti, ScanOrder order);
  int tiNode() const { return static_cast<int>(node_); }
  void advance() {
    node_ += step_;
    x_ += dx_;
    if (x_ >= 0) {
      x_ -= nx_;
      node_ += wrapX_;
      ++y_;
    }
    y_ += dy_;
    if (y_ >= 0) {
      y_ -= ny_;
      node_ += wrapY_;
      ++z_;
    }
    z_ += dz_;
    if (z_ >= 0) {
      z_ -= nz_;
      node_ += wrapZ_;
    }
  }

 private:
  int nx_, ny_, nz_;  // the box
  int x_, y_, z_;     // current position in the box, less the box's size
  int dx_, dy_, dz_;  // the stride in box coordinates
  // The current position's node in the training image, and the stride's move
  // there without carries (64 bits: a move and a node may add up past 2^31).
  long long node_;
  long long step_;
  // The moves that the carries add: an x carry moves one row instead of nx
  // nodes back, a y carry one layer instead of ny rows back, a z wrap nz
  // layers back.
  long long wrapX_, wrapY_, wrapZ_;
};

}  // namespace nuvo
