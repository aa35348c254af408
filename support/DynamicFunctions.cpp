#include "torvelan/Host.h"

#include <map>
#include <string>

namespace {

using Table = std::map<std::string, DynamicFunction, std::less<>>;

// Built on first use by a static initialiser; never destroyed, since functions are still looked up at shut-down.
Table & table() {
    static auto & functions = *new Table;
    return functions;
}

} // namespace

DynamicFunction support_GetDynamicFunction(char const * name) {
    auto const found = table().find(name);
    return found != table().end() ? found->second : nullptr;
}

MakeDynamicFunction::MakeDynamicFunction(char const * name, DynamicFunction function) {
    table()[name] = function;
}
