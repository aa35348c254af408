// Old runs are thrown away when a new group comes: the option "GroupPersistence" says how many runs are kept.

#include "Groups/StoreParts.h"

#include "torvelan/Host.h"

#include <chrono>
#include <map>

namespace {

MakeOption const persistenceOption("GroupPersistence", 3, OptionPersistence::stored, __FILE__, __LINE__);

// The listed groups by run, so that a purge looks at the groups that it destroys and at no others.
std::multimap<std::uint32_t, Group *> & groupsOfRuns() {
    static auto & runs = *new std::multimap<std::uint32_t, Group *>;
    return runs;
}

// The oldest of the `limit` newest runs, or of all when there are fewer; 0 when there is none.
std::uint32_t oldestRunKept(int limit) {
    auto const & runs = groupsOfRuns();
    std::uint32_t oldest = 0;
    for (auto end = runs.end(); limit > 0 && end != runs.begin(); --limit) {
        oldest = std::prev(end)->first;
        end = runs.lower_bound(oldest);
    }
    return oldest;
}

} // namespace

void joinRun(Group * group) {
    if (group->runId != 0) group->runEntry = groupsOfRuns().emplace(group->runId, group);
}

void leaveRun(Group * group) noexcept {
    if (group->listed && group->runId != 0) groupsOfRuns().erase(group->runEntry);
}

void setRunId(Group * group, std::uint32_t runId) {
    if (group->destroying != 0) return; // has left its run for good
    leaveRun(group);
    group->runId = runId;
    if (group->listed) joinRun(group);
}

void purgeByPersistence() {
    std::uint32_t const oldest = oldestRunKept(sp_GetIntOption("GroupPersistence"));
    auto const & runs = groupsOfRuns();
    while (!runs.empty() && runs.begin()->first < oldest) destroyGroup(runs.begin()->second);
}

std::uint32_t newRunId() {
    static std::uint32_t last = 0;
    using std::chrono::system_clock;
    auto const now = static_cast<std::uint32_t>(system_clock::to_time_t(system_clock::now()));
    last = now > last ? now : last + 1;
    return last;
}
