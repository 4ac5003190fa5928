// nuvosim render IMAGE OUT.png: a picture of a 2D image or of a z-slice of a 3D one.
#include <cctype>
#include <cstring>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "colour_maps.hpp"
#include "commands.hpp"
#include "files.hpp"
#include "image_io.hpp"
#include "nuvo_imagefile.h"
#include "nuvo_pointset.h"
#include "picture.hpp"
#include "png_writer.hpp"
#include "records.hpp"

namespace nuvo::cli {

namespace {

constexpr int kMiddleSlice = -1;

struct RenderOptions {
  std::string image;
  std::string output;
  ImageFormat from = ImageFormat::kByExtension;
  int slice = kMiddleSlice;
  std::vector<std::string> variables;
  std::string mark;  // point-set file whose points are ringed
};

// The cells of the drawn slice holding a point of the point-set file `path`, or
// false after reporting a file that cannot be read.
bool markedCells(const std::string &path, const nuvo_grid &grid, int iz, std::vector<int> *cellX,
                 std::vector<int> *cellY) {
  File stream = openInput(path);
  if (!stream) return false;
  PointSet points;
  if (const int rc = NUVOReadPointSet(points.get(), stream.get()); rc != 0) {
    reportFailure(path, libraryMessage(rc));
    return false;
  }
  const int n = points->npoint;
  std::vector<int> ix(n), iy(n), izs(n);
  NUVOGetXYZIndexInGridForPointSet(points.get(), &grid, ix.data(), iy.data(), izs.data(), 1);
  for (int k = 0; k < n; ++k) {
    if (izs[k] != iz) continue;
    cellX->push_back(ix[k]);
    cellY->push_back(iy[k]);
  }
  return true;
}

// Indices of the variables named (every variable when none is), or an empty list
// after reporting a name the image does not have.
std::vector<int> selectVariables(const RenderOptions &options, const nuvo_image &image) {
  std::vector<int> selected;
  if (options.variables.empty()) {
    for (int iv = 0; iv < image.nvar; ++iv) selected.push_back(iv);
    return selected;
  }
  for (const std::string &name : options.variables) {
    int iv = 0;
    while (iv < image.nvar && name != image.varName[iv]) ++iv;
    if (iv == image.nvar) {
      std::string known;
      for (int k = 0; k < image.nvar; ++k) known += std::string(k ? ", " : "") + image.varName[k];
      reportFailure(options.image, "no variable named " + name + " (variables: " + known + ")");
      return {};
    }
    selected.push_back(iv);
  }
  return selected;
}

// One line per panel telling what its colours mean, since the picture has no legend.
void printLegend(const nuvo_image &image, std::span<const int> variables,
                 std::span<const ColourScale> scales) {
  for (std::size_t k = 0; k < variables.size(); ++k) {
    const ColourScale &scale = scales[k];
    std::printf("panel %zu: %s:", k + 1, image.varName[variables[k]]);
    if (scale.values().empty()) {
      std::printf(" no informed value");
    } else if (scale.categorical()) {
      for (const double value : scale.values()) {
        std::printf(" %g %s", value, hexText(scale(value)).c_str());
      }
    } else {
      std::printf(" viridis from %g (%s) to %g (%s)", scale.values()[0],
                  hexText(scale(scale.values()[0])).c_str(), scale.values()[1],
                  hexText(scale(scale.values()[1])).c_str());
    }
    std::printf("; missing %s\n", hexText(kMissingColour).c_str());
  }
}

int runRender(const RenderOptions &options) {
  Image image;
  if (const int status = readImageFile(options.image, options.from, *image.get()); status != 0) {
    return status;
  }
  const nuvo_grid &grid = *image->grid;
  const int iz = options.slice == kMiddleSlice ? grid.nz / 2 : options.slice;
  if (iz >= grid.nz) {
    reportFailure(options.image,
                  "no slice " + std::to_string(iz) + " (nz = " + std::to_string(grid.nz) + ")");
    return kUsageError;
  }
  const std::vector<int> variables = selectVariables(options, *image.get());
  if (variables.empty()) return kUsageError;

  const int cell = cellPixels(grid.nx, grid.ny);
  const std::int64_t width = pictureWidth(grid.nx, static_cast<int>(variables.size()), cell);
  const std::int64_t height = pictureHeight(grid.ny, cell);
  if (width * height > kMaxPixels) {
    reportFailure(options.image, "too large to render (" + std::to_string(width) + " x " +
                                     std::to_string(height) +
                                     " pixels); choose variables with --var");
    return kInputError;
  }

  std::vector<ColourScale> scales;
  for (const int iv : variables) {
    scales.emplace_back(std::span<const double>(image->var + std::size_t{1} * iv * grid.nxyz,
                                                static_cast<std::size_t>(grid.nxyz)));
  }
  Raster raster = drawSlice(*image.get(), iz, variables, scales);
  if (!options.mark.empty()) {
    std::vector<int> cellX, cellY;
    if (!markedCells(options.mark, grid, iz, &cellX, &cellY)) return kInputError;
    markCells(raster, grid.nx, grid.ny, static_cast<int>(variables.size()), cellX, cellY);
  }
  if (const int status =
          writeOutput(options.output, [&](std::FILE *stream) { return writePng(stream, raster); });
      status != 0) {
    return status;
  }
  std::printf("%s: %d x %d pixels, slice z = %d of %d, %d pixel(s) per cell\n",
              options.output.c_str(), raster.width, raster.height, iz, grid.nz, cell);
  printLegend(*image.get(), variables, scales);
  return kSuccess;
}

}  // namespace

void addRenderCommand(CLI::App &app) {
  auto options = std::make_shared<RenderOptions>();
  CLI::App *command =
      app.add_subcommand("render", "Draw an image, or a z-slice of a 3D one, as a PNG picture");
  command->footer(
      "One panel per variable (realizations side by side), the y axis pointing up. A variable\n"
      "with at most 12 distinct values gets a palette colour per value, any other the viridis\n"
      "map from its minimum to its maximum; missing values are grey. The colours of each\n"
      "panel are printed, since the picture has no legend.");
  command->add_option("IMAGE", options->image, "Image file")->required();
  command->add_option("OUT", options->output, "PNG file to write (extension .png)")
      ->required()
      ->check(CLI::Validator(
          [](const std::string &name) -> std::string {
            std::string extension = std::filesystem::path(name).extension().string();
            for (char &c : extension)
              c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            return extension == ".png" ? "" : name + ": only PNG pictures are written (OUT.png)";
          },
          ""));
  addFormatOption(command, "--from", options->from, "Format of IMAGE");
  command
      ->add_option("--slice", options->slice,
                   "Index of the z-slice drawn (default: the middle one)")
      ->option_text("Z")
      ->check(numberCheck(false));
  command->add_option("--var", options->variables, "Draw only this variable (repeatable)")
      ->option_text("NAME")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command->add_option("--mark", options->mark, "Ring the points of this point-set file")
      ->option_text("POINTS");
  setAction(command, [options] { return runRender(*options); });
}

}  // namespace nuvo::cli
