// A parameter file run through the library as `nuvosim run` runs it, from Python.
#pragma once

#include <pybind11/numpy.h>

#include <string>

namespace nuvo::python {

namespace py = pybind11;

// Reads the parameter file `path`, loads the files it names (relative names from
// the file's folder, which is the working directory while the library works),
// simulates without the GIL and returns the realizations as an array of shape
// (nrealization, nvar kept, nz, ny, nx), missing values as NaN.
// realization >= 0 runs realization `realization` of the file alone (seed
// + realization * seedIncrement, one realization). Without writeFiles no
// realization, map or report file is written; otherwise the files are written as
// the file says, and a run that fails or is stopped removes the files it wrote.
// `progress`: see ProgressBridge. `threads`: of the simulation, 0 for every
// hardware thread, 1 for the serial engine (the realizations are the same).
// Throws LibraryError, or the Python exception that stopped the run
// (KeyboardInterrupt on Ctrl-C).
py::array_t<double> runFile(const std::string &path, int realization, bool writeFiles,
                            py::object progress, int threads);

// The number of realizations of the parameter file `path`. Throws LibraryError.
int realizationCount(const std::string &path);

}  // namespace nuvo::python
