// Pyramid variables: indicators, categories turned continuous, continuous variables.
#include "pyramid/pyramid_variables.hpp"

#include <algorithm>
#include <cstdio>
#include <map>

#include "constraints/probability_constraint.hpp"
#include "data/values.hpp"
#include "nuvo_pyramidparams.h"

namespace nuvo {
namespace {

// Distinct informed values of variable v over the training images, increasing.
std::vector<double> categoriesOf(const nuvo_simInput &si, std::span<const nuvo_image> ti, int v) {
  std::vector<double> c;
  for (int t = 0; t < si.ntrainImage; ++t) {
    if (si.simGridAsTiFlag[t]) continue;
    for (double x : variableValues(&ti[t], v))
      if (!isMissing(x)) c.push_back(x);
    std::sort(c.begin(), c.end());
    c.erase(std::unique(c.begin(), c.end()), c.end());
  }
  return c;
}

// The value of each category in the connection order (see the header).
std::vector<double> rankValues(const nuvo_simInput &si, std::span<const nuvo_image> ti, int v,
                               const std::vector<double> &cat) {
  const std::size_t m = cat.size();
  const auto indexOf = [&cat](double x) {
    return static_cast<std::size_t>(std::lower_bound(cat.begin(), cat.end(), x) - cat.begin());
  };
  std::vector<long long> count(m, 0), pair(m * m, 0);
  for (int t = 0; t < si.ntrainImage; ++t) {
    if (si.simGridAsTiFlag[t]) continue;
    const nuvo_grid &g = *ti[t].grid;
    std::span<const double> x = variableValues(&ti[t], v);
    const int step[3] = {1, g.nx, g.nxy};
    for (int k = 0; k < g.nxyz; ++k) {
      if (isMissing(x[k])) continue;
      const std::size_t a = indexOf(x[k]);
      ++count[a];
      const int pos[3] = {k % g.nx, (k / g.nx) % g.ny, k / g.nxy};
      const int dim[3] = {g.nx, g.ny, g.nz};
      for (int d = 0; d < 3; ++d) {
        if (pos[d] + 1 >= dim[d] || isMissing(x[k + step[d]])) continue;
        const std::size_t b = indexOf(x[k + step[d]]);
        if (a == b) continue;
        ++pair[a * m + b];
        ++pair[b * m + a];
      }
    }
  }
  std::vector<char> placed(m, 0);
  std::vector<double> value(m, 0.0);
  std::size_t last =
      static_cast<std::size_t>(std::max_element(count.begin(), count.end()) - count.begin());
  for (std::size_t r = 0; r < m; ++r) {
    if (r > 0) {
      std::size_t next = m;
      for (std::size_t c = 0; c < m; ++c) {
        if (placed[c]) continue;
        if (next == m || pair[last * m + c] > pair[last * m + next] ||
            (pair[last * m + c] == pair[last * m + next] && count[c] > count[next]))
          next = c;
      }
      last = next;
    }
    placed[last] = 1;
    value[last] = m > 1 ? static_cast<double>(r) / static_cast<double>(m - 1) : 0.0;
  }
  return value;
}

}  // namespace

std::string levelName(const std::string &base, int j) {
  char suffix[16];
  std::snprintf(suffix, sizeof suffix, "_lev%03d", j);
  return base.substr(0, kNameSlot - 1 - std::char_traits<char>::length(suffix)) + suffix;
}

int PyramidVariables::prepare(const nuvo_simInput &si, std::span<const nuvo_image> trainImage) {
  si_ = &si;
  category_.assign(static_cast<std::size_t>(si.nvar), {});
  rankValue_.assign(static_cast<std::size_t>(si.nvar), {});
  for (int v = 0; v < si.nvar; ++v) {
    const nuvo_pyramidParameters &p = si.pyramidParameters[v];
    if (p.nlevel < 1) continue;
    const std::string name = si.simImage->varName[v];
    switch (p.pyramidType) {
      case PYRAMID_CONTINUOUS:
        list_.push_back({v, p.pyramidType, 0, name});
        break;
      case PYRAMID_CATEGORICAL_AUTO:
        category_[v] = categoriesOf(si, trainImage, v);
        for (std::size_t c = 0; c + 1 < category_[v].size(); ++c)
          list_.push_back(
              {v, p.pyramidType, static_cast<int>(c), name + "_ind" + std::to_string(c)});
        break;
      case PYRAMID_CATEGORICAL_CUSTOM:
        for (int c = 0; c < p.classOfValues->nclass; ++c)
          list_.push_back({v, p.pyramidType, c, name + "_ind" + std::to_string(c)});
        break;
      default:  // PYRAMID_CATEGORICAL_TO_CONTINUOUS
        category_[v] = categoriesOf(si, trainImage, v);
        rankValue_[v] = rankValues(si, trainImage, v, category_[v]);
        list_.push_back({v, p.pyramidType, 0, name});
    }
  }
  return 0;
}

std::vector<int> PyramidVariables::atLevel(int j) const {
  std::vector<int> at;
  for (std::size_t i = 0; i < list_.size(); ++i)
    if (si_->pyramidParameters[list_[i].source].nlevel >= j) at.push_back(static_cast<int>(i));
  return at;
}

int PyramidVariables::distanceType(int i) const {
  const PyramidVariable &p = list_[static_cast<std::size_t>(i)];
  return p.type == PYRAMID_CONTINUOUS ? si_->distanceType[p.source] : 2;
}

int PyramidVariables::transform(const nuvo_image &in, bool data, nuvo_image *out) const {
  NUVOFreeImage(out);
  NUVO_TRY(NUVOMallocImage(out, in.grid->nxyz, static_cast<int>(list_.size())));
  *out->grid = *in.grid;
  out->nvar = static_cast<int>(list_.size());
  out->nxyzv = out->nvar * in.grid->nxyz;
  for (std::size_t i = 0; i < list_.size(); ++i) {
    const PyramidVariable &p = list_[i];
    std::snprintf(out->varName[i], kNameSlot, "%s", p.name.c_str());
    std::span<const double> x = variableValues(&in, p.source);
    std::span<double> y = variableValues(out, static_cast<int>(i));
    const std::vector<double> &cat = category_[p.source];
    for (std::size_t k = 0; k < x.size(); ++k) {
      const double a = x[k];
      if (isMissing(a)) {
        y[k] = a;
        continue;
      }
      switch (p.type) {
        case PYRAMID_CONTINUOUS:
          y[k] = a;
          break;
        case PYRAMID_CATEGORICAL_AUTO:
          y[k] = a == cat[p.index] ? 1.0 : 0.0;
          break;
        case PYRAMID_CATEGORICAL_CUSTOM:
          y[k] = classOfValue(*si_->pyramidParameters[p.source].classOfValues, a) == p.index;
          break;
        default: {
          const auto it = std::lower_bound(cat.begin(), cat.end(), a);
          if (it == cat.end() || *it != a) {
            NUVO_FAIL_IF(data, -554);
            y[k] = NUVO_MISSING_VALUE;
          } else {
            y[k] = rankValue_[p.source][static_cast<std::size_t>(it - cat.begin())];
          }
        }
      }
    }
  }
  return 0;
}

}  // namespace nuvo
