#include "torvelan/Host.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

struct Callback {
    std::string phase;
    void (*proc)();
    int priority;
};

// Ordered by priority, then by registration. Built on first use, since registrations happen in static initialisers in
// any order, and never destroyed, since a phase may still run in static destructors.
std::vector<Callback> & callbacks() {
    static auto & list = *new std::vector<Callback>;
    return list;
}

} // namespace

// The name serves those who read the registration.
AutoFunc::AutoFunc(char const * phase, void (*proc)(), char const *, int priority) {
    auto & list = callbacks();
    auto const behind = [](int p, Callback const & callback) { return p < callback.priority; };
    list.insert(std::upper_bound(list.begin(), list.end(), priority, behind), {phase, proc, priority});
}

void support_RunPhase(char const * phase) {
    std::vector<void (*)()> procs; // a callback may register others
    for (Callback const & callback : callbacks())
        if (callback.phase == phase) procs.push_back(callback.proc);
    for (auto const proc : procs) proc();
}
