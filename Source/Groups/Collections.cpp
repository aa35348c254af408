#include "Groups/StoreParts.h"

namespace {

// The collections known, with their flags, and the one that is open.
struct Collections {
    NameTable<bool> known;
    YString current;
};
Collections & collections() {
    static auto & all = *new Collections;
    return all;
}
[[maybe_unused]] Collections const & madeBeforeAnybodyAsks = collections(); // who asks needs no memory

} // namespace

YString const & currentCollection() noexcept {
    return collections().current;
}

bool openCollection(YString const & name, bool flag) {
    if (name.empty()) return true;
    collections().current = name;
    return collections().known.try_emplace(name, flag).second;
}

void closeCollection() noexcept {
    collections().current = YString();
}

bool collectionFlag(std::string_view name) noexcept {
    auto const entry = collections().known.find(name);
    return entry != collections().known.end() && entry->second;
}

void clearCollections() noexcept {
    collections() = Collections();
}
