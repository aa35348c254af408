#include "Funcs/FunctionFamily.h"

FunctionFamily::FunctionFamily(std::span<FunctionRow const> rows) {
    for (FunctionRow const & row : rows) {
        FuncInfo info(row.name, row.types, row.minArgs, row.maxArgs, row.handler, row.multiDefs, false);
        info.summary = row.summary;
        FuncDef{info};
    }
}
