// The multithreaded family against the serial one: the same realizations, maps
// and files for every number of threads, the entry checks of NUVOOMPSim, and the
// multithreaded distance map, guided paths and pyramid operators.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "nuvo_distancemap.h"
#include "nuvo_omp.h"
#include "nuvo_path.h"
#include "nuvo_pyramid.h"
#include "nuvo_synthetic.h"
#include "parallel/omp_warnings.hpp"
#include "tests/constraints/test_files.hpp"
#include "tests/data/data_builders.hpp"
#include "tests/engine/channel_simulation.hpp"
#include "tests/support/random.hpp"
#include "tests/support/warning_recorder.hpp"

namespace {

using nuvo_test::require;
using nuvo_test::valuesOf;
using OwnedImage = nuvo::test::EmptyImage;

// The realizations and maps of one run, as written to files.
struct Outputs {
  std::string sim, pathIndex, error, tiNode, tiIndex;
  bool operator==(const Outputs &) const = default;
};

// A valid input on `ti` over an nx x ny x nz grid of missing values, two
// realizations, every map asked for, post-processing with tolerance 0.
void build(nuvo_simInput *si, const nuvo_image &ti, int nx, int ny, int nz, double radius) {
  nuvo_test::buildOnGrid(si, ti, nx, ny, nz, radius);
  si->outputPathIndexFlag = si->outputErrorFlag = 1;
  si->outputTiGridNodeIndexFlag = si->outputTiIndexFlag = 1;
  si->nrealization = 2;
  si->seed = 77;
}

struct Case {
  const char *name;
  std::function<void(nuvo_simInput *)> configure;
};

void PrintTo(const Case &c, std::ostream *os) {
  *os << c.name;
}

void channels(nuvo_simInput *si) {
  OwnedImage ti;
  require(NUVOGenerateChannelImage(&ti.image, 60, 60, 1, 0.3, 5.0, 2));
  build(si, ti.image, 48, 48, 1, 6.0);
}

void conditionedLenses(nuvo_simInput *si) {
  OwnedImage ti, reference;
  require(NUVOGenerateContinuousImage(&ti.image, 24, 24, 8, 4.0, 4));
  require(NUVOGenerateContinuousImage(&reference.image, 16, 16, 9, 4.0, 9));
  build(si, ti.image, 16, 16, 9, 3.0);
  si->distanceType[0] = 2;
  si->distanceThreshold[0] = si->postProcessingDistanceThreshold[0] = 0.05;
  si->maxScanFraction[0] = 0.2;
  nuvo::test::EmptyPointSet points;
  require(NUVOSampleImage(&reference.image, 60, 3, &points.ps));
  nuvo_test::addDataPointSet(si, points.ps);
}

// The conditioned lenses on a path guided by the data.
template <int type>
void guidedLenses(nuvo_simInput *si) {
  conditionedLenses(si);
  si->simAndPathParameters->pathType = type;
  si->simAndPathParameters->strength = 0.7;
  si->simAndPathParameters->pow = 2.0;
}

void unilateral(nuvo_simInput *si) {
  channels(si);
  nuvo_simAndPathParameters &p = *si->simAndPathParameters;
  p.pathType = PATH_UNILATERAL;
  p.nunilateralOrder = 4;
  std::free(p.unilateralOrder);
  p.unilateralOrder = valuesOf<int>({0, 1, 2, 0});
}

void rotated(nuvo_simInput *si) {
  channels(si);
  nuvo_test::setRotation(si, 1, {30.0, 0.0}, {0.0, 0.0}, {0.0, 0.0});
}

// Channels (sand 1, background 0) under a probability constraint, as `usage`:
// a local trend across x counted over the whole neighbourhood, or a global
// target.
void sand(nuvo_simInput *si, int usage) {
  channels(si);
  nuvo_softProbability &sp = si->softProbability[0];
  NUVOFreeSoftProbability(&sp);
  sp.probabilityConstraintUsage = usage;
  sp.classOfValues = nuvo_test::newClasses("2  1 -0.5 0.5  1 0.5 1.5");
  sp.comparingPdfMethod = NUVO_COMPARING_PDF_MAE;
  sp.constantThreshold = 0.05;
  if (usage == NUVO_PROBABILITY_CONSTRAINT_GLOBAL) {
    sp.globalPdf = valuesOf<double>({0.5, 0.5});
    return;
  }
  sp.localPdfImage = nuvo_test::initialisedRecords<nuvo_image>(1, NUVOInitImage);
  require(
      nuvo_test::makeImage(sp.localPdfImage, 48, 48, 1, {"p0", "p1"}, [](int x, int, int, int iv) {
        const double p = 0.1 + 0.015 * x;
        return iv == 1 ? p : 1.0 - p;
      }));
  sp.localPdfSupportRadius = valuesOf<double>({4.0});
  sp.localCurrentPdfComputation = NUVO_LOCAL_CURRENT_PDF_COMPLETE;
}

const Case kCases[] = {
    {"ChannelsRandom", channels},
    {"LensesConditionedPdf", guidedLenses<PATH_RANDOM_HD_DISTANCE_PDF>},
    {"LensesConditionedSort", guidedLenses<PATH_RANDOM_HD_DISTANCE_SORT>},
    {"LensesConditionedSumPdf", guidedLenses<PATH_RANDOM_HD_DISTANCE_SUM_PDF>},
    {"LensesConditionedSumSort", guidedLenses<PATH_RANDOM_HD_DISTANCE_SUM_SORT>},
    {"ChannelsUnilateral", unilateral},
    {"ChannelsRotated", rotated},
    {"ChannelsLocalProbability",
     [](nuvo_simInput *si) { sand(si, NUVO_PROBABILITY_CONSTRAINT_LOCAL); }},
};

class SimulationFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char *name : {"sim", "path", "error", "tinode", "tiindex"})
      names_.push_back(folder_.file(name));
  }

  // Runs the case serially (nthread 0) or on nthread threads.
  Outputs run(const Case &c, int nthread) {
    nuvo_simInput si;
    NUVOInitSimInput(&si);
    c.configure(&si);
    std::snprintf(si.outputSimImageFileName[0], NUVO_FILE_NAME_MAX + 1, "%s", names_[0].c_str());
    si.outputPathIndexFileName = nuvo_test::ownedText(names_[1].c_str());
    si.outputErrorFileName = nuvo_test::ownedText(names_[2].c_str());
    si.outputTiGridNodeIndexFileName = nuvo_test::ownedText(names_[3].c_str());
    si.outputTiIndexFileName = nuvo_test::ownedText(names_[4].c_str());
    nuvo_simOutput out;
    NUVOInitSimOutput(&out);
    EXPECT_EQ(nthread == 0 ? NUVOSim(&si, &out, nullptr, nullptr)
                           : NUVOOMPSim(&si, &out, nullptr, nullptr, nthread),
              0);
    NUVOFreeSimOutput(&out);
    NUVOFreeSimInput(&si);
    const auto real = [&](int i, int r) {
      return nuvo_test::fileText(names_[i] +
                                 (i == 0 ? "" : "_real0000" + std::to_string(r) + ".gslib"));
    };
    return {real(0, 0), real(1, 1), real(2, 1), real(3, 1), real(4, 1)};
  }

  nuvo_test::TempFolder folder_;
  std::vector<std::string> names_;
};

