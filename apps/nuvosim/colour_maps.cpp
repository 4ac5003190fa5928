#include "colour_maps.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "nuvo_image.h"

namespace nuvo::cli {

namespace {

// Qualitative palette: distinct hues of similar weight, none of them grey, so
// that no category can be mistaken for a missing value.
constexpr std::array<Rgb, ColourScale::kMaxCategories> kPalette{{
    {78, 121, 167},   // blue
    {242, 142, 43},   // orange
    {89, 161, 79},    // green
    {225, 87, 89},    // red
    {176, 122, 161},  // purple
    {237, 201, 72},   // yellow
    {118, 183, 178},  // teal
    {255, 157, 167},  // pink
    {156, 117, 95},   // brown
    {31, 58, 95},     // navy
    {160, 203, 232},  // light blue
    {140, 209, 125},  // light green
}};

// Viridis sampled at nine equally spaced points from 0 to 1; linear
// interpolation between neighbours stays within a shade of the full map.
constexpr std::array<Rgb, 9> kViridis{{
    {68, 1, 84},
    {71, 45, 123},
    {59, 82, 139},
    {44, 114, 142},
    {33, 144, 140},
    {39, 173, 129},
    {93, 200, 99},
    {170, 220, 50},
    {253, 231, 37},
}};

std::uint8_t mix(std::uint8_t a, std::uint8_t b, double t) {
  return static_cast<std::uint8_t>(std::lround(a + (b - a) * t));
}

// Viridis colour of t in [0, 1].
Rgb viridis(double t) {
  const double position = std::clamp(t, 0.0, 1.0) * (kViridis.size() - 1);
  const auto k = std::min(static_cast<std::size_t>(position), kViridis.size() - 2);
  const double f = position - static_cast<double>(k);
  const Rgb &a = kViridis[k];
  const Rgb &b = kViridis[k + 1];
  return {mix(a.r, b.r, f), mix(a.g, b.g, f), mix(a.b, b.b, f)};
}

bool informed(double value) {
  return std::isfinite(value) && value != NUVO_MISSING_VALUE;
}

}  // namespace

std::string hexText(Rgb colour) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02x%02x%02x", colour.r, colour.g, colour.b);
  return text;
}

ColourScale::ColourScale(std::span<const double> values) {
  std::copy_if(values.begin(), values.end(), std::back_inserter(values_), informed);
  std::sort(values_.begin(), values_.end());
  values_.erase(std::unique(values_.begin(), values_.end()), values_.end());
  if (values_.size() > static_cast<std::size_t>(kMaxCategories)) {
    categorical_ = false;
    values_ = {values_.front(), values_.back()};
  }
}

Rgb ColourScale::operator()(double value) const {
  if (!informed(value)) return kMissingColour;
  if (categorical_) {
    const auto at = std::lower_bound(values_.begin(), values_.end(), value);
    return kPalette[static_cast<std::size_t>(at - values_.begin())];
  }
  return viridis((value - values_[0]) / (values_[1] - values_[0]));
}

}  // namespace nuvo::cli
