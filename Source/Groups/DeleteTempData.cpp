// When and how temporary data files go.

#include "Groups/DeleteTempData.h"

#include "support/FileLock.h"
#include "support/Paths.h"
#include "torvelan/Host.h"
#include "torvelan/TempData.h"

namespace {

MakeOption const options[] = {
    {"DataGroupDelete", "OnStart", OptionPersistence::stored, __FILE__, __LINE__},
    {"TvlDataGroupDelete", "Never", OptionPersistence::stored, __FILE__, __LINE__},
    {"Tvl2DataGroupDelete", "Never", OptionPersistence::stored, __FILE__, __LINE__},
};

struct IdentityRow {
    char const * identity;
    char const * option;
};
constexpr IdentityRow identities[] = {
    {"TVL2", "Tvl2DataGroupDelete"}, {"TVL", "TvlDataGroupDelete"}, {"Torvelan", "DataGroupDelete"}};

YString identity() {
    static auto const ask = reinterpret_cast<HostIdentity>(support_GetDynamicFunction("dyn_IdentifyBinary"));
    char const * const name = ask != nullptr ? ask() : nullptr;
    return YString(name != nullptr ? name : "");
}

// The moment to delete at; empty, which is never, for a host that is none of those known.
YString chosenMoment() {
    YString const host = identity();
    for (IdentityRow const & row : identities)
        if (host == YString(row.identity)) return sp_GetStringOption(row.option);
    return YString();
}

void deleteOnStart() {
    if (equalNoCase(chosenMoment(), "OnStart")) vec_DeleteTempData(vec_GetTempDataDir());
}

AutoFunc const atPostInit("PostInit", deleteOnStart, "deleteTempDataOnStart");

} // namespace

void deleteTempDataOnExit() {
    YString const moment = chosenMoment();
    if (equalNoCase(moment, "OnClose") || equalNoCase(moment, "OnDelete")) vec_DeleteTempData(vec_GetTempDataDir());
}

void vec_DeleteTempData(YString const & dir) {
    if (dir.empty()) return;
    YList<YString> files;
    YString const extension = sp_GetTorvelanDefaultExtension("Data");
    sp_ListDirectory(YString::joined(dir, {"/*.", extension.view()}), &files, true, true);
    for (YString const & file : files) {
        FileLock lock;
        if (lock.lock(file)) unlink_utf8(file);
    }
}
