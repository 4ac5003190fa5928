// What the command line checks around the library's own validation of a
// simulation input. The library accepts some inputs that give a silently wrong or
// lost result from the command line (no realization, every point dropped, an
// output overwriting an input, NaN copied into the realizations); these checks
// refuse them, or warn, naming the file or the section and field concerned.
#pragma once

#include <string>

#include "nuvo_siminput.h"

namespace nuvo::cli {

// Checks of the parameter file `path` as read, before anything is loaded: cell
// sizes, number of realizations, format strings of the outputs, outputs that
// collide with each other or with an input, and the memory the simulation grid
// needs. Relative names are taken from the parameter file's folder. Returns
// kSuccess or kInputError after reporting the first problem.
int checkParameters(const std::string &path, const nuvo_simInputASCII &ascii);

// Checks the values of the loaded images and point sets: NaN or infinity is
// refused with the file, the variable and the node or point. Returns kSuccess or
// kInputError after reporting.
int checkLoadedValues(const nuvo_simInputASCII &ascii, const nuvo_simInput &input);

// Warnings about what the library runs without a word: a manual search
// neighborhood of radius 0 (no neighbor: white noise) and several realizations
// with a seed increment of 0 (all the same). Prints them and returns their number.
int warnAboutParameters(const std::string &path, const nuvo_simInputASCII &ascii);

}  // namespace nuvo::cli
