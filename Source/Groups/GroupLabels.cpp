// The labels of divisions belong to the group: a vector of a run asks for them by the name of its group.

#include "Groups/GroupStore.h"
#include "Vectors/LabelSource.h"

namespace {

bool labelsOfGroup(YString const & name, std::shared_ptr<NameArray const> * labels) {
    Group const * group = findGroupOrCurrent(name);
    if (group == nullptr) return false;
    *labels = group->labels;
    return true;
}

[[maybe_unused]] bool const installed = (fetchGroupLabels = labelsOfGroup, true);

} // namespace
