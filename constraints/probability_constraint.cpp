#include "constraints/probability_constraint.hpp"

#include <algorithm>

#include "constraints/pdf_comparison.hpp"
#include "data/values.hpp"
#include "foundation/check.hpp"

namespace nuvo {
namespace {

constexpr int kTrainValueInNoClass = -1928;
constexpr int kDatumInNoClass = -1929;

// The class index of every node of variable v of `image`; `failure` when an
// informed value lies in no class.
int classifyImage(const nuvo_classOfValues &classes, const nuvo_image &image, int v, int failure,
                  std::vector<std::int16_t> *out) {
  const int nxyz = image.grid->nxyz;
  const double *values = image.var + static_cast<long long>(v) * nxyz;
  out->assign(static_cast<std::size_t>(nxyz), kNoClass);
  for (int k = 0; k < nxyz; ++k) {
    if (isMissing(values[k])) continue;
    const int c = classOfValue(classes, values[k]);
    NUVO_FAIL_IF(c == kNoClass, failure);
    (*out)[k] = static_cast<std::int16_t>(c);
  }
  return 0;
}

void addClasses(std::span<const std::int16_t> classes, std::span<std::int64_t> count) {
  for (std::int16_t c : classes)
    if (c != kNoClass) ++count[c];
}

}  // namespace

int classOfValue(const nuvo_classOfValues &classes, double value) {
  for (int c = 0; c < classes.nclass; ++c)
    for (int i = 0; i < classes.ninterval[c]; ++i)
      if (classes.intervalInf[c][i] <= value && value < classes.intervalSup[c][i]) return c;
  return kNoClass;
}

int ProbabilityConstraint::prepare(const nuvo_softProbability &sp, int variable,
                                   std::span<const nuvo_image *const> trainImage,
                                   const nuvo_image &conditioned) {
  sp_ = &sp;
  variable_ = variable;
  grid_ = conditioned.grid;
  const nuvo_classOfValues &classes = *sp.classOfValues;
  const int nclass = classes.nclass;
  count_.assign(static_cast<std::size_t>(nclass), 0);

  NUVO_TRY(classifyImage(classes, conditioned, variable, kDatumInNoClass, &gridClass_));
  trainClass_.assign(trainImage.size(), {});
  // Training proportions: the simulation grid used as a training image counts
  // with its conditioning data.
  std::vector<std::int64_t> trainCount(static_cast<std::size_t>(nclass), 0);
  for (std::size_t t = 0; t < trainImage.size(); ++t) {
    if (trainImage[t] == nullptr) {
      addClasses(gridClass_, trainCount);
      continue;
    }
    NUVO_TRY(
        classifyImage(classes, *trainImage[t], variable, kTrainValueInNoClass, &trainClass_[t]));
    addClasses(trainClass_[t], trainCount);
  }
  optimalTable_.clear();
  if (sp.comparingPdfMethod == NUVO_COMPARING_PDF_MLIKROPT) {
    std::int64_t total = 0;
    for (std::int64_t n : trainCount) total += n;
    for (int c = 0; c < nclass; ++c) {
      const double pi = total > 0 ? static_cast<double>(trainCount[c]) / total : 0.0;
      optimalTable_.push_back(optimalIntervalTable(pi, sp.constantThreshold));
    }
  }
  return 0;
}

int ProbabilityConstraint::beginRealization(const nuvo_image &work) {
  NUVO_TRY(classifyImage(*sp_->classOfValues, work, variable_, kDatumInNoClass, &gridClass_));
  std::fill(count_.begin(), count_.end(), 0);
  addClasses(gridClass_, count_);
  return 0;
}

int ProbabilityConstraints::beginRealization(const nuvo_image &work) {
  for (ProbabilityConstraint &c : constraint_) NUVO_TRY(c.beginRealization(work));
  return 0;
}

ConstraintTally ProbabilityConstraint::tally() const {
  const std::size_t n = count_.size();
  return {std::vector<std::int64_t>(n, 0), std::vector<std::int64_t>(n, 0),
          std::vector<double>(n, 0.0), std::vector<double>(n, 0.0)};
}

void ProbabilityConstraint::assign(int node, int cls, ConstraintTally &tally) {
  std::int16_t &c = gridClass_[node];
  if (c != kNoClass) --tally.pending[c];
  c = static_cast<std::int16_t>(cls);
  ++tally.pending[cls];
}

void ProbabilityConstraint::settle(ConstraintTally &tally) {
  for (std::size_t c = 0; c < count_.size(); ++c) {
    count_[c] += tally.pending[c];
    tally.pending[c] = 0;
  }
}

void ProbabilityConstraint::clear(int node) {
  std::int16_t &c = gridClass_[node];
  if (c == kNoClass) return;
  --count_[c];
  c = kNoClass;
}

void ProbabilityConstraint::countNeighborhood(int node, std::span<std::int64_t> count,
                                              NodeFilter *filter) const {
  const nuvo_grid &g = *grid_;
  const nuvo_searchNeighborhood &nb = *neighborhood_;
  const double radius = *sp_->localPdfSupportRadius;
  const int x = node % g.nx, y = node % g.nxy / g.nx, z = node / g.nxy;
  for (int j = 0; j < nb.size && nb.distance[j] <= radius; ++j) {
    const int xx = x + nb.ix[j], yy = y + nb.iy[j], zz = z + nb.iz[j];
    if (xx < 0 || xx >= g.nx || yy < 0 || yy >= g.ny || zz < 0 || zz >= g.nz) continue;
    const int neighbor = xx + g.nx * yy + g.nxy * zz;
    if (filter != nullptr && !filter->visible(neighbor)) continue;
    const std::int16_t c = gridClass_[neighbor];
    if (c != kNoClass) ++count[c];
  }
}

void ProbabilityConstraint::countEvent(EventNodes event, std::span<std::int64_t> count) const {
  const double radius = *sp_->localPdfSupportRadius;
  for (std::size_t i = 0; i < event.node.size() && event.distance[i] <= radius; ++i) {
    const std::int16_t c = gridClass_[event.node[i]];
    if (c != kNoClass) ++count[c];
  }
}

bool ProbabilityConstraint::penalties(int node, EventNodes event, std::span<double> out,
                                      ConstraintTally &tally, NodeFilter *filter) {
  const nuvo_softProbability &sp = *sp_;
  if (!event.distance.empty() && event.distance.back() < sp.deactivationDistance) return false;
  const int nclass = this->nclass();
  std::vector<double> &target = tally.target;
  std::vector<std::int64_t> &count = tally.localCount;
  if (sp.probabilityConstraintUsage == NUVO_PROBABILITY_CONSTRAINT_GLOBAL) {
    std::copy_n(sp.globalPdf, nclass, target.begin());
    for (int c = 0; c < nclass; ++c) count[c] = count_[c] + tally.pending[c];
  } else {
    const nuvo_image &pdf = *sp.localPdfImage;
    const long long nxyz = pdf.grid->nxyz;
    if (isMissing(pdf.var[node])) return false;
    double sum = 0.0;
    for (int c = 0; c < nclass; ++c) sum += target[c] = pdf.var[c * nxyz + node];
    for (double &p : target) p /= sum;
    std::fill(count.begin(), count.end(), 0);
    if (sp.localCurrentPdfComputation == NUVO_LOCAL_CURRENT_PDF_COMPLETE)
      countNeighborhood(node, count, filter);
    else
      countEvent(event, count);
  }
  if (!optimalTable_.empty())
    for (int c = 0; c < nclass; ++c)
      tally.lowerHalfWidth[c] = lookUpLowerHalfWidth(optimalTable_[c], target[c]);
  candidatePenalties(sp, target, count, tally.lowerHalfWidth, out);
  return true;
}

int ProbabilityConstraints::prepare(const nuvo_simInput &si, std::span<const nuvo_image> trainImage,
                                    const nuvo_image &conditioned) {
  constraint_.clear();
  index_.assign(static_cast<std::size_t>(si.nvar), -1);
  if (si.softProbability == nullptr) return 0;
  std::vector<const nuvo_image *> images;
  for (int t = 0; t < si.ntrainImage; ++t)
    images.push_back(si.simGridAsTiFlag[t] ? nullptr : &trainImage[t]);
  for (int v = 0; v < si.nvar; ++v) {
    const nuvo_softProbability &sp = si.softProbability[v];
    if (sp.probabilityConstraintUsage == NUVO_PROBABILITY_CONSTRAINT_NONE) continue;
    index_[v] = static_cast<int>(constraint_.size());
    NUVO_TRY(constraint_.emplace_back().prepare(sp, v, images, conditioned));
  }
  if (constraint_.empty()) index_.clear();
  return 0;
}

}  // namespace nuvo
