// Block data records: life cycle, the block data file (reader and writer), the
// text form of the parameter file, printing and validation.
#include <cstdio>
#include <memory>

#include "constraints/owned.hpp"
#include "data/stream_room.hpp"
#include "foundation/check.hpp"
#include "input/text_io.hpp"
#include "nuvo_blockdata.h"
#include "nuvo_text.h"

namespace nuvo {
namespace {

// Width and precision of the real values in the printed block lines.
constexpr int kPrintWidth = 14;
constexpr int kPrintPrecision = 6;

constexpr int kFileEntryError = -2980;

int allocateBlocks(nuvo_blockData *bd) {
  const int n = bd->nblock;
  NUVO_TRY(allocateArray(&bd->nnode, n));
  NUVO_TRY(allocateArray(&bd->ix, n));
  NUVO_TRY(allocateArray(&bd->iy, n));
  NUVO_TRY(allocateArray(&bd->iz, n));
  NUVO_TRY(allocateArray(&bd->value, n));
  NUVO_TRY(allocateArray(&bd->tolerance, n));
  NUVO_TRY(allocateArray(&bd->activatePropMin, n));
  return allocateArray(&bd->activatePropMax, n);
}

int readBlock(nuvo_blockData *bd, int b, FILE *stream) {
  NUVO_TRY(readInt(stream, &bd->nnode[b], kFileEntryError));
  NUVO_TRY(readDouble(stream, &bd->value[b], kFileEntryError));
  NUVO_TRY(readDouble(stream, &bd->tolerance[b], kFileEntryError));
  NUVO_TRY(readDouble(stream, &bd->activatePropMin[b], kFileEntryError));
  NUVO_TRY(readDouble(stream, &bd->activatePropMax[b], kFileEntryError));
  const int nnode = bd->nnode[b];
  // Three indices per node: a count the rest of the file cannot hold is refused
  // before anything is allocated for it.
  NUVO_FAIL_IF(!streamCanHold(stream, textBytesFor(3LL * nnode)), kFileEntryError);
  NUVO_TRY(allocateArray(&bd->ix[b], nnode));
  NUVO_TRY(allocateArray(&bd->iy[b], nnode));
  NUVO_TRY(allocateArray(&bd->iz[b], nnode));
  for (int k = 0; k < nnode; ++k) {
    NUVO_TRY(readInt(stream, &bd->ix[b][k], kFileEntryError));
    NUVO_TRY(readInt(stream, &bd->iy[b][k], kFileEntryError));
    NUVO_TRY(readInt(stream, &bd->iz[b][k], kFileEntryError));
  }
  return 0;
}

int readBlockData(nuvo_blockData *bd, FILE *stream) {
  NUVO_TRY(readInt(stream, &bd->nblock, kFileEntryError));
  if (bd->nblock <= 0) return 0;  // an empty or negative count is the validator's concern
  // At least eight numbers per block: its five values and one node.
  NUVO_FAIL_IF(!streamCanHold(stream, textBytesFor(8LL * bd->nblock)), kFileEntryError);
  NUVO_TRY(allocateBlocks(bd));
  for (int b = 0; b < bd->nblock; ++b) NUVO_TRY(readBlock(bd, b, stream));
  return 0;
}

bool blocksAllocated(const nuvo_blockData *bd) {
  return bd->nnode != nullptr && bd->value != nullptr && bd->tolerance != nullptr &&
         bd->activatePropMin != nullptr && bd->activatePropMax != nullptr;
}

int validateBlock(const nuvo_blockData *bd, int b) {
  NUVO_FAIL_IF(bd->nnode[b] < 1, -2942);
  NUVO_FAIL_IF(bd->tolerance[b] < 0.0, -2954);
  NUVO_FAIL_IF(bd->activatePropMin[b] < 0.0, -2951);
  NUVO_FAIL_IF(bd->activatePropMax[b] > 1.0, -2952);
  NUVO_FAIL_IF(bd->activatePropMin[b] > bd->activatePropMax[b], -2953);
  return 0;
}

int validate(const nuvo_blockData *bd) {
  if (bd->blockDataUsage == NUVO_BLOCK_DATA_NONE) return 0;
  NUVO_FAIL_IF(bd->blockDataUsage != NUVO_BLOCK_DATA_MEAN, -2920);
  NUVO_FAIL_IF(bd->nblock < 1 || !blocksAllocated(bd), -2941);
  for (int b = 0; b < bd->nblock; ++b) NUVO_TRY(validateBlock(bd, b));
  return 0;
}

int convert(const nuvo_blockDataASCII *in, nuvo_blockData *out) {
  out->blockDataUsage = in->blockDataUsage;
  if (in->blockDataUsage != NUVO_BLOCK_DATA_MEAN) return 0;
  NUVO_FAIL_IF(in->blockDataFileName == nullptr, -2960);
  std::unique_ptr<FILE, int (*)(FILE *)> file(std::fopen(in->blockDataFileName, "r"), &std::fclose);
  NUVO_FAIL_IF(file == nullptr, -2960);
  return readBlockData(out, file.get());
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitBlockData(nuvo_blockData *bd) {
  *bd = nuvo_blockData{};
}

void NUVOFreeBlockData(nuvo_blockData *bd) {
  // Only arrays that were allocated are walked: a count read from a file may
  // be huge while nothing was allocated for it.
  for (int **index : {bd->ix, bd->iy, bd->iz})
    if (index != nullptr)
      for (int b = 0; b < bd->nblock; ++b) std::free(index[b]);
  std::free(bd->nnode);
  std::free(bd->ix);
  std::free(bd->iy);
  std::free(bd->iz);
  std::free(bd->value);
  std::free(bd->tolerance);
  std::free(bd->activatePropMin);
  std::free(bd->activatePropMax);
  NUVOInitBlockData(bd);
}

int NUVOPrintBlockData(const nuvo_blockData *bd, const char *prefix, FILE *stream) {
  std::fprintf(stream, "%sblockDataUsage: %d\n", prefix, bd->blockDataUsage);
  if (bd->blockDataUsage == NUVO_BLOCK_DATA_NONE) return 0;
  std::fprintf(stream, "%snblock: %3d\n", prefix, bd->nblock);
  if (!nuvo::blocksAllocated(bd)) return 0;
  const int w = nuvo::kPrintWidth, p = nuvo::kPrintPrecision;
  for (int b = 0; b < bd->nblock; ++b) {
    std::fprintf(stream,
                 "%sblock %3d: nnode = %5d, value = %*.*E, tolerance = %*.*E, "
                 "activatePropMin = %*.*E, activatePropMax = %*.*E\n",
                 prefix, b, bd->nnode[b], w, p, bd->value[b], w, p, bd->tolerance[b], w, p,
                 bd->activatePropMin[b], w, p, bd->activatePropMax[b]);
  }
  return 0;
}

int NUVOValidateBlockData(const nuvo_blockData *bd, nuvo_progressMonitor *, nuvo_progressCallback,
                          int *error) {
  *error = nuvo::validate(bd);
  return 0;
}

int NUVOReadBlockData(nuvo_blockData *bd, FILE *stream) {
  return nuvo::readBlockData(bd, stream);
}

int NUVOWriteBlockData(const nuvo_blockData *bd, FILE *stream) {
  std::fprintf(stream, "%d\n", bd->nblock);
  for (int b = 0; b < bd->nblock; ++b) {
    std::fprintf(stream, "%d %14.6lf %14.6lf %14.6lf %14.6lf\n", bd->nnode[b], bd->value[b],
                 bd->tolerance[b], bd->activatePropMin[b], bd->activatePropMax[b]);
    for (int k = 0; k < bd->nnode[b]; ++k)
      std::fprintf(stream, "%d %d %d\n", bd->ix[b][k], bd->iy[b][k], bd->iz[b][k]);
  }
  return 0;
}

void NUVOInitBlockDataASCII(nuvo_blockDataASCII *bd) {
  *bd = nuvo_blockDataASCII{};
}

void NUVOFreeBlockDataASCII(nuvo_blockDataASCII *bd) {
  std::free(bd->blockDataFileName);
  NUVOInitBlockDataASCII(bd);
}

int NUVOPrintBlockDataASCII(const nuvo_blockDataASCII *bd, const char *prefix, FILE *stream) {
  nuvo::FieldPrinter out(stream, prefix);
  out.field("blockDataUsage", "%d", bd->blockDataUsage);
  if (bd->blockDataUsage == NUVO_BLOCK_DATA_NONE) return 0;
  out.text("blockDataFileName", bd->blockDataFileName);
  return 0;
}

int NUVOReadBlockDataASCII(nuvo_blockDataASCII *bd, FILE *stream) {
  NUVO_TRY(nuvo::readInt(stream, &bd->blockDataUsage, -3001));
  if (bd->blockDataUsage != NUVO_BLOCK_DATA_MEAN) return 0;
  NUVO_TRY(nuvo::allocateOwnedText(&bd->blockDataFileName, NUVO_FILE_NAME_MAX + 1));
  return nuvo::readWord(stream, bd->blockDataFileName, NUVO_FILE_NAME_MAX, -3006, -3006);
}

int NUVOBlockDataASCIIToBlockData(const nuvo_blockDataASCII *in, nuvo_blockData *out) {
  return nuvo::convert(in, out);
}

}  // extern "C"
