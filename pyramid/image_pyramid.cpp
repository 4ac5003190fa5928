// Reduction and expansion of every variable of an image, onto a coarser or finer
// grid that covers the same extent.
#include <array>
#include <cstdio>
#include <vector>

#include "data/values.hpp"
#include "nuvo_pyramid.h"
#include "pyramid/level_grid.hpp"

namespace nuvo {
namespace {

// Every image-level filter keeps at least this share of informed filter weight.
constexpr double kImageMinWeight = 0.6;

// What differs between the image reduction and the image expansion.
struct Operation {
  int negativeStepX;  // then y and z
  int smallDimensionX;
  int genericSmallDimension;  // the code of the dimension rule, mapped per direction
  const char *suffix;
  bool reduce;
};

constexpr Operation kReduce{-3502, -3506, -3505, "_GPred", true};
constexpr Operation kExpand{-3512, -3516, -3515, "_GPexp", false};

int dimensionOf(const Operation &op, int n, int k, int *nOut, int *shift) {
  *shift = 0;
  return op.reduce ? NUVOPyramidReduceDimension(n, k, nOut, shift)
                   : NUVOPyramidExpandDimension(n, k, nOut);
}

int filterImage(const nuvo_image *in, nuvo_image *out, std::array<int, 3> k,
                std::array<double, 3> alpha, const Operation &op) {
  NUVO_FAIL_IF(in == nullptr || in->grid == nullptr || in->var == nullptr || out == nullptr,
               kMemoryNotAllocated);
  const nuvo_grid &g = *in->grid;
  const std::array<int, 3> n{g.nx, g.ny, g.nz};
  std::array<int, 3> nOut{}, shift{};
  for (int a = 0; a < 3; ++a) NUVO_FAIL_IF(k[a] < 0, op.negativeStepX - a);
  for (int a = 0; a < 3; ++a) {
    const int rc = dimensionOf(op, n[a], k[a], &nOut[a], &shift[a]);
    NUVO_FAIL_IF(rc == op.genericSmallDimension, op.smallDimensionX - a);
    NUVO_TRY(rc);
  }
  int nxyz = 0, nxyzv = 0;
  NUVO_FAIL_IF(!productFitsInInt({nOut[0], nOut[1], nOut[2]}, &nxyz), -620);
  NUVO_FAIL_IF(!productFitsInInt({nxyz, in->nvar}, &nxyzv), -626);
  std::array<std::vector<double>, 3> w;
  for (int a = 0; a < 3; ++a) {
    w[a].resize(static_cast<std::size_t>(k[a]) + 1);
    NUVOPyramidWeight(k[a], alpha[a], w[a].data());
  }

  NUVO_TRY(NUVOMallocImage(out, nxyz, in->nvar));
  setLevelGrid(g, nOut, out->grid);
  out->nvar = in->nvar;
  out->nxyzv = nxyzv;
  std::vector<double> weight(static_cast<std::size_t>(nxyz));
  for (int iv = 0; iv < in->nvar; ++iv) {
    std::snprintf(out->varName[iv], kNameSlot, "%.*s%s",
                  static_cast<int>(kNameSlot - 1 - std::strlen(op.suffix)), in->varName[iv],
                  op.suffix);
    const double *src = variableValues(in, iv).data();
    double *dst = variableValues(out, iv).data();
    NUVO_TRY(op.reduce
                 ? NUVOPyramidReduce(src, n[0], n[1], n[2], k[0], k[1], k[2], w[0].data(),
                                     w[1].data(), w[2].data(), shift[0], shift[1], shift[2],
                                     nOut[0], nOut[1], nOut[2], dst, weight.data(), kImageMinWeight)
                 : NUVOPyramidExpand(src, n[0], n[1], n[2], k[0], k[1], k[2], w[0].data(),
                                     w[1].data(), w[2].data(), nOut[0], nOut[1], nOut[2], dst,
                                     weight.data(), kImageMinWeight));
  }
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

int NUVOImagePyramidReduce(const nuvo_image *in, nuvo_image *out, int kx, int ky, int kz,
                           double alphax, double alphay, double alphaz) {
  return nuvo::guardedCall([&] {
    return nuvo::filterImage(in, out, {kx, ky, kz}, {alphax, alphay, alphaz}, nuvo::kReduce);
  });
}

int NUVOImagePyramidExpand(const nuvo_image *in, nuvo_image *out, int kx, int ky, int kz,
                           double alphax, double alphay, double alphaz) {
  return nuvo::guardedCall([&] {
    return nuvo::filterImage(in, out, {kx, ky, kz}, {alphax, alphay, alphaz}, nuvo::kExpand);
  });
}

}  // extern "C"
