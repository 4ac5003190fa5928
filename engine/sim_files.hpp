// Where the realizations go: the images of nuvo_simOutput and the GSLIB files the
// input asks for.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "engine/owned.hpp"
#include "engine/realization.hpp"
#include "nuvo_sim.h"
#include "nuvo_siminput.h"

namespace nuvo {

class OutputWriter {
 public:
  // Allocates the per-realization maps, and the images of `out` unless the
  // input's consoleAppFlag is set. Returns 0 or -1.
  int prepare(const nuvo_simInput &si, nuvo_simOutput *out);
  // Resets the maps to missing values before realization r.
  void startRealization(int r);
  const RealizationMaps &maps() const { return maps_; }
  // Writes the files of realization r and copies it into the output images.
  // Returns 0, -110 or -1.
  int finishRealization(int r, const nuvo_image &sim);
  // Writes the files holding all realizations. Returns 0, -110 or -1.
  int finish();

 private:
  struct Map {
    const char *baseName = nullptr;
    bool on = false;
    const char *filePrefix = nullptr;
    OwnedImage realization;     // this realization's map
    nuvo_image *all = nullptr;  // all realizations (in out), or null
  };

  int writeFile(const nuvo_image &image, const std::string &format, const std::string &name) const;
  int nameRealizationMaps(int r);
  std::string keptFormat(int j) const;

  const nuvo_simInput *si_ = nullptr;
  nuvo_simOutput *out_ = nullptr;
  std::vector<int> kept_;   // variables written out, increasing
  int mapVars_ = 0;         // map variables per realization
  std::array<Map, 4> map_;  // path index, error, TI grid node index, TI index
  RealizationMaps maps_;
  OwnedImage ownCollector_;          // all realizations when out does not hold them
  nuvo_image *collector_ = nullptr;  // kept variables of all realizations, or null
  OwnedImage keptImage_;             // kept variables of one realization
};

}  // namespace nuvo
