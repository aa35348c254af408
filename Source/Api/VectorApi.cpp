// The exported operations on vectors of groups.

#include "Groups/GroupStore.h"
#include "Groups/LoosePool.h"

namespace {

dvec * findIn(Group const * group, std::string_view name) {
    return group != nullptr ? group->find(name) : nullptr;
}

// --- deletion by text. Both answer null after a message.

dvec * findQualifiedForDeletion(SplitName const & split, YString const & text, MessageHandler & messages) {
    Group const * group = findGroupOrCurrent(split.group);
    if (group == nullptr) {
        messages.error("There is no group of name '%s'", split.group);
        return nullptr;
    }
    dvec * vector = group->find(split.vector);
    if (vector == nullptr) messages.error("Could not find vector of name %s", text);
    return vector;
}

// The global group comes first; a vector of the current group must be named with its group.
dvec * findPlainForDeletion(YString const & name, MessageHandler & messages) {
    NameSpace const & groups = nameSpace();
    if (dvec * vector = findIn(groups.global, name)) return vector;
    if (dvec * vector = findIn(groups.local, name)) return vector;
    if (findIn(groups.current, name) != nullptr)
        messages.error("You must specify the group name explicitly to delete\na vector not in the %s group.",
                       groups.global != nullptr ? groups.global->name : YString());
    else
        messages.error("Could not find vector of name %s", name);
    return nullptr;
}

dvec * findForDeletion(YString const & name, MessageHandler & messages) {
    SplitName const split = splitVectorName(name);
    return split.hasGroup ? findQualifiedForDeletion(split, name, messages) : findPlainForDeletion(name, messages);
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

} // namespace

VEC_ERROR vec_GetVector(YString const & group, YString const & name, XYVector ** out) {
    *out = nullptr;
    if (group.empty()) {
        *out = findVector(name, nullptr, false);
    } else {
        Group const * home = findGroup(group);
        if (home == nullptr) return VEC_NO_GROUP;
        *out = home->find(name);
    }
    return *out != nullptr ? VEC_OK : VEC_NO_VECTOR;
}

VEC_ERROR vec_GetVectorPseudonym(YString const & group, YString const & name, YString * pseudonym) {
    Group * home = findGroupOrCurrent(group);
    if (home == nullptr) return VEC_NO_GROUP;
    *pseudonym = home->pseudonymOf(name);
    return VEC_OK;
}

VEC_ERROR vec_DestroyVector(YString const & name, MessageHandler & messages, bool direct) {
    dvec * vector = findForDeletion(name, messages);
    if (vector == nullptr) return VEC_NOT_DONE;
    if (vector->isReadOnly()) {
        messages.error("Vector '%s' is read-only and may not be deleted", vector->name());
        return VEC_NOT_DONE;
    }
    if (direct)
        vector->release();
    else
        vector->leaveGroup();
    return VEC_OK;
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

void vec_CollectGarbage() {
    LoosePool::sweep();
}
