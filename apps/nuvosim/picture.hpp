// Pictures of images: a z-slice drawn with one panel per variable, side by side.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "colour_maps.hpp"
#include "nuvo_image.h"

namespace nuvo::cli {

// Rows of RGB pixels, top row first.
struct Raster {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> rgb;
};

// Largest picture drawn, in pixels (about 200 MB of RGB).
inline constexpr std::int64_t kMaxPixels = std::int64_t{1} << 26;

// Pixels per cell side: the picture of an ny-row grid gets about 300 to 500
// pixels high, a panel at most about 1200 pixels wide, a cell at least 1 pixel.
int cellPixels(int nx, int ny);

// Width and height of the picture of `npanel` panels of nx x ny cells.
std::int64_t pictureWidth(int nx, int npanel, int cell);
std::int64_t pictureHeight(int ny, int cell);

// Draws slice iz of image for the variables listed (indices into the image), the
// colours of panel k given by scales[k]; the y axis points up (row ny-1 on top).
// The caller checks that the picture fits in kMaxPixels.
Raster drawSlice(const nuvo_image &image, int iz, std::span<const int> variables,
                 std::span<const ColourScale> scales);

// Rings the cells (ix, iy) of `cells` on each of the `npanel` panels of a picture
// drawn by drawSlice from a grid of nx x ny cells: a black square with a white
// inside around each, so a marked cell shows on any colour.
void markCells(Raster &raster, int nx, int ny, int npanel, std::span<const int> cellX,
               std::span<const int> cellY);

}  // namespace nuvo::cli
