// Labels of divisions, kept with the data or fetched from the group of a run when somebody asks.
#include "torvelan/Vectors.h"

#include "Vectors/LabelSource.h"
#include "Vectors/VectorRep.h"

#include <utility>

bool (*fetchGroupLabels)(YString const &, std::shared_ptr<NameArray const> *) = nullptr;

namespace {

// The labels of a group that is gone are those that were fetched last.
std::shared_ptr<NameArray const> const & currentLabels(VectorRep & rep) {
    if (!rep.labelGroup.empty()) {
        if (fetchGroupLabels) fetchGroupLabels(rep.labelGroup, &rep.labels);
        rep.labelGroup = {};
    }
    return rep.labels;
}

} // namespace

YString BaseVector::divisionLabel(std::int64_t i) const {
    std::int64_t n = numDivisions();
    if (rep && i >= 0 && i < n) {
        auto const & labels = currentLabels(*rep);
        auto index = static_cast<std::size_t>(firstDivision + i);
        if (labels && index < labels->size()) return (*labels)[index];
    }
    return n >= 2 ? "?" : "";
}

void BaseVector::divisionLabels(NameArray * out) const {
    std::int64_t n = numDivisions();
    out->reserve(out->size() + static_cast<std::size_t>(n));
    for (std::int64_t i = 0; i < n; ++i) out->push_back(divisionLabel(i));
}

std::shared_ptr<NameArray const> BaseVector::sharedLabels() const {
    return rep ? currentLabels(*rep) : nullptr;
}

void BaseVector::setLabels(NameArray const & labels, bool requireUnique) {
    if (acceptsLabels(labels.size(), requireUnique))
        setLabels(std::make_shared<NameArray const>(labels), requireUnique);
}

void BaseVector::setLabels(std::shared_ptr<NameArray const> labels, bool requireUnique) {
    if (!labels || !acceptsLabels(labels->size(), requireUnique)) return;
    unique()->setLabels(std::move(labels));
}

bool BaseVector::acceptsLabels(std::size_t count, bool requireUnique) const {
    bool sharedWithOthers = rep && rep->isShared() && !rep->isUntouched();
    if (requireUnique && sharedWithOthers) return false;
    return firstDivision == 0 && endDivision == -1 && count == static_cast<std::size_t>(numDivisions());
}
