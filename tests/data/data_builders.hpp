// Builders for the data-model tests: images and point sets from literal values,
// freed when they go out of scope, and empty records to be filled.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <concepts>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "nuvo_image.h"
#include "nuvo_pointset.h"
#include "tests/support/make_image.hpp"
#include "tests/support/temp_stream.hpp"

namespace nuvo::test {

inline constexpr double kMissing = NUVO_MISSING_VALUE;

inline nuvo_grid makeGrid(int nx, int ny, int nz, double s = 1.0, double o = 0.0) {
  nuvo_grid g;
  NUVOInitGrid(&g);
  g.nx = nx;
  g.ny = ny;
  g.nz = nz;
  g.sx = g.sy = g.sz = s;
  g.ox = g.oy = g.oz = o;
  g.nxy = nx * ny;
  g.nxyz = nx * ny * nz;
  return g;
}

// The values of an image, variable after variable.
inline std::vector<double> imageValues(const nuvo_image &image) {
  return {image.var, image.var + image.nxyzv};
}

// An image on a grid of unit cells at the origin, its values given variable after
// variable (all missing when `values` is empty).
struct TestImage {
  TestImage(int nx, int ny, int nz, const std::vector<std::string> &names,
            const std::vector<double> &values = {}) {
    NUVOInitImage(&image);
    const int nxyz = nx * ny * nz;
    EXPECT_EQ(nuvo_test::makeImage(&image, nx, ny, nz, names,
                                   [&](int ix, int iy, int iz, int iv) {
                                     const int i = iv * nxyz + (iz * ny + iy) * nx + ix;
                                     return values.empty() ? kMissing : values.at(i);
                                   }),
              0);
  }
  // The value of variable iv at node (ix, iy, iz) being value(ix, iy, iz, iv).
  template <std::invocable<int, int, int, int> Value>
  TestImage(int nx, int ny, int nz, const std::vector<std::string> &names, Value value) {
    NUVOInitImage(&image);
    EXPECT_EQ(nuvo_test::makeImage(&image, nx, ny, nz, names, value), 0);
  }
  ~TestImage() { NUVOFreeImage(&image); }
  TestImage(const TestImage &) = delete;
  TestImage &operator=(const TestImage &) = delete;

  double &at(int iv, int node) { return image.var[iv * image.grid->nxyz + node]; }

  nuvo_image image;
};

// A point set with the given coordinates and values (variable after variable).
struct TestPointSet {
  TestPointSet(const std::vector<double> &x, const std::vector<double> &y,
               const std::vector<double> &z, const std::vector<std::string> &names,
               const std::vector<double> &values) {
    NUVOInitPointSet(&ps);
    const int npoint = static_cast<int>(x.size());
    EXPECT_EQ(NUVOMallocPointSet(&ps, npoint, static_cast<int>(names.size())), 0);
    std::copy(x.begin(), x.end(), ps.x);
    std::copy(y.begin(), y.end(), ps.y);
    std::copy(z.begin(), z.end(), ps.z);
    for (std::size_t iv = 0; iv < names.size(); ++iv)
      std::strcpy(ps.varName[iv], names[iv].c_str());
    std::copy(values.begin(), values.end(), ps.val);
  }
  ~TestPointSet() { NUVOFreePointSet(&ps); }
  TestPointSet(const TestPointSet &) = delete;
  TestPointSet &operator=(const TestPointSet &) = delete;

  nuvo_pointSet ps;
};

// Empty records for a function to fill, freed at the end of the scope.
struct EmptyImage {
  EmptyImage() { NUVOInitImage(&image); }
  ~EmptyImage() { NUVOFreeImage(&image); }
  EmptyImage(const EmptyImage &) = delete;
  EmptyImage &operator=(const EmptyImage &) = delete;
  nuvo_image *operator->() { return &image; }
  nuvo_image image;
};

struct EmptyPointSet {
  EmptyPointSet() { NUVOInitPointSet(&ps); }
  ~EmptyPointSet() { NUVOFreePointSet(&ps); }
  EmptyPointSet(const EmptyPointSet &) = delete;
  EmptyPointSet &operator=(const EmptyPointSet &) = delete;
  nuvo_pointSet *operator->() { return &ps; }
  nuvo_pointSet ps;
};

}  // namespace nuvo::test
