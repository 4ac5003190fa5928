// Where in the parameter file a validation error of the library lies: the
// section (its heading in the exported file) and, for the lists given per
// variable or per training image, the item. The library's code tells the rule
// broken; the command line adds the place.
#pragma once

#include <string>

#include "nuvo_siminput.h"

namespace nuvo::cli {

// "SECTION" or "SECTION, variable NAME" / "SECTION, training image K" for the
// validation code `rc` (negative) of `input`; empty for a code of no known section.
std::string validationPlace(int rc, const nuvo_simInput &input);

}  // namespace nuvo::cli
