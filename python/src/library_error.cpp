#include "library_error.hpp"

#include <pybind11/pybind11.h>

#include "run_files.hpp"

namespace nuvo::python {

namespace py = pybind11;

LibraryError::LibraryError(int rc, const std::string &where)
    : LibraryError(rc, runfile::libraryMessage(rc), where) {}

LibraryError::LibraryError(int rc, const std::string &message, const std::string &where)
    : std::runtime_error(where + ": " + message), code_(rc), message_(message), where_(where) {}

void registerLibraryError() {
  py::register_exception_translator([](std::exception_ptr failure) {
    try {
      if (failure) std::rethrow_exception(failure);
    } catch (const LibraryError &error) {
      const py::object type = py::module_::import("nuvosim.errors").attr("NuvoError");
      const py::object raised = type(error.code(), error.message(), error.where());
      PyErr_SetObject(type.ptr(), raised.ptr());
    }
  });
}

}  // namespace nuvo::python
