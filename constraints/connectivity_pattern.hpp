// The pattern of labels of the connectivity constraints (usage 3), checked while
// the realization is simulated.
//
// Reference. The first training image's geobodies: for each class of the
// constraint, the connected components of its nodes in that class under the
// constraint's neighbourhood, numbered from 1 (0 for a node in no class).
//
// Labels on the grid. Each realization starts from the labels of the
// conditioning data; a simulated node takes a label when the value copied there
// belongs, in the training image, to the same geobody as a labelled node of its
// data event (see assign), so the labelled bodies grow as they are simulated.
// A node simulated again by post-processing loses the label it took.
//
// Pattern error. At a node, the labelled nodes of the variable's data event are
// listed, closest first; for each label its first (closest) node is the lead.
// For a candidate location in the training image, the reference component under
// each listed node is looked up: a node is broken when it lies in no geobody,
// in a geobody of a class other than its label's, or in another geobody than
// its lead. The pattern error is the fraction of broken nodes, and the
// candidate's error gets max(0, error / threshold - 1), the same excess form as
// a variable's distance. So a candidate is accepted on its labels when at most
// `threshold` of the labelled nodes break the pattern: the wells that share a
// label sit in one body of the training image around that location. The term
// does not apply at a node without a labelled neighbour, nor while the farthest
// node of the data event is closer than the deactivation distance (in the units
// of the search neighborhood's distances).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "nuvo_image.h"
#include "nuvo_siminput.h"

namespace nuvo {

// The label term of one variable at one node, read for every candidate.
struct LabelTerm {
  int count = 0;
  const int *offset = nullptr;                   // training-image offsets of the labelled nodes
  const int *lead = nullptr;                     // per labelled node: the index of its lead
  const std::int16_t *cls = nullptr;             // per labelled node: the class of its label
  const int *component = nullptr;                // reference component of every training node
  const std::int16_t *componentClass = nullptr;  // per component: its class
  double scale = 0.0;                            // 1 / (count * threshold)

  double error(int tiNode) const { return errorOf(broken(tiNode)); }
  // The number of labelled nodes that break the pattern at a candidate.
  int broken(int tiNode) const {
    int n = 0;
    for (int i = 0; i < count; ++i) {
      const int c = component[tiNode + offset[i]];
      n += c == 0 || componentClass[c] != cls[i] || c != component[tiNode + offset[lead[i]]];
    }
    return n;
  }
  // The term of a candidate with `n` broken nodes.
  double errorOf(int n) const {
    const double e = n * scale - 1.0;
    return e > 0.0 ? e : 0.0;
  }
};

class ConnectivityPattern {
 public:
  // Prepares the variables with usage 3 from the labels (si.nvar * nxyz) of
  // NUVOSimIntegrateConditioningDataWithConnectivity, the conditioned image
  // (values before normalisation) and the training images (rescaled, not
  // normalised). Returns 0 or -1.
  int prepare(const nuvo_simInput &si, std::span<const int> label, const nuvo_image &conditioned,
              const nuvo_image *trainImage);
  bool empty() const { return active_.empty(); }

  void beginRealization();

  // The term of variable v at `node`, from its data event (grid nodes, their
  // training-image offsets, closest first) and the distance of its farthest
  // node; false when it does not apply.
  bool at(int v, int node, std::span<const int> eventNode, std::span<const int> tiOffset,
          double farthest, LabelTerm *term);
  // The value of training node tiNode was copied to `node` for variable v.
  void assign(int v, int node, int tiNode);
  // Post-processing empties `node` again.
  void clear(int v, int node);

 private:
  struct Variable {
    bool active = false;
    double deactivationDistance = 0.0;
    double threshold = 1.0;
    std::vector<int> component;                // per training node
    std::vector<std::int16_t> componentClass;  // per component
    std::vector<int> baseLabel, label;         // per grid node
    std::vector<std::int16_t> baseClass, cls;  // per grid node: the class of its label
    // The labelled nodes of the last data event.
    int node = -1;
    std::vector<int> offset, lead, labels;
    std::vector<std::int16_t> labelClass;
  };

  std::vector<Variable> variable_;
  std::vector<int> active_;  // the variables with usage 3 and labels
};

}  // namespace nuvo
