// One realization: the node loop over a path, the pattern search at each node and
// the post-processing paths.
//
// The driver prepares a RealizationSetup once per simulation (working image with
// normalised values, training images, neighbourhoods, scan limits) and calls
// simulateRealization for each realization with the realization's path. Every
// path entry reseeds the random context with the base seed plus its position in
// the path, so an entry's draws never depend on what happened before it.
//
// With homothety or rotation (setup.transform set) the realization runs in its
// variable-transform form: the offsets of the gathered neighbours are taken into
// the training images' frame at each node (local_transform.hpp) before the scan,
// which is otherwise the same.
//
// An entry whose data event is empty (no informed neighbour), or larger than the
// training image it chose, takes its value from the marginal: a node of that
// training image drawn uniformly among those where the values to simulate are
// informed (up to 64 random draws, then the next usable node in node order).
// It is counted among the nodes from the marginal in the report. An empty data
// event is normal (the first nodes of an unconditional simulation have one), so
// it raises no warning; a data event larger than the training image means the
// neighbourhood is too large for it, and raises warning 38 once per realization
// (39 in post-processing).
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <vector>

#include "constraints/block_constraint.hpp"
#include "constraints/connectivity_pattern.hpp"
#include "constraints/probability_constraint.hpp"
#include "engine/local_transform.hpp"
#include "nuvo_image.h"
#include "nuvo_progress.h"
#include "nuvo_searchneighborhood.h"
#include "nuvo_siminput.h"
#include "parallel/path_schedule.hpp"

namespace nuvo {

// Settings of one kind of path: the initial path or the post-processing paths.
struct PathSettings {
  std::vector<int> maxNodes;         // per variable: largest data event
  std::vector<double> invThreshold;  // per variable: 1 / distance threshold
  std::vector<int> maxScan;          // per training image t and variable v, at t * nvar + v
  double tolerance = 0.0;            // errors above it flag the entry for post-processing
};

// Everything a realization reads, prepared once per simulation.
struct RealizationSetup {
  int nvar = 0;
  bool vectorMode = false;                    // SIM_VARIABLE_VECTOR
  std::vector<const nuvo_image *> ti;         // per training image
  std::vector<char> simGridAsTi;              // per training image: 1 for the simulation grid
  const nuvo_image *pdfTrainImage = nullptr;  // with two or more training images
  std::vector<const nuvo_searchNeighborhood *> neighborhood;  // per variable
  std::vector<char> uniformWeights;                           // per variable
  std::vector<int> distanceType;                              // per variable
  std::vector<char> relativeDistance;                         // per variable
  std::vector<double> conditioningWeight;                     // per variable
  std::vector<double> power, invPower;                        // per variable (L-p distance)
  PathSettings initial, postProcessing;
  int npostProcessingPathMax = 0;
  const LocalTransform *transform = nullptr;  // homothety and rotation, when in use
  // Threads of the node loop (see pathThreads), and where to add up how long
  // they waited for one another, when wanted.
  int nthread = 1;
  WaitCounters *waitTotals = nullptr;
  // Probability constraints, when some variable has one. Not read-only: the
  // realization keeps their running counts and grid classes up to date.
  ProbabilityConstraints *probability = nullptr;
  // Block data, when some variable has them; their running sums change likewise.
  BlockConstraints *blocks = nullptr;
  // Connectivity patterns of labels, when some variable has one; the realization
  // keeps the labels of the grid up to date.
  ConnectivityPattern *pattern = nullptr;

  // Variable v's probability constraint, or null.
  ProbabilityConstraint *constraint(int v) const {
    return probability == nullptr ? nullptr : probability->of(v);
  }
  // Variable v's block data, or null.
  BlockConstraint *blockConstraint(int v) const {
    return blocks == nullptr ? nullptr : blocks->of(v);
  }

  // Categorical variables compared on one-byte codes: categories[v] holds the
  // sorted training values of a coded variable (empty for the others), and
  // tiCode[t * nvar + v] the code of every node of training image t: the index of
  // its value in categories[v], or kMissingCode, then kCodePadding missing codes.
  // It is empty where the variable is not coded or the training image is the
  // simulation grid, whose values change as it is simulated.
  std::vector<std::vector<double>> categories;
  std::vector<std::vector<std::int8_t>> tiCode;
  // Beside each tiCode, the number of its nodes holding each code.
  std::vector<std::vector<int>> codeCount;
  // Beside each tiCode of a 3D training image with at most 15 categories, its
  // packed image, packedFieldBits(categories[v].size()) bits per node
  // (packed_event.hpp); empty otherwise.
  std::vector<std::vector<std::uint8_t>> tiPacked;

  // The codes of variable v in training image t, or null when it is not coded.
  const std::int8_t *codes(int t, int v) const {
    if (tiCode.empty()) return nullptr;
    const std::vector<std::int8_t> &c = tiCode[static_cast<std::size_t>(t) * nvar + v];
    return c.empty() ? nullptr : c.data();
  }
  // The packed codes of variable v in training image t, or null.
  const std::uint8_t *packedCodes(int t, int v) const {
    if (tiPacked.empty()) return nullptr;
    const std::vector<std::uint8_t> &c = tiPacked[static_cast<std::size_t>(t) * nvar + v];
    return c.empty() ? nullptr : c.data();
  }
};

inline constexpr std::int8_t kMissingCode = -1;
inline constexpr std::int8_t kForeignCode = -2;  // a data value met in no training image
// Missing codes past the end of every code image, so that a group of
// CodedEvent::kGroupBytes bytes may be read from any of its nodes.
inline constexpr int kCodePadding = 15;

// Codes the categorical variables with at most 127 categories (`categories` per
// variable, empty for a variable not to code) and fills setup.categories,
// setup.tiCode, setup.codeCount and setup.tiPacked.
void codeCategories(RealizationSetup &setup, std::vector<std::vector<double>> categories);

// The code of `value` for coded variable v.
std::int8_t categoryCode(const RealizationSetup &setup, int v, double value);

// The additional maps of the realization (null when not asked for): one variable
// per simulated variable in one-by-one mode, one in vector mode.
struct RealizationMaps {
  nuvo_image *pathIndex = nullptr;
  nuvo_image *error = nullptr;
  nuvo_image *tiGridNodeIndex = nullptr;
  nuvo_image *tiIndex = nullptr;
};

// The largest number of candidates scanned per node, for each training image and
// variable: the image's node count times its scan fraction, scaled up by the
// share of informed nodes of the variable, at least 1.
std::vector<int> maxScanTable(const RealizationSetup &setup, std::span<const double> fraction);

// The number of threads that run the paths of a realization: setup.nthread,
// except 1 when a training image is the simulation grid (its values are read
// anywhere in the grid while being written, so no order of the entries can be
// kept), with block data (every simulated value goes into its blocks' running
// sums, which every entry of the block reads) and with a connectivity pattern of
// labels (the labels grow with every simulated body).
int pathThreads(const RealizationSetup &setup);

// Simulates the entries of `path` (indices v * nxyz + k in one-by-one mode, node
// indices k in vector mode) into `sim`, whose other entries hold the conditioning.
// `toSimulate` has one flag per variable and node (v * nxyz + k): 1 for the
// entries simulated in this realization. Returns 0, -1 or the code of the
// progress callback / -1000.
int simulateRealization(const RealizationSetup &setup, nuvo_image *sim,
                        std::span<const signed char> toSimulate, std::span<const int> path,
                        int baseSeed, const RealizationMaps &maps, FILE *report,
                        nuvo_progressMonitor *pm, nuvo_progressCallback callback);

}  // namespace nuvo
