// Realizations of a few standard cases pinned by a checksum of their values (the
// cases under probability constraints are pinned with their other tests).
//
// Speed work on the engine must leave every realization bit-identical; a change
// of these checksums is a deliberate decision, to be explained in the commit
// that updates them.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>

#include "channel_simulation.hpp"
#include "nuvo_sim.h"
#include "nuvo_synthetic.h"
#include "tests/data/data_builders.hpp"
#include "tests/support/checksum.hpp"

namespace {

namespace fs = std::filesystem;
using nuvo_test::checksum;
using nuvo_test::require;

class PinnedRealizations : public nuvo_test::InMemorySimulation {
 protected:
  // The valid input of the builder on `ti`, with an nx x ny x nz simulation grid,
  // written to memory only, two realizations.
  void build(const nuvo_image &ti, int nx, int ny, int nz, double radius, int nneighbor) {
    nuvo_test::buildOnGrid(&si_, ti, nx, ny, nz, radius);
    si_.outputSimJob = OUTPUT_SIM_NO_FILE;
    si_.nneighboringNode[0] = nneighbor;
    si_.seed = 1234;
    si_.nrealization = 2;
  }

  // The 3D case: a 20 x 20 x 8 grid from a 30 x 30 x 10 lens image in `ti`.
  void buildLenses(nuvo_image *ti) {
    require(NUVOGenerateLensImage(ti, 30, 30, 10, 2));
    build(*ti, 20, 20, 8, 4.0, 24);
    si_.maxScanFraction[0] = 0.2;
  }

  std::uint64_t simulatedChecksum() {
    EXPECT_EQ(simulate(), 0);
    return out_.outputSimImage != nullptr ? checksum(*out_.outputSimImage) : 0;
  }

  // The checksum of the error and training-image node maps, with a threshold
  // that leaves errors above 0 (the maps are written to temporary files too).
  std::uint64_t scanOutcome() {
    const fs::path dir = fs::temp_directory_path();
    si_.outputErrorFlag = 1;
    si_.outputErrorFileName = nuvo_test::ownedText((dir / "nuvo_pinned_error").c_str());
    si_.outputTiGridNodeIndexFlag = 1;
    si_.outputTiGridNodeIndexFileName = nuvo_test::ownedText((dir / "nuvo_pinned_tinode").c_str());
    si_.distanceThreshold[0] = 0.02;
    EXPECT_EQ(simulate(), 0);
    if (out_.outputErrorImage == nullptr || out_.outputTiGridNodeIndexImage == nullptr) return 0;
    return checksum(*out_.outputErrorImage) ^ checksum(*out_.outputTiGridNodeIndexImage);
  }
};

using OwnedImage = nuvo::test::EmptyImage;

TEST_F(PinnedRealizations, Channels2D) {
  OwnedImage ti;
  require(NUVOGenerateChannelImage(&ti.image, 80, 80, 1, 0.3, 5.0, 2));
  build(ti.image, 50, 50, 1, 8.0, 30);
  EXPECT_EQ(simulatedChecksum(), 0x9dea27bc289a3ac5ull);
}

TEST_F(PinnedRealizations, Channels2DConditioned) {
  OwnedImage ti, reference;
  require(NUVOGenerateChannelImage(&ti.image, 80, 80, 1, 0.3, 5.0, 2));
  require(NUVOGenerateChannelImage(&reference.image, 50, 50, 1, 0.3, 5.0, 7));
  build(ti.image, 50, 50, 1, 8.0, 30);
  nuvo::test::EmptyPointSet points;
  require(NUVOSampleImage(&reference.image, 40, 3, &points.ps));
  nuvo_test::addDataPointSet(&si_, points.ps);
  si_.simAndPathParameters->pathType = PATH_RANDOM_HD_DISTANCE_PDF;
  si_.simAndPathParameters->strength = 0.5;
  EXPECT_EQ(simulatedChecksum(), 0x59dbe8ff34e32b05ull);
}

TEST_F(PinnedRealizations, Lenses3D) {
  OwnedImage ti;
  buildLenses(&ti.image);
  EXPECT_EQ(simulatedChecksum(), 0x4132a2aada25ae45ull);
}

// The pattern search's outcome at every node, the error and the training-image
// node chosen, on a 3D case whose errors are often above 0.
TEST_F(PinnedRealizations, ScanOutcomeMaps) {
  OwnedImage ti;
  buildLenses(&ti.image);
  EXPECT_EQ(scanOutcome(), 0xe0c5c77138e650edull);
}

TEST_F(PinnedRealizations, ContinuousField) {
  OwnedImage ti;
  require(NUVOGenerateContinuousImage(&ti.image, 50, 50, 1, 6.0, 4));
  build(ti.image, 30, 30, 1, 5.0, 16);
  si_.distanceType[0] = 2;
  si_.distanceThreshold[0] = 0.05;
  si_.postProcessingDistanceThreshold[0] = 0.05;
  EXPECT_EQ(simulatedChecksum(), 0x7eba484d6d7e01d8ull);
}

}  // namespace
