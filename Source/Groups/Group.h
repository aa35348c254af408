// Group: one named set of vectors, normally the result of one run or one opened file.
#pragma once

#include "torvelan/Groups.h"
#include "torvelan/dvec.h"

#include <cstdint>
#include <functional>
#include <unordered_map>

// Hash and comparison of names without regard to case, also for text that is no YString yet.
struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const noexcept { return hashNoCase(name); }
};
struct NameEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const noexcept { return equalNoCase(a, b); }
};
template <class T> using NameTable = std::unordered_map<YString, T, NameHash, NameEqual>;

enum GroupFlags : std::uint32_t {
    GROUP_LOCAL = 2,     // a local context: not shown, not saved
    GROUP_PROTECTED = 4, // the global group
};

// Owned by the group list; made by GroupStore.h's functions.
struct Group {
    explicit Group(YString groupName, YString groupTitle, std::uint32_t groupFlags = 0);
    ~Group(); // runs the delete notifications, then deletes every vector, read-only or not
    Group(Group const &) = delete;
    Group & operator=(Group const &) = delete;

    bool isLocal() const noexcept { return (flags & GROUP_LOCAL) != 0; }
    bool isProtected() const noexcept { return (flags & GROUP_PROTECTED) != 0; }

    // By name, and a name that begins with '$' also through the pseudonyms. Null when there is none.
    dvec * find(std::string_view vectorName) const;
    // Enters a vector; an internal error, and false, when the name is taken.
    bool enter(dvec * vector);
    void remove(dvec * vector);           // from the table only
    YArray<YString> namesInOrder() const; // sorted without regard to case
    // Visits the vectors in name order. The callback may delete any vector.
    void forEachVector(std::function<void(dvec &)> const & visit);

    // The pseudonym of a vector, made when it has none; a name that exists in no form is returned itself.
    YString pseudonymOf(YString const & vectorName);
    // The vector name behind a pseudonym; any other name as it is.
    YString resolvePseudonym(YString const & vectorName) const;

    std::uint32_t destroying = 0;
    std::uint32_t flags = 0;
    std::uint32_t pseudonymCounter = 0; // next number for "$n"
    std::uint32_t runId = 0;            // 0: kept, or of no run; exempt from persistence
    std::uint32_t savedRunId = 0;       // runId while the group is kept
    NameTable<dvec *> vectors;
    NameTable<YString> pseudonyms; // pseudonym to vector name
    Group * next = nullptr;        // older neighbour in the list
    YString date;
    YString name;
    YString title;
    YString collection;
    std::shared_ptr<NameArray> labels; // never null; shared with vectors, replaced rather than written when shared
    struct DeleteNotify {
        GroupDeleteProc proc;
        void * arg;
    };
    YList<DeleteNotify> deleteNotify;
    bool keepDataFile = false;
    YArray<TraceDescription> traces;
    YArray<YString> postProcessScripts;
    AnalysisInfo analysis;
    bool hasRealData = false; // has a "$$RunId", or a restored vector with a reference
};
