#include "Vectors/BlockMemory.h"

#include "support/PageMemory.h"
#include "torvelan/Exceptions.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

using Piece = BlockMemory::Piece;

// From this size on pieces are pages of their own, which can grow without copying. Checked builds leave all but the
// hugest to the checked heap.
#ifdef TORVELAN_SANITIZED
constexpr std::size_t mapFrom = 256 * 1024 * 1024;
#else
constexpr std::size_t mapFrom = 1024 * 1024;
#endif
// A kept piece of up to twice the size serves a request; above this size, of up to 5/4.
constexpr std::size_t tightFrom = 4 * 1024 * 1024;

bool isMapped(std::size_t bytes) noexcept {
    return bytes >= mapFrom;
}

std::size_t rounded(std::uint64_t bytes) noexcept {
    std::uint64_t granule = bytes >= mapFrom ? pageBytes : BlockMemory::alignment;
    return (bytes + granule - 1) / granule * granule;
}

Piece fromSystem(std::size_t bytes) noexcept {
    void * data = isMapped(bytes) ? sp_MapPages(bytes) : std::aligned_alloc(BlockMemory::alignment, bytes);
    return {static_cast<char *>(data), bytes};
}

void toSystem(Piece piece) noexcept {
    if (isMapped(piece.bytes))
        sp_UnmapPages(piece.data, piece.bytes);
    else
        std::free(piece.data);
}

std::size_t defaultKeepLimit() noexcept {
#ifdef TORVELAN_SANITIZED
    return 0; // so that a use after the end is seen
#else
    return std::min(std::size_t{1} << 30, sp_PhysicalMemory() / 8);
#endif
}

// Stacks of small pieces, one a size. They hold so little that they have no bound in common.
class SmallPieces {
public:
    static constexpr std::size_t largest = 2048;

    Piece take(std::size_t bytes) noexcept {
        Stack & stack = stackOf(bytes);
        if (!stack.first) return {};
        Node * node = stack.first;
        stack.first = node->next;
        --stack.count;
        total -= bytes;
        return {reinterpret_cast<char *>(node), bytes};
    }
    bool keep(Piece piece) noexcept {
        Stack & stack = stackOf(piece.bytes);
        if (stack.count == countLimit) return false;
        stack.first = ::new (piece.data) Node{stack.first};
        ++stack.count;
        total += piece.bytes;
        return true;
    }
    void drop() noexcept {
        for (std::size_t bytes = BlockMemory::alignment; bytes <= largest; bytes += BlockMemory::alignment)
            for (Piece piece = take(bytes); piece.data; piece = take(bytes)) toSystem(piece);
    }
    std::size_t bytes() const noexcept { return total; }

private:
    struct Node {
        Node * next;
    };
    struct Stack {
        Node * first = nullptr;
        std::size_t count = 0;
    };
    static constexpr std::size_t countLimit = 64;

    Stack & stackOf(std::size_t bytes) noexcept { return stacks[bytes / BlockMemory::alignment - 1]; }

    std::array<Stack, largest / BlockMemory::alignment> stacks;
    std::size_t total = 0;
};

// Large pieces in order of size, few enough that order in an array is cheap.
class LargePieces {
public:
    // The smallest piece that holds the request without too much waste, or an empty one.
    Piece take(std::size_t bytes) noexcept {
        std::size_t most = bytes < tightFrom ? bytes * 2 : bytes + bytes / 4;
        Kept * found = firstNotBelow(bytes);
        if (found == end() || found->piece.bytes > most) return {};
        return remove(found);
    }
    // What does not fit under the limit pushes out the oldest.
    void keep(Piece piece, std::size_t limit) noexcept {
        if (piece.bytes > limit) return toSystem(piece);
        dropDownTo(limit - piece.bytes);
        if (count == pieces.size()) toSystem(remove(oldest()));
        Kept * place = firstNotBelow(piece.bytes);
        std::copy_backward(place, end(), end() + 1);
        *place = {piece, ++clock};
        ++count;
        total += piece.bytes;
    }
    void dropDownTo(std::size_t limit) noexcept {
        while (total > limit) toSystem(remove(oldest()));
    }
    std::size_t bytes() const noexcept { return total; }

private:
    struct Kept {
        Piece piece;
        std::uint64_t age = 0; // reading of the clock when it was kept
    };

    Kept * end() noexcept { return pieces.data() + count; }
    Kept * firstNotBelow(std::size_t bytes) noexcept {
        return std::ranges::lower_bound(pieces.data(), end(), bytes, {}, [](Kept const & k) { return k.piece.bytes; });
    }
    Kept * oldest() noexcept { return std::ranges::min_element(pieces.data(), end(), {}, &Kept::age); }
    Piece remove(Kept * kept) noexcept {
        Piece piece = kept->piece;
        std::copy(kept + 1, end(), kept);
        --count;
        total -= piece.bytes;
        return piece;
    }

