#include "png_writer.hpp"

#include <png.h>

namespace nuvo::cli {

std::string writePng(std::FILE *stream, const Raster &raster) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(raster.width);
  png.height = static_cast<png_uint_32>(raster.height);
  png.format = PNG_FORMAT_RGB;
  if (png_image_write_to_stdio(&png, stream, 0, raster.rgb.data(), 0, nullptr) != 0) return {};
  std::string reason = png.message;
  png_image_free(&png);
  return reason.empty() ? "PNG encoding failed" : reason;
}

}  // namespace nuvo::cli
