#include "support/NumberText.h"
#include "torvelan/Containers.h"
#include "torvelan/YString.h"

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstring>

namespace {

template <class Integer> std::string_view digits(std::array<char, 24> & room, Integer value) {
    return {room.data(), std::to_chars(room.data(), room.data() + room.size(), value).ptr};
}

constexpr unsigned char foldCase(char c) noexcept {
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
}

template <class Word> std::uint64_t load(char const * p) noexcept {
    Word word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// The bytes of a text of fewer than eight, each at least once, by loads of fixed sizes that may overlap.
std::uint64_t loadShort(char const * p, std::size_t n) noexcept {
    if (n >= 4) return load<std::uint32_t>(p) | load<std::uint32_t>(p + n - 4) << 32;
    if (n == 0) return 0;
    return load<unsigned char>(p) | load<unsigned char>(p + n / 2) << 8 | load<unsigned char>(p + n - 1) << 16;
}

// foldCase of eight characters at once. Adding to the low seven bits carries into the top bit of each byte exactly
// where the character is at or above a bound.
constexpr std::uint64_t foldWord(std::uint64_t word) noexcept {
    constexpr std::uint64_t ones = 0x0101010101010101U;
    std::uint64_t const low = word & (0x7F * ones);
    std::uint64_t const fromA = low + (0x80 - 'A') * ones;
    std::uint64_t const aboveZ = low + (0x7F - 'Z') * ones;
    std::uint64_t const upper = fromA & ~aboveZ & ~word & (0x80 * ones);
    return word | (upper >> 2);
}

// Eight characters as a number whose order is that of the characters.
std::uint64_t textOrder(std::uint64_t word) noexcept {
    if constexpr (std::endian::native == std::endian::little) return __builtin_bswap64(word);
    return word;
}

// Below 0, 0, above 0 for eight characters without regard to case.
int compareWord(char const * a, char const * b) noexcept {
    std::uint64_t const wordA = textOrder(foldWord(load<std::uint64_t>(a)));
    std::uint64_t const wordB = textOrder(foldWord(load<std::uint64_t>(b)));
    return static_cast<int>(wordA > wordB) - static_cast<int>(wordA < wordB);
}

// The same for fewer than eight.
int compareShort(char const * a, char const * b, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i)
        if (int const difference = foldCase(a[i]) - foldCase(b[i])) return difference;
    return 0;
}

int compareNoCaseBytes(char const * a, char const * b, std::size_t n) noexcept {
    if (n < 8) return compareShort(a, b, n);
    for (std::size_t i = 0; i + 8 < n; i += 8)
        if (int const difference = compareWord(a + i, b + i)) return difference;
    return compareWord(a + n - 8, b + n - 8);
}

constexpr std::uint64_t mixWord(std::uint64_t hash, std::uint64_t word) noexcept {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
    return hash ^ (hash >> 32);
}

bool equalNoCaseBytes(char const * a, char const * b, std::size_t n) noexcept {
    if (n < 8) return foldWord(loadShort(a, n)) == foldWord(loadShort(b, n));
    for (std::size_t i = 0; i + 8 < n; i += 8)
        if (foldWord(load<std::uint64_t>(a + i)) != foldWord(load<std::uint64_t>(b + i))) return false;
    return foldWord(load<std::uint64_t>(a + n - 8)) == foldWord(load<std::uint64_t>(b + n - 8));
}

constexpr std::size_t longest = static_cast<std::size_t>(PTRDIFF_MAX) / 2;

[[noreturn]] void outOfMemory() {
    throw MemoryException("Detected in YString");
}

} // namespace

YString::Buffer * YString::allocate(std::size_t capacity) {
    if (capacity > longest) outOfMemory();
    // The heap hands out multiples of 16 less its own word; what it would leave over is room to grow.
    std::size_t const bytes = ((sizeof(Buffer) + capacity + 1 + 8 + 15) / 16 * 16) - 8;
    auto * buffer = static_cast<Buffer *>(std::malloc(bytes));
    if (buffer == nullptr) outOfMemory();
    return new (buffer) Buffer{1, 0, (bytes - sizeof(Buffer) - 1) & longest, 0};
}

YString::Buffer * YString::allocateCopy(std::string_view text, std::size_t capacity) {
    Buffer * buffer = allocate(capacity);
    std::copy(text.begin(), text.end(), buffer->text());
    buffer->used = text.size();
    buffer->text()[text.size()] = '\0';
    return buffer;
}

YString::YString(char const * text) : YString(text != nullptr ? std::string_view(text) : std::string_view()) {}

YString::YString(std::string_view text)
    : buffer_(text.empty() ? nullptr : allocateCopy(text, text.size())), length_(text.size()) {}

