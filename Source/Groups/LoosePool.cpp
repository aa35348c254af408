#include "Groups/LoosePool.h"

namespace {

dvec * newest = nullptr;
std::size_t pooled = 0;
std::uint64_t added = 0;

} // namespace

void LoosePool::add(dvec * vector) noexcept {
    vector->poolTime = ++added;
    vector->poolPrevious = nullptr;
    vector->poolNext = newest;
    if (newest != nullptr) newest->poolPrevious = vector;
    newest = vector;
    ++pooled;
}

void LoosePool::remove(dvec * vector) noexcept {
    if (vector->poolPrevious == nullptr && newest != vector) return;
    dvec *& link = vector->poolPrevious != nullptr ? vector->poolPrevious->poolNext : newest;
    link = vector->poolNext;
    if (vector->poolNext != nullptr) vector->poolNext->poolPrevious = vector->poolPrevious;
    vector->poolPrevious = vector->poolNext = nullptr;
    --pooled;
}

std::size_t LoosePool::count() noexcept {
    return pooled;
}

std::uint64_t LoosePool::clock() noexcept {
    return added;
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

void LoosePool::forgetGroup(Group const * group, std::uint64_t birth) noexcept {
    for (dvec * vector = newest; vector != nullptr && vector->poolTime > birth; vector = vector->poolNext)
        if (vector->group == group) vector->group = nullptr;
}
