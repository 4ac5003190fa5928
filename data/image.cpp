// Life cycle and printout of nuvo_image.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "data/names.hpp"
#include "data/values.hpp"
#include "nuvo_image.h"

extern "C" {

void NUVOInitImage(nuvo_image *image) {
  *image = nuvo_image{};
}

int NUVOMallocImage(nuvo_image *image, int nxyz, int nvar) {
  image->grid = static_cast<nuvo_grid *>(std::calloc(1, sizeof(nuvo_grid)));
  if (image->grid == nullptr) return -1;
  if (nvar <= 0) return 0;
  long long count = static_cast<long long>(nxyz) * nvar;
  if (count <= 0) return -3;
  image->varName = nuvo::allocateNames(nvar);
  if (image->varName == nullptr) return -1;
  image->var = static_cast<double *>(std::malloc(static_cast<std::size_t>(count) * sizeof(double)));
  return image->var == nullptr ? -1 : 0;
}

int NUVOCopyImage(const nuvo_image *src, nuvo_image *dst) {
  int nxyz = src->grid != nullptr ? src->grid->nxyz : 0;
  if (int rc = NUVOMallocImage(dst, nxyz, src->nvar); rc != 0) return rc;
  if (src->grid != nullptr) *dst->grid = *src->grid;
  dst->nvar = src->nvar;
  dst->nxyzv = src->nxyzv;
  for (int iv = 0; iv < src->nvar; ++iv)
    std::memcpy(dst->varName[iv], src->varName[iv], nuvo::kNameSlot);
  if (src->nvar > 0 && src->var != nullptr)
    std::memcpy(dst->var, src->var, static_cast<std::size_t>(nxyz) * src->nvar * sizeof(double));
  return 0;
}

void NUVOFreeImage(nuvo_image *image) {
  std::free(image->grid);
  nuvo::freeNames(image->varName);
  std::free(image->var);
  NUVOInitImage(image);
}

int NUVOPrintImage(const nuvo_image *image, const char *prefix, FILE *stream) {
  return nuvo::guardedCall([&] {
    const std::string nested = nuvo::nestedPrefix(prefix);
    std::fprintf(stream, "%sgrid:\n", prefix);
    if (image->grid != nullptr) NUVOPrintGrid(image->grid, nested.c_str(), stream);
    std::fprintf(stream, "%snvar:  %8d\n", prefix, image->nvar);
    std::fprintf(stream, "%snxyzv: %8d\n", prefix, image->nxyzv);
    std::fprintf(stream, "%svarName:\n", prefix);
    for (int iv = 0; iv < image->nvar && image->varName != nullptr; ++iv)
      std::fprintf(stream, "%s%s\n", nested.c_str(), image->varName[iv]);
    return 0;
  });
}

}  // extern "C"
