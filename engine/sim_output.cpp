// Life cycle of nuvo_simOutput.
#include <cstdlib>
#include <initializer_list>

#include "nuvo_sim.h"

namespace nuvo {
namespace {

void freeOwnedImage(nuvo_image *&image) {
  if (image == nullptr) return;
  NUVOFreeImage(image);
  std::free(image);
  image = nullptr;
}

}  // namespace
}  // namespace nuvo

extern "C" {

void NUVOInitSimOutput(nuvo_simOutput *out) {
  *out = nuvo_simOutput{};
}

void NUVOFreeSimOutput(nuvo_simOutput *out) {
  for (nuvo_image **image :
       {&out->outputSimImage, &out->outputPathIndexImage, &out->outputErrorImage,
        &out->outputTiGridNodeIndexImage, &out->outputTiIndexImage})
    nuvo::freeOwnedImage(*image);
  NUVOInitSimOutput(out);
}

}  // extern "C"
