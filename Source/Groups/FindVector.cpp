#include "Groups/GroupStore.h"

namespace {

dvec * findIn(Group const * group, HashedName const & name) {
    return group != nullptr ? group->find(name) : nullptr;
}

// Local, global, current: the first hit wins, and no group is asked twice.
dvec * findPlain(HashedName const & name, bool skipCurrentGroup) {
    NameSpace const & groups = nameSpace();
    dvec * vector = findIn(groups.local, name);
    if (vector == nullptr && groups.global != groups.local) vector = findIn(groups.global, name);
    if (vector != nullptr || skipCurrentGroup) return vector;
    return groups.current != groups.global && groups.current != groups.local ? findIn(groups.current, name) : nullptr;
}

} // namespace

SplitName splitVectorName(std::string_view name) noexcept {
    std::size_t const colon = name.find(':');
    if (colon == std::string_view::npos) return {{}, name, false};
    return {name.substr(0, colon), name.substr(colon + 1), true};
}

dvec * findVector(std::string_view name, bool * wasQualified, bool skipCurrentGroup, bool * existsAsPlainName) {
    SplitName const split = splitVectorName(name);
    if (wasQualified != nullptr) *wasQualified = !split.group.empty();
    if (existsAsPlainName != nullptr)
        *existsAsPlainName = split.hasGroup && findPlain(HashedName(name), false) != nullptr;
    if (!split.hasGroup) return findPlain(HashedName(name), skipCurrentGroup);
    Group const * group = findGroupOrCurrent(split.group);
    return group != nullptr ? group->find(split.vector) : nullptr;
}
