// Colours of the rendered pictures: a categorical palette for variables with few
// distinct values, the viridis map (perceptually uniform, readable in grey and by
// colour-blind viewers) for the others, and a neutral grey for missing values.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nuvo::cli {

struct Rgb {
  std::uint8_t r, g, b;
};

inline constexpr Rgb kMissingColour{150, 150, 150};
inline constexpr Rgb kBackgroundColour{255, 255, 255};

// "#rrggbb".
std::string hexText(Rgb colour);

// Maps the values of one variable to colours. Built from all its values
// (missing and non-finite ones are skipped): with at most kMaxCategories distinct
// values each gets a palette colour in ascending order, otherwise the value's
// position between the minimum and the maximum picks a viridis colour.
class ColourScale {
 public:
  static constexpr int kMaxCategories = 12;

  explicit ColourScale(std::span<const double> values);

  Rgb operator()(double value) const;

  bool categorical() const { return categorical_; }
  // The distinct values (categorical scale), or the minimum and the maximum.
  const std::vector<double> &values() const { return values_; }

 private:
  bool categorical_ = true;
  std::vector<double> values_;
};

}  // namespace nuvo::cli
