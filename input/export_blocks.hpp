// Writers of the per-variable blocks of the parameter file (probability,
// connectivity, block data and pyramid sections) from the records the
// simulation uses; the images and block data they hold go to data files.
#pragma once

#include "input/export_writer.hpp"
#include "nuvo_siminput.h"

namespace nuvo {

// Classes of values: nclass, then per class ninterval and its bounds on one line.
void exportClassOfValues(const ParameterFileWriter &w, const nuvo_classOfValues *c);

// Variable iv's sections of the given kind; a null record is written unused.
int exportSoftProbability(const ParameterFileWriter &w, const nuvo_softProbability *sp, int iv);
int exportConnectivity(const ParameterFileWriter &w, const nuvo_connectivity *c, int iv);
int exportBlockData(const ParameterFileWriter &w, const nuvo_blockData *bd, int iv);

// The pyramid general section (factors always explicit) and, when it has levels,
// the section of every variable.
void exportPyramids(const ParameterFileWriter &w, const nuvo_simInput &si);

}  // namespace nuvo
