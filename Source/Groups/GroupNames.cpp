#include "Groups/StoreParts.h"

namespace {

// The next number for each base name. Never reset, so that a name once seen means one group for good.
NameTable<std::uint64_t> & nextNumbers() {
    static auto & table = *new NameTable<std::uint64_t>;
    return table;
}

// For each base of restored names, the number up to which all names are known to be taken, so that many groups of one
// stored name do not each try all numbers again. A base starts anew when a group of it leaves the list.
NameTable<std::uint64_t> & takenUpTo() {
    static auto & table = *new NameTable<std::uint64_t>;
    return table;
}

std::string_view withoutTrailingDigits(std::string_view name) noexcept {
    return name.substr(0, name.find_last_not_of("0123456789") + 1);
}

YString numbered(YString const & base, std::uint64_t number) {
    return YString::joined(base, {YString(static_cast<unsigned long long>(number)).view()});
}

} // namespace

YString uniqueGroupName(YString const & base) {
    std::uint64_t & next = nextNumbers().try_emplace(base, 1).first->second;
    YString name = numbered(base, next++);
    while (findGroup(name) != nullptr) name = numbered(base, next++);
    return name;
}

YString freeRestoredName(YString const & stored) {
    if (findGroup(stored) == nullptr) return stored;
    YString const base(withoutTrailingDigits(stored));
    std::uint64_t & taken = takenUpTo()[base];
    YString name = numbered(base, taken + 1);
    while (findGroup(name) != nullptr) name = numbered(base, ++taken + 1);
    return name;
}

void releaseGroupName(std::string_view name) {
    auto const entry = takenUpTo().find(withoutTrailingDigits(name));
    if (entry != takenUpTo().end()) takenUpTo().erase(entry);
}
