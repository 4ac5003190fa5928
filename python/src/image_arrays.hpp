// Images between the library and numpy: values as a C-ordered float64 array whose
// last three axes are (nz, ny, nx), with NaN where the library holds its missing
// value.
#pragma once

#include <pybind11/numpy.h>

#include <array>
#include <string>
#include <vector>

#include "nuvo_image.h"

namespace nuvo::python {

namespace py = pybind11;

using Values = py::array_t<double, py::array::c_style | py::array::forcecast>;

// A copy of all the values of `image` with the given shape (whose product is
// image.nxyzv), missing values as NaN.
py::array_t<double> imageValues(const nuvo_image &image, const std::vector<py::ssize_t> &shape);

// Builds the initialised `image` from values of shape (nvar, nz, ny, nx) (NaN for
// missing), cell sizes, origin and one name per variable, then validates it.
// Throws std::invalid_argument for a wrong shape or name count, LibraryError for
// what the library refuses (names too long or repeated, infinite values).
void buildImage(nuvo_image &image, const Values &values, const std::array<double, 3> &spacing,
                const std::array<double, 3> &origin, const std::vector<std::string> &names);

}  // namespace nuvo::python
