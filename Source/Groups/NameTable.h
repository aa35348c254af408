// Look-up of names without regard to case.
#pragma once

#include "torvelan/YString.h"

#include <cstddef>
#include <string_view>
#include <unordered_map>

// A name with its hash, for looking it up in several tables.
struct HashedName {
    explicit HashedName(std::string_view name) noexcept : text(name), hash(hashNoCase(name)) {}
    std::string_view text;
    std::size_t hash;
};

// Hash and comparison, also for text that is no YString yet.
struct NameHash {
    using is_transparent = void;
    // Not noexcept: the table then stores the hash of every entry, and compares hashes before names.
    std::size_t operator()(std::string_view name) const { return hashNoCase(name); }
    std::size_t operator()(HashedName const & name) const { return name.hash; }
};
struct NameEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const noexcept { return equalNoCase(a, b); }
    bool operator()(HashedName const & a, std::string_view b) const noexcept { return equalNoCase(a.text, b); }
    bool operator()(std::string_view a, HashedName const & b) const noexcept { return equalNoCase(a, b.text); }
};
template <class T> using NameTable = std::unordered_map<YString, T, NameHash, NameEqual>;
