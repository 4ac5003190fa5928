#include "picture.hpp"

#include <algorithm>
#include <utility>

namespace nuvo::cli {

namespace {

// White columns between two panels.
constexpr int kGap = 8;

}  // namespace

int cellPixels(int nx, int ny) {
  return std::max(1, std::min(480 / ny, 1200 / nx));
}

std::int64_t pictureWidth(int nx, int npanel, int cell) {
  return std::int64_t{npanel} * nx * cell + std::int64_t{npanel - 1} * kGap;
}

std::int64_t pictureHeight(int ny, int cell) {
  return std::int64_t{ny} * cell;
}

Raster drawSlice(const nuvo_image &image, int iz, std::span<const int> variables,
                 std::span<const ColourScale> scales) {
  const nuvo_grid &grid = *image.grid;
  const int cell = cellPixels(grid.nx, grid.ny);
  Raster raster;
  raster.width = static_cast<int>(pictureWidth(grid.nx, static_cast<int>(variables.size()), cell));
  raster.height = static_cast<int>(pictureHeight(grid.ny, cell));
  raster.rgb.assign(std::size_t{3} * raster.width * raster.height, kBackgroundColour.r);

  for (std::size_t panel = 0; panel < variables.size(); ++panel) {
    const double *values =
        image.var + std::size_t{1} * variables[panel] * grid.nxyz + std::size_t{1} * iz * grid.nxy;
    const int left = static_cast<int>(panel) * (grid.nx * cell + kGap);
    for (int row = 0; row < raster.height; ++row) {
      const int iy = grid.ny - 1 - row / cell;
      std::uint8_t *pixel = raster.rgb.data() + 3 * (std::size_t{1} * row * raster.width + left);
      for (int ix = 0; ix < grid.nx; ++ix) {
        const Rgb colour = scales[panel](values[std::size_t{1} * iy * grid.nx + ix]);
        for (int k = 0; k < cell; ++k, pixel += 3) {
          pixel[0] = colour.r;
          pixel[1] = colour.g;
          pixel[2] = colour.b;
        }
      }
    }
  }
  return raster;
}

void markCells(Raster &raster, int nx, int ny, int npanel, std::span<const int> cellX,
               std::span<const int> cellY) {
  const int cell = cellPixels(nx, ny);
  const int half = std::max(3, cell + 2);  // half side of the ring, in pixels
  const auto paint = [&](int px, int py, std::uint8_t grey) {
    if (px < 0 || py < 0 || px >= raster.width || py >= raster.height) return;
    std::uint8_t *pixel = raster.rgb.data() + 3 * (std::size_t{1} * py * raster.width + px);
    pixel[0] = pixel[1] = pixel[2] = grey;
  };
  for (int panel = 0; panel < npanel; ++panel)
    for (std::size_t i = 0; i < cellX.size(); ++i) {
      const int cx = panel * (nx * cell + kGap) + cellX[i] * cell + cell / 2;
      const int cy = (ny - 1 - cellY[i]) * cell + cell / 2;
      for (int d = -half; d <= half; ++d)
        for (const auto &[r, grey] : {std::pair{half, 0}, std::pair{half - 1, 255}}) {
          if (d < -r || d > r) continue;
          const std::uint8_t g = static_cast<std::uint8_t>(grey);
          paint(cx + d, cy - r, g);
          paint(cx + d, cy + r, g);
          paint(cx - r, cy + d, g);
          paint(cx + r, cy + d, g);
        }
    }
}

}  // namespace nuvo::cli
