// Connectivity constraint records: life cycle, text form, printing, conversion
// and validation. The code common to the record and its text form is written
// once over the record type.
#include <cstdio>
#include <cstring>

#include "constraints/coded_print.hpp"
#include "constraints/keywords.hpp"
#include "constraints/owned.hpp"
#include "foundation/check.hpp"
#include "input/text_io.hpp"
#include "nuvo_connectivity.h"
#include "nuvo_text.h"

namespace nuvo {
namespace {

constexpr const char *kUsageText[] = {
    "\n",
    "(set connecting path before simulation by successively binding the nodes to be connected "
    "in a random order)\n",
    "(set connecting path before simulation by successively binding the nodes to be connected "
    "in an order according to distance)\n",
    "(check connectivity pattern during simulation)\n"};
constexpr const char *kTypeText[] = {" (6-neighbors connected by face)\n",
                                     " (18-neighbors connected by face or edge)\n",
                                     " (26-neighbors connected by face, edge or corner)\n"};

bool pastesPaths(int usage) {
  return usage == NUVO_CONNECTIVITY_PATHS_RANDOM_ORDER ||
         usage == NUVO_CONNECTIVITY_PATHS_DISTANCE_ORDER;
}

bool isKnownUsage(int usage) {
  return usage >= NUVO_CONNECTIVITY_NONE && usage <= NUVO_CONNECTIVITY_PATTERN;
}

template <typename Record>
void freeCommon(Record *c) {
  releaseOwnedClasses(&c->classOfValues);
  releaseArray(&c->varName);
}

// The whole dump; printReference writes the lines of the reference image.
template <typename Record, typename ReferencePrinter>
int printCommon(const Record *c, const char *prefix, FILE *stream,
                ReferencePrinter printReference) {
  const int usage = c->connectivityConstraintUsage;
  printCoded(stream, prefix, "connectivityConstraintUsage", usage, kUsageText, "(unknown)\n");
  if (usage == NUVO_CONNECTIVITY_NONE || !isKnownUsage(usage)) return 0;
  FieldPrinter out(stream, prefix);
  std::fprintf(stream, "%sconnectivityType:", prefix);
  const int type = c->connectivityType;
  const bool knownType = type >= CONNECT_FACE && type <= CONNECT_FACE_EDGE_CORNER;
  std::fputs(keywordOf(kConnectivityTypeKeywords, type), stream);
  std::fputs(knownType ? kTypeText[type] : "\n", stream);
  NUVO_TRY(printNested(out, "classOfValues", c->classOfValues, NUVOPrintClassOfValues));
  out.text("varName", c->varName);
  NUVO_TRY(printReference(out));
  out.field("deactivationDistance", "%.10g", c->deactivationDistance);
  out.field("threshold", "%.10g", c->threshold);
  return 0;
}

// ---- Reading the text form ----

int readReference(nuvo_connectivityASCII *c, FILE *stream) {
  NUVO_TRY(allocateOwnedText(&c->refConnectivityImageFileName, NUVO_FILE_NAME_MAX + 1));
  NUVO_TRY(readWord(stream, c->refConnectivityImageFileName, NUVO_FILE_NAME_MAX, -2114, -2115));
  if (std::strcmp(c->refConnectivityImageFileName, NUVO_CONNECTIVITY_TI_AS_REF) == 0) return 0;
  NUVO_TRY(allocateOwnedText(&c->refConnectivityVarName, NUVO_VAR_NAME_MAX + 1));
  return readWord(stream, c->refConnectivityVarName, NUVO_VAR_NAME_MAX, -2116, -2117);
}

int readConnectivity(nuvo_connectivityASCII *c, FILE *stream) {
  NUVO_TRY(readInt(stream, &c->connectivityConstraintUsage, -2110));
  const int usage = c->connectivityConstraintUsage;
  if (usage == NUVO_CONNECTIVITY_NONE) return 0;
  NUVO_TRY(readKeyword(stream, kConnectivityTypeKeywords, &c->connectivityType, -2111));
  NUVO_TRY(readOwnedClasses(&c->classOfValues, stream));
  NUVO_TRY(allocateOwnedText(&c->varName, NUVO_VAR_NAME_MAX + 1));
  NUVO_TRY(readWord(stream, c->varName, NUVO_VAR_NAME_MAX, -2112, -2113));
  if (pastesPaths(usage)) return readReference(c, stream);
  if (usage == NUVO_CONNECTIVITY_PATTERN) {
    NUVO_TRY(readDouble(stream, &c->deactivationDistance, -2118));
    return readDouble(stream, &c->threshold, -2119);
  }
  return 0;
}

// ---- Conversion ----

// Keeps the variable of image named varName as a new one-variable image.
int extractReferenceVariable(const nuvo_image *image, const char *varName, nuvo_image **reference) {
  NUVO_FAIL_IF(varName == nullptr || varName[0] == '\0', -135);
  int found = -1;
  for (int iv = 0; iv < image->nvar; ++iv) {
    if (std::strcmp(image->varName[iv], varName) != 0) continue;
    NUVO_FAIL_IF(found >= 0, -136);
    found = iv;
  }
  NUVO_FAIL_IF(found < 0, -137);
  NUVO_TRY(allocateArray(reference, 1));
  nuvo_image *out = *reference;
  NUVOInitImage(out);
  const int nxyz = image->grid->nxyz;
  NUVO_TRY(NUVOMallocImage(out, nxyz, 1));
  *out->grid = *image->grid;
  out->nvar = 1;
  out->nxyzv = nxyz;
  std::strcpy(out->varName[0], image->varName[found]);
  std::memcpy(out->var, image->var + static_cast<std::size_t>(found) * nxyz,
              static_cast<std::size_t>(nxyz) * sizeof(double));
  return 0;
}

int convertReference(const nuvo_connectivityASCII *in, nuvo_connectivity *out) {
  if (std::strcmp(in->refConnectivityImageFileName, NUVO_CONNECTIVITY_TI_AS_REF) == 0) {
    out->tiAsRefFlag = 1;
    return 0;
  }
  nuvo_image *file = nullptr;
  int rc = readOwnedImage(&file, in->refConnectivityImageFileName, -121);
  if (rc == 0)
    rc = extractReferenceVariable(file, in->refConnectivityVarName, &out->refConnectivityImage);
  releaseOwnedImage(&file);
  return rc;
}

int convert(const nuvo_connectivityASCII *in, nuvo_connectivity *out) {
  out->connectivityConstraintUsage = in->connectivityConstraintUsage;
  out->connectivityType = in->connectivityType;
  NUVO_TRY(copyOwnedClasses(in->classOfValues, &out->classOfValues));
  NUVO_TRY(copyArray(in->varName, NUVO_VAR_NAME_MAX + 1, &out->varName));
  out->deactivationDistance = in->deactivationDistance;
  out->threshold = in->threshold;
  // The pattern of labels is always compared with the first training image.
  if (in->connectivityConstraintUsage == NUVO_CONNECTIVITY_PATTERN) out->tiAsRefFlag = 1;
  if (in->refConnectivityImageFileName == nullptr) return 0;
  return convertReference(in, out);
}

// ---- Validation ----

int validate(const nuvo_connectivity *c) {
  const int usage = c->connectivityConstraintUsage;
  if (usage == NUVO_CONNECTIVITY_NONE) return 0;
  NUVO_FAIL_IF(!isKnownUsage(usage), -2091);
  NUVO_FAIL_IF(c->connectivityType < CONNECT_FACE || c->connectivityType > CONNECT_FACE_EDGE_CORNER,
               -2092);
  NUVO_FAIL_IF(c->classOfValues == nullptr, -2093);
  int error = 0;
  NUVOValidateClassOfValues(c->classOfValues, &error);
  NUVO_TRY(error);
  NUVO_FAIL_IF(c->varName == nullptr || std::strlen(c->varName) > NUVO_VAR_NAME_MAX, -2094);
  NUVO_FAIL_IF(c->tiAsRefFlag == 1 && c->refConnectivityImage != nullptr, -2098);
  NUVO_FAIL_IF(c->tiAsRefFlag == 0 && c->refConnectivityImage == nullptr, -2099);
  if (usage == NUVO_CONNECTIVITY_PATTERN) {
    NUVO_FAIL_IF(c->tiAsRefFlag != 1, -2097);
    NUVO_FAIL_IF(c->deactivationDistance < 0.0, -2100);
    NUVO_FAIL_IF(c->threshold < 1e-6, -2101);
    NUVO_FAIL_IF(c->threshold > 1.0, -2102);
    return 0;
  }
  if (c->refConnectivityImage != nullptr) {
    NUVOValidateImage(c->refConnectivityImage, 0, &error);
    NUVO_TRY(error);
    NUVO_FAIL_IF(c->refConnectivityImage->nvar != 1, -2096);
  }
  return 0;
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitConnectivity(nuvo_connectivity *c) {
  *c = nuvo_connectivity{};
}

void NUVOFreeConnectivity(nuvo_connectivity *c) {
  nuvo::freeCommon(c);
  nuvo::releaseOwnedImage(&c->refConnectivityImage);
  NUVOInitConnectivity(c);
}

int NUVOPrintConnectivity(const nuvo_connectivity *c, const char *prefix, FILE *stream) {
  return nuvo::guardedCall([&] {
    return nuvo::printCommon(c, prefix, stream, [&](const nuvo::FieldPrinter &out) {
      out.field("tiAsRefFlag", "%d", c->tiAsRefFlag);
      return nuvo::printNested(out, "refConnectivityImage", c->refConnectivityImage,
                               NUVOPrintImage);
    });
  });
}

int NUVOValidateConnectivity(const nuvo_connectivity *c, int *error) {
  *error = nuvo::validate(c);
  return 0;
}

void NUVOInitConnectivityASCII(nuvo_connectivityASCII *c) {
  *c = nuvo_connectivityASCII{};
}

void NUVOFreeConnectivityASCII(nuvo_connectivityASCII *c) {
  nuvo::freeCommon(c);
  nuvo::releaseArray(&c->refConnectivityImageFileName);
  nuvo::releaseArray(&c->refConnectivityVarName);
  NUVOInitConnectivityASCII(c);
}

int NUVOPrintConnectivityASCII(const nuvo_connectivityASCII *c, const char *prefix, FILE *stream) {
  return nuvo::guardedCall([&] {
    return nuvo::printCommon(c, prefix, stream, [&](const nuvo::FieldPrinter &out) {
      out.text("refConnectivityImageFileName", c->refConnectivityImageFileName);
      out.text("refConnectivityVarName", c->refConnectivityVarName);
      return 0;
    });
  });
}

int NUVOReadConnectivityASCII(nuvo_connectivityASCII *c, FILE *stream) {
  return nuvo::readConnectivity(c, stream);
}

int NUVOConnectivityASCIIToConnectivity(const nuvo_connectivityASCII *in, nuvo_connectivity *out) {
  return nuvo::guardedCall([&] { return nuvo::convert(in, out); });
}

}  // extern "C"
