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

// Why an image file could not be read or written: the library's code (0 when the
// library accepted the file but its values break the format's range) and the text
// to show. An empty text means success.
struct ImageFailure {
  int code = 0;
  std::string text;
  explicit operator bool() const { return !text.empty(); }
};

// Reads the image file `path` in `format` (not kByExtension) into the initialised
// `image`. Grey and colour maps may be standard files, without the comment line
// the library's writer adds, and every value must lie within the header's maximum.
ImageFailure readImage(const std::string &path, ImageFormat format, nuvo_image &image);

// Writes `image` in `format` (not kByExtension) to `stream`, the values of text
// formats printed with `valueFormat`. A grey or colour map refuses values outside
// 0..255, the range its header declares (the file then holds a partial map).
ImageFailure writeImage(std::FILE *stream, ImageFormat format, const nuvo_image &image,
                        const std::string &valueFormat);

}  // namespace nuvo::runfile
