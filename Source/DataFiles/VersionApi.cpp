#include "Dfs/FileHeader.h"
#include "torvelan/DataFiles.h"
#include "torvelan/ResultCodes.h"

void vec_GetCurrentDataFileVersion(YString * name, int * code) {
    FileVersion const & version = latestVersion();
    if (name != nullptr) *name = YString(version.name);
    if (code != nullptr) *code = version.code;
}

VEC_ERROR vec_GetDataVersionCode(YString const & name, int * code) {
    FileVersion const * version = findVersion(name);
    if (code != nullptr) *code = version != nullptr ? version->code : 0;
    return version != nullptr ? VEC_OK : VEC_NOT_DONE;
}
