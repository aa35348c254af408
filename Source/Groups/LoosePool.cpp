#include "Groups/LoosePool.h"

#include "Groups/Group.h"

namespace {

dvec * newest = nullptr;
std::size_t pooled = 0;

} // namespace

void LoosePool::add(dvec * vector) noexcept {
    vector->poolPrevious = nullptr;
    vector->poolNext = newest;
    if (newest != nullptr) newest->poolPrevious = vector;
    newest = vector;
    ++pooled;
    if (vector->group != nullptr) ++vector->group->looseVectors;
}

void LoosePool::remove(dvec * vector) noexcept {
    if (vector->poolPrevious == nullptr && newest != vector) return;
    dvec *& link = vector->poolPrevious != nullptr ? vector->poolPrevious->poolNext : newest;
    link = vector->poolNext;
    if (vector->poolNext != nullptr) vector->poolNext->poolPrevious = vector->poolPrevious;
    vector->poolPrevious = vector->poolNext = nullptr;
    --pooled;
    if (vector->group != nullptr) --vector->group->looseVectors;
}

std::size_t LoosePool::count() noexcept {
    return pooled;
}

void LoosePool::sweep() {
    while (newest != nullptr) {
        dvec * vector = newest;
        remove(vector);
        // A read-only vector survives its release, out of sight of forgetGroup, so it must not keep the pointer.
        if (vector->isReadOnly()) vector->group = nullptr;
        vector->release();
    }
}

void LoosePool::forgetGroup(Group & group) noexcept {
    for (dvec * vector = newest; group.looseVectors != 0; vector = vector->poolNext) {
        if (vector->group != &group) continue;
        vector->group = nullptr;
        --group.looseVectors;
    }
}
