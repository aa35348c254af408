// The exported operations that make vectors of groups.

#include "torvelan/VectorStore.h"

#include "Groups/GroupStore.h"

namespace {

// --- vectors to be filled

// The kind of an existing vector against the one asked for; kinds other than numbers fit anything.
VEC_ERROR fits(dvec const & vector, VD_type wanted) noexcept {
    bool const differs = (wanted == VD_COMPLEX && !vector.isComplex()) || (wanted == VD_REAL && !vector.isReal());
    if (!differs) return VEC_EXISTS;
    return vector.isAlias() ? VEC_ALIAS_OF_OTHER_KIND : VEC_OTHER_KIND;
}

void prepare(NamedVector & vector, MakeVectorOptions const & options) {
    vector.setBufferSize(options.bufferSize);
    if (options.multiple) vector.setMultiple();
}

dvec * newMember(Group & group, VectorParam const & param, MakeVectorOptions const & options) {
    auto * vector = new dvec(param.name, &group, param.physType);
    prepare(*vector, options);
    vector->enterGroup();
    return vector;
}

// The reference that a new vector is to have: the vector of the group that all vectors of the run share, or one for
// this vector alone.
void makeReference(dvec & y, Group & group, VectorParam const & x, MakeVectorOptions const & options) {
    if (options.separateReference) {
        y.ref.setName(x.name);
        y.ref.setPhysType(x.physType);
        prepare(y.ref, options);
        return;
    }
    dvec * shared = group.find(x.name);
    y.ref = shared != nullptr ? *shared : *newMember(group, x, options);
}

void handOut(dvec const & vector, IfVector * yOut, IfVector * xOut) noexcept {
    if (yOut != nullptr) *yOut = vector;
    if (xOut != nullptr) *xOut = vector.ref;
}

// --- reference aliases

constexpr int maxAliasSteps = 100;

// The vector at the end of a chain of reference aliases. Null when the chain leads nowhere or, with a message, in a
// circle.
dvec * endOfAliases(dvec * vector, YString const & target, MessageHandler & messages) {
    for (int step = 0; vector != nullptr && vector->isReferenceAlias(); ++step) {
        dvec * next = vector->resolveReferenceAlias();
        if (next == vector || step == maxAliasSteps) {
            messages.error("Reference alias '%s' is recursive", target);
            return nullptr;
        }
        vector = next;
    }
    return vector;
}

// --- strings

VEC_ERROR makeStringMember(Group & group, YString const & name, YString const & text, PhysType physType,
                           std::uint16_t flags) {
    auto * vector = new dvec(name, text.view(), &group, physType);
    vector->flags = flags;
    vector->enterGroup();
    return VEC_OK;
}

} // namespace

VEC_ERROR vec_MakeVector(YString const & group, VectorParam const * y, VectorParam const * x, IfVector * yOut,
                         IfVector * xOut, MakeVectorOptions const & options) {
    Group * home = findGroupOrCurrent(group);
    if (home == nullptr) return VEC_NO_GROUP;
    if (y == nullptr) return VEC_NO_VECTOR;
    if (dvec const * known = home->find(y->name)) {
        VEC_ERROR const answer = fits(*known, y->type);
        if (answer == VEC_EXISTS) handOut(*known, yOut, xOut);
        return answer;
    }
    if (options.noCreate) return VEC_NO_VECTOR;
    dvec * vector = newMember(*home, *y, options);
    bool const hasReference = x != nullptr && !x->name.empty();
    if (hasReference) makeReference(*vector, *home, *x, options);
    if (y->type == VD_COMPLEX) vector->setComplexFlag();
    handOut(*vector, yOut, hasReference ? xOut : nullptr);
    return VEC_OK;
}

VEC_ERROR vec_MakeString(YString const & name, YString const & value, YString const & group) {
    Group * home = findGroupOrCurrent(group);
    if (home == nullptr) return VEC_NO_GROUP;
    if (home->find(name) != nullptr) return VEC_EXISTS;
    return makeStringMember(*home, name, value, PT_UNKNOWN, 0);
}

VEC_ERROR vec_MakeAliasVector(YString const & name, YString const & expression, YString const & group,
                              PhysType physType) {
    Group * home = findGroupOrCurrent(group);
    return home != nullptr ? makeStringMember(*home, name, expression, physType, VF_ALIAS) : VEC_NO_GROUP;
}

VEC_ERROR vec_MakeReferenceAlias(YString const & name, YString const & target, MessageHandler & messages) {
    dvec const * last = endOfAliases(findVector(target, nullptr, false), target, messages);
    Group * home = localOrGlobal();
    if (last == nullptr || last->isTemporary() || home == nullptr) return VEC_NOT_DONE;
    auto * alias = new dvec(name, last->fullName(), home, last->physType());
    alias->enterGroup();
    if (alias->isTemporary()) {
        alias->release();
        return VEC_NOT_DONE;
    }
    alias->flags |= VF_ALIAS | VF_REFALIAS;
    return VEC_OK;
}
