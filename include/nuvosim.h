/* NUVOSim: multiple-point geostatistical simulation on regular 3D grids.
 * The umbrella header: includes the header of every family. */
#ifndef NUVOSIM_H
#define NUVOSIM_H

#include "nuvo_blockdata.h"
#include "nuvo_classofvalues.h"
#include "nuvo_compare.h"
#include "nuvo_conditioning.h"
#include "nuvo_connectivity.h"
#include "nuvo_distancemap.h"
#include "nuvo_geobody.h"
#include "nuvo_error.h"
#include "nuvo_export.h"
#include "nuvo_grid.h"
#include "nuvo_image.h"
#include "nuvo_imagefile.h"
#include "nuvo_memory.h"
#include "nuvo_omp.h"
#include "nuvo_path.h"
#include "nuvo_pointset.h"
#include "nuvo_progress.h"
#include "nuvo_pyramid.h"
#include "nuvo_pyramidparams.h"
#include "nuvo_random.h"
#include "nuvo_searchneighborhood.h"
#include "nuvo_sim.h"
#include "nuvo_simandpath.h"
#include "nuvo_siminput.h"
#include "nuvo_simneighborhoods.h"
#include "nuvo_simtransform.h"
#include "nuvo_softprobability.h"
#include "nuvo_synthetic.h"
#include "nuvo_text.h"
#include "nuvo_variogram.h"
#include "nuvo_version.h"

#endif /* NUVOSIM_H */
