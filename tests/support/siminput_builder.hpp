// A simulation input built in memory for the engine tests: the simulation image,
// one distance type per variable, then training images, conditioning data and a
// mask added one by one (each copied). The input owns everything and is freed
// with NUVOFreeSimInput at the end of the scope.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "nuvo_siminput.h"

namespace nuvo::test {

class SimInputBuilder {
 public:
  SimInputBuilder(const nuvo_image &simImage, const std::vector<int> &distanceType) {
    NUVOInitSimInput(&si);
    si.simImage = copyImage(simImage);
    si.nvar = simImage.nvar;
    si.distanceType = static_cast<int *>(std::calloc(distanceType.size(), sizeof(int)));
    for (std::size_t v = 0; v < distanceType.size(); ++v) si.distanceType[v] = distanceType[v];
  }
  ~SimInputBuilder() { NUVOFreeSimInput(&si); }
  SimInputBuilder(const SimInputBuilder &) = delete;
  SimInputBuilder &operator=(const SimInputBuilder &) = delete;

  SimInputBuilder &trainImage(const nuvo_image &ti) { return addTrainImage(&ti); }
  // A training image that is the simulation grid itself.
  SimInputBuilder &simGridAsTrainImage() { return addTrainImage(nullptr); }
  SimInputBuilder &dataImage(const nuvo_image &image) {
    EXPECT_EQ(NUVOCopyImage(&image, grow(si.dataImage, si.ndataImage)), 0);
    return *this;
  }
  SimInputBuilder &dataPointSet(const nuvo_pointSet &ps) {
    EXPECT_EQ(NUVOCopyPointSet(&ps, grow(si.dataPointSet, si.ndataPointSet)), 0);
    return *this;
  }
  SimInputBuilder &mask(const nuvo_image &mask) {
    si.maskImageFlag = 1;
    si.maskImage = copyImage(mask);
    return *this;
  }

  nuvo_simInput si;

 private:
  static nuvo_image *copyImage(const nuvo_image &image) {
    auto *copy = static_cast<nuvo_image *>(std::calloc(1, sizeof(nuvo_image)));
    EXPECT_EQ(NUVOCopyImage(&image, copy), 0);
    return copy;
  }
  // Appends a zeroed record to a counted array and returns it.
  template <typename T>
  static T *grow(T *&array, int &n) {
    array = static_cast<T *>(std::realloc(array, (n + 1) * sizeof(T)));
    array[n] = T{};
    return &array[n++];
  }
  SimInputBuilder &addTrainImage(const nuvo_image *ti) {
    int nflag = si.ntrainImage;
    *grow(si.simGridAsTiFlag, nflag) = ti == nullptr ? 1 : 0;
    nuvo_image *slot = grow(si.trainImage, si.ntrainImage);
    if (ti != nullptr) {
      EXPECT_EQ(NUVOCopyImage(ti, slot), 0);
    }
    return *this;
  }
};

}  // namespace nuvo::test