class ThreadedSimulation : public SimulationFiles, public ::testing::WithParamInterface<Case> {};

TEST_P(ThreadedSimulation, FilesIdenticalToSerialForAnyThreadCount) {
  const Outputs serial = run(GetParam(), 0);
  ASSERT_FALSE(serial.sim.empty());
  ASSERT_FALSE(serial.error.empty());
  for (int nthread = 1; nthread <= 4; ++nthread)
    EXPECT_TRUE(run(GetParam(), nthread) == serial) << nthread << " threads";
}

// The global constraint's counts are merged at checkpoints: the same result
// for the same number of threads, another than the serial one.
TEST_F(SimulationFiles, GlobalProbabilityRepeatsForAThreadCount) {
  const Case global{"", [](nuvo_simInput *si) { sand(si, NUVO_PROBABILITY_CONSTRAINT_GLOBAL); }};
  const Outputs serial = run(global, 0);
  EXPECT_TRUE(run(global, 1) == serial);
  for (int nthread : {2, 3}) {
    const Outputs first = run(global, nthread);
    EXPECT_TRUE(run(global, nthread) == first) << nthread << " threads";
    EXPECT_FALSE(first.sim == serial.sim) << nthread << " threads";
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, ThreadedSimulation, ::testing::ValuesIn(kCases),
                         [](const auto &param) { return std::string(param.param.name); });

TEST(OmpSim, ChecksThreadsFirstNamesThemAndWarnsInOrder) {
  OwnedImage ti;
  require(NUVOGenerateChannelImage(&ti.image, 40, 40, 1, 0.3, 5.0, 2));
  nuvo_test::OwnedSimInput input;
  nuvo_simInput *si = &input.si;
  nuvo_test::buildValidSimInput(si, ti.image);
  const nuvo_test::TempFolder folder;
  const std::string report = folder.file("report.txt");
  std::snprintf(si->outputReportFileName, NUVO_FILE_NAME_MAX + 1, "%s", report.c_str());
  si->outputSimJob = OUTPUT_SIM_NO_FILE;
  nuvo_simOutput out;
  NUVOInitSimOutput(&out);
  EXPECT_EQ(NUVOOMPSim(si, &out, nullptr, nullptr, 0), -99);
  EXPECT_EQ(NUVOOMPSim(si, &out, nullptr, nullptr, -3), -99);
  EXPECT_FALSE(std::filesystem::exists(report));

  EXPECT_EQ(NUVOOMPSim(si, &out, nullptr, nullptr, 3), 0);
  const std::string text = nuvo_test::fileText(report);
  EXPECT_EQ(text.substr(text.find('\n') + 1, 27), "VERSION: OPENMP: 3 threads\n");
  NUVOFreeSimOutput(&out);
}

TEST(OmpSim, ReproducibilityWarningsInOrder) {
  signed char simGridAsTi[] = {0, 1};
  nuvo_softProbability sp;
  NUVOInitSoftProbability(&sp);
  sp.probabilityConstraintUsage = NUVO_PROBABILITY_CONSTRAINT_GLOBAL;
  nuvo_blockData bd;
  NUVOInitBlockData(&bd);
  bd.blockDataUsage = NUVO_BLOCK_DATA_MEAN;
  nuvo_simInput si;
  NUVOInitSimInput(&si);
  si.nvar = 1;
  si.ntrainImage = 2;
  si.simGridAsTiFlag = simGridAsTi;
  si.softProbability = &sp;
  si.blockData = &bd;
  nuvo::test::WarningRecorder recorder;
  const auto callback = nuvo::test::WarningRecorder::callback;
  EXPECT_EQ(nuvo::reportReproducibilityWarnings(si, &recorder.pm, callback), 0);
  EXPECT_EQ(recorder.warnings(), (std::vector<int>{100, 111, 115}));

  // Without the first two, only the last; a non-zero answer stops there.
  simGridAsTi[1] = 0;
  sp.probabilityConstraintUsage = NUVO_PROBABILITY_CONSTRAINT_LOCAL;
  nuvo::test::WarningRecorder refusing;
  refusing.answer = 7;
  EXPECT_EQ(nuvo::reportReproducibilityWarnings(si, &refusing.pm, callback), 7);
  EXPECT_EQ(refusing.warnings(), std::vector<int>{115});
}

constexpr int kNx = 23, kNy = 17, kNz = 9, kNvar = 2;
constexpr int kNxyz = kNx * kNy * kNz;

// Entry flags of kNvar variables: a scatter of informed entries (0).
std::vector<signed char> flags() {
  std::vector<signed char> f(kNxyz * kNvar, 1);
  for (int i = 0; i < kNxyz * kNvar; i += 37) f[i] = 0;
  return f;
}

TEST(OmpOperators, DistanceMapAndGuidedPathsMatchSerial) {
  const nuvo_grid grid{kNx, kNy, kNz, 1.0, 2.0, 0.5, 0.0, 0.0, 0.0, kNx * kNy, kNxyz};
  const std::vector<signed char> f = flags();
  std::vector<double> serial(kNxyz), threaded(kNxyz);
  ASSERT_EQ(NUVOEuclideanDistanceMap(&grid, f.data(), serial.data()), 0);
  for (int nthread : {1, 2, 3, 4}) {
    ASSERT_EQ(NUVOOMPEuclideanDistanceMap(&grid, f.data(), threaded.data(), nthread), 0);
    EXPECT_EQ(threaded, serial) << nthread << " threads";
  }
  EXPECT_EQ(NUVOOMPEuclideanDistanceMap(&grid, f.data(), threaded.data(), 0), -99);

  std::vector<int> entries;
  for (int e = 0; e < kNxyz; ++e)
    if (f[e] != 0) entries.push_back(e);
  const int n = static_cast<int>(entries.size());
  const auto order = [&](auto run) {
    std::vector<int> path = entries;
    nuvo_randContext ctx = nuvo_test::seededContext(5);
    EXPECT_EQ(run(path.data(), &ctx), 0);
    return path;
  };
  // A path on 3 threads against its serial twin; `power` for the summed forms.
  const auto compare = [&](auto serialPath, auto threadedPath, auto... power) {
    const auto reference = order([&](int *p, nuvo_randContext *ctx) {
      return serialPath(n, p, f.data(), kNx, kNy, kNz, kNvar, 1.0, 2.0, 0.5, 0.6, power..., ctx);
    });
    EXPECT_NE(reference, entries);
    EXPECT_EQ(order([&](int *p, nuvo_randContext *ctx) {
                return threadedPath(n, p, f.data(), kNx, kNy, kNz, kNvar, 1.0, 2.0, 0.5, 0.6,
                                    power..., ctx, 3);
              }),
              reference);
  };
  for (const auto &[serialPath, threadedPath] :
       {std::pair{&NUVOPathDistancePdfRandom, &NUVOOMPPathDistancePdfRandom},
        std::pair{&NUVOPathDistanceSortRandom, &NUVOOMPPathDistanceSortRandom},
        std::pair{&NUVOVectorPathDistancePdfRandom, &NUVOOMPVectorPathDistancePdfRandom},
        std::pair{&NUVOVectorPathDistanceSortRandom, &NUVOOMPVectorPathDistanceSortRandom}})
    compare(serialPath, threadedPath);
  for (const auto &[serialPath, threadedPath] :
       {std::pair{&NUVOPathDistanceSumPdfRandom, &NUVOOMPPathDistanceSumPdfRandom},
        std::pair{&NUVOPathDistanceSumSortRandom, &NUVOOMPPathDistanceSumSortRandom},
        std::pair{&NUVOVectorPathDistanceSumPdfRandom, &NUVOOMPVectorPathDistanceSumPdfRandom},
        std::pair{&NUVOVectorPathDistanceSumSortRandom, &NUVOOMPVectorPathDistanceSumSortRandom}})
    compare(serialPath, threadedPath, 1.5);
}

TEST(OmpOperators, PyramidReduceAndExpandMatchSerial) {
  std::vector<double> in(kNxyz);
  for (int i = 0; i < kNxyz; ++i)
    in[i] = i % 11 == 0 ? NUVO_MISSING_VALUE : std::sin(0.1 * i) + 0.01 * (i % 7);
  std::vector<double> w(3);
  ASSERT_EQ(NUVOPyramidWeight(2, 0.4, w.data()), 0);
  const int dims[3] = {kNx, kNy, kNz};
  int nOut[3], shift[3];
  for (int a = 0; a < 3; ++a)
    ASSERT_EQ(NUVOPyramidReduceDimension(dims[a], 2, &nOut[a], &shift[a]), 0);
  const std::size_t size = static_cast<std::size_t>(nOut[0]) * nOut[1] * nOut[2];
  std::vector<double> out(size), weight(size), outOmp(size), weightOmp(size);
  ASSERT_EQ(NUVOPyramidReduce(in.data(), kNx, kNy, kNz, 2, 2, 2, w.data(), w.data(), w.data(),
                              shift[0], shift[1], shift[2], nOut[0], nOut[1], nOut[2], out.data(),
                              weight.data(), 0.6),
            0);
  ASSERT_EQ(NUVOOMPPyramidReduce(in.data(), kNx, kNy, kNz, 2, 2, 2, w.data(), w.data(), w.data(),
                                 shift[0], shift[1], shift[2], nOut[0], nOut[1], nOut[2],
                                 outOmp.data(), weightOmp.data(), 0.6, 3),
            0);
  EXPECT_EQ(outOmp, out);
  EXPECT_EQ(weightOmp, weight);

  int nFine[3];
  for (int a = 0; a < 3; ++a) ASSERT_EQ(NUVOPyramidExpandDimension(nOut[a], 2, &nFine[a]), 0);
  const std::size_t fine = static_cast<std::size_t>(nFine[0]) * nFine[1] * nFine[2];
  std::vector<double> up(fine), upWeight(fine), upOmp(fine), upWeightOmp(fine);
  ASSERT_EQ(
      NUVOPyramidExpand(out.data(), nOut[0], nOut[1], nOut[2], 2, 2, 2, w.data(), w.data(),
                        w.data(), nFine[0], nFine[1], nFine[2], up.data(), upWeight.data(), 0.5),
      0);
  ASSERT_EQ(NUVOOMPPyramidExpand(out.data(), nOut[0], nOut[1], nOut[2], 2, 2, 2, w.data(), w.data(),
                                 w.data(), nFine[0], nFine[1], nFine[2], upOmp.data(),
                                 upWeightOmp.data(), 0.5, 4),
            0);
  EXPECT_EQ(upOmp, up);
  EXPECT_EQ(upWeightOmp, upWeight);
}

}  // namespace
