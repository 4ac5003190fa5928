// VTK legacy ASCII STRUCTURED_POINTS: ten header lines (four not interpreted,
// DIMENSIONS, ORIGIN, SPACING, POINT_DATA, SCALARS, LOOKUP_TABLE), then the values.
// The keywords are not checked. All variable names travel in the one SCALARS
// token, joined by '/'.
#include <string_view>

#include "data/image_text.hpp"
#include "foundation/check.hpp"
#include "nuvo_text.h"

namespace nuvo {
namespace {

struct LineCodes {
  int missing;
  int tooLong;
  int content;
};

bool scanAnyWord(CharSource &text, std::string &word) {
  return scanWord(text, word, kLineBytes) != WordStatus::kMissing;
}

// A keyword followed by three reals: ORIGIN or SPACING.
int readTripletLine(FILE *stream, LineCodes codes, double &a, double &b, double &c) {
  HeaderLine line;
  NUVO_TRY(readHeaderLine(stream, line, codes.missing, codes.tooLong));
  CharSource text(line.data());
  std::string keyword;
  const int items =
      countMatched([&] { return scanAnyWord(text, keyword); }, [&] { return scanDouble(text, a); },
                   [&] { return scanDouble(text, b); }, [&] { return scanDouble(text, c); });
  return items == 4 ? 0 : codes.content;
}

// The first nvar-1 names end at a '/', the last one is the rest of the token.
int splitNames(std::string_view joined, ImageLayout &layout) {
  for (int iv = 0; iv < layout.nvar; ++iv) {
    const bool last = iv == layout.nvar - 1;
    const std::size_t slash = last ? joined.size() : joined.find('/');
    NUVO_FAIL_IF(slash == std::string_view::npos, -759);
    NUVO_FAIL_IF(slash > NUVO_VAR_NAME_MAX, -760);
    layout.names.emplace_back(joined.substr(0, slash));
    joined.remove_prefix(last ? slash : slash + 1);
  }
  return 0;
}

}  // namespace

int readVtkHeader(FILE *stream, ImageLayout &layout) {
  HeaderLine line;
  for (int k = 0; k < 4; ++k) NUVO_TRY(readHeaderLine(stream, line, -741, -742));

  NUVO_TRY(readHeaderLine(stream, line, -743, -744));
  std::string keyword;
  int nx = 0;
  int ny = 0;
  int nz = 0;
  {
    CharSource text(line.data());
    const int items =
        countMatched([&] { return scanAnyWord(text, keyword); }, [&] { return scanInt(text, nx); },
                     [&] { return scanInt(text, ny); }, [&] { return scanInt(text, nz); });
    NUVO_FAIL_IF(items != 4 || !setNodeCounts(layout.grid, nx, ny, nz), -745);
  }
  nuvo_grid &grid = layout.grid;
  NUVO_TRY(readTripletLine(stream, {-746, -747, -748}, grid.ox, grid.oy, grid.oz));
  NUVO_TRY(readTripletLine(stream, {-749, -750, -751}, grid.sx, grid.sy, grid.sz));

  NUVO_TRY(readHeaderLine(stream, line, -752, -753));
  int npoint = 0;
  {
    CharSource text(line.data());
    const int items = countMatched([&] { return scanAnyWord(text, keyword); },
                                   [&] { return scanInt(text, npoint); });
    NUVO_FAIL_IF(items != 2, -754);
    NUVO_FAIL_IF(npoint != grid.nxyz, -755);
  }

  NUVO_TRY(readHeaderLine(stream, line, -756, -757));
  std::string joined;
  {
    CharSource text(line.data());
    std::string type;
    int ncomp = 0;
    const int items = countMatched(
        [&] { return scanAnyWord(text, keyword); }, [&] { return scanAnyWord(text, joined); },
        [&] { return scanAnyWord(text, type); }, [&] { return scanInt(text, ncomp); });
    NUVO_FAIL_IF(items < 3, -758);
    layout.nvar = items == 4 ? ncomp : 1;
    NUVO_FAIL_IF(!fitsVariables(grid, layout.nvar), -758);
  }
  NUVO_TRY(splitNames(joined, layout));

  return readHeaderLine(stream, line, -761, -762);
}

void writeVtkHeader(TextSink &sink, const nuvo_image &image) {
  const nuvo_grid &g = *image.grid;
  sink.print("# vtk DataFile Version %3.1f\n", 3.4);
  sink.put("Image\nASCII\nDATASET STRUCTURED_POINTS\n");
  sink.print("DIMENSIONS %d %d %d\n", g.nx, g.ny, g.nz);
  sink.print("ORIGIN %f %f %f\n", g.ox, g.oy, g.oz);
  sink.print("SPACING %f %f %f\n", g.sx, g.sy, g.sz);
  sink.print("POINT_DATA %d\n", g.nxyz);
  sink.put("SCALARS ");
  for (int iv = 0; iv < image.nvar; ++iv) {
    if (iv > 0) sink.put('/');
    sink.put(image.varName[iv]);
  }
  sink.print(" float %d\n", image.nvar);
  sink.put("LOOKUP_TABLE default\n");
}

}  // namespace nuvo
