// Names for the vectors of a group that is being read.
#pragma once

#include "Groups/Group.h"

// Makes names single in the group: a name that is taken gets "_1", "_2" and so on.
class UniqueNames {
public:
    explicit UniqueNames(Group const & group) : group_(group) {}

    YString operator()(YString const & name) {
        YString candidate = name;
        while (group_.find(candidate) != nullptr) candidate = YString::joined(name, {"_", YString(++used_[name])});
        return candidate;
    }

private:
    Group const & group_;
    NameTable<unsigned> used_; // last number tried, so that many equal names cost one look-up each
};
