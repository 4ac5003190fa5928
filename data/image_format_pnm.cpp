// Plain PGM (key 2, one grey value per node) and PPM (key 3, three colour values
// per node): a magic line, a comment line, "nx ny", the maximal value, then the
// values. The geometry is kept in the comment line when writing; reading gives
// nz = 1, unit spacing and a zero origin. Values are neither scaled nor clipped.
#include <cstring>

#include "data/image_text.hpp"
#include "foundation/check.hpp"

namespace nuvo {
namespace {

struct PnmKind {
  const char *magic;
  const char *tag;
  int nvar;
  const char *names[3];
  int lineMissing;
  int lineTooLong;
  int badMagic;
  // A PPM line 3 without two integers gives -710, not -770: kept on purpose.
  int badDimensions;
  int badNvarForWrite;
  int badNzForWrite;
};

constexpr PnmKind kPgm{"P2", "PGM", 1, {"pgmValue"}, -763, -764, -765, -766, -1016, -1018};
constexpr PnmKind kPpm{"P3", "PPM", 3,    {"ppmR", "ppmG", "ppmB"}, -767, -768, -769,
                       -710, -1017, -1019};

const PnmKind &kindOf(int key) {
  return key == 2 ? kPgm : kPpm;
}

}  // namespace

int readPnmHeader(FILE *stream, int key, ImageLayout &layout) {
  const PnmKind &kind = kindOf(key);
  HeaderLine line;
  NUVO_TRY(readHeaderLine(stream, line, kind.lineMissing, kind.lineTooLong));
  line[std::strcspn(line.data(), "\n")] = '\0';
  NUVO_FAIL_IF(std::strcmp(line.data(), kind.magic) != 0, kind.badMagic);
  NUVO_TRY(readHeaderLine(stream, line, kind.lineMissing, kind.lineTooLong));

  NUVO_TRY(readHeaderLine(stream, line, kind.lineMissing, kind.lineTooLong));
  int nx = 0;
  int ny = 0;
  {
    CharSource text(line.data());
    const int items =
        countMatched([&] { return scanInt(text, nx); }, [&] { return scanInt(text, ny); });
    NUVO_FAIL_IF(items != 2 || !setNodeCounts(layout.grid, nx, ny, 1), kind.badDimensions);
  }
  nuvo_grid &grid = layout.grid;
  grid.sx = grid.sy = grid.sz = 1.0;
  grid.ox = grid.oy = grid.oz = 0.0;
  NUVO_FAIL_IF(!fitsVariables(grid, kind.nvar), kind.badDimensions);
  layout.nvar = kind.nvar;
  layout.names.assign(kind.names, kind.names + kind.nvar);

  return readHeaderLine(stream, line, kind.lineMissing, kind.lineTooLong);
}

int checkPnmWritable(int key, const nuvo_image &image) {
  const PnmKind &kind = kindOf(key);
  NUVO_FAIL_IF(image.nvar != kind.nvar, kind.badNvarForWrite);
  NUVO_FAIL_IF(image.grid->nz != 1, kind.badNzForWrite);
  return 0;
}

void writePnmHeader(TextSink &sink, int key, const nuvo_image &image) {
  const PnmKind &kind = kindOf(key);
  const nuvo_grid &g = *image.grid;
  sink.put(kind.magic);
  sink.print("\n# %s: %d %d %d %f %f %f %f %f %f\n", kind.tag, g.nx, g.ny, g.nz, g.sx, g.sy, g.sz,
             g.ox, g.oy, g.oz);
  sink.print("%d %d\n", g.nx, g.ny);
  sink.put("255\n");
}

}  // namespace nuvo
