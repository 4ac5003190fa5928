// Image files by format name or file extension, shared by the front ends.
#pragma once

#include <cstdio>
#include <string>

#include "nuvo_image.h"

namespace nuvo::runfile {

enum class ImageFormat { kByExtension, kGslib, kVtk, kPgm, kPpm, kGslibBinary };

// The format named by `key`: gslib or 0, vtk or 1, pgm or 2, ppm or 3, bin (GSLIB
// binary), in any case; kByExtension for an unknown key.
ImageFormat formatOfKey(const std::string &key);

// The format of the extension of `path` (.gslib, .dat, .txt, .vtk, .pgm, .ppm,
// .gslibbin, .bin), or kByExtension when it tells none.
ImageFormat formatOfExtension(const std::string &path);

// Reads an image in `format` (not kByExtension) from `stream` into the initialised
// `image`. Returns the library's code.
int readImage(std::FILE *stream, ImageFormat format, nuvo_image &image);

// Writes `image` in `format` (not kByExtension) to `stream`, the values of text
// formats printed with `valueFormat`. Returns the library's code.
int writeImage(std::FILE *stream, ImageFormat format, const nuvo_image &image,
               const std::string &valueFormat);

}  // namespace nuvo::runfile
