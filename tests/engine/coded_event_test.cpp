#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <random>
#include <span>
#include <vector>

#include "engine/coded_event.hpp"
#include "engine/constrained_event.hpp"
#include "engine/packed_event.hpp"
#include "engine/realization.hpp"
#include "tests/data/data_builders.hpp"
#include "tests/engine/bare_setup.hpp"
#include "tests/support/make_image.hpp"

namespace {

// The scans of the packed image of `ti`, `bits` per node, and of the byte codes
// for `event`, compared.
template <int Bits>
void expectPackedScanAsCoded(std::span<const std::int8_t> ti, nuvo::CodedEvent &coded,
                             const nuvo::ScanResult &expected, const auto &scan, int trial) {
  const std::vector<std::uint8_t> packed = nuvo::packCodes(ti, Bits);
  nuvo::PackedEvent<Bits> event;
  event.prepare(coded, packed.data());
  const nuvo::ScanResult r = scan(event);
  ASSERT_EQ(expected.tiNode, r.tiNode) << Bits << " bits, trial " << trial;
  ASSERT_EQ(expected.error, r.error);
  ASSERT_EQ(expected.iterations, r.iterations);
}

// Random events (foreign codes, repeated nodes, awkward thresholds) on a random
// image of `ncategory` categories with missing codes, with uniform or random
// weights (tiny ones among them), without and with random constraint terms
// (class penalties, block bands, labels): every scan, partial or not, ends on the
// candidate, with the error and after the iterations of the general event's scan
// (without terms or weights, on the byte codes and on their packed images).
void expectScansAsTheGeneralEvent(int ncategory) {
  std::mt19937 rng(11);
  const auto draw = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  const nuvo_grid grid = nuvo::test::makeGrid(24, 20, 3);
  std::vector<std::int8_t> ti(static_cast<std::size_t>(grid.nxyz) + nuvo::kCodePadding, -1);
  std::vector<int> holders(static_cast<std::size_t>(ncategory), 0);
  for (std::size_t k = 0; k < static_cast<std::size_t>(grid.nxyz); ++k) {
    ti[k] = static_cast<std::int8_t>(draw(9) < 6 ? 0 : draw(ncategory + 1) - 1);
    if (ti[k] >= 0) ++holders[static_cast<std::size_t>(ti[k])];
  }
  const std::span<const std::int8_t> codes =
      std::span(ti).first(static_cast<std::size_t>(grid.nxyz));
  const auto informed = [&](int node) { return ti[static_cast<std::size_t>(node)] >= 0; };
  // Training values, class and label component of every node.
  std::vector<double> category(static_cast<std::size_t>(ncategory));
  std::iota(category.begin(), category.end(), 0.0);
  std::vector<std::int16_t> categoryClass(category.size(), 1);
  categoryClass[0] = 0;
  std::vector<double> value(ti.size(), -1.0);
  std::vector<std::int16_t> trainClass(ti.size(), -1);
  std::vector<int> component(ti.size());
  for (std::size_t k = 0; k < ti.size(); ++k) {
    if (ti[k] >= 0) {
      value[k] = category[static_cast<std::size_t>(ti[k])];
      trainClass[k] = categoryClass[static_cast<std::size_t>(ti[k])];
    }
    component[k] = draw(4);
  }
  const std::vector<std::int16_t> componentClass = {0, 0, 1, 0};
  for (int trial = 0; trial < 600; ++trial) {
    const int n = 1 + draw(40);
    const bool weighted = trial % 4 >= 2;
    std::vector<int> offset;
    std::vector<std::int8_t> code;
    std::vector<double> weight;
    double weightSum = 0.0;
    nuvo::EventExtent extent;
    for (int i = 0; i < n; ++i) {
      const int dx = draw(17) - 8, dy = draw(7) - 3, dz = draw(2);
      extent.include(dx, dy, dz);
      offset.push_back(dx + grid.nx * dy + grid.nxy * dz);
      code.push_back(
          static_cast<std::int8_t>(draw(12) == 0 ? nuvo::kForeignCode : draw(ncategory)));
      weight.push_back(draw(5) == 0 ? 1e-6 * draw(3) : 1.0 / (1 + draw(12)));
      weightSum += weight.back();
    }
    for (double &w : weight) w /= weightSum;
    nuvo::DataEvent general;
    general.nvar = 1;
    general.kernel[0] = nuvo::variableKernel(0, !weighted, false, true);
    general.event[0] = {.count = n,
                        .offset = offset.data(),
                        .weight = weight.data(),
                        .uniformWeight = 1.0 / n,
                        .invThreshold = 1.0 / (0.01 + 0.3 * draw(1000) / 1000.0),
                        .valueCode = code.data(),
                        .tiCode = ti.data(),
                        .codeCount = holders};
    const bool terms = trial % 2 == 1;
    std::vector<double> penalty = {0.3 * draw(3), 0.2 * draw(3)};
    std::vector<nuvo::BlockBand> band(1 + draw(2));
    for (nuvo::BlockBand &b : band) {
      const double low = 0.5 * draw(4) - 1.0, room = 0.1 + 0.5 * draw(3);
      b = {.low = low,
           .high = low + 0.5 * draw(4),
           .room = room,
           .gentle = 4.0 / room,
           .steep = 1.0 + draw(30)};
    }
    std::vector<int> lead(static_cast<std::size_t>(n));
    std::vector<std::int16_t> labelClass(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
      lead[static_cast<std::size_t>(i)] = draw(i + 1);
      labelClass[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(draw(2));
    }
    if (terms) {
      general.nconstraint = draw(2);
      general.constraint[0] = {trainClass.data(), penalty.data()};
      general.nblockTerm = draw(2);
      general.blockTerm[0] = {value.data(), band.data(), static_cast<int>(band.size())};
      general.npattern = draw(2);
      general.pattern[0] = {.count = n,
                            .offset = offset.data(),
                            .lead = lead.data(),
                            .cls = labelClass.data(),
                            .component = component.data(),
                            .componentClass = componentClass.data(),
                            .scale = 1.0 / (n * 0.3)};
      general.floor = general.nconstraint == 1 ? 0.2 * draw(2) : 0.0;
    }
    nuvo::CodedEvent coded;
    nuvo::WeightedCodedEvent weightedEvent;
    nuvo::ConstrainedCodedEvent constrained;
    const bool plain = general.termless();
    ASSERT_EQ(coded.prepare(general), plain && !weighted);
    ASSERT_EQ(weightedEvent.prepare(general), plain && weighted);
    ASSERT_TRUE(constrained.prepare(general, ti.data(), category, categoryClass));
    nuvo::ScanWindow window;
    ASSERT_TRUE(nuvo::makeScanWindow(grid, extent, &window));
    const int nscan = 1 + draw(window.count());
    const nuvo::ScanOrder order{draw(window.count()), 1};
    const auto scan = [&](auto &event) {
      return nuvo::scanTrainingImage(nuvo::ScanWalker(window, grid, order), nscan, event, informed);
    };
    const nuvo::ScanResult a = scan(general);
    const nuvo::ScanResult b = !plain     ? scan(constrained)
                               : weighted ? scan(weightedEvent)
                                          : scan(coded);
    ASSERT_EQ(a.tiNode, b.tiNode) << "trial " << trial;
    ASSERT_EQ(a.error, b.error);
    ASSERT_EQ(a.iterations, b.iterations);
    if (!plain || weighted) continue;
    if (ncategory <= 3) expectPackedScanAsCoded<2>(codes, coded, a, scan, trial);
    expectPackedScanAsCoded<4>(codes, coded, a, scan, trial);
  }
}

TEST(CodedEvent, ScansAsTheGeneralEvent) {
  expectScansAsTheGeneralEvent(3);
  expectScansAsTheGeneralEvent(12);
}

// Simulated one variable at a time, a node whose data event holds only the other
// variable is scanned on that variable's codes: the packed images of a 3D
// training image (two bits per node for three categories, four for five) must
// follow the event's variable, not the simulated one, and leave every
// realization as the byte codes give it.
TEST(CodedEvent, PackedImagesLeaveOneByOneRealizationsUnchanged) {
  for (const int ncategory : {3, 5}) {
    const nuvo::test::TestImage ti(14, 12, 5, {"a", "b"}, [&](int x, int y, int z, int v) {
      return static_cast<double>((x / 3 + y / 2 + z + v) % ncategory);
    });
    nuvo::test::TestImage image(8, 8, 3, {"a", "b"});
    nuvo_image &sim = image.image;
    const nuvo_test::BuiltNeighborhood nb(3.0, 3.0, 1.0);
    ASSERT_EQ(nb.rc, 0);
    nuvo::RealizationSetup setup = nuvo_test::bareSetup(ti.image, nb.nb, 12, 0.2);
    std::vector<double> categories(static_cast<std::size_t>(ncategory));
    std::iota(categories.begin(), categories.end(), 0.0);
    nuvo::codeCategories(setup, {categories, categories});
    ASSERT_NE(setup.packedCodes(0, 1), nullptr);

    const int n = 2 * sim.grid->nxyz;
    const std::vector<signed char> toSimulate(static_cast<std::size_t>(n), 1);
    std::vector<int> path(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) path[static_cast<std::size_t>(i)] = i * 37 % n;  // 37, n coprime
    const auto simulate = [&] {
      std::fill(sim.var, sim.var + n, NUVO_MISSING_VALUE);
      EXPECT_EQ(nuvo::simulateRealization(setup, &sim, toSimulate, path, 9, {}, nullptr, nullptr,
                                          nullptr),
                0);
      return std::vector<double>(sim.var, sim.var + n);
    };
    const std::vector<double> packed = simulate();
    setup.tiPacked.clear();
    EXPECT_EQ(simulate(), packed) << ncategory << " categories";
  }
}

}  // namespace
