#include "engine/sim_files.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "foundation/check.hpp"
#include "nuvo_imagefile.h"
#include "nuvo_text.h"

namespace nuvo {
namespace {

constexpr int kOutputNotOpened = -110;
constexpr const char *kMapFormat = "%.10g";

// "_real" and the realization index in five digits.
std::string realizationSuffix(int r) {
  char digits[6];
  NUVOIntToString(r, digits, 5);
  return std::string("_real") + digits;
}

void setName(nuvo_image *image, int iv, const std::string &name) {
  std::snprintf(image->varName[iv], 128, "%s", name.c_str());
}

// An image record owned by nuvo_simOutput, on `grid` with nvar variables.
int allocateOutputImage(const nuvo_grid &grid, int nvar, nuvo_image **image) {
  *image = static_cast<nuvo_image *>(std::calloc(1, sizeof(nuvo_image)));
  if (*image == nullptr) return kAllocationFailed;
  NUVOInitImage(*image);
  return allocateOnGrid(grid, nvar, *image);
}

void copyVariable(const nuvo_image &from, int iv, nuvo_image *to, int jv) {
  const std::size_t n = static_cast<std::size_t>(from.grid->nxyz);
  std::memcpy(to->var + jv * n, from.var + iv * n, n * sizeof(double));
}

}  // namespace

int OutputWriter::prepare(const nuvo_simInput &si, nuvo_simOutput *out) {
  si_ = &si;
  out_ = out;
  const nuvo_grid &grid = *si.simImage->grid;
  for (int v = 0; v < si.nvar; ++v)
    if (si.outputVarFlag[v]) kept_.push_back(v);
  const int nkept = static_cast<int>(kept_.size());
  mapVars_ = si.simAndPathParameters->simType == SIM_VARIABLE_VECTOR ? 1 : si.nvar;

  const char *baseNames[] = {"pathIndex", "error", "tiGridNodeIndex", "tiIndex"};
  const signed char flags[] = {si.outputPathIndexFlag, si.outputErrorFlag,
                               si.outputTiGridNodeIndexFlag, si.outputTiIndexFlag};
  const char *prefixes[] = {si.outputPathIndexFileName, si.outputErrorFileName,
                            si.outputTiGridNodeIndexFileName, si.outputTiIndexFileName};
  nuvo_image **outImages[] = {&out->outputPathIndexImage, &out->outputErrorImage,
                              &out->outputTiGridNodeIndexImage, &out->outputTiIndexImage};
  int *outCounts[] = {&out->nvarPathIndexPerReal, &out->nvarErrorPerReal,
                      &out->nvarTiGridNodeIndexPerReal, &out->nvarTiIndexPerReal};
  nuvo_image **mapSlots[] = {&maps_.pathIndex, &maps_.error, &maps_.tiGridNodeIndex,
                             &maps_.tiIndex};
  const bool keepInOutput = !si.consoleAppFlag;
  for (int m = 0; m < 4; ++m) {
    Map &map = map_[m];
    map.baseName = baseNames[m];
    map.on = flags[m] != 0;
    if (!map.on) continue;
    map.filePrefix = prefixes[m];
    NUVO_TRY(allocateOnGrid(grid, mapVars_, &map.realization.image));
    *mapSlots[m] = &map.realization.image;
    if (keepInOutput) {
      *outCounts[m] = mapVars_;
      NUVO_TRY(allocateOutputImage(grid, mapVars_ * si.nrealization, outImages[m]));
      map.all = *outImages[m];
    }
  }

  if (nkept > 0) NUVO_TRY(allocateOnGrid(grid, nkept, &keptImage_.image));
  for (int j = 0; j < nkept; ++j) setName(&keptImage_.image, j, si.simImage->varName[kept_[j]]);
  if (keepInOutput) {
    out->nreal = si.nrealization;
    out->nvarSimPerReal = nkept;
    NUVO_TRY(allocateOutputImage(grid, nkept * si.nrealization, &out->outputSimImage));
    collector_ = out->outputSimImage;
  } else if (si.outputSimJob == OUTPUT_SIM_ALL_IN_ONE_FILE ||
             si.outputSimJob == OUTPUT_SIM_ONE_FILE_PER_VARIABLE) {
    NUVO_TRY(allocateOnGrid(grid, nkept * si.nrealization, &ownCollector_.image));
    collector_ = &ownCollector_.image;
  }
  if (collector_ != nullptr)
    for (int r = 0; r < si.nrealization; ++r)
      for (int j = 0; j < nkept; ++j)
        setName(collector_, r * nkept + j, si.simImage->varName[kept_[j]] + realizationSuffix(r));
  return 0;
}

void OutputWriter::startRealization(int r) {
  for (Map &map : map_) {
    if (!map.on) continue;
    nuvo_image &image = map.realization.image;
    std::fill_n(image.var, image.nxyzv, NUVO_MISSING_VALUE);
    for (int j = 0; j < mapVars_; ++j) {
      std::string name = map.baseName;
      if (mapVars_ > 1 || si_->simAndPathParameters->simType == SIM_ONE_BY_ONE) {
        char var[8];
        std::snprintf(var, sizeof var, "_var%02d", j % 100);
        name += var;
      }
      setName(&image, j, name + realizationSuffix(r));
    }
  }
}

std::string OutputWriter::keptFormat(int j) const {
  const char *format = si_->formatStringVar != nullptr ? si_->formatStringVar[kept_[j]] : nullptr;
  return format != nullptr ? format : kMapFormat;
}

int OutputWriter::writeFile(const nuvo_image &image, const std::string &format,
                            const std::string &name) const {
  FILE *stream = std::fopen(name.c_str(), "w");
  if (stream == nullptr) return kOutputNotOpened;
  const int rc = NUVOWriteImage(&image, format.c_str(), 0, stream);
  const bool closed = std::fclose(stream) == 0;
  if (rc != 0) return rc;
  return closed ? 0 : kOutputNotOpened;
}

int OutputWriter::finishRealization(int r, const nuvo_image &sim) {
  const int nkept = static_cast<int>(kept_.size());
  for (int j = 0; j < nkept; ++j) copyVariable(sim, kept_[j], &keptImage_.image, j);
  if (si_->outputSimJob == OUTPUT_SIM_ONE_FILE_PER_REALIZATION && nkept > 0) {
    std::string formats;
    for (int j = 0; j < nkept; ++j) formats += keptFormat(j) + ";";
    NUVO_TRY(writeFile(keptImage_.image, formats,
                       si_->outputSimImageFileName[0] + realizationSuffix(r) + ".gslib"));
  }
  for (const Map &map : map_) {
    if (!map.on) continue;
    NUVO_TRY(writeFile(map.realization.image, kMapFormat,
                       map.filePrefix + realizationSuffix(r) + ".gslib"));
    if (map.all != nullptr)
      for (int j = 0; j < mapVars_; ++j) {
        copyVariable(map.realization.image, j, map.all, r * mapVars_ + j);
        std::memcpy(map.all->varName[r * mapVars_ + j], map.realization.image.varName[j], 128);
      }
  }
  if (collector_ != nullptr)
    for (int j = 0; j < nkept; ++j) copyVariable(keptImage_.image, j, collector_, r * nkept + j);
  return 0;
}

int OutputWriter::finish() {
  const int nkept = static_cast<int>(kept_.size());
  if (collector_ == nullptr || nkept == 0) return 0;
  if (si_->outputSimJob == OUTPUT_SIM_ALL_IN_ONE_FILE) {
    std::string formats;
    for (int j = 0; j < nkept; ++j) formats += keptFormat(j) + ";";
    return writeFile(*collector_, formats, si_->outputSimImageFileName[0]);
  }
  if (si_->outputSimJob != OUTPUT_SIM_ONE_FILE_PER_VARIABLE) return 0;
  OwnedImage one;
  NUVO_TRY(allocateOnGrid(*collector_->grid, si_->nrealization, &one.image));
  for (int j = 0; j < nkept; ++j) {
    for (int r = 0; r < si_->nrealization; ++r) {
      copyVariable(*collector_, r * nkept + j, &one.image, r);
      std::memcpy(one.image.varName[r], collector_->varName[r * nkept + j], 128);
    }
    NUVO_TRY(writeFile(one.image, keptFormat(j), si_->outputSimImageFileName[j]));
  }
  return 0;
}

}  // namespace nuvo
