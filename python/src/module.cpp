// The native part of the nuvosim package: images between files and numpy, and
// parameter files run through the library with the GIL released. The Python
// modules of the package build the public interface on these functions.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdio>
#include <stdexcept>

#include "analysis.hpp"
#include "image_arrays.hpp"
#include "image_files.hpp"
#include "library_error.hpp"
#include "records.hpp"
#include "run_file.hpp"

namespace nuvo::python {

namespace {

using namespace pybind11::literals;

constexpr int kOutputNotOpened = -110;

// The format named by `key`, or by the extension of `path` when the key is empty.
runfile::ImageFormat formatOf(const std::string &path, const std::string &key) {
  const runfile::ImageFormat format =
      key.empty() ? runfile::formatOfExtension(path) : runfile::formatOfKey(key);
  if (format == runfile::ImageFormat::kByExtension) {
    throw std::invalid_argument(path + ": name the format (gslib, vtk, pgm, ppm or bin)");
  }
  return format;
}

// Raises a failed read or write: NuvoError for what the library refuses,
// ValueError for values outside the format's range.
void throwIfFailed(const runfile::ImageFailure &failure, const std::string &path) {
  if (!failure) return;
  if (failure.code == 0) throw std::invalid_argument(path + ": " + failure.text);
  throw LibraryError(failure.code, failure.text, path);
}

// (values (nvar, nz, ny, nx), spacing, origin, names) of the image file `path`.
py::tuple readImage(const std::string &path, const std::string &key) {
  const runfile::ImageFormat format = formatOf(path, key);
  Image image;
  throwIfFailed(runfile::readImage(path, format, *image.get()), path);
  const nuvo_grid &g = *image->grid;
  py::list names;
  for (int iv = 0; iv < image->nvar; ++iv) names.append(image->varName[iv]);
  return py::make_tuple(imageValues(*image.get(), {image->nvar, g.nz, g.ny, g.nx}),
                        py::make_tuple(g.sx, g.sy, g.sz), py::make_tuple(g.ox, g.oy, g.oz),
                        names);
}

// Writes an image file; a failed write leaves no file behind.
void writeImage(const Values &values, const std::array<double, 3> &spacing,
                const std::array<double, 3> &origin, const std::vector<std::string> &names,
                const std::string &path, const std::string &key, const std::string &valueFormat) {
  const runfile::ImageFormat format = formatOf(path, key);
  Image image;
  buildImage(*image.get(), values, spacing, origin, names);
  std::FILE *stream = std::fopen(path.c_str(), "wb");
  if (stream == nullptr) throw LibraryError(kOutputNotOpened, path);
  runfile::ImageFailure failure = runfile::writeImage(stream, format, *image.get(), valueFormat);
  if (std::fclose(stream) != 0 && !failure) failure = {kOutputNotOpened, "write failed"};
  if (failure) {
    std::remove(path.c_str());
    throwIfFailed(failure, path);
  }
}

}  // namespace

}  // namespace nuvo::python

PYBIND11_MODULE(_nuvosim, m) {
  using namespace nuvo::python;
  m.doc() = "Native part of nuvosim: use the functions of the nuvosim package.";
  registerLibraryError();
  m.def("read_image", &readImage, "path"_a, "format"_a);
  m.def("write_image", &writeImage, "values"_a, "spacing"_a, "origin"_a, "names"_a, "path"_a,
        "format"_a, "value_format"_a);
  m.def("run_file", &runFile, "path"_a, "realization"_a, "write_files"_a, "progress"_a,
        "threads"_a);
  m.def("realization_count", &realizationCount, "path"_a);
  m.def("analyze", &analyze, "ti"_a, "realizations"_a, "variable"_a, "lags"_a);
}