YString::YString(int value) : YString(static_cast<long long>(value)) {}

YString::YString(unsigned value) : YString(static_cast<unsigned long long>(value)) {}

YString::YString(long value) : YString(static_cast<long long>(value)) {}

YString::YString(unsigned long value) : YString(static_cast<unsigned long long>(value)) {}

YString::YString(long long value) {
    std::array<char, 24> room;
    *this = YString(digits(room, value));
}

YString::YString(unsigned long long value) {
    std::array<char, 24> room;
    *this = YString(digits(room, value));
}

YString::YString(double value) : YString(std::string_view(ShortestText(value))) {}

YString & YString::assign(std::string_view text) {
    if (buffer_ == nullptr || buffer_->references != 1 || buffer_->capacity < text.size()) return *this = YString(text);
    if (!text.empty()) std::memmove(buffer_->text(), text.data(), text.size());
    length_ = text.size();
    endHere();
    buffer_->sealed = 0;
    return *this;
}

YString YString::joined(YString const & first, std::initializer_list<std::string_view> rest) {
    YString result(first);
    append(result, rest);
    return result;
}

YString & YString::operator+=(std::string_view text) {
    append(*this, {text});
    return *this;
}

// The parts may be views of target's own characters: nothing that stands is moved before they are copied.
void YString::append(YString & target, std::initializer_list<std::string_view> rest) {
    std::size_t total = target.length_;
    for (std::string_view const part : rest)
        if (__builtin_add_overflow(total, part.size(), &total) || total > longest) outOfMemory();
    if (total == target.length_) return;

    YString grown;
    if (target.canGrowTo(total))
        grown = target;
    else
        grown.buffer_ = allocateCopy(target.view(), std::max<std::size_t>(total + total / 2, 16));

    char * end = grown.buffer_->text() + target.length_;
    for (std::string_view const part : rest) end = std::copy(part.begin(), part.end(), end);
    *end = '\0';
    grown.buffer_->used = grown.length_ = total;
    target.swap(grown);
}

bool YString::canGrowTo(std::size_t total) const noexcept {
    if (buffer_ == nullptr || buffer_->used != length_ || buffer_->capacity < total) return false;
    return buffer_->references == 1 || buffer_->sealed == 0;
}

// Ends an unshared buffer where this string ends.
void YString::endHere() const noexcept {
    buffer_->used = length_;
    buffer_->text()[length_] = '\0';
}

char const * YString::c_str() const {
    if (buffer_ == nullptr) return "";
    if (buffer_->references == 1) {
        endHere();
    } else if (buffer_->used != length_) {
        Buffer * own = allocateCopy(view(), length_);
        --buffer_->references;
        buffer_ = own;
    }
    buffer_->sealed = 1;
    return buffer_->text();
}

void YString::unique() {
    if (buffer_ == nullptr) return;
    if (buffer_->references == 1)
        endHere();
    else
        *this = YString(view());
}

void YString::stripTrailing(std::string_view set) {
    while (length_ != 0 && set.find(data()[length_ - 1]) != std::string_view::npos) --length_;
}

void YString::stripLeading(std::string_view set) {
    std::size_t const start = view().find_first_not_of(set);
    if (start == std::string_view::npos)
        length_ = 0;
    else if (start != 0)
        assign(view().substr(start));
}

char * YString::copy() const {
    auto * text = static_cast<char *>(std::malloc(length_ + 1));
    if (text == nullptr) outOfMemory();
    std::copy_n(data(), length_, text);
    text[length_] = '\0';
    return text;
}

std::size_t YString::hashValue() const noexcept {
    return hashNoCase(view());
}

int compareNoCase(std::string_view a, std::string_view b) noexcept {
    std::size_t const common = std::min(a.size(), b.size());
    if (int const difference = compareNoCaseBytes(a.data(), b.data(), common)) return difference;
    return static_cast<int>(a.size() > common) - static_cast<int>(b.size() > common);
}

bool equalNoCase(std::string_view a, std::string_view b) noexcept {
    return a.size() == b.size() && equalNoCaseBytes(a.data(), b.data(), a.size());
}

std::size_t hashNoCase(std::string_view text) noexcept {
    char const * const p = text.data();
    std::size_t const n = text.size();
    std::uint64_t hash = 0xC2B2AE3D27D4EB4FU ^ n;
    if (n < 8) return static_cast<std::size_t>(mixWord(hash, foldWord(loadShort(p, n))));
    for (std::size_t i = 0; i + 8 < n; i += 8) hash = mixWord(hash, foldWord(load<std::uint64_t>(p + i)));
    return static_cast<std::size_t>(mixWord(hash, foldWord(load<std::uint64_t>(p + n - 8))));
}