    std::array<Kept, 256> pieces;
    std::size_t count = 0;
    std::size_t total = 0;
    std::uint64_t clock = 0;
};

SmallPieces smallPieces;
LargePieces largePieces;
std::size_t keepLimit = defaultKeepLimit();
std::size_t inUse = 0;
std::size_t peak = 0;
std::uint64_t failCountdown = 0;
bool failEverAfter = false;

bool failsByRequest() noexcept {
    if (failCountdown == 0) return false;
    if (failCountdown > 1) {
        --failCountdown;
        return false;
    }
    if (!failEverAfter) failCountdown = 0;
    return true;
}

// Refuses what cannot succeed before the system is asked, since it may promise memory that it does not have.
void checkRequest(std::uint64_t bytes) {
    if (bytes > static_cast<std::uint64_t>(PTRDIFF_MAX) - pageBytes || failsByRequest()) throwVectorAllocationFailed();
    if (bytes >= mapFrom && bytes > sp_AddressSpaceLimit()) throwVectorAllocationFailed();
}

Piece fromKept(std::size_t bytes) noexcept {
    if (bytes <= SmallPieces::largest) return smallPieces.take(bytes);
    return bytes >= BlockMemory::keepFrom ? largePieces.take(bytes) : Piece{};
}

// What is kept must never be the reason of a failure.
Piece fromSystemOrThrow(std::size_t bytes) {
    Piece piece = fromSystem(bytes);
    if (!piece.data) {
        BlockMemory::dropKept();
        piece = fromSystem(bytes);
    }
    if (!piece.data) throwVectorAllocationFailed();
    return piece;
}

void countIn(std::size_t bytes) noexcept {
    inUse += bytes;
    peak = std::max(peak, inUse);
}

Piece obtainExactly(std::size_t bytes) {
    Piece piece = fromSystemOrThrow(bytes);
    countIn(piece.bytes);
    return piece;
}

Piece obtain(std::size_t bytes) {
    Piece piece = fromKept(bytes);
    if (!piece.data) return obtainExactly(bytes);
    countIn(piece.bytes);
    return piece;
}

// Pages grow and shrink in place; an empty piece when the system cannot.
Piece resizedPages(Piece piece, std::size_t bytes) noexcept {
    void * data = sp_RemapPages(piece.data, piece.bytes, bytes);
    if (!data) return {};
    inUse -= piece.bytes;
    countIn(bytes);
    return {static_cast<char *>(data), bytes};
}

// What shrinks is to give memory back, and a kept piece may be larger still.
Piece moved(Piece piece, std::size_t used, std::size_t bytes) {
    Piece fresh = bytes < piece.bytes ? obtainExactly(bytes) : obtain(bytes);
    if (std::size_t count = std::min(used, fresh.bytes); count != 0) std::memcpy(fresh.data, piece.data, count);
    BlockMemory::release(piece);
    return fresh;
}

} // namespace

void throwVectorAllocationFailed() {
    throw MemoryException("Vector allocation failed");
}

BlockMemory::Piece BlockMemory::allocate(std::uint64_t bytes) {
    if (bytes == 0) return {};
    checkRequest(bytes);
    return obtain(rounded(bytes));
}

BlockMemory::Piece BlockMemory::resize(Piece piece, std::size_t used, std::uint64_t bytes) {
    if (bytes == 0) {
        release(piece);
        return {};
    }
    checkRequest(bytes);
    std::size_t size = rounded(bytes);
    if (size == piece.bytes) return piece;
    if (isMapped(piece.bytes) && isMapped(size)) {
        if (Piece resized = resizedPages(piece, size); resized.data) return resized;
    }
    return moved(piece, used, size);
}

void BlockMemory::release(Piece piece) noexcept {
    if (!piece.data) return;
    inUse -= piece.bytes;
    if (piece.bytes >= keepFrom) return largePieces.keep(piece, keepLimit);
    if (piece.bytes <= SmallPieces::largest && keepLimit != 0 && smallPieces.keep(piece)) return;
    toSystem(piece);
}

std::size_t BlockMemory::bytesInUse() noexcept {
    return inUse;
}

std::size_t BlockMemory::peakBytes() noexcept {
    return peak;
}

void BlockMemory::resetPeak() noexcept {
    peak = inUse;
}

std::size_t BlockMemory::bytesKept() noexcept {
    return smallPieces.bytes() + largePieces.bytes();
}

void BlockMemory::dropKept() noexcept {
    smallPieces.drop();
    largePieces.dropDownTo(0);
}

std::size_t BlockMemory::setKeepLimit(std::size_t bytes) noexcept {
    std::size_t former = keepLimit;
    keepLimit = bytes;
    largePieces.dropDownTo(bytes);
    if (bytes == 0) smallPieces.drop();
    return former;
}

void BlockMemory::failAt(std::uint64_t n, bool everAfter) noexcept {
    failCountdown = n;
    failEverAfter = everAfter;
}
