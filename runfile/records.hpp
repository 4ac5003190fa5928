// Owners of the library's records for the front ends (the command line, the Python
// module): each record is initialised on construction and freed by its NUVOFree...
// function on destruction.
#pragma once

#include "nuvo_image.h"
#include "nuvo_pointset.h"
#include "nuvo_sim.h"
#include "nuvo_siminput.h"

namespace nuvo {

template <typename Record, void (*init)(Record *), void (*release)(Record *)>
class Owned {
 public:
  Owned() { init(&record_); }
  ~Owned() { release(&record_); }
  Owned(const Owned &) = delete;
  Owned &operator=(const Owned &) = delete;

  Record *get() { return &record_; }
  const Record *get() const { return &record_; }
  Record *operator->() { return &record_; }
  const Record *operator->() const { return &record_; }

 private:
  Record record_;
};

using Image = Owned<nuvo_image, NUVOInitImage, NUVOFreeImage>;
using PointSet = Owned<nuvo_pointSet, NUVOInitPointSet, NUVOFreePointSet>;
using SimInputASCII = Owned<nuvo_simInputASCII, NUVOInitSimInputASCII, NUVOFreeSimInputASCII>;
using SimInput = Owned<nuvo_simInput, NUVOInitSimInput, NUVOFreeSimInput>;
using SimOutput = Owned<nuvo_simOutput, NUVOInitSimOutput, NUVOFreeSimOutput>;

}  // namespace nuvo
