#include "torvelan/dvec.h"

#include "Groups/GroupStore.h"
#include "Groups/LoosePool.h"
#include "support/ObjectPool.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// Temporaries come and go with every operation.
ObjectPool<sizeof(dvec)> freeVectors;

Group * orLocal(Group * group) noexcept {
    return group != nullptr ? group : nameSpace().local;
}

YString checkedName(char const * name, int line) {
    if (name != nullptr) return YString(name);
    internal_error("Error found in module %s, line %d", "Source\\dvec", line);
    return YString("unnamed");
}

YString vectorPart(char const * qualifiedName) {
    if (qualifiedName == nullptr) return checkedName(qualifiedName, __LINE__);
    return YString(splitVectorName(qualifiedName).vector);
}

Group * groupPart(char const * qualifiedName, MessageHandler * messages) {
    SplitName const name = splitVectorName(qualifiedName != nullptr ? qualifiedName : "");
    if (name.group.empty()) return nameSpace().local;
    Group * group = findGroup(name.group);
    if (group != nullptr) return group;
    if (messages != nullptr) messages->error("There is no group of name %s. Assigning as local variable", name.group);
    return nameSpace().local;
}

char * heapString(std::string_view text) {
    auto * copy = static_cast<char *>(std::malloc(text.size() + 1));
    if (copy == nullptr) throw MemoryException("Detected in dvec");
    if (!text.empty()) std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

} // namespace

// Only a class derived from dvec has another size.
void * dvec::operator new(std::size_t size) {
    if (size != sizeof(dvec)) return ::operator new(size);
    void * memory = freeVectors.take();
    if (memory == nullptr) throw MemoryException("Detected in dvec");
    return memory;
}

void dvec::operator delete(void * p, std::size_t size) noexcept {
    if (size != sizeof(dvec)) return ::operator delete(p);
    freeVectors.give(p);
}

// Each constructor joins the pool last: one that fails leaves nothing behind.

dvec::dvec(YString name, Group * group_, PhysType physType) : XYVector(std::move(name)), group(orLocal(group_)) {
    if (physType != PT_UNKNOWN) setPhysType(physType);
    LoosePool::add(this);
}

dvec::dvec(YString name, double value) : XYVector(std::move(name)), group(nameSpace().local) {
    setSize(1, VD_REAL);
    *writableRealData() = value;
    setPhysType(PT_LITERAL);
    LoosePool::add(this);
}

dvec::dvec(YString name, std::string_view text, Group * group_, PhysType physType)
    : XYVector(std::move(name)), group(orLocal(group_)) {
    setSize(1, VD_STRING);
    *writableStringData() = heapString(text);
    setPhysType(physType);
    LoosePool::add(this);
}

dvec::dvec(char const * name, Group * group_, PhysType physType)
    : dvec(checkedName(name, __LINE__), group_, physType) {}

dvec::dvec(char const * name, double value) : dvec(checkedName(name, __LINE__), value) {}

dvec::dvec(char const * name, std::string_view text, Group * group_, PhysType physType)
    : dvec(checkedName(name, __LINE__), text, group_, physType) {}

dvec::dvec(char const * qualifiedName, MessageHandler * messages)
    : XYVector(vectorPart(qualifiedName)), group(groupPart(qualifiedName, messages)) {
    LoosePool::add(this);
}

dvec::dvec(dvec const & other)
    : XYVector(other), flags(static_cast<std::uint16_t>(other.flags & ~(VF_READONLY | VF_INGROUP))),
      converting(other.converting), group(other.group) {
    LoosePool::add(this);
}

// The table of a group that ends is empty already when its vectors go.
dvec::~dvec() {
    if (isTemporary())
        LoosePool::remove(this);
    else
        group->remove(this);
}

void dvec::setName(YString newName) {
    if (!isTemporary() && !group->rename(this, newName)) return;
    XYVector::setName(std::move(newName));
}

void dvec::enterGroup() {
    if (!isTemporary()) return;
    Group * home = orLocal(group);
    if (home == nullptr || !home->enter(this)) return;
    LoosePool::remove(this);
    group = home;
    flags |= VF_INGROUP;
}

void dvec::leaveGroup() {
    if (isTemporary()) return;
    group->remove(this);
    flags = static_cast<std::uint16_t>(flags & ~VF_INGROUP);
    LoosePool::add(this);
}

void dvec::assign(dvec const & other) {
    BaseVector::operator=(other);
    ref = other.ref;
    enterGroup();
}

void dvec::release() {
    if (!isReadOnly()) delete this;
}

YString dvec::fullName() const {
    Group const * home = orLocal(group);
    return home != nullptr ? YString::joined(home->name, {":", name().view()}) : name();
}

dvec * dvec::resolveReferenceAlias() const {
    char const * text = isReferenceAlias() ? getString(0, 0) : nullptr;
    if (text == nullptr) return nullptr;
    return findVector(text, nullptr, true);
}
