// Objects of one size that are made and freed by the million, from slabs of memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

// New ones come in the order of their addresses, so that what is made in turn lies in turn, and a processor that works
// on many of them sees where the next one is. Slabs without objects are given back, but for one. Objects are aligned to
// the largest power of two that divides their size, up to a line of the cache. A pool may be used before and after the
// life of everything static. Checked builds ask the system for each object, so that a use after its end is seen.
template <std::size_t Size> class ObjectPool {
public:
    static constexpr std::size_t alignment = (Size & -Size) < 64 ? (Size & -Size) : 64;

    // Null when memory is exhausted.
    void * take() noexcept;
    void give(void * memory) noexcept;

private:
    struct Node {
        Node * next;
    };
    struct Slab {
        Node * freed = nullptr; // objects that have been given back
        char * fresh;           // where none has been yet
        std::size_t used = 0;
        Slab * next = nullptr; // with room, as this one
        Slab * before = nullptr;
    };
    static constexpr std::size_t slabBytes = 64 * 1024, headBytes = 64;
    static constexpr std::size_t perSlab = (slabBytes - headBytes) / Size;
    static constexpr std::align_val_t slabAlignment{slabBytes};
    static_assert(sizeof(Slab) <= headBytes && Size >= sizeof(Node) && perSlab > 1);

    static Slab * slabOf(void * object) noexcept {
        return reinterpret_cast<Slab *>(reinterpret_cast<std::uintptr_t>(object) & ~std::uintptr_t{slabBytes - 1});
    }
    bool addSlab() noexcept;
    void link(Slab * slab) noexcept;
    void unlink(Slab * slab) noexcept;
    void emptied(Slab * slab) noexcept;

    Slab * open = nullptr;  // the first slab with room
    Slab * spare = nullptr; // one of those, which has no objects
};

#ifdef TORVELAN_SANITIZED
template <std::size_t Size> void * ObjectPool<Size>::take() noexcept {
    return ::operator new (Size, std::align_val_t{alignment}, std::nothrow);
}

template <std::size_t Size> void ObjectPool<Size>::give(void * memory) noexcept {
    ::operator delete (memory, std::align_val_t{alignment});
}
#else
template <std::size_t Size> void * ObjectPool<Size>::take() noexcept {
    if (open == nullptr && !addSlab()) return nullptr;
    Slab * const slab = open;
    void * object = slab->freed;
    if (object != nullptr) {
        slab->freed = slab->freed->next;
    } else {
        object = slab->fresh;
        slab->fresh += Size;
    }
    if (slab == spare) spare = nullptr;
    if (++slab->used == perSlab) unlink(slab);
    return object;
}

template <std::size_t Size> void ObjectPool<Size>::give(void * memory) noexcept {
    Slab * const slab = slabOf(memory);
    slab->freed = ::new (memory) Node{slab->freed};
    if (slab->used-- == perSlab) link(slab);
    if (slab->used == 0) emptied(slab);
}
#endif

template <std::size_t Size> bool ObjectPool<Size>::addSlab() noexcept {
    void * const memory = ::operator new(slabBytes, slabAlignment, std::nothrow);
    if (memory == nullptr) return false;
    Slab * const slab = ::new (memory) Slab;
    slab->fresh = static_cast<char *>(memory) + headBytes;
    link(slab);
    return true;
}

template <std::size_t Size> void ObjectPool<Size>::link(Slab * slab) noexcept {
    slab->before = nullptr;
    slab->next = open;
    if (open != nullptr) open->before = slab;
    open = slab;
}

template <std::size_t Size> void ObjectPool<Size>::unlink(Slab * slab) noexcept {
    (slab->before != nullptr ? slab->before->next : open) = slab->next;
    if (slab->next != nullptr) slab->next->before = slab->before;
}

template <std::size_t Size> void ObjectPool<Size>::emptied(Slab * slab) noexcept {
    if (spare != nullptr) {
        unlink(slab);
        ::operator delete(slab, slabAlignment);
        return;
    }
    slab->freed = nullptr;
    slab->fresh = reinterpret_cast<char *>(slab) + headBytes;
    spare = slab;
}
