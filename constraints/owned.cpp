// Owned members of the constraint and pyramid records.
#include "constraints/owned.hpp"

#include <memory>

#include "nuvo_imagefile.h"

namespace nuvo {

int readOwnedClasses(nuvo_classOfValues **classes, FILE *stream) {
  if (int rc = allocateArray(classes, 1); rc != 0) return rc;
  NUVOInitClassOfValues(*classes);
  return NUVOReadClassOfValues(*classes, stream);
}

int copyOwnedClasses(const nuvo_classOfValues *source, nuvo_classOfValues **copy) {
  if (source == nullptr) return 0;
  if (int rc = allocateArray(copy, 1); rc != 0) return rc;
  NUVOInitClassOfValues(*copy);
  return NUVOCopyClassOfValues(source, *copy);
}

void releaseOwnedClasses(nuvo_classOfValues **classes) {
  if (*classes != nullptr) NUVOFreeClassOfValues(*classes);
  releaseArray(classes);
}

int readOwnedImage(nuvo_image **image, const char *fileName, int cannotOpenCode) {
  std::unique_ptr<FILE, int (*)(FILE *)> file(std::fopen(fileName, "r"), &std::fclose);
  if (file == nullptr) return cannotOpenCode;
  if (int rc = allocateArray(image, 1); rc != 0) return rc;
  NUVOInitImage(*image);
  return NUVOReadImage(*image, 0, file.get());
}

void releaseOwnedImage(nuvo_image **image) {
  if (*image != nullptr) NUVOFreeImage(*image);
  releaseArray(image);
}

}  // namespace nuvo
