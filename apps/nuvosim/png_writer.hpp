// PNG encoding of a raster, through libpng's simplified writing interface.
#pragma once

#include <cstdio>
#include <string>

#include "picture.hpp"

namespace nuvo::cli {

// Writes `raster` as an 8-bit RGB PNG to an open stream. Returns an empty text,
// or libpng's reason of the failure.
std::string writePng(std::FILE *stream, const Raster &raster);

}  // namespace nuvo::cli
