// Groups of labelled conditioning nodes: the nodes of one variable that carry the
// same positive label, to be bound into one connected body.
#pragma once

#include <span>
#include <vector>

#include "nuvo_classofvalues.h"

namespace nuvo {

struct ConnectedGroup {
  int label = 0;
  int classId = 0;        // the class of values of every node of the group
  std::vector<int> node;  // grid nodes, increasing
};

// The groups of one variable, by increasing label, from its labels (0: none) and
// its merged conditioning values. Returns 0, -181 (labelled node without value),
// -185 (value in no class), -186 (one label, several classes) or -184 (a label
// at a single node).
int buildGroups(std::span<const int> label, std::span<const double> value,
                const nuvo_classOfValues &classes, std::vector<ConnectedGroup> *groups);

// The binding order of usage 2 (NUVOSimConnectivitySortGroup): positions into node.
std::vector<int> sortGroup(int connectivityType, int nx, int ny, std::span<const int> node);

}  // namespace nuvo
