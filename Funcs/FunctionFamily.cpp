#include "Funcs/FunctionFamily.h"

#include "Evaluation/PlacedFunction.h"

FunctionFamily::FunctionFamily(std::span<FunctionRow const> rows, SourcePlace place) {
    for (FunctionRow const & row : rows) {
        FuncInfo info(row.name, row.types, row.minArgs, row.maxArgs, row.handler, row.multiDefs,
                      (row.traits & incremental) != 0);
        info.flatDivisions = (row.traits & flat) != 0;
        info.walksDivisions = (row.traits & walks) != 0;
        info.summary = row.summary;
        PlacedFunction{info, place};
    }
}
