#include "image_arrays.hpp"

#include <climits>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include "library_error.hpp"

namespace nuvo::python {

namespace {

constexpr int kNameTooLong = -623;
constexpr std::size_t kNameMax = 127;

// The node count along one axis, refused when it does not fit the library's int.
int axisCount(py::ssize_t n) {
  if (n < 1 || n > INT_MAX) throw std::invalid_argument("every axis needs 1 to 2^31-1 nodes");
  return static_cast<int>(n);
}

}  // namespace

py::array_t<double> imageValues(const nuvo_image &image, const std::vector<py::ssize_t> &shape) {
  py::array_t<double> result(shape);
  double *out = result.mutable_data();
  const std::size_t n = static_cast<std::size_t>(result.size());
  for (std::size_t k = 0; k < n; ++k) {
    out[k] = image.var[k] == NUVO_MISSING_VALUE ? std::nan("") : image.var[k];
  }
  return result;
}

void buildImage(nuvo_image &image, const Values &values, const std::array<double, 3> &spacing,
                const std::array<double, 3> &origin, const std::vector<std::string> &names) {
  if (values.ndim() != 4) throw std::invalid_argument("values must have shape (nvar, nz, ny, nx)");
  const int nvar = axisCount(values.shape(0));
  const int nz = axisCount(values.shape(1));
  const int ny = axisCount(values.shape(2));
  const int nx = axisCount(values.shape(3));
  if (names.size() != static_cast<std::size_t>(nvar)) {
    throw std::invalid_argument("one name per variable is needed");
  }
  const long long nxyz = static_cast<long long>(nx) * ny * nz;
  if (nxyz * nvar > INT_MAX) throw std::invalid_argument("too many values for one image");
  if (const int rc = NUVOMallocImage(&image, static_cast<int>(nxyz), nvar); rc != 0) {
    throw LibraryError(rc, "image");
  }
  nuvo_grid &grid = *image.grid;
  grid.nx = nx;
  grid.ny = ny;
  grid.nz = nz;
  grid.nxy = nx * ny;
  grid.nxyz = static_cast<int>(nxyz);
  grid.sx = spacing[0];
  grid.sy = spacing[1];
  grid.sz = spacing[2];
  grid.ox = origin[0];
  grid.oy = origin[1];
  grid.oz = origin[2];
  image.nvar = nvar;
  image.nxyzv = static_cast<int>(nxyz * nvar);
  for (int iv = 0; iv < nvar; ++iv) {
    if (names[iv].size() > kNameMax) throw LibraryError(kNameTooLong, "variable " + names[iv]);
    std::memcpy(image.varName[iv], names[iv].c_str(), names[iv].size() + 1);
  }
  const double *in = values.data();
  for (int k = 0; k < image.nxyzv; ++k) image.var[k] = std::isnan(in[k]) ? NUVO_MISSING_VALUE : in[k];
  int verdict = 0;
  NUVOValidateImage(&image, 0, &verdict);
  if (verdict != 0) throw LibraryError(verdict, "image");
}

}  // namespace nuvo::python
