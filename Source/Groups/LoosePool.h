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
    // Rises with every vector that is added.
    static std::uint64_t clock() noexcept;
    // A group dies: vectors made for it forget it. Looks only at vectors added since the clock stood at `birth`, when
    // the group was made, so that the end of a context costs what was made in it, not what waits from before.
    static void forgetGroup(Group const * group, std::uint64_t birth) noexcept;
};
