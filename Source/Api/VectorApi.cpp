// The exported operations that find, describe and end vectors of groups.

#include "torvelan/VectorStore.h"

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

} // namespace

VEC_ERROR vec_GetVector(YString const & group, YString const & name, XYVector ** out) {
    if (out != nullptr) *out = nullptr;
    Group const * home = group.empty() ? nullptr : findGroup(group);
    if (home == nullptr && !group.empty()) return VEC_NO_GROUP;
    dvec * vector = home != nullptr ? home->find(name) : findVector(name, nullptr, false);
    if (out != nullptr) *out = vector;
    return vector != nullptr ? VEC_OK : VEC_NO_VECTOR;
}

VEC_ERROR vec_ExistVec(YString const & name, bool * exists, VectorExtInfo * info) {
    dvec const * vector = findVector(name, nullptr, false);
    if (exists != nullptr) *exists = vector != nullptr;
    if (info != nullptr) info->isAlias = vector != nullptr && vector->isAlias();
    return VEC_OK;
}

VEC_ERROR vec_GetVectorLength(YString const & name, long long * out) {
    dvec const * vector = findVector(name, nullptr, false);
    if (out != nullptr) *out = vector != nullptr ? vector->length() : -1;
    return VEC_OK;
}

VEC_ERROR vec_GetVectorPseudonym(YString const & group, YString const & name, YString * pseudonym) {
    Group * home = findGroupOrCurrent(group);
    if (home == nullptr) return VEC_NO_GROUP;
    if (pseudonym != nullptr) *pseudonym = home->pseudonymOf(name);
    return VEC_OK;
}

VEC_ERROR vec_GetXYVectorAsString(XYVector * vector, YArray<YString> * out) {
    if (vector == nullptr || !vector->isString()) return VEC_OTHER_KIND;
    if (out == nullptr) return VEC_OK;
    out->clear();
    out->reserve(static_cast<std::size_t>(vector->length(0)));
    for (std::int64_t i = 0; i < vector->length(0); ++i) {
        char const * element = vector->getString(i, 0);
        out->emplace_back(element != nullptr ? element : "");
    }
    return VEC_OK;
}

bool vec_TestVectorUsesReference(XYVector const * y, YString const & group, YString const & name) {
    dvec const * vector = findIn(findGroupOrCurrent(group), name);
    return y != nullptr && vector != nullptr && y->ref.sharesRep(*vector);
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

void vec_CollectGarbage() {
    LoosePool::sweep();
}
