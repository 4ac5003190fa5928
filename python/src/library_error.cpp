#include "library_error.hpp"

#include <pybind11/pybind11.h>

#include "nuvo_error.h"

namespace nuvo::python {

namespace py = pybind11;

namespace {

// The library's text of the code rc, without its line end.
std::string messageOf(int rc) {
  std::string text = NUVOGetErrorMessage(-rc);
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

}  // namespace

LibraryError::LibraryError(int rc, const std::string &where)
    : std::runtime_error(where + ": " + messageOf(rc)), code_(rc), message_(messageOf(rc)),
      where_(where) {}

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
