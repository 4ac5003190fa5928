// Files for the input tests: small GSLIB images and a point set to name in
// simulation inputs.
#pragma once

#include <sstream>
#include <string>

#include "tests/support/temp_folder.hpp"

namespace nuvo_test {

// GSLIB text image on a 2 x 2 x 1 grid with nvar variables v0, v1, ...
inline std::string gslibImage(int nvar) {
  std::ostringstream text;
  text << "2 2 1 1.0 1.0 1.0 0.0 0.0 0.0\n" << nvar << "\n";
  for (int iv = 0; iv < nvar; ++iv) text << 'v' << iv << '\n';
  for (int node = 0; node < 4; ++node) {
    for (int iv = 0; iv < nvar; ++iv) text << node % 2 << ' ';
    text << '\n';
  }
  return text.str();
}

inline constexpr char kPointSet[] = "2\n4\nx\ny\nz\nfacies\n0.5 0.5 0.5 1\n1.5 0.5 0.5 0\n";

}  // namespace nuvo_test
