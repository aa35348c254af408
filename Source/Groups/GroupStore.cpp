#include "Groups/GroupStore.h"

#include "Groups/StoreParts.h"

namespace {

constinit NameSpace names;
Group * head = nullptr;

// Never destroyed, like the other tables of the store: a session may end after the statics of this library.
NameTable<Group *> & listedGroups() {
    static auto & table = *new NameTable<Group *>;
    return table;
}

// Nothing has happened when the memory for it is not there.
void enlist(Group * group) {
    auto const [entry, isNew] = listedGroups().try_emplace(group->name, group);
    try {
        joinRun(group);
    } catch (...) {
        if (isNew) listedGroups().erase(entry);
        throw;
    }
    group->listed = true;
}

void delist(Group * group) {
    auto const entry = listedGroups().find(group->name);
    if (entry != listedGroups().end() && entry->second == group) listedGroups().erase(entry);
    group->listed = false;
    releaseGroupName(group->name);
}

void unlink(Group * group) noexcept {
    (group->previous != nullptr ? group->previous->next : head) = group->next;
    if (group->next != nullptr) group->next->previous = group->previous;
}

// The group that is current instead of one that has left the list: its newer neighbour, the new head for the head, and
// behind that the first that is no local context, or the last of all.
Group * standInFor(Group const * group) noexcept {
    Group * candidate = group->previous != nullptr ? group->previous : head;
    while (candidate != nullptr && candidate->isLocal() && candidate->next != nullptr) candidate = candidate->next;
    return candidate;
}

void forgetSpecial(Group * group) noexcept {
    if (names.local == group) names.local = nullptr;
    if (names.global == group) names.global = nullptr;
    if (names.current == group) names.current = standInFor(group);
    forgetContext(group);
}

// The newest that may go; the local contexts before it are few.
Group * newestOrdinaryGroup() noexcept {
    Group * group = head;
    while (group != nullptr && (group->isLocal() || group->isProtected() || group->destroying != 0))
        group = group->next;
    return group;
}

void makeRunIdVector(Group * group) {
    auto * id = new dvec("$$RunId", group, PT_NONE);
    id->addVal(static_cast<double>(group->runId));
    id->enterGroup();
    group->hasRealData = true;
}

} // namespace

NameSpace & nameSpace() noexcept {
    return names;
}

Group * groupListHead() noexcept {
    return head;
}

Group * findGroup(std::string_view name) noexcept {
    auto const entry = listedGroups().find(name);
    return entry != listedGroups().end() ? entry->second : nullptr;
}

Group * findGroupOrCurrent(std::string_view name) noexcept {
    return name.empty() ? names.current : findGroup(name);
}

Group * localOrGlobal() noexcept {
    return names.local != nullptr ? names.local : names.global;
}

void forEachGroup(std::function<void(Group &)> const & visit) {
    for (Group * group = head; group != nullptr;) {
        Group * next = group->next;
        visit(*group);
        group = next;
    }
}

void linkAtHead(Group * group) {
    enlist(group);
    group->next = head;
    if (head != nullptr) head->previous = group;
    head = group;
}

void linkAtTail(Group * group) {
    Group * tail = head;
    while (tail != nullptr && tail->next != nullptr) tail = tail->next;
    enlist(group);
    (tail != nullptr ? tail->next : head) = group;
    group->previous = tail;
}

Group * makeGroup(YString const & title, YString const & baseName, std::uint32_t runId) {
    UnlistedGroup group(makeUnlistedGroup(title));
    group->runId = runId;
    listGroup(group.get(), baseName);
    return group.release();
}

Group * makeUnlistedGroup(YString const & title) {
    return new Group("", title.empty() ? YString("Untitled") : title);
}

void listGroup(Group * group, YString const & baseName) {
    group->collection = currentCollection();
    YString base = baseName.empty() ? YString("unnamed") : baseName;
    if (!group->collection.empty()) base = YString::joined(group->collection, {"_", base.view()});
    group->name = uniqueGroupName(base);
    purgeByPersistence();
    linkAtHead(group);
    if (group->runId != 0) makeRunIdVector(group);
}

void listRestoredGroup(Group * group, YString const & storedName, bool quiet, MessageHandler & messages) {
    purgeByPersistence();
    group->name = freeRestoredName(storedName);
    if (!(group->name == storedName) && !quiet)
        messages.info("Note: group name %s already exists.\nChanging name to %s \n", storedName, group->name);
    linkAtHead(group);
    names.current = group;
}

void discardGroup(Group * group) {
    if (group->listed) return destroyGroup(group);
    delete group;
}

void destroyGroup(Group * group) {
    if (group->destroying != 0) return; // asked for by one of its own delete notifications
    leaveRun(group);
    group->end();
    unlink(group);
    forgetSpecial(group);
    delist(group);
    delete group;
}

void destroyAllGroups() {
    while (Group * group = newestOrdinaryGroup()) destroyGroup(group);
}

bool anyGroupHasRealData() noexcept {
    for (Group const * group = head; group != nullptr; group = group->next)
        if (group->hasRealData) return true;
    return false;
}
