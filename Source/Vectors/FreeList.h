// Objects of one size that are made and freed by the million: freed ones are kept for the next.
#pragma once

#include <cstddef>
#include <new>

// `Limit` bounds how many are kept. Checked builds keep none, so that a use after the end is seen.
template <std::size_t Size, std::size_t Limit> class FreeList {
public:
    // Null when memory is exhausted.
    void * take() noexcept {
        if (!first) return ::operator new(Size, std::nothrow);
        Node * node = first;
        first = node->next;
        --kept;
        return node;
    }
    void give(void * memory) noexcept {
        if (kept == limit) return ::operator delete(memory);
        first = ::new (memory) Node{first};
        ++kept;
    }

private:
    struct Node {
        Node * next;
    };
    static_assert(Size >= sizeof(Node));
#ifdef TORVELAN_SANITIZED
    static constexpr std::size_t limit = 0;
#else
    static constexpr std::size_t limit = Limit;
#endif
    Node * first = nullptr;
    std::size_t kept = 0;
};
