// Image files on the command line: the format comes from the file's extension
// unless an option names it, and every failure is reported with the file name.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <string_view>

#include "image_files.hpp"
#include "nuvo_image.h"

namespace nuvo::cli {

using runfile::ImageFormat;

// Adds an option (--from or --to) that names a format: gslib or 0, vtk or 1,
// pgm or 2, ppm or 3, bin (GSLIB binary). Left out, the extension decides.
CLI::Option *addFormatOption(CLI::App *command, const std::string &name, ImageFormat &format,
                             const std::string &purpose);

// Adds --format: ";"-separated printf conversions for the written values, each
// one of d, i, e, E, f, F, g, G, a, A, reused cyclically over the variables.
CLI::Option *addValueFormatOption(CLI::App *command, std::string &valueFormat);

using runfile::formatOfExtension;

// Whether `piece` is exactly one printf conversion of a number the library's
// writers can print: "%", flags, width, precision, then d or i, or one of e, E, f,
// F, g, G, a, A (also after "l", as in "%lf").
bool isNumberConversion(std::string_view piece);

// Reads an image into an initialised record. Returns kSuccess, kUsageError when
// the format cannot be told from the name, or kInputError (reported on stderr).
int readImageFile(const std::string &path, ImageFormat format, nuvo_image &image);

// Writes an image all-or-nothing (see writeOutput). Returns kSuccess, kUsageError
// when the format cannot be told from the name, or kOutputError.
int writeImageFile(const std::string &path, ImageFormat format, const nuvo_image &image,
                   const std::string &valueFormat);

}  // namespace nuvo::cli
