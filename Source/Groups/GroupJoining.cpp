// Groups that become one: a group continued by another in its data file, and a group replaced by another's contents.

#include "Groups/GroupStore.h"

#include <unordered_set>

namespace {

// Continues the data of a target group, each record of the source once however many vectors share it.
class Continuation {
public:
    Continuation(Group const & target_, int linkIndex_) : target(target_), linkIndex(linkIndex_) {}

    void append(dvec const & from) {
        if (equalNoCase(from.name(), "$$RunId")) return;
        dvec * to = target.vectors.find(from.name());
        if (to == nullptr) return;
        appendData(*to, from);
        if (!from.ref.name().empty()) appendData(to->ref, from.ref);
    }

private:
    void appendData(BaseVector & to, BaseVector const & from) {
        if (from.isString() || from.type() != to.type()) return;
        void const * record = from.dataIdentity();
        if (record != nullptr && !appended.insert(record).second) return;
        to.appendVector(&from, linkIndex, *target.labels);
    }

    Group const & target;
    int linkIndex;
    std::unordered_set<void const *> appended;
};

} // namespace

void appendGroup(Group & target, Group & source) {
    if (&target == &source || target.dataFile == nullptr || source.dataFile == nullptr) return;
    for (YString const & label : *source.labels) target.addLabel(label);
    int const linkIndex = target.dataFile->link(*source.dataFile);
    if (linkIndex != -1) {
        Continuation continuation(target, linkIndex);
        source.forEachVector([&continuation](dvec const & vector) { continuation.append(vector); });
    }
    target.dataFile->writeLinks();
}

void mergeGroup(Group & destination, Group & source) {
    destination.forEachVector([](dvec & vector) { vector.release(); });
    source.forEachVector([&destination](dvec const & vector) {
        if (destination.vectors.contains(vector.name())) return;
        auto * copy = new dvec(vector.name(), &destination, PT_UNKNOWN);
        copy->flags = static_cast<std::uint16_t>(vector.flags & (VF_ALIAS | VF_REFALIAS));
        copy->assign(vector);
    });
    destination.labels = source.labels;
    destination.hasRealData = destination.hasRealData || source.hasRealData;
}
