#include "engine/sim_report.hpp"

#include <string>

namespace nuvo {

void writeParameterDetails(FILE *r, const nuvo_simInput &si, const nuvo_simSearchNeighborhoods &nb,
                           const PreparedData &prepared, const PathCounts &c,
                           const ConnectivityPaths &connectivity) {
  const char *indent = "   ";
  const std::string rule(80, '=');
  const nuvo_grid &g = *si.simImage->grid;
  std::fprintf(r, "%s\n---PARAMETERS DETAILS---\n", rule.c_str());
  std::fprintf(r, "Number of variable(s): %3d\n", si.nvar);
  std::fprintf(r, "Number of TI(s): %3d\n", si.ntrainImage);
  std::fprintf(r, "Dimension of simulation grid: %6d x %6d x %6d = %8d nodes\n", g.nx, g.ny, g.nz,
               g.nxyz);
  for (int t = 0; t < si.ntrainImage; ++t) {
    const nuvo_grid &tg = si.simGridAsTiFlag[t] ? g : *si.trainImage[t].grid;
    std::fprintf(r, "Dimension of TI %d: %6d x %6d x %6d = %8d nodes\n", t, tg.nx, tg.ny, tg.nz,
                 tg.nxyz);
  }
  std::fprintf(r, "Number of search neighborhood: %3d\n", nb.nsearchNeighborhood);
  for (int k = 0; k < nb.nsearchNeighborhood; ++k) {
    std::fprintf(r, "Search neighborhood %3d\n", k);
    NUVOPrintSearchNeighborhood(&nb.searchNeighborhood[k], indent, r);
  }
  for (int v = 0; v < si.nvar; ++v) {
    std::fprintf(r, "Search neighborhood for variable %3d: %3d\n", v,
                 nb.searchNeighborhoodIndex[v]);
    std::fprintf(r, "searchNeighborhoodWeightUnifFlag for variable %3d: %3d\n", v,
                 nb.weightUnifFlag[v]);
  }
  for (int v = 0; v < si.nvar; ++v) {
    std::fprintf(r, "Conditioning for variable %d:\n", v);
    std::fprintf(r, "%sNumber of conditioning data: %8d\n", indent, prepared.variable[v].ndata);
    if (si.connectivity == nullptr || si.connectivity[v].connectivityConstraintUsage == 0) continue;
    const std::span<const ConnectedGroup> groups = connectivity.groups(v);
    std::fprintf(r, "%sNumber of group(s) of connected nodes: %8d\n", indent,
                 static_cast<int>(groups.size()));
    std::fprintf(r, "%s%s           #nodes  classId    label\n", indent, indent);
    for (std::size_t i = 0; i < groups.size(); ++i)
      std::fprintf(r, "%s%sGroup %2d:  %6d   %6d   %6d\n", indent, indent, static_cast<int>(i),
                   static_cast<int>(groups[i].node.size()), groups[i].classId, groups[i].label);
  }
  std::fprintf(r, "Number of nodes in SG with all variables informed (conditioning): %8d\n",
               prepared.nInformedAllVariables);
  std::fprintf(r, "Number of nodes in SG that will not be simulated (use of mask)  : %8d\n",
               prepared.nMasked);
  std::fprintf(r, "Simulation path type: %s\n",
               si.simAndPathParameters->simType == SIM_VARIABLE_VECTOR ? "SIM_VARIABLE_VECTOR"
                                                                       : "SIM_ONE_BY_ONE");
  std::fprintf(r, "%sSimulation path...   SIM_ONE_BY_ONE / SIM_VARIABLE_VECTOR\n", indent);
  std::fprintf(r, "%stotal length       : %14d   %14d\n", indent, c.notSimulated + c.simulated,
               g.nxyz);
  std::fprintf(r, "%snot to be simulated: %14d   %14d\n", indent, c.notSimulated,
               c.vectorNotSimulated);
  std::fprintf(r, "%sto be simulated    : %14d   %14d\n", indent, c.simulated, c.vectorSimulated);
  std::fprintf(r, "No use of pyramids (number of pyramids level: 0)\n%s\n", rule.c_str());
}

}  // namespace nuvo
