// The loose pool: every dvec that stands in no group's table, until it is released or collected.
#pragma once

#include "torvelan/dvec.h"

#include <cstddef>

// A list through the vectors themselves, newest first: entering and leaving cost a few stores.
class LoosePool {
public:
    static void add(dvec * vector) noexcept;
    static void remove(dvec * vector) noexcept; // no-op when it is not in the pool
    static std::size_t count() noexcept;
    // Releases every vector; read-only ones are forgotten, not deleted. The pool is empty afterwards.
    static void sweep();
    // A group dies: vectors made for it forget it. Looks no further back than to the oldest of them, so that the end of
    // a context costs what was made since then, not what waits from before.
    static void forgetGroup(Group & group) noexcept;
};
