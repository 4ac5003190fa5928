// A failure of the library (its negative return code and message) on its way to
// Python, where it is raised as nuvosim.NuvoError.
#pragma once

#include <stdexcept>
#include <string>

namespace nuvo::python {

class LibraryError : public std::runtime_error {
 public:
  // `where` names what failed (a file, a parameter file line); rc is the library's code.
  LibraryError(int rc, const std::string &where);
  // The same with the text to show, when it says more than the code's message.
  LibraryError(int rc, const std::string &message, const std::string &where);

  int code() const { return code_; }
  const std::string &message() const { return message_; }
  const std::string &where() const { return where_; }

 private:
  int code_;
  std::string message_;
  std::string where_;
};

// Makes C++ LibraryError raise nuvosim.errors.NuvoError.
void registerLibraryError();

}  // namespace nuvo::python
