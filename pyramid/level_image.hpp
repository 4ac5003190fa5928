// Images of the pyramid levels: an owning, movable image holder and the moves of
// values between a level and the next coarser one.
//
// A reduction by steps k (per direction) takes a grid of n nodes to
// n' = (n - 1) / k + 1 nodes; coarse node c sits on fine node shift + c k.
// Values go down the pyramid by the gaussian reduction (binomial weights) and
// come back up by one of two lifts onto the fine grid:
//  - nearest: every fine node takes the value of its nearest coarse node;
//  - expansion: the gaussian expansion of the coarse grid, placed at the shift,
//    fine nodes beyond the expanded extent taking its nearest border node.
#pragma once

#include <array>
#include <span>
#include <string>

#include "nuvo_image.h"

namespace nuvo {

// An image released when the holder goes; movable, so levels can be kept in vectors.
class LevelImage {
 public:
  LevelImage() { NUVOInitImage(&image_); }
  ~LevelImage() { NUVOFreeImage(&image_); }
  LevelImage(LevelImage &&other) noexcept : LevelImage() { std::swap(image_, other.image_); }
  LevelImage &operator=(LevelImage &&other) noexcept {
    std::swap(image_, other.image_);
    return *this;
  }
  LevelImage(const LevelImage &) = delete;
  LevelImage &operator=(const LevelImage &) = delete;

  nuvo_image *get() { return &image_; }
  const nuvo_image *get() const { return &image_; }
  bool empty() const { return image_.grid == nullptr; }

 private:
  nuvo_image image_;
};

using Steps = std::array<int, 3>;

// The grid of the reduction of `grid` by `k`: same origin and extent. Returns 0
// or the direction's step or dimension error (-3502 .. -3508).
int reduceGrid(const nuvo_grid &grid, const Steps &k, nuvo_grid *out);

// The shifts of the reduction of `grid` by `k`.
Steps reductionShift(const nuvo_grid &grid, const Steps &k);

// Reduces every variable of `in` by `k` with the binomial weights: a coarse node
// is informed when at least `minWeight` of its filter fell on informed nodes.
// Names are kept. Returns 0, -1 or the direction's step or dimension error
// (-3502 .. -3508).
int reduceImage(const nuvo_image &in, const Steps &k, double minWeight, nuvo_image *out);

// The same for maps of angles in degrees: reduced through their cosine and sine.
int reduceAngleImage(const nuvo_image &in, const Steps &k, nuvo_image *out);

// Lifts `coarse`, the reduction of a grid `fine` by `k`, onto `fine` by the
// nearest coarse node or by the gaussian expansion. Names are kept.
int liftImage(const nuvo_image &coarse, const nuvo_grid &fine, const Steps &k, bool expansion,
              nuvo_image *out);

// Puts every informed value of `fine` on its nearest node of `coarse` (the
// reduction of fine's grid by k), the closest fine node winning. `coarse` is
// allocated on `coarseGrid` with fine's variables.
int sampleToCoarse(const nuvo_image &fine, const nuvo_grid &coarseGrid, const Steps &k,
                   nuvo_image *coarse);

// One variable of a gathered image: variable `var` of `image` (on the grid of the
// gathered image), renamed `name`.
struct VariableSource {
  const nuvo_image *image;
  int var;
  std::string name;
};

// Allocates `out` on `grid` with one variable per source, in order.
int gatherVariables(const nuvo_grid &grid, std::span<const VariableSource> sources,
                    nuvo_image *out);

}  // namespace nuvo
