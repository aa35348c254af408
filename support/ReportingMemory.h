// What the library says when there is no memory, also where it was the C++ library that found out.
#pragma once

#include "torvelan/Exceptions.h"

#include <new>

// Runs a task and answers what it does. Throws MemoryException for std::bad_alloc.
template <class Task> decltype(auto) reportingMemory(Task && task) {
    try {
        return task();
    } catch (std::bad_alloc const &) {
        throw MemoryException("Vector allocation failed");
    }
}
