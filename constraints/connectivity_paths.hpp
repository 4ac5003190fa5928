// Connecting paths of the connectivity constraints (usage 1 and 2): before each
// realization, the nodes of every group of labelled conditioning nodes are bound
// into one connected body by paths found in a reference image and pasted into
// the simulation grid as extra conditioning data.
//
// Reference and placement. The reference is the variable of the constraint's
// reference image, or variable v of the first training image ("_TI_"). Its
// geobodies are its nodes whose value lies in the class of the group. An
// external reference image with exactly the dimensions of the simulation grid is
// laid on the grid as it is. Otherwise (the training image, or an image of other
// dimensions) the group is laid on the reference with a translation drawn
// uniformly among those that keep the group's bounding box inside the reference.
// A translation is tried only when every node of the group falls on a reference
// node of the group's class; up to 4096 draws are made, and up to 8 of the
// translations passing that test are tried until every node of the group is
// bound. The translation is drawn anew in every realization, so the paths vary
// between realizations. The geobody used is the one the binding reaches: a grid node
// may carry the path when its translated reference node is in the group's class,
// and its own value is free (to be simulated) or already in that class; nodes
// left out by the mask, and data of another class, block the path. The nodes of
// the group themselves always belong to it.
//
// Binding. The nodes of a group are bound in random order (usage 1, a fresh
// shuffle per realization) or in the order of NUVOSimConnectivitySortGroup
// (usage 2). Each node after the first is linked to the body bound so far: a
// geodesic distance map grows from that body and another from the node, a
// meeting node is drawn uniformly among the nodes on a shortest linking path
// (where the two distances add up to the shortest length), and the walks back
// from it down both maps are joined into the path. The reference values along
// the path (taken through the same rescaling and normalisation as the training
// images) become conditioning data of the realization. A group that cannot be
// bound with any translation tried raises warning 50 (usage 1) or 51 (usage 2),
// pastes nothing and the simulation goes on.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "constraints/connectivity_groups.hpp"
#include "nuvo_image.h"
#include "nuvo_progress.h"
#include "nuvo_random.h"
#include "nuvo_siminput.h"

namespace nuvo {

class ConnectivityPaths {
 public:
  ConnectivityPaths() = default;
  ~ConnectivityPaths();
  ConnectivityPaths(const ConnectivityPaths &) = delete;
  ConnectivityPaths &operator=(const ConnectivityPaths &) = delete;

  // True when some variable of `si` has a connectivity constraint.
  static bool requested(const nuvo_simInput &si);

  // Builds the groups from the labels (si.nvar * nxyz, as filled by
  // NUVOSimIntegrateConditioningDataWithConnectivity) and the conditioned image
  // (values before normalisation), and the reference classes from `trainImage`
  // (rescaled, not yet normalised; ntrainImage entries) or the constraint's own
  // image. `entryFlag` (0 for fixed entries) tells the masked nodes. Returns 0 or -1.
  int prepare(const nuvo_simInput &si, std::span<const int> label, const nuvo_image &conditioned,
              const nuvo_image *trainImage, std::span<const signed char> entryFlag);

  // The one-variable image of the values pasted for variable v (on the
  // reference grid), for the driver to normalise like the training images; null
  // when v pastes no path.
  nuvo_image *pastedValues(int v);

  // True when some variable pastes paths in each realization.
  bool pastes() const;

  // Pastes the paths of one realization into `work` (values in simulation
  // units), marking each pasted entry fixed (0) in `entryFlag` (index v * nxyz + k).
  // Returns 0 or the callback's code after a warning.
  int paste(nuvo_image *work, std::span<signed char> entryFlag, nuvo_randContext *ctx,
            nuvo_progressMonitor *pm, nuvo_progressCallback callback);

  // The groups of variable v (empty without constraint), for the report.
  std::span<const ConnectedGroup> groups(int v) const;

 private:
  struct Variable {
    int usage = 0;
    int type = 0;
    std::vector<ConnectedGroup> groups;
    std::vector<std::vector<int>> order;  // usage 2: the binding order of each group
    int rnx = 0, rny = 0, rnz = 0;        // reference grid
    bool inPlace = false;                 // reference laid on the grid untranslated
    std::vector<std::int16_t> refClass;   // per reference node
    nuvo_image value{};                   // pasted values, one variable on the reference grid
    std::vector<std::int16_t> gridClass;  // per grid node, in the conditioned state
  };

  int prepareVariable(const nuvo_simInput &si, int v, std::span<const int> label,
                      const nuvo_image &conditioned, const nuvo_image *trainImage,
                      std::span<const signed char> entryFlag);
  bool bindGroup(const Variable &var, const ConnectedGroup &group, std::span<const int> order,
                 nuvo_randContext *ctx);
  bool bindAt(const Variable &var, const ConnectedGroup &group, std::span<const int> order, int sx,
              int sy, int sz, nuvo_randContext *ctx);

  std::vector<Variable> variable_;
  int nx_ = 0, ny_ = 0, nz_ = 0;
  // Scratch of one realization.
  std::vector<std::int16_t> grid_;  // classes of the grid nodes, pasted paths included
  std::vector<char> inside_, bound_;
  std::vector<int> body_, distanceBody_, distanceNode_, half1_, half2_, path_;
  std::vector<int> pasted_;  // nodes to paste for the group, and their reference nodes
  std::vector<int> pastedRef_;
};

}  // namespace nuvo
