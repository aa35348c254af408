#include "support/System.h"
#include "torvelan/Functions.h"
#include "torvelan/Host.h"

#include "Evaluation/FunctionTimers.h"

#include <algorithm>
#include <array>
#include <memory>

namespace {

constexpr std::size_t bucketCount = 211;

struct Entry {
    FuncInfo info;
    bool atRunTime; // ends with the session; the others belong to the library
    std::unique_ptr<Entry> next;
};

struct Location {
    YString name;
    YString file;
    int line;
    void const * address; // the module is looked up when somebody asks
};

struct Registry {
    std::array<std::unique_ptr<Entry>, bucketCount> buckets; // newest first
    YArray<Location> locations;
};

// Made on first use, since static initialisers run in no particular order, and never destroyed, since a session may end
// among static destructors.
Registry & registry() {
    static auto & theRegistry = *new Registry;
    return theRegistry;
}

std::unique_ptr<Entry> & bucketOf(YString const & name) {
    return registry().buckets[name.hashValue() % bucketCount];
}

void addEntry(FuncInfo const & info, bool atRunTime) {
    std::unique_ptr<Entry> & head = bucketOf(info.name);
    head = std::make_unique<Entry>(Entry{info, atRunTime, std::move(head)});
}

template <class Visit> void forEachEntry(Visit && visit) {
    for (auto const & head : registry().buckets)
        for (Entry * entry = head.get(); entry != nullptr; entry = entry->next.get()) visit(*entry);
}

void removeRunTimeEntries(std::unique_ptr<Entry> & head) {
    for (std::unique_ptr<Entry> * link = &head; *link != nullptr;) {
        if ((*link)->atRunTime)
            *link = std::move((*link)->next);
        else
            link = &(*link)->next;
    }
}

// The library's own functions stay for a later session, as they were before any call.
void closeFuncdef() {
    for (auto & head : registry().buckets) removeRunTimeEntries(head);
    forEachEntry([](Entry & entry) { entry.info.state = FuncInfo::State(); });
    clearFunctionTimers();
}

AutoFunc const closeFuncdefAtExit("Exit", closeFuncdef, "closeFuncdef");

} // namespace

FuncInfo::FuncInfo(char const * name_, argType const * types, int minArgs_, int maxArgs_, FuncHandler handler_,
                   MultiDef const * multiDefs_, bool supportsIncremental_)
    : FuncInfo(name_, types, minArgs_, maxArgs_, handler_, false) {
    if (multiDefs_ != nullptr) std::copy_n(multiDefs_, maxArgs, multiDefs);
    supportsIncremental = supportsIncremental_;
}

FuncInfo::FuncInfo(char const * name_, argType const * types, int minArgs_, int maxArgs_, FuncHandler handler_,
                   bool exported_)
    : name(name_), minArgs(static_cast<std::uint16_t>(std::clamp(minArgs_, 0, maxArguments))),
      maxArgs(static_cast<std::uint16_t>(std::clamp(maxArgs_, 0, maxArguments))), handler(handler_),
      exported(exported_) {
    if (types != nullptr) std::copy_n(types, maxArgs, argTypes);
}

FuncDef::FuncDef(FuncInfo const & info) {
    addEntry(info, false);
}

FuncLoc::FuncLoc(char const * name, char const * file, int line, void * handlerAddress) {
    registry().locations.push_back({name, file, line, handlerAddress});
}

void vec_AddNewFunction(FuncInfo const & info) {
    addEntry(info, true);
}

FuncInfo * vec_FindFunction(YString const & name) {
    for (Entry * entry = bucketOf(name).get(); entry != nullptr; entry = entry->next.get())
        if (equalNoCase(entry->info.name, name)) return &entry->info;
    return nullptr;
}

void vec_GetFunctions(YList<FunctionInfo> * out, bool exportedOnly) {
    forEachEntry([&](Entry const & entry) {
        FuncInfo const & info = entry.info;
        if (info.exported || !exportedOnly) out->push_back({info.name, info.minArgs, info.maxArgs, info.summary});
    });
}

void vec_GetSortedFunctionList(YList<FuncInfo> * out) {
    YArray<FuncInfo const *> listed;
    forEachEntry([&](Entry const & entry) {
        if (!entry.info.name.beginsWith("_")) listed.push_back(&entry.info);
    });
    std::stable_sort(listed.begin(), listed.end(), [](auto const * a, auto const * b) { return *a < *b; });
    for (FuncInfo const * info : listed) out->push_back(*info);
}

void vec_GetFunctionLocs(YList<FuncLocInfo> * out) {
    for (Location const & at : registry().locations)
        out->push_back({at.name, at.file, sp_GetRunningDllPath(at.address), at.line});
}
